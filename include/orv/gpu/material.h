/// @file
/// What an object needs to look right.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/gpu/resource.h>

namespace orv {

/// A GPU program, an ordered list of textures and fixed-function colours. A material also collects
/// texture file names that a loader found, for the render thread to load later; adding names and
/// loading them must not run at the same time.
class ORV_API Material : public Resource {
 public:
  /// No program, no textures, bluish grey colours with a shininess of 16.
  Material();
  /// Frees the material's own memory. Textures are released by cleanup before.
  ~Material() override;
  /// Releases all textures; true.
  bool _cleanup(Renderer* renderer) override;

  Material(const Material&) = delete;
  Material& operator=(const Material&) = delete;

  /// @{
  /// Program to draw with, or null. It is not owned and not counted.
  void set_gpu_program(GpuProgram* program);
  GpuProgram* get_gpu_program() const;
  /// @}

  // ---- fixed-function values ----
  //
  // Colours are RGBA, usually in 0 to 1; nothing is clamped. The references are to the material's
  // own values, valid as long as it lives.

  /// @{
  /// Ambient colour of the fixed pipeline.
  void set_ambient(const vec4& color);
  void set_ambient(float r, float g, float b, float a);
  vec4& get_ambient() const;
  /// @}

  /// @{
  /// Diffuse colour of the fixed pipeline.
  void set_diffuse(const vec4& color);
  void set_diffuse(float r, float g, float b, float a);
  vec4& get_diffuse() const;
  /// @}

  /// @{
  /// Specular colour of the fixed pipeline.
  void set_specular(const vec4& color);
  void set_specular(float r, float g, float b, float a);
  vec4& get_specular() const;
  /// @}

  /// @{
  /// Exponent of the highlight; OpenGL takes 0 to 128.
  void set_shininess(float shininess);
  float get_shininess() const;
  /// @}

  /// @{
  /// 0 to 1, for client code: no operation here reads it.
  void set_opacity(float opacity);
  float get_opacity() const;
  /// @}

  /// @{
  /// Whether bind also sets the fixed-function values; false at first.
  void set_use_fixed_material_colors_state(bool state);
  bool get_use_fixed_material_colors_state() const;
  /// @}

  // ---- textures ----

  /// Appends a texture and takes a reference; null is ignored. A texture may stand twice.
  void add_texture(Texture* texture);
  /// Takes out the first texture of this node id and gives its reference back; the children of the
  /// texture node are released. False for none.
  bool remove_texture(int id);
  /// The same for all textures; true.
  bool remove_all_textures();
  /// Textures in the list.
  unsigned int get_num_textures() const;
  /// Null past the end.
  Texture* get_texture_by_index(unsigned int index) const;
  /// First texture of this node id, or null.
  Texture* get_texture(int id) const;
  /// Loads a picture file into a new texture of TextureMgr, adds it, and uploads it when a renderer
  /// is given. Null when the file cannot be read; a failed upload is not reported.
  /// @param path file name, read as it is; null gives null
  /// @param format pixel format that the picture is converted to
  /// @param flag read by nobody
  /// @return the texture, which the manager and this material hold with a reference each
  Texture* load_texture(Renderer* renderer, const char* path, PIXEL_FORMAT format, bool flag);

  /// @{
  /// Unit of the first texture, 0 at first; the others follow.
  void set_texture_unit_offset(unsigned int offset);
  unsigned int get_texture_unit_offset() const;
  /// @}

  // ---- use ----

  // A null renderer is tolerated: nothing is bound then.

  /// Binds the program, the textures and, when asked for, the fixed-function values, in this order.
  void bind(Renderer* renderer);
  /// Unbinds the program and the textures; the fixed-function values stay.
  void unbind(Renderer* renderer);
  /// The program alone. No program, no call.
  void bind_gpu_program(Renderer* renderer);
  /// Leaves no program bound. No program here, no call.
  void unbind_gpu_program(Renderer* renderer);
  /// The textures alone, each at its unit.
  void bind_textures(Renderer* renderer);
  /// Clears the units of the textures.
  void unbind_textures(Renderer* renderer);
  /// Sets the fixed-function values, asked for or not.
  void fixed_pipeline_bind_colors(Renderer* renderer);

  // ---- textures to be loaded later ----

  /// Appends a file name. False for null.
  bool async_loading_add_texture_filename(const char* path);
  /// True.
  bool async_loading_clear_texture_filenames_list();
  /// File names in the list.
  unsigned int async_loading_get_num_texture_filenames() const;
  /// Name as it was added; valid until the list changes. Null past the end.
  const char* async_loading_get_texture_filename(unsigned int index) const;
  /// Loads all files of the list and empties it. A file that is not found as named is tried once
  /// more by its base name alone, since model files carry the paths of their author's machine.
  /// @param prefix put in front of each name, usually a folder with its separator; may be null
  /// @return how many textures were loaded
  unsigned int async_loading_process_all_texture_filenames(Renderer* renderer, const char* prefix,
                                                           PIXEL_FORMAT format, bool flag);

 private:
  struct MaterialData;
  MaterialData* data_;
};

}  // namespace orv
