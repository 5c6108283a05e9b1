/// @file
/// Sky from a cube map.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/image/pixel_format.h>
#include <orv/scene/object.h>

namespace orv {

struct SkyboxData;

/// A sky drawn behind everything from a cube map, through one rectangle that covers the screen. The
/// direction of each pixel comes from the renderer's matrices without their translation, so the sky
/// turns with the camera and never comes nearer; turning the object turns the sky. The cube map is
/// looked up with x negated, since it is seen from inside.
///
/// Draw it first: it neither tests nor writes depth. Its drawing leaves depth test and depth
/// writing on and the culling that was wanted of the rasterizer.
class ORV_API Skybox : public Object {
 public:
  /// With its rectangle and without a cube map.
  Skybox();
  /// Gives up its references without a renderer: GPU objects are leaked unless _cleanup or kill ran
  /// before.
  ~Skybox() override;
  Skybox(const Skybox&) = delete;
  Skybox& operator=(const Skybox&) = delete;

  /// Releases the rectangle, the cube map, the program and the materials. Nothing is drawn
  /// afterwards. True.
  bool _cleanup(Renderer* renderer) override;
  /// Draws the sky and makes the program that was current before current again. The first call
  /// makes the program when none was set. Nothing is drawn without a cube map and when the program
  /// does not compile.
  void _render(Renderer* renderer) override;

  /// Draw the rectangle.
  void render_geometry(Renderer* renderer) override;
  void render_geometry_prepare(Renderer* renderer) override;
  void render_geometry_draw(Renderer* renderer) override;
  void render_geometry_finish(Renderer* renderer) override;

  /// @{
  /// Loads and uploads six pictures of one square size, in the order +X, -X, +Y, -Y, +Z, -Z, in
  /// place of the present cube map, which stays when one of them fails. `names` holds six paths;
  /// pixels are of that format on the GPU. False when it fails and for null arguments.
  bool load_all_faces_from_files(Renderer* renderer, const char** names, PIXEL_FORMAT format);
  bool load_all_faces_from_files(Renderer* renderer, const char* positive_x, const char* negative_x,
                                 const char* positive_y, const char* negative_y,
                                 const char* positive_z, const char* negative_z,
                                 PIXEL_FORMAT format);
  /// @}

  /// Borrowed, null for none.
  Texture* get_cubemap() const;
  /// What is drawn with: the host's, else the sky's own. Borrowed, null while there is none.
  GpuProgram* get_cubemap_gpu_program() const;
  /// Draws with a program of the host's, of which a reference is taken, in place of the present
  /// one. Its sampler is to be named "cubemap". Null goes back to the program that the sky makes
  /// itself, once.
  void set_cubemap_gpu_program(GpuProgram* program);
  /// Size of the rectangle, 800 x 600 at first. It lies in clip space: 2 x 2 just covers the
  /// screen. False after _cleanup.
  bool resize(float width, float height);

 private:
  bool prepare_program(Renderer& renderer);

  SkyboxData* data_;
};

}  // namespace orv
