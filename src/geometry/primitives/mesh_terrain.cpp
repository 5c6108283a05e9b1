#include <orv/geometry/primitives/mesh_terrain.h>

#include <orv/core/log_mgr.h>
#include <orv/gpu/texture.h>
#include <orv/image/image.h>

#include <algorithm>
#include <new>
#include <vector>

#include "geometry/limits.h"
#include "geometry/primitives/shape_build.h"
#include "scene/node_data.h"

namespace orv {

struct MeshTerrainData {
  int resolution = 0;
  float height_scale = 0.0f;
  float half_size = 0.0f;
  float min_height = 0.0f;
  int buffer_size = 0;  // texels of a row
  int buffer_rows = 0;
  std::vector<float> height_buffer;
  ChildList textures{nullptr};  // one at most; forgets it when it ends

  Texture* texture() const { return static_cast<Texture*>(textures.at(0)); }
  void set_texture(Texture* texture) {
    textures.clear();
    if (texture) textures.append(texture);
  }
  void copy(const MeshTerrainData& other) {
    resolution = other.resolution;
    height_scale = other.height_scale;
    half_size = other.half_size;
    min_height = other.min_height;
    buffer_size = other.buffer_size;
    buffer_rows = other.buffer_rows;
    height_buffer = other.height_buffer;
    set_texture(other.texture());
  }
};

// ---- life ----

MeshTerrain::MeshTerrain() : MeshTerrain(VERTEX_FORMAT_DEFAULT) {}

MeshTerrain::MeshTerrain(VERTEX_FORMAT format) : Mesh(format), terrain_(new MeshTerrainData) {
  set_type(NODE_TYPE_MESH_TERRAIN);
}

MeshTerrain::~MeshTerrain() { delete terrain_; }

MeshTerrain::MeshTerrain(const MeshTerrain& other) : MeshTerrain() { *this = other; }

MeshTerrain& MeshTerrain::operator=(const MeshTerrain& other) {
  if (this == &other) return *this;
  Mesh::operator=(other);
  terrain_->copy(*other.terrain_);
  return *this;
}

bool MeshTerrain::_cleanup(Renderer* renderer) {
  std::vector<float>().swap(terrain_->height_buffer);
  terrain_->buffer_size = 0;
  terrain_->buffer_rows = 0;
  return Mesh::_cleanup(renderer);
}

// ---- parameters ----

bool MeshTerrain::set_build_params(Texture* texture, int resolution, float height_scale,
                                   float half_size, float min_height) {
  terrain_->resolution = resolution;
  terrain_->height_scale = height_scale;
  terrain_->half_size = half_size;
  terrain_->min_height = min_height;
  terrain_->set_texture(texture);
  update_build_state(true);
  return true;
}

bool MeshTerrain::init_terrain_buffer(Texture* texture) {
  if (!texture) return false;
  const Image* image = texture->get_image_ptr();
  const std::uint64_t width = image ? image->width : 0;
  const std::uint64_t height = image ? image->height : 0;
  std::vector<float> heights;
  try {
    check_geometry_bytes(width * height, sizeof(float));
    heights.resize(width * height);
  } catch (const std::bad_alloc&) {
    LogMgr::get().tracef_debug("Terrain %s - %lu heights don't fit in memory", get_name(),
                               static_cast<unsigned long>(width * height));
    return false;
  }
  for (std::size_t i = 0; image && i < heights.size(); ++i) {
    const float height_of_texel = image->get_r(static_cast<unsigned int>(i));
    heights[i] = height_of_texel == -1.0f ? 0.0f : height_of_texel;
  }
  terrain_->height_buffer.swap(heights);
  const bool any = !terrain_->height_buffer.empty();
  terrain_->buffer_size = any ? static_cast<int>(width) : 0;
  terrain_->buffer_rows = any ? static_cast<int>(height) : 0;
  return true;
}

float MeshTerrain::elevation(int i, int j, float height_scale, float min_height) {
  const MeshTerrainData& t = *terrain_;
  float y = 0.0f;
  if (i >= 0 && i < t.buffer_size && j >= 0 && j < t.buffer_rows) {
    const std::size_t row = static_cast<std::size_t>(j) * static_cast<std::size_t>(t.buffer_size);
    y = t.height_buffer[row + static_cast<std::size_t>(i)] * height_scale;
  }
  return y <= min_height ? min_height : y;
}

// ---- building ----

bool MeshTerrain::build(Node*) { return _build(); }

bool MeshTerrain::_build() {
  return build_when_dirty(*this, [this] {
    return _build_terrain(terrain_->resolution, terrain_->height_scale, terrain_->half_size,
                          terrain_->min_height);
  });
}

namespace {

/// Nearest index of `step` of `steps` in a row of `size` heights, at most `last`.
int buffer_index(int step, int steps, int size, int last) {
  const float at =
      static_cast<float>(step) * static_cast<float>(size - 1) / static_cast<float>(steps) + 0.5f;
  if (!(at > 0.0f)) return 0;
  return at < static_cast<float>(last) ? static_cast<int>(at) : last;
}

vec3 slope_normal(float rise_x, float dx, float rise_z, float dz) {
  vec3 normal(-rise_x * dz, dx * dz, -rise_z * dx);
  normal.normalize();
  return normal.length() > 0.5f ? normal : vec3(0.0f, 1.0f, 0.0f);
}

}  // namespace

bool MeshTerrain::_build_terrain(int resolution, float height_scale, float half_size,
                                 float min_height) {
  if (resolution < 1) {
    begin_shape(*this, 0);
    return false;
  }
  const std::uint64_t side = static_cast<std::uint64_t>(resolution) + 1;
  const std::uint64_t cells =
      static_cast<std::uint64_t>(resolution) * static_cast<std::uint64_t>(resolution);
  if (!begin_shape(*this, side * side, cells * 2)) return false;
  if (terrain_->height_buffer.empty()) init_terrain_buffer(terrain_->texture());
  MeshData& data = *get_mesh_data();

  const auto height_at = [&](int i, int j) {
    const MeshTerrainData& t = *terrain_;
    const int column = buffer_index(i, resolution, t.buffer_size, t.buffer_size - 1);
    const int row = buffer_index(j, resolution, t.buffer_size, t.buffer_rows - 1);
    return elevation(column, row, height_scale, min_height);
  };
  const float cell = 2.0f * half_size / static_cast<float>(resolution);
  const auto parts = static_cast<float>(resolution);
  ShapeVertices vertices(data);
  unsigned int vertex = 0;
  for (int j = 0; j <= resolution; ++j) {
    const int above = std::max(j - 1, 0);
    const int below = std::min(j + 1, resolution);
    for (int i = 0; i <= resolution; ++i) {
      const int left = std::max(i - 1, 0);
      const int right = std::min(i + 1, resolution);
      const vec4 position(static_cast<float>(i) * cell - half_size, height_at(i, j),
                          static_cast<float>(j) * cell - half_size, 1.0f);
      const vec3 normal = slope_normal(
          height_at(right, j) - height_at(left, j), static_cast<float>(right - left) * cell,
          height_at(i, below) - height_at(i, above), static_cast<float>(below - above) * cell);
      vertices.write(vertex++, position, normal, static_cast<float>(i) / parts,
                     static_cast<float>(resolution - j) / parts);
    }
  }

  FaceAccess faces(data);
  unsigned int face = 0;
  for_each_cell(resolution, resolution, [&](unsigned int a, unsigned int c) {
    faces.set(face++, a, c, a + 1);
    faces.set(face++, a + 1, c, c + 1);
  });
  write_quad_edges(data, resolution, resolution, QuadEdgeOrder::ACROSS_FIRST);
  return true;
}

}  // namespace orv
