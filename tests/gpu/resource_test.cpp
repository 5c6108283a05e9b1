#include <orv/gpu/gpu_buffer.h>
#include <orv/gpu/gpu_program.h>
#include <orv/gpu/material.h>
#include <orv/gpu/resource.h>

#include <gtest/gtest.h>

#include <cstring>

namespace orv {
namespace {

// A pointer to a virtual member holds 1 + the byte offset of its slot (Itanium C++ ABI).
template <class Member>
long slot_of(Member member) {
  long words[2] = {};
  static_assert(sizeof(member) == sizeof(words));
  std::memcpy(words, &member, sizeof(words));
  return (words[0] - 1) / static_cast<long>(sizeof(void*));
}

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
  EXPECT_EQ(slot_of(&Resource::init), slot_of(&Node::init));
  EXPECT_EQ(slot_of(&Resource::set_name), slot_of(&Node::set_name));
  EXPECT_EQ(slot_of(&Resource::set_name), 14);
  EXPECT_EQ(slot_of(&Resource::get_renderer_id), 15);
  EXPECT_EQ(slot_of(&Resource::set_render_state), 17);
  EXPECT_EQ(slot_of(&GpuProgram::_cleanup), slot_of(&Node::_cleanup));
}

}  // namespace
}  // namespace orv
