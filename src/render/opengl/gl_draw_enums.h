/// @file
/// Maps from the numbers and names that drawing, buffer and program operations take to those of
/// OpenGL. Pure functions.
#pragma once

#include <GL/gl.h>

#include <orv/fwd.h>

namespace orv::detail {

/// Comparison of the depth test.
GLenum gl_depth_func(int func);
GLenum gl_blend_factor(RENDERER_BLEND_FACTOR factor);
/// Faces to cull or to set the polygon mode of.
GLenum gl_face(int face);
GLenum gl_polygon_mode(int mode);
/// 0 for a type that there is not.
GLenum gl_buffer_target(GPU_BUFFER_TYPE type);
/// What reads the binding of a buffer target; 0 for an unknown target.
GLenum gl_buffer_binding(GLenum target);
GLenum gl_buffer_usage(unsigned int usage);
GLenum gl_data_access(DATA_ACCESS_TYPE access);
GLenum gl_primitive_mode(PRIMITIVE_TYPE type);
/// 0 for a stage that there is not.
GLenum gl_shader_stage(GPU_SHADER_TYPE type);

/// Capability by its exact name; 0 for null and for names that enable_state does not take.
GLenum gl_state_by_name(const char* name);
/// Query target by its exact name; 0 for null and unknown names.
GLenum gl_query_target(const char* name);
/// All barrier bits whose names stand in the text.
GLbitfield gl_barrier_bits(const char* names);
/// All mapping bits whose names stand in the text; 0 for null.
GLbitfield gl_map_bits(const char* flags);
/// Mapping access whose name stands in the text; 0 for null and without one.
GLenum gl_map_access(const char* access);

}  // namespace orv::detail
