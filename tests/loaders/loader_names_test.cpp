#include "loaders/loader_names.h"

#include <orv/gpu/material.h>
#include <orv/gpu/material_mgr.h>
#include <orv/scene/model.h>

#include "support/held.h"

#include <gtest/gtest.h>

namespace orv::detail {
namespace {

TEST(LoaderNames, EndsInLettersOfAnyCase) {
  for (const char* name : {"a.obj", "a.OBJ", "dir/a.oBj", "abobj"}) {
    EXPECT_TRUE(ends_in_letters(name, "obj")) << name;
  }
  for (const char* name : {"a.ob", ".obj", "obj", "", "a.obj ", "a.3ds"}) {
    EXPECT_FALSE(ends_in_letters(name, "obj")) << name;
  }
  EXPECT_TRUE(ends_in_letters("a.3dS", "3ds"));
  EXPECT_FALSE(ends_in_letters(nullptr, "obj"));
}

TEST(LoaderNames, BuildInfoHasDateAndTime) {
  const std::string info = loader_build_info();
  EXPECT_EQ(info.rfind("BUILD_DATE: [", 0), 0u);
  EXPECT_NE(info.find("] - BUILD_TIME: ["), std::string::npos);
}

TEST(LoaderNames, MaterialsAreSharedByName) {
  MaterialMgr& manager = *MaterialMgr::get();
  manager.release_all_resources(nullptr, nullptr);
  Material* known = manager.create_material("known");
  {
    SharedMaterials materials;
    EXPECT_EQ(materials.find("known"), known);
    EXPECT_EQ(materials.find("other"), nullptr);
    const auto found = materials.find_or_create("known");
    EXPECT_EQ(found.material, known);
    EXPECT_FALSE(found.created);
    const auto made = materials.find_or_create("other");
    EXPECT_TRUE(made.created);
    EXPECT_EQ(made.material->get_ref(), 1);
    EXPECT_EQ(manager.get_resource("other"), made.material);
    EXPECT_EQ(materials.find_or_create("other").material, made.material);
  }
  manager.release_all_resources(nullptr, nullptr);
}

TEST(LoaderNames, AModelHasAMaterialOfANameOnce) {
  test::Held<Material> before;
  test::Held<Material> first;
  test::Held<Material> second;
  test::Held<Material> as_before;
  before->set_name("before");
  first->set_name("one name");
  second->set_name("one name");
  as_before->set_name("before");
  test::Held<Model> model;
  model->add_material(before, nullptr);
  ModelMaterials materials(model);
  for (Material* material : {first.get(), second.get(), as_before.get()}) materials.add(material);
  ASSERT_EQ(model->get_num_materials(), 2u);
  EXPECT_EQ(model->get_material_by_index(1), first.get());
  EXPECT_EQ(second->get_ref(), 1);
}

TEST(LoaderNames, MaterialNamesOfAModelAreComparedOver127Characters) {
  const std::string name(127, 'n');
  test::Held<Material> first;
  test::Held<Material> second;
  test::Held<Material> other;
  first->set_name((name + "one").c_str());
  second->set_name((name + "two").c_str());
  other->set_name((name.substr(1) + "one").c_str());
  test::Held<Model> model;
  ModelMaterials materials(model);
  for (Material* material : {first.get(), second.get(), other.get()}) materials.add(material);
  ASSERT_EQ(model->get_num_materials(), 2u);
  EXPECT_EQ(model->get_material_by_index(1), other.get());
}

TEST(LoaderNames, MaterialsWithoutAModelGoNowhere) {
  test::Held<Material> material;
  ModelMaterials(nullptr).add(material);
  EXPECT_EQ(material->get_ref(), 1);
}

TEST(LoaderNames, ShininessIsNeverZero) {
  EXPECT_EQ(shininess_from_wavefront(0.0f), 1.0f);
  EXPECT_EQ(shininess_from_wavefront(1000.0f), 128.0f);
  EXPECT_EQ(shininess_from_wavefront(24.0f), 24.0f / 1000.0f * 128.0f);
}

}  // namespace
}  // namespace orv::detail
