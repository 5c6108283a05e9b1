#include <orv/geometry/primitives/mesh_box_8v.h>

#include "geometry/primitives/shape_build.h"

namespace orv {

namespace {

// Corners as signs of the half sizes, with the texture coordinates of front and back.
struct Corner {
  float x, y, z;
  float u, v;
};
constexpr Corner CORNERS[8] = {{-1, -1, +1, 0, 0}, {-1, +1, +1, 0, 1}, {+1, +1, +1, 1, 1},
                               {+1, -1, +1, 1, 0}, {+1, -1, -1, 0, 0}, {+1, +1, -1, 0, 1},
                               {-1, +1, -1, 1, 1}, {-1, -1, -1, 1, 0}};

constexpr unsigned int FACES[12][3] = {{0, 1, 2}, {2, 3, 0}, {4, 5, 6}, {6, 7, 4},
                                       {3, 2, 5}, {5, 4, 3}, {7, 6, 1}, {1, 0, 7},
                                       {1, 6, 5}, {5, 2, 1}, {7, 0, 3}, {3, 4, 7}};

vec3 place(const Corner& corner, float width, float height, float depth) {
  return vec3(corner.x * (width * 0.5f), corner.y * (height * 0.5f), corner.z * (depth * 0.5f));
}

}  // namespace

MeshBox8v::MeshBox8v() : MeshBox8v(VERTEX_FORMAT_DEFAULT) {}

MeshBox8v::MeshBox8v(VERTEX_FORMAT format) : Mesh(format) { set_type(NODE_TYPE_MESH_BOX_8V); }

MeshBox8v::MeshBox8v(const MeshBox8v& other) : MeshBox8v() { *this = other; }

bool MeshBox8v::set_build_params(float width, float height, float depth) {
  width_ = width;
  height_ = height;
  depth_ = depth;
  update_build_state(true);
  return true;
}

bool MeshBox8v::update_params(float width, float height, float depth) {
  width_ = width;
  height_ = height;
  depth_ = depth;
  if (!has_shape_vertices(*this, 8)) return false;
  AttribAccess positions(*get_mesh_data(), VERTEX_ATTRIB_POSITION);
  for (unsigned int i = 0; i < 8; ++i) {
    positions.set(i, vec4(place(CORNERS[i], width_, height_, depth_)));
  }
  return true;
}

bool MeshBox8v::build(Node*) { return _build(); }

bool MeshBox8v::_build() {
  return build_when_dirty(*this, [this] { return _build_box_8v(); });
}

bool MeshBox8v::_build_box_8v() {
  if (!begin_shape(*this, 8, 12)) return false;
  ShapeVertices vertices(*get_mesh_data());
  for (unsigned int i = 0; i < 8; ++i) {
    const vec3 position = place(CORNERS[i], width_, height_, depth_);
    vec3 normal = position;
    normal.normalize();
    vertices.write(i, vec4(position), normal, CORNERS[i].u, CORNERS[i].v);
  }
  FaceAccess faces(*get_mesh_data());
  for (unsigned int i = 0; i < faces.size(); ++i) {
    faces.set(i, FACES[i][0], FACES[i][1], FACES[i][2]);
  }
  return true;
}

}  // namespace orv
