/// @file
/// Numbers that describe geometry.
#pragma once

namespace orv {

/// Standard vertex attributes; the first four are also the indices of the standard arrays.
enum VERTEX_ATTRIB_TYPE : int {
  VERTEX_ATTRIB_POSITION = 0,
  VERTEX_ATTRIB_UV0 = 1,
  VERTEX_ATTRIB_NORMAL = 2,
  VERTEX_ATTRIB_COLOR = 3,
  VERTEX_ATTRIB_UV1 = 4,
  VERTEX_ATTRIB_TANGENT = 5
};

/// How vertices are assembled when drawn. Any other value draws triangles.
enum PRIMITIVE_TYPE : int {
  PRIMITIVE_TRIANGLES = 0,
  PRIMITIVE_TRIANGLE_STRIP = 1,
  PRIMITIVE_LINES = 2,
  PRIMITIVE_LINE_STRIP = 3,
  PRIMITIVE_LINE_LOOP = 4,
  PRIMITIVE_LINES_ADJACENCY = 5,
  PRIMITIVE_LINE_STRIP_ADJACENCY = 6,
  PRIMITIVE_PATCHES = 7,
  PRIMITIVE_POINTS = 8
};

/// What kind of generic index list `alloc_face_data_v2` makes.
enum MESH_FACE_TRIANGLE_TYPE : int { MESH_FACE_TRIANGLE_LIST = 1, MESH_FACE_TRIANGLE_STRIP = 2 };

/// Number carried by geometry for its host; only the default has a meaning.
enum VERTEX_FORMAT : int { VERTEX_FORMAT_DEFAULT = 0 };

}  // namespace orv
