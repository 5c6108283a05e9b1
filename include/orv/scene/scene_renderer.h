/// @file
/// Draws one level of a scene.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {

/// Draws the plain objects directly below a node. A host derives its own class to add to it.
class ORV_API SceneRenderer {
 public:
  /// Ready to use.
  SceneRenderer();
  virtual ~SceneRenderer();
  SceneRenderer(const SceneRenderer&) = delete;
  SceneRenderer& operator=(const SceneRenderer&) = delete;

  /// True.
  virtual bool init(Renderer* renderer);
  /// True.
  virtual bool cleanup(Renderer* renderer);
  /// Binds the camera, if any, and renders the direct children that are exactly of the type
  /// NODE_TYPE_OBJECT: their grids and tripods. Meshes and models are drawn by the host through
  /// their own render. True.
  /// @param renderer  the renderer to draw with
  /// @param scene     its root is walked when `node` is null; may be null
  /// @param camera    may be null, which leaves the renderer's matrices
  /// @param node      node whose children are walked; with no scene either, nothing is drawn
  virtual bool render_scene(Renderer* renderer, Scene* scene, Camera* camera, Node* node);
};

}  // namespace orv
