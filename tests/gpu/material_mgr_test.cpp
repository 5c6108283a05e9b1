#include <orv/gpu/material.h>
#include <orv/gpu/material_mgr.h>

#include <gtest/gtest.h>

#include <string>

namespace orv {
namespace {

TEST(MaterialMgr, GetGivesOneInstance) {
  ASSERT_NE(MaterialMgr::get(), nullptr);
  EXPECT_EQ(MaterialMgr::get(), MaterialMgr::get());
}

TEST(MaterialMgr, CreatedMaterialIsNamedAndRegisteredOnce) {
  MaterialMgr manager;
  Material* material = manager.create_material("brick");
  EXPECT_STREQ(material->get_name(), "brick");
  EXPECT_EQ(material->get_ref(), 1);
  EXPECT_EQ(manager.get_resource("brick"), material);
  EXPECT_TRUE(manager.add_material(material));
  EXPECT_EQ(material->get_ref(), 1);
  EXPECT_TRUE(manager.stop(nullptr));
  EXPECT_EQ(manager.get_num_resources(), 0u);
}

TEST(MaterialMgr, NullNameKeepsTheDefault) {
  MaterialMgr manager;
  Material* material = manager.create_material(nullptr);
  EXPECT_EQ(material->get_name(), "node_" + std::to_string(material->get_id()));
  EXPECT_TRUE(manager.has_resource(material));
  manager.stop(nullptr);
}

TEST(MaterialMgr, NullMaterialIsRefused) {
  MaterialMgr manager;
  EXPECT_FALSE(manager.add_material(nullptr));
}

TEST(MaterialMgr, StartSucceeds) {
  MaterialMgr manager;
  EXPECT_TRUE(manager.start(nullptr));
}

}  // namespace
}  // namespace orv
