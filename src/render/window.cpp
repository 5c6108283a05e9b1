#include <orv/render/window.h>

#include <orv/scene/camera.h>
#include <orv/scene/scene_renderer.h>
#include <orv/scene/viewport.h>

namespace orv {

struct WindowData {
  int layer = 0;
  Camera* camera = nullptr;
  Viewport viewport;
  Renderer* renderer = nullptr;
  RenderWindow* render_window = nullptr;
  Node* start_node = nullptr;
  Scene* scene = nullptr;
  SceneRenderer* scene_renderer = nullptr;
};

Window::Window() : data_(new WindowData) {}

Window::~Window() { delete data_; }

void Window::set_layer(int layer) { data_->layer = layer; }

int Window::get_layer() const { return data_->layer; }

void Window::set_camera(Camera* camera) { data_->camera = camera; }

Camera* Window::get_camera() const { return data_->camera; }

void Window::set_viewport(int x, int y, int width, int height) {
  data_->viewport.set(x, y, width, height);
}

void Window::set_renderer(Renderer* renderer) { data_->renderer = renderer; }

Renderer* Window::get_renderer() const { return data_->renderer; }

void Window::set_render_window(RenderWindow* render_window) {
  data_->render_window = render_window;
}

RenderWindow* Window::get_render_window() const { return data_->render_window; }

void Window::set_start_node(Node* node) { data_->start_node = node; }

Node* Window::get_start_node() const { return data_->start_node; }

void Window::set_scene(Scene* scene) { data_->scene = scene; }

Scene* Window::get_scene() const { return data_->scene; }

void Window::set_scene_renderer(SceneRenderer* scene_renderer) {
  data_->scene_renderer = scene_renderer;
}

SceneRenderer* Window::get_scene_renderer() const { return data_->scene_renderer; }

bool Window::render() {
  if (data_->camera) data_->camera->set_viewport(data_->viewport);
  if (data_->scene_renderer) {
    data_->scene_renderer->render_scene(data_->renderer, data_->scene, data_->camera,
                                        data_->start_node);
  }
  return true;
}

}  // namespace orv
