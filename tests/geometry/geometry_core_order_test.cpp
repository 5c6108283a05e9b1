#include <orv/geometry/geometry_core.h>
#include <orv/geometry/mesh.h>
#include <orv/geometry/mesh_data.h>

#include <gtest/gtest.h>

#include "support/vtable_slot.h"

namespace orv {
namespace {

using test::vtable_slot;
using test::vtable_slot_of;

using Update = bool(const void*);
using SubUpdate = bool(const void*, unsigned int, unsigned int);
using Set4 = bool(unsigned int, const vec4&);
using Set3 = bool(unsigned int, const vec3&);
using SetFloats = bool(unsigned int, float, float, float, float);

TEST(GeometryCoreOrder, StorageOperationsComeFirst) {
  std::size_t n = 2;  // the destructor takes two places
  EXPECT_EQ(vtable_slot(&GeometryCore::get_vertex), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::get_vertex_v2), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::get_vertex_elt_size), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::get_vertex_ptr), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::alloc_vertex_data), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::free_vertex_data), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::alloc_face_data), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::alloc_face_data_v2), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::alloc_face_data_v3), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::free_face_data), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::copy_vertex_data), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::copy_face_data), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::alloc_quad_edge_data), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::free_quad_edge_data), n++);
  EXPECT_EQ(n, 16u);
}

#define ORV_EXPECT_FAMILY(suffix)                                    \
  EXPECT_EQ(vtable_slot(&GeometryCore::get_position_##suffix), n++); \
  EXPECT_EQ(vtable_slot(&GeometryCore::get_color_##suffix), n++);    \
  EXPECT_EQ(vtable_slot(&GeometryCore::get_normal_##suffix), n++);   \
  EXPECT_EQ(vtable_slot(&GeometryCore::get_uv0_##suffix), n++);      \
  EXPECT_EQ(vtable_slot(&GeometryCore::get_uv1_##suffix), n++);      \
  EXPECT_EQ(vtable_slot(&GeometryCore::get_tangent_##suffix), n++)

TEST(GeometryCoreOrder, SizesAndPointersFollow) {
  std::size_t n = 16;
  ORV_EXPECT_FAMILY(size);
  ORV_EXPECT_FAMILY(vector_dim);
  ORV_EXPECT_FAMILY(elt_size);
  ORV_EXPECT_FAMILY(ptr);
  EXPECT_EQ(n, 40u);
}

TEST(GeometryCoreOrder, ContentsOfAttributesComeLast) {
  std::size_t n = 40;
  EXPECT_EQ(vtable_slot_of<Update>(&GeometryCore::update_position_buffer), n++);
  EXPECT_EQ(vtable_slot_of<SubUpdate>(&GeometryCore::update_position_subbuffer), n++);
  EXPECT_EQ(vtable_slot_of<SetFloats>(&GeometryCore::set_position), n++);
  EXPECT_EQ(vtable_slot_of<Set4>(&GeometryCore::set_position), n++);
  EXPECT_EQ(vtable_slot_of<Set3>(&GeometryCore::set_position), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::get_position), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::get_position_4f), n++);
  EXPECT_EQ(n, 47u);
  EXPECT_EQ(vtable_slot_of<Update>(&GeometryCore::update_color_buffer), n++);
  EXPECT_EQ(vtable_slot_of<SubUpdate>(&GeometryCore::update_color_subbuffer), n++);
  EXPECT_EQ(vtable_slot_of<SetFloats>(&GeometryCore::set_color), n++);
  EXPECT_EQ(vtable_slot_of<Set4>(&GeometryCore::set_color), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::get_color), n++);
  EXPECT_EQ(n, 52u);
  EXPECT_EQ(vtable_slot_of<Update>(&GeometryCore::update_normal_buffer), n++);
  EXPECT_EQ(vtable_slot_of<SubUpdate>(&GeometryCore::update_normal_subbuffer), n++);
  EXPECT_EQ(vtable_slot_of<Set4>(&GeometryCore::set_normal), n++);
  EXPECT_EQ(vtable_slot_of<Set3>(&GeometryCore::set_normal), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::get_normal), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::get_normal_vec3), n++);
  EXPECT_EQ(n, 58u);
  EXPECT_EQ(vtable_slot_of<Update>(&GeometryCore::update_uv0_buffer), n++);
  EXPECT_EQ(vtable_slot_of<SubUpdate>(&GeometryCore::update_uv0_subbuffer), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::set_uv0), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::get_uv0), n++);
  EXPECT_EQ(n, 62u);
  EXPECT_EQ(vtable_slot_of<Update>(&GeometryCore::update_uv1_buffer), n++);
  EXPECT_EQ(vtable_slot_of<SubUpdate>(&GeometryCore::update_uv1_subbuffer), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::set_uv1), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::get_uv1), n++);
  EXPECT_EQ(n, 66u);
}

TEST(GeometryCoreOrder, TangentSubBufferStandsBeforeItsBuffer) {
  std::size_t n = 66;
  EXPECT_EQ(vtable_slot_of<SubUpdate>(&GeometryCore::update_tangent_subbuffer), n++);
  EXPECT_EQ(vtable_slot_of<Update>(&GeometryCore::update_tangent_buffer), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::set_tangent), n++);
  EXPECT_EQ(vtable_slot(&GeometryCore::get_tangent), n++);
  EXPECT_EQ(n, 70u);
}

TEST(GeometryCoreOrder, OperationsOfMeshDataStandBehind) {
  EXPECT_EQ(vtable_slot(&MeshData::set_vertex_alloc_params), 70u);
  EXPECT_EQ(vtable_slot(&MeshData::get_vertex_alloc_params), 71u);
}

TEST(GeometryCoreOrder, MeshAddsNoOperationToThoseOfAnObject) {
  struct BehindObject : Object {
    virtual void next() {}
  };
  struct BehindMesh : Mesh {
    virtual void next() {}
  };
  EXPECT_EQ(vtable_slot(&BehindMesh::next), vtable_slot(&BehindObject::next));
}

}  // namespace
}  // namespace orv
