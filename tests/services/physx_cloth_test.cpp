// Cloth of the physics module, and the end of a scene that has some.

#include <orv/geometry/vertex.h>

#include <gtest/gtest.h>

#include <vector>

#include "services/physx_module.h"

namespace orv::test {
namespace {

/// A square of cloth in the plane y = height, four by four metres, with 5 x 5 vertices.
struct Sheet {
  std::vector<Vertex_PhysXCloth> vertices;
  std::vector<unsigned int> indices;

  explicit Sheet(float height) {
    for (int i = 0; i < 25; ++i) {
      Vertex_PhysXCloth vertex;
      vertex.position = vec4(static_cast<float>(i % 5), height, static_cast<float>(i / 5), 1.0f);
      vertex.uv0 = vec2(0.25f, 0.75f);
      vertices.push_back(vertex);
    }
    for (unsigned int i = 0; i < 20; ++i) {
      if (i % 5 == 4) continue;
      const unsigned int corners[] = {i, i + 5, i + 1, i + 1, i + 5, i + 6};
      indices.insert(indices.end(), corners, corners + 6);
    }
  }
  int create(PhysX& plugin, int scene) const {
    return plugin.create_cloth(scene, vertices.data(), 25, indices.data(),
                               static_cast<unsigned int>(indices.size() / 3));
  }
};

TEST_F(PhysXModule, ClothHangsFromItsPins) {
  Sheet sheet(10.0f);
  for (unsigned int i = 0; i < 5; ++i) sheet.vertices[i].position.w = 0.0f;
  const int cloth = sheet.create(*plugin_, scene_);
  ASSERT_GT(cloth, 0);
  EXPECT_TRUE(plugin_->set_cloth_damping(cloth, 1.0f));
  go_on(6.0f);
  ASSERT_TRUE(plugin_->read_cloth(cloth, sheet.vertices.data(), 25));
  for (unsigned int i = 0; i < 5; ++i) {
    const Vertex_PhysXCloth& pinned = sheet.vertices[i];
    const Vertex_PhysXCloth& lowest = sheet.vertices[20 + i];
    EXPECT_EQ(pinned.position, vec4(static_cast<float>(i), 10, 0, 1));
    EXPECT_LT(lowest.position.y, 6.5f) << "it hangs down";
    EXPECT_GT(lowest.position.y, 5.0f) << "and is hardly longer than it was";
    EXPECT_EQ(lowest.uv0, vec2(0.25f, 0.75f)) << "left as it was";
    EXPECT_NEAR(lowest.normal.length(), 1.0f, 1e-4f);
    EXPECT_NEAR(lowest.tangent.length(), 1.0f, 1e-4f);
  }
}

TEST_F(PhysXModule, ClothLiesOnABall) {
  const Sheet sheet(2.0f);
  const int cloth = sheet.create(*plugin_, scene_);
  const int body = plugin_->create_static_body(scene_, vec3(2, 0, 2), UPRIGHT);
  plugin_->attach_shape(body, plugin_->create_sphere_shape(1.5f, 0));
  EXPECT_TRUE(plugin_->set_cloth_collision(cloth, body, true));
  go_on(0.5f);
  std::vector<Vertex_PhysXCloth> vertices(25);
  ASSERT_TRUE(plugin_->read_cloth(cloth, vertices.data(), 25));
  for (const Vertex_PhysXCloth& vertex : vertices) {
    const vec3 from_center(vertex.position.x - 2, vertex.position.y, vertex.position.z - 2);
    EXPECT_GE(from_center.length(), 1.5f - 1e-3f);
  }
  EXPECT_NEAR(vertices[12].position.y, 1.5f, 0.05f) << "its middle on top";
  EXPECT_LT(vertices[0].position.y, 1.4f) << "its corners beside";
}

TEST_F(PhysXModule, ClothVerticesArePinnedAndLetGo) {
  const Sheet sheet(5.0f);
  const int cloth = sheet.create(*plugin_, scene_);
  const vec3 hook(0, 6, 0);
  EXPECT_TRUE(plugin_->pin_cloth_vertex(cloth, 0, &hook));
  EXPECT_FALSE(plugin_->pin_cloth_vertex(cloth, 25, &hook));
  go_on(0.5f);
  std::vector<Vertex_PhysXCloth> vertices(25);
  plugin_->read_cloth(cloth, vertices.data(), 25);
  EXPECT_EQ(vertices[0].position, vec4(0, 6, 0, 1));
  EXPECT_TRUE(plugin_->pin_cloth_vertex(cloth, 0, nullptr));
  go_on(0.5f);
  plugin_->read_cloth(cloth, vertices.data(), 25);
  EXPECT_LT(vertices[0].position.y, 5.9f);
}

TEST_F(PhysXModule, WindBlowsCloth) {
  const Sheet sheet(5.0f);
  const int cloth = sheet.create(*plugin_, scene_);
  EXPECT_TRUE(plugin_->set_cloth_wind(cloth, vec3(0, 0, 4)));
  EXPECT_TRUE(plugin_->set_cloth_stiffness(cloth, 1.0f, 0.0f));
  EXPECT_FALSE(plugin_->set_cloth_stiffness(cloth, 1.5f, 0.0f));
  go_on(1.0f);
  std::vector<Vertex_PhysXCloth> vertices(25);
  plugin_->read_cloth(cloth, vertices.data(), 25);
  EXPECT_GT(vertices[12].position.z, 2.5f);
}

TEST_F(PhysXModule, ClothRefusesWrongArrays) {
  Sheet sheet(5.0f);
  EXPECT_EQ(plugin_->create_cloth(scene_, nullptr, 25, sheet.indices.data(), 2), 0);
  EXPECT_EQ(plugin_->create_cloth(scene_, sheet.vertices.data(), 25, nullptr, 2), 0);
  EXPECT_EQ(plugin_->create_cloth(999, sheet.vertices.data(), 25, sheet.indices.data(), 2), 0);
  const int cloth = sheet.create(*plugin_, scene_);
  EXPECT_FALSE(plugin_->read_cloth(cloth, sheet.vertices.data(), 24));
  EXPECT_FALSE(plugin_->read_cloth(cloth, nullptr, 25));
  sheet.indices[4] = 25;
  EXPECT_EQ(sheet.create(*plugin_, scene_), 0) << "an index past the end";
  EXPECT_TRUE(plugin_->destroy_cloth(cloth));
  EXPECT_FALSE(plugin_->destroy_cloth(cloth));
}

TEST_F(PhysXModule, SceneEndsWithAllThatItOwns) {
  const int other = plugin_->create_scene(vec3(0, 0, 0));
  const int kept = plugin_->create_static_body(other, vec3(0, 0, 0), UPRIGHT);
  const int ball = add_ball(vec3(0, 0, 0));
  const int cloth = Sheet(5.0f).create(*plugin_, scene_);
  const int material = plugin_->create_material(1, 1, 0);
  EXPECT_TRUE(plugin_->destroy_scene(scene_));
  EXPECT_FALSE(plugin_->destroy_scene(scene_));
  EXPECT_FALSE(plugin_->wake_body(ball));
  EXPECT_FALSE(plugin_->destroy_cloth(cloth));
  EXPECT_TRUE(plugin_->destroy_material(material)) << "materials belong to the plugin";
  EXPECT_TRUE(plugin_->get_body_pose(kept, nullptr, nullptr));
}

}  // namespace
}  // namespace orv::test
