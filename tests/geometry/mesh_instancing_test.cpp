#include <orv/geometry/instancing_init_params.h>
#include <orv/geometry/mesh.h>
#include <orv/geometry/primitives/mesh_plane.h>
#include <orv/math/mat4.h>
#include <orv/math/quat.h>
#include <orv/scene/tripod.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "geometry/mesh_support.h"
#include "support/held.h"
#include "support/log_capture.h"
#include "support/near.h"

namespace orv {
namespace {

using test::Held;
using test::near;

/// A triangle with `user` attribute arrays of its own.
void give_triangle(Mesh& mesh, unsigned int user = 0) {
  mesh.set_vertex_alloc_params_num_user_attribs(user);
  test::give_triangles(mesh, {vec3(0, 0, 0), vec3(1, 0, 0), vec3(0, 1, 0)});
}

InstancingInitParams streams(unsigned int count, bool default_names = true) {
  InstancingInitParams params;
  params.num_vertex_streams = count;
  params.default_names = default_names;
  return params;
}

std::string name_of(const Mesh& mesh, unsigned int array) {
  return mesh.get_data()->get_vertex_attrib_array(array)->get_name();
}

class MeshInstancing : public ::testing::Test {
 protected:
  MeshInstancing() { give_triangle(*mesh); }
  void init(unsigned int instances = 2) {
    ASSERT_TRUE(mesh->instancing_init(instances, InstancingInitParams()));
  }

  Held<Mesh> mesh;
};

// ---- setting up ----

TEST_F(MeshInstancing, NoInstancesChangeNothing) {
  EXPECT_FALSE(mesh->instancing_init(0, InstancingInitParams()));
  EXPECT_EQ(mesh->get_data()->num_attrib_arrays, 4u);
  EXPECT_EQ(mesh->get_data()->first_instance_array, 0xFFFFFFFFu);
  EXPECT_EQ(mesh->get_num_instances(), 0u);
}

TEST_F(MeshInstancing, NoStreamsChangeNothing) {
  EXPECT_FALSE(mesh->instancing_init(3, streams(0)));
  EXPECT_EQ(mesh->get_data()->num_attrib_arrays, 4u);
  EXPECT_EQ(mesh->get_num_instances(), 0u);
}

TEST_F(MeshInstancing, AMeshWithoutDataHasNone) {
  mesh->cleanup_mesh_data(nullptr);
  EXPECT_FALSE(mesh->instancing_init(3, InstancingInitParams()));
  EXPECT_EQ(mesh->get_num_instances(), 0u);
  EXPECT_EQ(mesh->get_instance_positions_float_ptr(), nullptr);
  EXPECT_EQ(mesh->get_instance_transform(0, TRANSFORM_ORDER_TRS), mat4());
  EXPECT_EQ(mesh->get_instance_pos_va_index(), 0xFFFFFFFFu);
}

TEST_F(MeshInstancing, ArraysFollowTheStandardOnes) {
  init(7);
  const MeshData& data = *mesh->get_data();
  EXPECT_EQ(mesh->get_num_instances(), 7u);
  EXPECT_EQ(data.first_instance_array, 4u);
  EXPECT_EQ(mesh->get_instance_pos_va_index(), 4u);
  EXPECT_EQ(mesh->get_instance_rot_va_index(), 5u);
  EXPECT_EQ(mesh->get_instance_scale_va_index(), 6u);
  EXPECT_EQ(mesh->get_instance_color_va_index(), 7u);
  EXPECT_EQ(mesh->get_instance_misc_va_index(), 8u);
  const char* names[] = {"orvex_Instance_Position", "orvex_Instance_Rotation",
                         "orvex_Instance_Scale", "orvex_Instance_Color", "orvex_Instance_Misc"};
  for (unsigned int i = 0; i < 5; ++i) {
    const VertexAttribArray& array = *data.get_vertex_attrib_array(4 + i);
    EXPECT_STREQ(array.get_name(), names[i]);
    EXPECT_EQ(array.get_location(), static_cast<int>(4 + i));
    EXPECT_EQ(array.get_divisor(), 1);
    EXPECT_EQ(array.get_num_elements(), 7);
  }
  EXPECT_EQ(data.get_vertex_attrib_array(3)->get_divisor(), 0);
}

TEST(MeshInstancingInit, AUserArrayInFrontMovesTheLocations) {
  const Held<Mesh> mesh;
  give_triangle(*mesh, 1);
  mesh->instancing_init(2, InstancingInitParams());
  EXPECT_EQ(mesh->get_data()->first_instance_array, 5u);
  EXPECT_EQ(mesh->get_data()->get_vertex_attrib_array(5)->get_location(), 5);
  EXPECT_EQ(name_of(*mesh, 5), "orvex_Instance_Position");
}

TEST(MeshInstancingInit, InterleavedVerticesLeaveTheirNumbersFree) {
  const Held<Mesh> mesh;
  test::give_triangles(*mesh, {vec3(0, 0, 0), vec3(1, 0, 0), vec3(0, 1, 0)},
                       test::VertexForm::INTERLEAVED);
  mesh->instancing_init(2, InstancingInitParams());
  EXPECT_EQ(mesh->get_data()->first_instance_array, 0u);
  EXPECT_EQ(mesh->get_data()->get_vertex_attrib_array(0)->get_location(), 0);
  mesh->set_instance_position(1, vec4(1, 2, 3, 4));
  EXPECT_EQ(mesh->get_instance_position(1), vec4(1, 2, 3, 4));
}

TEST_F(MeshInstancing, StreamsPastTheFifthKeepTheirNames) {
  mesh->instancing_init(2, streams(7));
  EXPECT_EQ(name_of(*mesh, 8), "orvex_Instance_Misc");
  EXPECT_EQ(name_of(*mesh, 9), "orvex_Attrib9");
  EXPECT_EQ(name_of(*mesh, 10), "orvex_Attrib10");
}

TEST_F(MeshInstancing, OtherNamesCountTheLocation) {
  mesh->instancing_init(2, streams(2, false));
  EXPECT_EQ(name_of(*mesh, 4), "orvex_Instance_Attrib4");
  EXPECT_EQ(name_of(*mesh, 5), "orvex_Instance_Attrib5");
}

TEST_F(MeshInstancing, UseFlagsAndFirstLocationAreNotRead) {
  InstancingInitParams params;
  params.disable_all();
  params.first_location = 12;
  EXPECT_TRUE(mesh->instancing_init(2, params));
  EXPECT_EQ(mesh->get_data()->num_attrib_arrays, 9u);
  EXPECT_EQ(mesh->get_data()->get_vertex_attrib_array(4)->get_location(), 4);
}

TEST_F(MeshInstancing, StreamsPastSixteenArraysAreLeftOutWithAWarningEach) {
  const test::LogCapture log;
  EXPECT_TRUE(mesh->instancing_init(2, streams(14)));
  EXPECT_EQ(mesh->get_data()->num_attrib_arrays, 16u);
  EXPECT_EQ(log.count("max number of vertex attribs reached (16)"), 2);
  EXPECT_EQ(mesh->get_instance_user_vertex_stream_value(12, 0), vec4());
}

TEST_F(MeshInstancing, ManyMoreStreamsEndSoon) {
  const test::LogCapture log;
  EXPECT_TRUE(mesh->instancing_init(2, streams(0xFFFFFFFFu)));
  EXPECT_EQ(mesh->get_data()->num_attrib_arrays, 16u);
  EXPECT_LE(log.lines().size(), 64u);
}

TEST_F(MeshInstancing, TooManyInstancesForMemoryLeaveNoArrays) {
  const test::LogCapture log;
  EXPECT_TRUE(mesh->instancing_init(0xFFFFFFFFu, InstancingInitParams()));
  EXPECT_EQ(mesh->get_data()->num_attrib_arrays, 4u);
  mesh->set_instance_position(5, vec4(1, 1, 1, 1));
  EXPECT_EQ(mesh->get_instance_position(5), vec4());
}

// ---- single values ----

TEST_F(MeshInstancing, FreshInstancesHaveNoScale) {
  init();
  EXPECT_EQ(mesh->get_instance_scale(0), vec4(0, 0, 0, 1));
  EXPECT_EQ(mesh->get_instance_rotation(0), vec4(0, 0, 0, 1));
}

TEST_F(MeshInstancing, ValuesReachTheirArrays) {
  init();
  mesh->set_instance_position(1, vec4(1, 2, 3, 4));
  mesh->set_instance_rotation(1, vec4(5, 6, 7, 8));
  mesh->set_instance_scale(1, vec4(9, 10, 11, 12));
  mesh->set_instance_color(1, vec4(13, 14, 15, 16));
  mesh->set_instance_misc(1, vec4(17, 18, 19, 20));
  EXPECT_EQ(mesh->get_instance_position(1), vec4(1, 2, 3, 4));
  EXPECT_EQ(mesh->get_instance_rotation(1), vec4(5, 6, 7, 8));
  EXPECT_EQ(mesh->get_instance_scale(1), vec4(9, 10, 11, 12));
  EXPECT_EQ(mesh->get_instance_color(1), vec4(13, 14, 15, 16));
  EXPECT_EQ(mesh->get_instance_misc(1), vec4(17, 18, 19, 20));
  EXPECT_EQ(mesh->get_instance_position(0), vec4());
  EXPECT_EQ(mesh->get_vertex_attrib_element(6, 1), vec4(9, 10, 11, 12));
}

TEST_F(MeshInstancing, RotationsAreGivenAsQuaternionsToo) {
  init();
  mesh->set_instance_rotation(0, quat(0.5f, -0.5f, 0.25f, 0.75f));
  EXPECT_EQ(mesh->get_instance_rotation(0), vec4(0.5f, -0.5f, 0.25f, 0.75f));
}

TEST_F(MeshInstancing, AnInstanceOutOfRangeReadsAsTheDefault) {
  init();
  mesh->set_instance_position(2, vec4(1, 2, 3, 4));
  EXPECT_EQ(mesh->get_instance_position(2), vec4(0, 0, 0, 1));
  EXPECT_EQ(mesh->get_instance_position(0xFFFFFFFFu), vec4(0, 0, 0, 1));
}

TEST_F(MeshInstancing, SettingMarksTheArray) {
  init();
  VertexAttribArray& array = *mesh->get_data()->get_vertex_attrib_array(4);
  array.update_needed(false);
  mesh->set_instance_position(0, vec4(1, 1, 1, 1));
  EXPECT_TRUE(array.is_update_needed());
}

TEST_F(MeshInstancing, WithoutInstancingTheArraysOfTheVerticesAreNotReached) {
  // "None" and 1 is array 0.
  EXPECT_EQ(mesh->get_instance_rot_va_index(), 0u);
  mesh->get_data()->num_instances = 3;
  mesh->set_instance_rotation(1, vec4(9, 9, 9, 9));
  EXPECT_EQ(mesh->get_vertex_position(1), vec4(1, 0, 0, 1));
  EXPECT_EQ(mesh->get_instance_rotations_float_ptr(), nullptr);
  EXPECT_EQ(mesh->get_instance_rotations_vec4_ptr(), nullptr);
  const std::vector<vec4> values(3);
  EXPECT_FALSE(mesh->set_instance_rotations(values.data()));
  EXPECT_FALSE(mesh->set_instance_rotations_sub(values.data(), 0, 3));
  EXPECT_EQ(mesh->get_instance_user_vertex_stream(1), nullptr);
  EXPECT_EQ(mesh->get_instance_transform(0, TRANSFORM_ORDER_TRS), mat4());
}

TEST(MeshInstancingRebuild, TheCountStaysWhileTheArraysGo) {
  const Held<MeshPlane> plane;
  plane->build(nullptr);
  plane->instancing_init(3, InstancingInitParams());
  plane->set_build_params(1, 1, 1, 1);
  plane->build(nullptr);
  EXPECT_EQ(plane->get_num_instances(), 3u);
  EXPECT_EQ(plane->get_data()->num_attrib_arrays, 4u);
  plane->set_instance_position(0, vec4(1, 1, 1, 1));
  EXPECT_EQ(plane->get_instance_position(0), vec4());
  EXPECT_EQ(plane->get_instance_positions_vec4_ptr(), nullptr);
}

TEST_F(MeshInstancing, AnArrayWithoutStorageIsLeftAlone) {
  init();
  mesh->free_vertex_attrib_array(4);
  mesh->set_instance_position(0, vec4(1, 1, 1, 1));
  EXPECT_EQ(mesh->get_instance_position(0), vec4());
  const std::vector<vec4> values(3);
  EXPECT_FALSE(mesh->set_instance_positions(values.data()));
}

// ---- all values ----

TEST_F(MeshInstancing, PointersReachTheStorage) {
  init();
  mesh->set_instance_scale(0, vec4(1, 2, 3, 4));
  EXPECT_EQ(mesh->get_instance_scales_vec4_ptr()[0], vec4(1, 2, 3, 4));
  EXPECT_EQ(mesh->get_instance_scales_float_ptr()[1], 2.0f);
  EXPECT_EQ(mesh->get_instance_positions_float_ptr(),
            static_cast<float*>(mesh->get_data()->attrib_arrays[4]->data));
  EXPECT_EQ(mesh->get_instance_rotations_float_ptr(),
            static_cast<float*>(mesh->get_data()->attrib_arrays[5]->data));
  EXPECT_EQ(mesh->get_instance_colors_vec4_ptr(), mesh->get_data()->attrib_arrays[7]->data_vec4);
  EXPECT_EQ(mesh->get_instance_miscs_vec4_ptr(), mesh->get_data()->attrib_arrays[8]->data_vec4);
}

TEST_F(MeshInstancing, BulkSettersCopyOneValueForEachVertex) {
  init(5);
  std::vector<vec4> values;
  for (int i = 0; i < 5; ++i) values.emplace_back(static_cast<float>(i) + 1, 0.0f, 0.0f, 0.0f);
  VertexAttribArray& array = *mesh->get_data()->get_vertex_attrib_array(7);
  array.update_needed(false);
  EXPECT_TRUE(mesh->set_instance_colors(values.data()));
  EXPECT_TRUE(array.is_update_needed());
  // Three vertices, so that the last two of five instances keep their values.
  EXPECT_EQ(mesh->get_instance_color(2), values[2]);
  EXPECT_EQ(mesh->get_instance_color(3), vec4());
}

TEST_F(MeshInstancing, BulkSettersNeedAsManyInstancesAsVertices) {
  init(2);
  const std::vector<vec4> values(3);
  EXPECT_FALSE(mesh->set_instance_positions(values.data()));
  init(3);
  EXPECT_TRUE(mesh->set_instance_positions(values.data()));
  EXPECT_TRUE(mesh->set_instance_scales(values.data()));
  EXPECT_TRUE(mesh->set_instance_miscs(values.data()));
  EXPECT_TRUE(mesh->set_instance_rotations(values.data()));
  EXPECT_FALSE(mesh->set_instance_positions(nullptr));
}

TEST_F(MeshInstancing, SubBuffersTestStartAndCountApart) {
  init(4);
  const std::vector<vec4> values(4, vec4(1, 2, 3, 4));
  EXPECT_TRUE(mesh->set_instance_positions_sub(values.data(), 3, 1));
  EXPECT_EQ(mesh->get_instance_position(3), vec4(1, 2, 3, 4));
  EXPECT_EQ(mesh->get_instance_position(2), vec4());
  EXPECT_TRUE(mesh->set_instance_scales_sub(values.data(), 2, 4));
  EXPECT_EQ(mesh->get_instance_scale(3), vec4(1, 2, 3, 4));
  EXPECT_FALSE(mesh->set_instance_rotations_sub(values.data(), 4, 1));
  EXPECT_FALSE(mesh->set_instance_colors_sub(values.data(), 0, 5));
  EXPECT_FALSE(mesh->set_instance_miscs_sub(nullptr, 0, 1));
}

TEST_F(MeshInstancing, UserStreamsAreCountedFromThePositions) {
  mesh->instancing_init(3, streams(6));
  mesh->set_instance_user_vertex_stream_value(5, 1, vec4(1, 2, 3, 4));
  EXPECT_EQ(mesh->get_instance_user_vertex_stream_value(5, 1), vec4(1, 2, 3, 4));
  EXPECT_EQ(mesh->get_vertex_attrib_element(9, 1), vec4(1, 2, 3, 4));
  EXPECT_EQ(mesh->get_instance_user_vertex_stream(5)[1], vec4(1, 2, 3, 4));
  const std::vector<vec4> values(3, vec4(5, 6, 7, 8));
  EXPECT_TRUE(mesh->set_instance_user_vertex_stream(0, values.data()));
  EXPECT_EQ(mesh->get_instance_position(2), vec4(5, 6, 7, 8));
  EXPECT_TRUE(mesh->set_instance_user_vertex_stream_sub(5, values.data(), 2, 1));
  EXPECT_EQ(mesh->get_instance_user_vertex_stream_value(5, 2), vec4(5, 6, 7, 8));
  EXPECT_EQ(mesh->get_instance_user_vertex_stream_value(5, 3), vec4());
  EXPECT_EQ(mesh->get_instance_user_vertex_stream(6), nullptr);
  EXPECT_EQ(mesh->get_instance_user_vertex_stream(0xFFFFFFFCu), nullptr);
  EXPECT_FALSE(mesh->set_instance_user_vertex_stream(6, values.data()));
}

// ---- transform ----

TEST_F(MeshInstancing, TransformMultipliesInTheOrderAskedFor) {
  init();
  quat turn;
  turn.from_euler(0, 0, 90);
  mesh->set_instance_position(1, vec4(1, 2, 3, 1));
  mesh->set_instance_rotation(1, turn);
  mesh->set_instance_scale(1, vec4(2, 3, 4, 1));
  mat4 t, r, s;
  t.init_translate(1, 2, 3);
  r.from_quat(turn);
  s.init_scale(2, 3, 4);
  EXPECT_EQ(mesh->get_instance_transform(1, TRANSFORM_ORDER_TRS), t * r * s);
  EXPECT_EQ(mesh->get_instance_transform(1, TRANSFORM_ORDER_RTS), r * t * s);
  EXPECT_EQ(mesh->get_instance_transform(1, TRANSFORM_ORDER_TSR), t * s * r);
  EXPECT_EQ(mesh->get_instance_transform(1, TRANSFORM_ORDER_RST), r * s * t);
  EXPECT_EQ(mesh->get_instance_transform(1, static_cast<TRANSFORM_ORDER>(4)), mat4());
  EXPECT_EQ(mesh->get_instance_transform(2, TRANSFORM_ORDER_TRS), mat4());
}

TEST_F(MeshInstancing, TransformNeedsPositionRotationAndScale) {
  mesh->instancing_init(2, streams(2));
  mesh->set_instance_position(0, vec4(1, 2, 3, 1));
  EXPECT_EQ(mesh->get_instance_transform(0, TRANSFORM_ORDER_TRS), mat4());
}

}  // namespace
}  // namespace orv
