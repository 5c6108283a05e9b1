#include <orv/render/window.h>

#include <gtest/gtest.h>

#include <orv/render/render_window.h>
#include <orv/scene/camera.h>
#include <orv/scene/node.h>
#include <orv/scene/scene.h>
#include <orv/scene/scene_renderer.h>
#include <orv/scene/viewport.h>

#include "support/recording_renderer.h"

namespace orv::test {
namespace {

// Remembers what it was asked to draw.
class NotingSceneRenderer : public SceneRenderer {
 public:
  bool render_scene(Renderer* renderer, Scene* scene, Camera* camera, Node* node) override {
    ++calls;
    last_renderer = renderer;
    last_scene = scene;
    last_camera = camera;
    last_node = node;
    return false;
  }
  int calls = 0;
  Renderer* last_renderer = nullptr;
  Scene* last_scene = nullptr;
  Camera* last_camera = nullptr;
  Node* last_node = nullptr;
};

TEST(Window, StartsEmpty) {
  const Window window;
  EXPECT_EQ(window.get_layer(), 0);
  EXPECT_EQ(window.get_camera(), nullptr);
  EXPECT_EQ(window.get_renderer(), nullptr);
  EXPECT_EQ(window.get_render_window(), nullptr);
  EXPECT_EQ(window.get_start_node(), nullptr);
  EXPECT_EQ(window.get_scene(), nullptr);
  EXPECT_EQ(window.get_scene_renderer(), nullptr);
}

TEST(Window, RenderWithNothingIsTrue) {
  Window window;
  EXPECT_TRUE(window.render());
}

TEST(Window, RenderSetsTheViewportAndDrawsTheScene) {
  RecordingRenderer renderer;
  RenderWindow render_window;
  Camera camera;
  Scene scene;
  Node start_node;
  NotingSceneRenderer scene_renderer;
  Window window;
  window.set_layer(3);
  window.set_renderer(&renderer);
  window.set_render_window(&render_window);
  window.set_camera(&camera);
  window.set_scene(&scene);
  window.set_start_node(&start_node);
  window.set_scene_renderer(&scene_renderer);
  window.set_viewport(1, 2, 30, 40);
  EXPECT_TRUE(window.render()) << "whatever the scene renderer says";
  EXPECT_EQ(window.get_layer(), 3);
  EXPECT_EQ(window.get_render_window(), &render_window);
  EXPECT_EQ(scene_renderer.calls, 1);
  EXPECT_EQ(scene_renderer.last_renderer, &renderer);
  EXPECT_EQ(scene_renderer.last_scene, &scene);
  EXPECT_EQ(scene_renderer.last_camera, &camera);
  EXPECT_EQ(scene_renderer.last_node, &start_node);
  EXPECT_EQ(camera.get_viewport().x, 1);
  EXPECT_EQ(camera.get_viewport().y, 2);
  EXPECT_EQ(camera.get_viewport().width, 30);
  EXPECT_EQ(camera.get_viewport().height, 40);
  scene.get_root()->release(nullptr, nullptr);
}

TEST(Window, CameraOrSceneRendererMayBeMissing) {
  Camera camera;
  Window window;
  window.set_viewport(1, 2, 30, 40);
  window.set_camera(&camera);
  EXPECT_TRUE(window.render());
  EXPECT_EQ(camera.get_viewport().width, 30);
  NotingSceneRenderer scene_renderer;
  window.set_camera(nullptr);
  window.set_scene_renderer(&scene_renderer);
  EXPECT_TRUE(window.render());
  EXPECT_EQ(scene_renderer.calls, 1);
}

}  // namespace
}  // namespace orv::test
