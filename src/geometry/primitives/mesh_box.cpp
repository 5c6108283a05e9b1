#include <orv/geometry/primitives/mesh_box.h>

#include <algorithm>
#include <cstdint>

#include "geometry/box_sides.h"
#include "geometry/primitives/shape_build.h"

namespace orv {

namespace {

/// Vertex of a side's grid.
struct SidePlace {
  float u;  ///< texture coordinates, 0 to 1
  float v;
  float across;  ///< the same as -1 to 1, equal on both sides of an edge but for the sign
  float upward;

  SidePlace(int column, int columns, int row, int rows)
      : u(share(column, columns)),
        v(share(row, rows)),
        across(share(2 * static_cast<std::int64_t>(column) - columns, columns)),
        upward(share(2 * static_cast<std::int64_t>(row) - rows, rows)) {}

  static float share(std::int64_t part, int whole) {
    return static_cast<float>(part) / static_cast<float>(whole);
  }
};

vec4 place_on_side(const BoxSide& side, const SidePlace& place, const vec3& half) {
  return vec4((side.normal + side.u * place.across + side.v * place.upward) * half);
}

}  // namespace

MeshBox::MeshBox() : MeshBox(VERTEX_FORMAT_DEFAULT) {}

MeshBox::MeshBox(VERTEX_FORMAT format) : Mesh(format) { set_type(NODE_TYPE_MESH_BOX); }

MeshBox::MeshBox(const MeshBox& other) : MeshBox() { *this = other; }

// ---- parameters ----

bool MeshBox::set_build_params(float width, float height, float depth, int wsegs, int hsegs,
                               int dsegs) {
  width_ = width;
  height_ = height;
  depth_ = depth;
  wsegs_ = wsegs;
  hsegs_ = hsegs;
  dsegs_ = dsegs;
  update_build_state(true);
  return true;
}

unsigned long long MeshBox::wanted_faces() const {
  const auto w = static_cast<unsigned long long>(std::max(wsegs_, 1));
  const auto h = static_cast<unsigned long long>(std::max(hsegs_, 1));
  const auto d = static_cast<unsigned long long>(std::max(dsegs_, 1));
  // The products are below 2^62, but their sum times four may not be.
  if (h * w > (1ull << 58) || d * w > (1ull << 58) || d * h > (1ull << 58)) return 1ull << 60;
  return h * w * 4 + d * w * 4 + d * h * 4;
}

template <class Visit>
void MeshBox::for_each_vertex(Visit visit) const {
  const int segments[3] = {std::max(wsegs_, 1), std::max(hsegs_, 1), std::max(dsegs_, 1)};
  const auto segments_along = [&segments](const vec3& axis) {
    return axis.x != 0.0f ? segments[0] : axis.y != 0.0f ? segments[1] : segments[2];
  };
  unsigned int vertex = 0;
  for (int side = 0; side < 6; ++side) {
    const int columns = segments_along(BOX_SIDES[side].u);
    const int rows = segments_along(BOX_SIDES[side].v);
    const auto corner = [&](int column, int row) {
      visit(vertex++, BOX_SIDES[side], side, SidePlace(column, columns, row, rows));
    };
    for (int row = 0; row < rows; ++row) {
      for (int column = 0; column < columns; ++column) {
        corner(column, row);
        corner(column + 1, row);
        corner(column + 1, row + 1);
        corner(column, row);
        corner(column + 1, row + 1);
        corner(column, row + 1);
      }
    }
  }
}

bool MeshBox::update_size(float width, float height, float depth) {
  width_ = width;
  height_ = height;
  depth_ = depth;
  if (!has_shape_vertices(*this, wanted_faces() * 3)) return false;
  const vec3 half(width_ * 0.5f, height_ * 0.5f, depth_ * 0.5f);
  AttribAccess positions(*get_mesh_data(), VERTEX_ATTRIB_POSITION);
  for_each_vertex([&](unsigned int i, const BoxSide& side, int, const SidePlace& place) {
    positions.set(i, place_on_side(side, place, half));
  });
  return true;
}

bool MeshBox::update_vertices_uv_tiling(const int tiles[6], const vec2 offsets[6]) {
  if (!tiles || !offsets || !has_shape_vertices(*this, wanted_faces() * 3)) return false;
  AttribAccess uvs(*get_mesh_data(), VERTEX_ATTRIB_UV0);
  for_each_vertex([&](unsigned int i, const BoxSide&, int side, const SidePlace& place) {
    const float tile = static_cast<float>(tiles[side]);
    const vec2& offset = offsets[side];
    uvs.set(i, vec4(tile * place.u + offset.x, tile * place.v + offset.y, 0.0f, 1.0f));
  });
  return true;
}

// ---- building ----

bool MeshBox::build(Node*) { return _build(); }

bool MeshBox::_build() {
  return build_when_dirty(*this, [this] { return _build_box(); });
}

bool MeshBox::_build_box() {
  wsegs_ = std::max(wsegs_, 1);
  hsegs_ = std::max(hsegs_, 1);
  dsegs_ = std::max(dsegs_, 1);
  const unsigned long long num_faces = wanted_faces();
  if (!begin_shape(*this, num_faces * 3, num_faces)) return false;
  return _build_vertices_list();
}

bool MeshBox::_build_vertices_list() {
  const vec3 half(width_ * 0.5f, height_ * 0.5f, depth_ * 0.5f);
  {
    ShapeVertices vertices(*get_mesh_data());
    for_each_vertex([&](unsigned int i, const BoxSide& side, int, const SidePlace& place) {
      vertices.write(i, place_on_side(side, place, half), side.normal, place.u, place.v);
    });
  }
  FaceAccess faces(*get_mesh_data());
  for (unsigned int i = 0; i < faces.size(); ++i) faces.set(i, 3 * i, 3 * i + 1, 3 * i + 2);
  set_vertices_color(1.0f, 1.0f, 1.0f, 1.0f, nullptr);
  return true;
}

}  // namespace orv
