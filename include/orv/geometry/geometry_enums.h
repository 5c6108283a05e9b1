/// @file
/// Numbers that describe geometry.
#pragma once

namespace orv {

/// Standard vertex attributes; the first four are also the indices of the standard arrays.
enum VERTEX_ATTRIB_TYPE : int {
  VERTEX_ATTRIB_POSITION = 0,  ///< place
  VERTEX_ATTRIB_UV0 = 1,       ///< texture coordinates
  VERTEX_ATTRIB_NORMAL = 2,    ///< direction of the surface
  VERTEX_ATTRIB_COLOR = 3,     ///< RGBA
  VERTEX_ATTRIB_UV1 = 4,       ///< second texture coordinates
  VERTEX_ATTRIB_TANGENT = 5    ///< direction of u
};

/// How vertices are assembled when drawn. Any other value draws triangles.
///
/// Adjacency needs no geometry shader: without one, and in OpenGL before 3.2, which has none, the
/// lines between the inner vertices are drawn.
enum PRIMITIVE_TYPE : int {
  PRIMITIVE_TRIANGLES = 0,             ///< three vertices each
  PRIMITIVE_TRIANGLE_STRIP = 1,        ///< each vertex makes one with the two before it
  PRIMITIVE_LINES = 2,                 ///< two vertices each
  PRIMITIVE_LINE_STRIP = 3,            ///< one line through all vertices
  PRIMITIVE_LINE_LOOP = 4,             ///< the same, closed
  PRIMITIVE_LINES_ADJACENCY = 5,       ///< four vertices each, the outer two for geometry shaders
  PRIMITIVE_LINE_STRIP_ADJACENCY = 6,  ///< a strip with one more vertex at each end
  PRIMITIVE_PATCHES = 7,               ///< for tessellation, see Renderer::set_patch_vertices
  PRIMITIVE_POINTS = 8                 ///< one vertex each
};

/// What kind of generic index list `alloc_face_data_v2` makes.
enum MESH_FACE_TRIANGLE_TYPE : int { MESH_FACE_TRIANGLE_LIST = 1, MESH_FACE_TRIANGLE_STRIP = 2 };

/// Borders of a mesh along its axes, as bits of a mask, see Mesh::vertex_particle_attach_border.
enum MESH_PLANE_BORDER_TYPE : int {
  MESH_PLANE_BORDER_X_MIN = 1,   ///< x at the minimum
  MESH_PLANE_BORDER_X_MAX = 2,   ///< x at the maximum
  MESH_PLANE_BORDER_Z_MIN = 4,   ///< z at the minimum
  MESH_PLANE_BORDER_Z_MAX = 8,   ///< z at the maximum
  MESH_PLANE_BORDER_Y_MIN = 16,  ///< y at the minimum
  MESH_PLANE_BORDER_Y_MAX = 32   ///< y at the maximum
};

/// Number carried by geometry for its host; only the default has a meaning.
enum VERTEX_FORMAT : int { VERTEX_FORMAT_DEFAULT = 0 };

}  // namespace orv
