#include <orv/scene/scene_renderer.h>

#include <orv/scene/camera.h>
#include <orv/scene/object.h>
#include <orv/scene/scene.h>

namespace orv {

SceneRenderer::SceneRenderer() = default;

SceneRenderer::~SceneRenderer() = default;

bool SceneRenderer::init(Renderer*) { return true; }

bool SceneRenderer::cleanup(Renderer*) { return true; }

bool SceneRenderer::render_scene(Renderer* renderer, Scene* scene, Camera* camera, Node* node) {
  if (camera) camera->bind(renderer, true, true, true, true, true);
  Node* start = node || !scene ? node : scene->get_root();
  if (!start) return true;
  for (unsigned int i = 0; i < start->get_num_children(); ++i) {
    Node* child = start->get_child(i);
    if (child && child->get_type() == NODE_TYPE_OBJECT) child->render(renderer, child);
  }
  return true;
}

}  // namespace orv
