/// @file
/// Picture in pixels over a scene.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/render/renderer_enums.h>

namespace orv {
namespace aux {

struct HudData;

/// Draws one texture over a rectangle of the window, upright. It takes the texture's v negated, so
/// the texture has to repeat, as textures do at first.
class ORV_API Hud {
 public:
  /// Without a texture.
  Hud();
  /// Gives up its references without a renderer: GPU objects are leaked unless cleanup ran before.
  ~Hud();
  Hud(const Hud&) = delete;
  Hud& operator=(const Hud&) = delete;

  /// Loads and uploads a picture in place of the present one. False, with an error in the log, when
  /// it can't be loaded or uploaded; false for null arguments. No texture is held then, except that
  /// null arguments keep the present one.
  bool init_texture(Renderer* renderer, const char* filename);

  /// Draws its own texture. Nothing without one.
  void render(Renderer* renderer, int x, int y, int width, int height, bool blend,
              RENDERER_BLEND_FACTOR source, RENDERER_BLEND_FACTOR destination);
  /// Draws a texture of the host's. Nothing for null arguments and for an empty rectangle, and
  /// when the program doesn't compile, which is logged once.
  ///
  /// Depth is not tested meanwhile. Afterwards viewport, matrices and current program are those of
  /// before, blending is off and the depth test on.
  /// @param renderer     draws
  /// @param texture      uploaded when it wasn't yet
  /// @param x            left edge of the rectangle in pixels of the window
  /// @param y            lower edge
  /// @param width        in pixels
  /// @param height       in pixels
  /// @param blend        turn blending on, with these factors; otherwise it stays as it is
  /// @param source       factor of the texture
  /// @param destination  factor of what is there
  void render(Renderer* renderer, Texture* texture, int x, int y, int width, int height, bool blend,
              RENDERER_BLEND_FACTOR source, RENDERER_BLEND_FACTOR destination);
  /// Releases the program, the texture, the quad and the camera. The next drawing starts anew.
  void cleanup(Renderer* renderer);

  /// Its own texture, borrowed; null for none.
  Texture* get_texture() const;

 private:
  HudData* data_;
};

}  // namespace aux
}  // namespace orv
