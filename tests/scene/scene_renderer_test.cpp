#include <orv/scene/scene_renderer.h>

#include <orv/geometry/mesh.h>
#include <orv/scene/camera.h>
#include <orv/scene/model.h>
#include <orv/scene/object.h>
#include <orv/scene/scene.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/held.h"
#include "support/recording_renderer.h"

namespace orv {
namespace {

using test::Held;
using test::RecordingRenderer;
using testing::ElementsAre;
using testing::IsEmpty;

/// Tells with which arguments it was rendered.
class Witness : public Object {
 public:
  void render(Renderer* renderer, Node* node) override {
    ++renders;
    last_renderer = renderer;
    last_node = node;
  }
  int renders = 0;
  Renderer* last_renderer = nullptr;
  Node* last_node = nullptr;
};

class WitnessMesh : public Mesh {
 public:
  void render(Renderer*, Node*) override { ++renders; }
  int renders = 0;
};

class WitnessModel : public Model {
 public:
  void render(Renderer*, Node*) override { ++renders; }
  int renders = 0;
};

class SceneRendererTest : public testing::Test {
 protected:
  ~SceneRendererTest() override { scene.get_root()->release(nullptr, nullptr); }
  RecordingRenderer renderer;
  SceneRenderer scene_renderer;
  Scene scene;
};

TEST_F(SceneRendererTest, InitAndCleanupAreTrue) {
  EXPECT_TRUE(scene_renderer.init(&renderer));
  EXPECT_TRUE(scene_renderer.cleanup(nullptr));
  EXPECT_THAT(renderer.calls(), IsEmpty());
}

TEST_F(SceneRendererTest, RendersThePlainObjectsDirectlyBelowTheRoot) {
  Held<Witness> child, grandchild;
  scene.add_node(child);
  child->add_child(grandchild);
  EXPECT_TRUE(scene_renderer.render_scene(&renderer, &scene, nullptr, nullptr));
  EXPECT_EQ(child->renders, 1);
  EXPECT_EQ(child->last_renderer, &renderer);
  EXPECT_EQ(child->last_node, child.get());
  EXPECT_EQ(grandchild->renders, 0);
}

TEST_F(SceneRendererTest, StartsAtTheNodeGiven) {
  Held<Witness> child, grandchild;
  scene.add_node(child);
  child->add_child(grandchild);
  EXPECT_TRUE(scene_renderer.render_scene(&renderer, &scene, nullptr, child));
  EXPECT_TRUE(scene_renderer.render_scene(&renderer, nullptr, nullptr, child));
  EXPECT_EQ(child->renders, 0);
  EXPECT_EQ(grandchild->renders, 2);
}

TEST_F(SceneRendererTest, SkipsMeshesAndModels) {
  Held<WitnessMesh> mesh;
  Held<WitnessModel> model;
  Held<Node> node;
  scene.add_node(mesh);
  scene.add_node(model);
  scene.add_node(node);
  EXPECT_TRUE(scene_renderer.render_scene(&renderer, &scene, nullptr, nullptr));
  EXPECT_EQ(mesh->renders, 0);
  EXPECT_EQ(model->renders, 0);
  EXPECT_THAT(renderer.calls(), IsEmpty());
}

TEST_F(SceneRendererTest, DrawsTheTripodOfAPlainObject) {
  Held<Object> object;
  scene.add_node(object);
  object->set_display_tripod_state(true, nullptr);
  scene_renderer.render_scene(&renderer, &scene, nullptr, nullptr);
  EXPECT_EQ(renderer.count("draw_immediate_line"), 3);
  renderer.clear();
  object->set_render_state(false, nullptr);
  scene_renderer.render_scene(&renderer, &scene, nullptr, nullptr);
  EXPECT_THAT(renderer.calls(), IsEmpty());
}

TEST_F(SceneRendererTest, BindsTheCameraFirst) {
  Camera camera;
  camera.set_viewport(0, 0, 640, 480);
  EXPECT_TRUE(scene_renderer.render_scene(&renderer, &scene, &camera, nullptr));
  EXPECT_THAT(renderer.calls(),
              ElementsAre("set_viewport(0, 0, 0, 640, 480)", "set_scissor(0, 0, 0, 640, 480)",
                          "set_projection_matrix(mat4, true)", "set_modelview_matrix(mat4, true)"));
}

TEST_F(SceneRendererTest, NullCameraLeavesTheMatrices) {
  EXPECT_TRUE(scene_renderer.render_scene(&renderer, &scene, nullptr, nullptr));
  EXPECT_THAT(renderer.calls(), IsEmpty());
}

TEST_F(SceneRendererTest, WithoutSceneAndNodeOnlyTheCameraIsBound) {
  Camera camera;
  EXPECT_TRUE(scene_renderer.render_scene(&renderer, nullptr, &camera, nullptr));
  EXPECT_EQ(renderer.calls().size(), 4u);
  EXPECT_TRUE(scene_renderer.render_scene(nullptr, nullptr, nullptr, nullptr));
}

TEST_F(SceneRendererTest, NullRendererIsTolerated) {
  Camera camera;
  Held<Object> object;
  scene.add_node(object);
  object->set_display_grid_state(true, nullptr);
  EXPECT_TRUE(scene_renderer.render_scene(nullptr, &scene, &camera, nullptr));
}

}  // namespace
}  // namespace orv
