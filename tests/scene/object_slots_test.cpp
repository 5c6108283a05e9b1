// The order of Object's virtual operations, a contract with plugins.
#include <orv/scene/object.h>

#include <gtest/gtest.h>

#include "support/vtable_slot.h"

namespace orv {
namespace {

using test::vtable_slot;
using test::vtable_slot_of;

// The destructor takes two entries, so an operation's entry is its number counted from 1.
TEST(ObjectSlots, FollowThoseOfNodeInTheirOrder) {
  const struct {
    const char* name;
    std::size_t found, expected;
  } slots[] = {
      {"_cleanup", vtable_slot(&Object::_cleanup), 8},
      {"_build", vtable_slot(&Object::_build), 10},
      {"_render", vtable_slot(&Object::_render), 11},
      {"render_geometry", vtable_slot(&Object::render_geometry), 18},
      {"render_geometry_prepare", vtable_slot(&Object::render_geometry_prepare), 19},
      {"render_geometry_draw", vtable_slot(&Object::render_geometry_draw), 20},
      {"render_geometry_finish", vtable_slot(&Object::render_geometry_finish), 21},
      {"set_use_generic_vertex_attribs_state",
       vtable_slot(&Object::set_use_generic_vertex_attribs_state), 22},
      {"set_opengl_2_3_rendering_states", vtable_slot(&Object::set_opengl_2_3_rendering_states),
       23},
      {"set_use_gl2_vertex_array_state", vtable_slot(&Object::set_use_gl2_vertex_array_state), 24},
      {"set_use_fixed_mvp_matrices_state", vtable_slot(&Object::set_use_fixed_mvp_matrices_state),
       25},
      {"set_tessellation_state", vtable_slot(&Object::set_tessellation_state), 26},
      {"bind_gpu_program_uniforms", vtable_slot(&Object::bind_gpu_program_uniforms), 27},
      {"_update_automatic_uniforms", vtable_slot(&Object::_update_automatic_uniforms), 28},
      {"_update_automatic_uniforms_gpu_buffer",
       vtable_slot(&Object::_update_automatic_uniforms_gpu_buffer), 29},
      {"display_tripod", vtable_slot(&Object::display_tripod), 30},
      {"render_tripod", vtable_slot(&Object::render_tripod), 31},
      {"set_gpu_program", vtable_slot(&Object::set_gpu_program), 32},
      {"get_num_vertices", vtable_slot(&Object::get_num_vertices), 33},
      {"get_num_faces", vtable_slot(&Object::get_num_faces), 34},
      {"get_num_vertices_v2", vtable_slot(&Object::get_num_vertices_v2), 35},
      {"get_num_faces_v2", vtable_slot(&Object::get_num_faces_v2), 36},
      {"get_vertex", vtable_slot(&Object::get_vertex), 37},
      {"get_vertex_v2", vtable_slot(&Object::get_vertex_v2), 38},
      {"compute_faces_normal", vtable_slot(&Object::compute_faces_normal), 39},
      {"compute_vertices_normal", vtable_slot(&Object::compute_vertices_normal), 40},
      {"average_vertices_normal", vtable_slot(&Object::average_vertices_normal), 41},
      {"add_material", vtable_slot(&Object::add_material), 42},
      {"remove_material", vtable_slot(&Object::remove_material), 43},
      {"translate_vertices_position(vec4)",
       vtable_slot_of<void(const vec4&, Node*)>(&Object::translate_vertices_position), 44},
      {"translate_vertices_position(vec3)",
       vtable_slot_of<void(const vec3&, Node*)>(&Object::translate_vertices_position), 45},
      {"scale_vertices_position", vtable_slot(&Object::scale_vertices_position), 46},
      {"rotate_vertices_position(quat)",
       vtable_slot_of<void(const quat&, Node*)>(&Object::rotate_vertices_position), 47},
      {"rotate_vertices_position(float)",
       vtable_slot_of<void(float, float, float, Node*)>(&Object::rotate_vertices_position), 48},
      {"set_vertices_color(float)",
       vtable_slot_of<void(float, float, float, float, Node*)>(&Object::set_vertices_color), 49},
      {"set_vertices_color(vec4)",
       vtable_slot_of<void(const vec4&, Node*)>(&Object::set_vertices_color), 50},
      {"flip_faces", vtable_slot(&Object::flip_faces), 51},
      {"flip_vertex_normals", vtable_slot(&Object::flip_vertex_normals), 52},
      {"bounding_volume_compute", vtable_slot(&Object::bounding_volume_compute), 53},
      {"update_bounding_sphere", vtable_slot(&Object::update_bounding_sphere), 54},
  };
  for (const auto& slot : slots) EXPECT_EQ(slot.found, slot.expected) << slot.name;
}

/// An operation added behind Object's own takes the next entry, so Object has no others.
class Extended : public Object {
 public:
  virtual void extra() {}
};

TEST(ObjectSlots, EndWithTheLastOfThem) { EXPECT_EQ(vtable_slot(&Extended::extra), 55u); }

}  // namespace
}  // namespace orv
