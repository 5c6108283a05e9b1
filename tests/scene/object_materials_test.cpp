#include <orv/scene/object.h>

#include <orv/gpu/material.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/image/image.h>
#include <orv/image/image_codec.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "scene/object_witness.h"
#include "support/held.h"

namespace orv {
namespace {

using test::Family;
using test::Held;

TEST(Object, AddingAMaterialTwiceKeepsOneEntryAndOneReference) {
  Held<Object> object;
  Held<Material> material;
  EXPECT_FALSE(object->add_material(nullptr, nullptr));
  EXPECT_TRUE(object->add_material(material, nullptr));
  EXPECT_TRUE(object->add_material(material, nullptr));
  EXPECT_EQ(object->get_num_materials(), 1u);
  EXPECT_EQ(material->get_ref(), 2);
}

TEST(Object, FindsMaterialsByIndexIdAndName) {
  Held<Object> object;
  Held<Material> first, second;
  first->set_name("first");
  second->set_name("second");
  object->add_material(first, nullptr);
  object->add_material(second, nullptr);
  EXPECT_EQ(object->get_material_by_index(1), second.get());
  EXPECT_EQ(object->get_material_by_index(2), nullptr);
  EXPECT_EQ(object->get_material(first->get_id()), first.get());
  EXPECT_EQ(object->get_material(-1), nullptr);
  EXPECT_EQ(object->get_material_by_name("second"), second.get());
  EXPECT_EQ(object->get_material_by_name("sec"), nullptr);
  EXPECT_EQ(object->get_material_by_name(nullptr), nullptr);
}

TEST(Object, LongListsOfMaterialsStayInOrderAndAreFoundById) {
  Held<Object> object;
  std::vector<Material*> materials;
  for (int i = 0; i < 100; ++i) {
    materials.push_back(new Material);
    object->add_material(materials.back(), nullptr);
    object->add_material(materials[materials.size() / 2], nullptr);
  }
  ASSERT_EQ(object->get_num_materials(), 100u);
  for (unsigned int i = 0; i < 100; ++i) {
    EXPECT_EQ(object->get_material_by_index(i), materials[i]);
    EXPECT_EQ(object->get_material(materials[i]->get_id()), materials[i]);
    EXPECT_EQ(materials[i]->get_ref(), 1);
  }
  const int gone = materials[50]->get_id();
  EXPECT_TRUE(object->remove_material(materials[50], nullptr));
  EXPECT_EQ(object->get_material(gone), nullptr);
  EXPECT_EQ(object->get_material(materials[51]->get_id()), materials[51]);
  EXPECT_EQ(object->get_material_by_index(50), materials[51]);
  const int last = materials[99]->get_id();
  object->remove_all_materials(nullptr, nullptr);
  EXPECT_EQ(object->get_material(last), nullptr);
  Held<Material> one;
  object->add_material(one, nullptr);
  EXPECT_EQ(object->get_material(one->get_id()), one.get());
}

TEST(Object, MaterialNamesAreComparedOver127Characters) {
  Held<Object> object;
  Held<Material> material;
  const std::string name(127, 'n');
  material->set_name((name + "one").c_str());
  object->add_material(material, nullptr);
  EXPECT_EQ(object->get_material_by_name((name + "two").c_str()), material.get());
  EXPECT_EQ(object->get_material_by_name(name.substr(1).c_str()), nullptr);
}

TEST(Object, MaterialsReachTheSubtreeOnlyWithANode) {
  Family f;
  Held<Material> material;
  EXPECT_TRUE(f.parent->add_material(material, f.parent));
  EXPECT_EQ(material->get_ref(), 4);
  EXPECT_EQ(f.grandchild->get_num_materials(), 1u);
  EXPECT_EQ(f.hidden->get_num_materials(), 0u);
  f.parent->set_all_materials_texture_unit_offset(3, f.parent);
  EXPECT_EQ(material->get_texture_unit_offset(), 3u);
  EXPECT_TRUE(f.parent->remove_material(material, nullptr));
  EXPECT_EQ(f.child->get_num_materials(), 1u);
  EXPECT_TRUE(f.child->remove_material(material, f.child));
  EXPECT_EQ(f.grandchild->get_num_materials(), 0u);
  EXPECT_EQ(material->get_ref(), 1);
}

TEST(Object, RemovingAMaterialThatIsNotHeldIsFalse) {
  Held<Object> object;
  Held<Material> material;
  EXPECT_FALSE(object->remove_material(nullptr, nullptr));
  EXPECT_FALSE(object->remove_material(material, nullptr));
  EXPECT_EQ(material->get_ref(), 1);
}

TEST(Object, RemovingTheLastHoldOnAMaterialDestroysIt) {
  Family f;
  Material* material = new Material;
  f.parent->add_material(material, f.parent);
  EXPECT_TRUE(f.parent->remove_material(material, f.parent));
  for (Object* object : {f.parent.get(), f.child.get(), f.grandchild.get()}) {
    EXPECT_EQ(object->get_num_materials(), 0u);
  }
}

TEST(Object, RemovingAllMaterialsEmptiesTheChildrenOfASharedOne) {
  Held<Object> object;
  Held<Material> shared;
  Held<Node> below;
  shared->add_child(below);
  object->add_material(shared, nullptr);
  EXPECT_TRUE(object->remove_all_materials(nullptr, nullptr));
  EXPECT_EQ(object->get_num_materials(), 0u);
  EXPECT_EQ(shared->get_ref(), 1);
  EXPECT_EQ(shared->get_num_children(), 0u);
  EXPECT_EQ(below->get_ref(), 1);
}

TEST(Object, RemovingAllMaterialsReachesTheSubtreeOnlyWithANode) {
  Family f;
  Held<Material> material;
  f.parent->add_material(material, f.parent);
  f.parent->remove_all_materials(nullptr, nullptr);
  EXPECT_EQ(f.child->get_num_materials(), 1u);
  f.parent->remove_all_materials(nullptr, f.parent);
  EXPECT_EQ(f.grandchild->get_num_materials(), 0u);
  EXPECT_EQ(material->get_ref(), 1);
}

/// Makes a picture of one pixel for every file name.
class OnePixelCodec : public ImageCodec {
 public:
  OnePixelCodec() { set_name("one_pixel"); }
  bool load_image_from_file(Image* image, const char*, bool, PIXEL_FORMAT) override {
    return image->create(1, 1, 1, PF_RGBA_U8, true, true);
  }
  bool load_image_from_memory(Image*, unsigned char*, unsigned int, bool, PIXEL_FORMAT) override {
    return false;
  }
  bool save_image_to_file(Image*, const char*) override { return false; }
  bool free_image_resources(Image*) override { return false; }
};

TEST(Object, CountOfLoadedTexturesIsThatOfThisObjectAlone) {
  OnePixelCodec codec;
  TextureMgr* textures = TextureMgr::get();
  const std::string old_codec = textures->get_current_image_codec_name();
  textures->register_image_codec_plugin(&codec);
  textures->set_current_image_codec_name("one_pixel");
  {
    Held<Object> parent, child;
    Held<Material> own, other;
    parent->add_child(child);
    parent->add_material(own, nullptr);
    child->add_material(other, nullptr);
    own->async_loading_add_texture_filename("a.png");
    own->async_loading_add_texture_filename("b.png");
    other->async_loading_add_texture_filename("c.png");
    EXPECT_EQ(parent->async_texture_loading_process_all_materials(nullptr, nullptr, PF_RGBA_U8,
                                                                  false, parent),
              2u);
    EXPECT_EQ(own->get_num_textures(), 2u);
    EXPECT_EQ(other->get_num_textures(), 1u);
  }
  textures->set_current_image_codec_name(old_codec.c_str());
  textures->unregister_image_codec_plugin(&codec);
  textures->release_all_textures(nullptr, nullptr);
}

}  // namespace
}  // namespace orv
