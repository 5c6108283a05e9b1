#include <orv/gpu/gpu_buffer.h>
#include <orv/gpu/gpu_program.h>
#include <orv/gpu/material.h>
#include <orv/gpu/resource.h>

#include <gtest/gtest.h>

#include "support/vtable_slot.h"

namespace orv {
namespace {

using test::vtable_slot;

TEST(Resource, IsANodeOfResourceType) {
  Resource resource;
  EXPECT_EQ(resource.get_type(), NODE_TYPE_RESOURCE);
  EXPECT_TRUE(resource.is_type_of(NODE_TYPE_NODE));
  EXPECT_EQ(resource.get_ref(), 0);
}

TEST(Resource, SubclassesAreResourcesAndOfTheirOwnType) {
  GpuProgram program;
  EXPECT_EQ(program.get_type(), NODE_TYPE_GPU_PROGRAM);
  EXPECT_TRUE(program.is_type_of(NODE_TYPE_RESOURCE));
  Material material;
  EXPECT_EQ(material.get_type(), NODE_TYPE_MATERIAL);
  EXPECT_TRUE(material.is_type_of(NODE_TYPE_RESOURCE));
  GpuBuffer buffer;
  EXPECT_EQ(buffer.get_type(), NODE_TYPE_GPU_BUFFER);
  EXPECT_TRUE(buffer.is_type_of(NODE_TYPE_RESOURCE));
}

TEST(Resource, NullNameIsIgnored) {
  Resource resource;
  resource.set_name("tiles");
  resource.set_name(nullptr);
  EXPECT_STREQ(resource.get_name(), "tiles");
}

TEST(Resource, VirtualTableIsThatOfNode) {
  EXPECT_EQ(vtable_slot(&Resource::init), vtable_slot(&Node::init));
  EXPECT_EQ(vtable_slot(&Resource::set_name), vtable_slot(&Node::set_name));
  EXPECT_EQ(vtable_slot(&Resource::set_name), 14u);
  EXPECT_EQ(vtable_slot(&Resource::get_renderer_id), 15u);
  EXPECT_EQ(vtable_slot(&Resource::set_render_state), 17u);
  EXPECT_EQ(vtable_slot(&GpuProgram::_cleanup), vtable_slot(&Node::_cleanup));
}

}  // namespace
}  // namespace orv
