/// @file
/// A viewport, a camera, a scene and what draws them, tied together.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {

struct WindowData;

/// Convenience for hosts: remembers what belongs together in a view and draws it with one call.
/// Everything handed in is borrowed, and null at first.
class ORV_API Window {
 public:
  /// Nothing tied together yet.
  Window();
  virtual ~Window();
  Window(const Window&) = delete;
  Window& operator=(const Window&) = delete;

  /// @{
  /// A number for the host's own use, 0 at first.
  void set_layer(int layer);
  int get_layer() const;
  /// @}

  /// @{
  /// The camera that looks at the scene; null keeps the view that the renderer has.
  void set_camera(Camera* camera);
  Camera* get_camera() const;
  /// @}

  /// Viewport given to the camera by render, in pixels.
  void set_viewport(int x, int y, int width, int height);

  /// @{
  /// The renderer that the scene renderer draws with.
  void set_renderer(Renderer* renderer);
  Renderer* get_renderer() const;
  /// @}

  /// @{
  /// The surface behind the view. For the host's own use: render does not make it current.
  void set_render_window(RenderWindow* render_window);
  RenderWindow* get_render_window() const;
  /// @}

  /// @{
  /// Node whose children are drawn; null stands for the root of the scene.
  void set_start_node(Node* node);
  Node* get_start_node() const;
  /// @}

  /// @{
  /// The scene to draw.
  void set_scene(Scene* scene);
  Scene* get_scene() const;
  /// @}

  /// @{
  /// What draws the scene; null draws nothing.
  void set_scene_renderer(SceneRenderer* scene_renderer);
  SceneRenderer* get_scene_renderer() const;
  /// @}

  /// Writes the viewport into the camera and has the scene renderer draw the scene. What is missing
  /// is left out. Always true.
  bool render();

 private:
  WindowData* data_;
};

}  // namespace orv
