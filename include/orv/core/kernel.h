/// @file
/// The runtime behind core::start.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {

struct KernelData;

/// The singleton that starts and stops the library, keeps the plugin search path and the
/// application directory, and loads models through the loaders at hand. Plugins and renderers that
/// it returns stay PluginMgr's.
///
/// It holds no lock: core::start runs on one thread before any other touches the library.
class ORV_API Kernel {
 public:
  /// The one instance, made by the first call and never destroyed. Never null.
  static Kernel* get();

  Kernel(const Kernel&) = delete;
  Kernel& operator=(const Kernel&) = delete;

  // ---- start and stop ----

  /// Gathers the platform's data, makes the core loaders and the core image codec and starts the
  /// resource managers. It makes no renderer and no window. Always true; a second call does
  /// nothing.
  bool start();
  /// Releases all resources without a renderer, unloads all plugins and clears the search path.
  /// Scenes are the host's. Always true; a second call does nothing.
  bool stop();

  /// @{
  /// Version of the library: 0.26.1, build 0.
  int get_version_major() const;
  int get_version_minor() const;
  int get_version_patch() const;
  int get_version_build() const;
  /// @}

  /// Code name of the version, never null.
  const char* get_codename() const;

  /// Null: the library keeps no shared renderer of this kind. See RendererNull.
  Renderer* get_null_renderer() const;

  // ---- platform: the same as the functions of utils ----

  /// @{
  /// See the function of the same name in orv::utils. Texts are the library's, never null.
  void init_platform_information();
  const char* get_os_name() const;
  int get_os_version_major() const;
  int get_os_version_minor() const;
  int get_os_version_build() const;
  const char* get_osx_codename() const;
  const char* get_osx_kern_osrelease() const;
  /// @}

  /// The three numbers of the operating system, each through its pointer unless that is null.
  void get_osx_version(int* major_version, int* minor_version, int* build) const;

  /// @{
  /// See the function of the same name in orv::utils. Texts are the library's, never null.
  const char* get_linux_sysname() const;
  const char* get_linux_release() const;
  const char* get_linux_version() const;
  const char* get_linux_machine() const;
  const char* get_platform_name() const;
  int get_platform_bitness() const;
  /// @}

  /// Takes the program's directory unless one is set. False when it cannot be found.
  bool app_directory_init();
  /// Replaces the directory; false for null.
  bool app_directory_set(const char* directory);
  /// Directory of the program with its trailing separator, "" while unknown. The kernel's text,
  /// valid until it is set.
  const char* app_directory_get() const;

  // ---- textures of a render target ----

  /// A new texture of TextureMgr that stands for a colour target. Null for a null target; otherwise
  /// the texture is returned whether or not it could be set up.
  Texture* create_color_texture_from_render_target(GpuRenderTarget* target, unsigned int index);
  /// The same for the depth target.
  Texture* create_depth_texture_from_render_target(GpuRenderTarget* target);

  // ---- lighting on the CPU ----

  /// Lights one vertex of an object with interleaved vertices: `color` holds the vertex colour
  /// before and the lit colour after. False, and `color` untouched, for a null object, for geometry
  /// without interleaved vertices and for an index past the end.
  bool compute_object_vertex_color(Object* object, unsigned int vertex_index, vec4& color,
                                   Material* material, Light* light, bool clamp);
  /// The same with the object's transform and the light's position given.
  bool compute_object_vertex_color_v2(Object* object, const mat4& transform,
                                      unsigned int vertex_index, vec4& color, Material* material,
                                      Light* light, const vec4& light_position, bool clamp);

  // ---- plugin search path ----

  /// Appends a directory, which ends in its separator; duplicates are kept. False for null.
  bool plugin_search_path_add_dir(const char* directory);
  /// Removes the first entry that equals the text. False when there is none.
  bool plugin_search_path_remove_dir(const char* directory);
  /// Removes all entries. True.
  bool plugin_search_path_clear();
  /// Copies at most `size` - 1 bytes of all entries, each followed by ";". A cut copy has no
  /// terminator: give the buffer zeroed. False for a null buffer or a size of 0.
  bool plugin_search_path_get(char* buffer, unsigned int size) const;

  // ---- plugins ----

  /// Loads a module, neither initialising nor starting its plugin. With `use_search_path` the file
  /// name is appended to each directory of the search path in turn, until one loads; an empty path
  /// finds nothing. Null on failure.
  Plugin* load_plugin(const char* filename, bool force_reload, bool use_search_path);
  /// PluginMgr::unload_plugin; -1 for an unknown id, 0 for a null plugin.
  int unload_plugin(int id);
  /// The same by pointer: 0 for null, -1 for one that is not in the list.
  int unload_plugin(Plugin* plugin);
  /// Stops, terminates and releases all plugins, loaders and renderers among them. True.
  bool unload_all_plugins();

  /// @{
  /// The operation on every plugin, in order; results are not looked at. Always true.
  bool initialize_all_plugins();
  bool start_all_plugins();
  bool stop_all_plugins();
  bool terminate_all_plugins();
  /// @}

  /// Plugin of this id, borrowed; null for an unknown one.
  Plugin* get_plugin(int id) const;

  /// Puts a plugin that was made in this program into PluginMgr's list, which then owns it. False
  /// for null.
  bool insert_core_plugin(Plugin* plugin);
  /// Makes those of the four core loaders that do not exist.
  bool load_core_plugins();
  /// Makes the core image codec, unless switched off, and registers all codecs with TextureMgr.
  /// Each call makes another one.
  bool init_texture_mgr_core_image_plugins();
  /// Whether start() makes the core image codec (on at first).
  void core_plugin_set_loading_state_stb(bool state);
  /// With `create`, a new OpenGL renderer, neither initialised nor started. Otherwise the first
  /// renderer plugin if it carries the core mark, else null.
  Renderer* load_core_opengl_renderer_plugin(bool create);

  // ---- models and scenes ----

  /// Loads a model with the first loader that succeeds, in the order of the list. The model is the
  /// caller's, referenced by nobody. The file is `model_dir` + `filename`, so the directory ends in
  /// its separator; a null directory keeps the one of the loader's last use. Null on failure.
  Model* load_model_from_file(const MeshDataVertexAttribsAllocParams& params, const char* filename,
                              const char* model_dir, const char* resource_dir);
  /// The same with the OBJ loader whose plugin name is the current one.
  Model* load_model_from_file_obj(const MeshDataVertexAttribsAllocParams& params,
                                  const char* filename, const char* model_dir,
                                  const char* resource_dir);
  /// The same with the core 3DS loader.
  Model* load_model_from_file_lib3ds(const MeshDataVertexAttribsAllocParams& params,
                                     const char* filename, const char* model_dir,
                                     const char* resource_dir);
  /// The same with the core STL loader.
  Model* load_model_from_file_stl(const MeshDataVertexAttribsAllocParams& params,
                                  const char* filename, const char* model_dir,
                                  const char* resource_dir);
  /// The same with the first loader plugin named "FBX"; the library brings none.
  Model* load_model_from_file_fbx(const MeshDataVertexAttribsAllocParams& params,
                                  const char* filename, const char* model_dir,
                                  const char* resource_dir);
  /// Adds the materials, meshes and cameras of a 3DS file to a scene, the meshes in a new model of
  /// it. False for a null scene or name, without the core 3DS loader and when the file cannot be
  /// read.
  bool load_scene_from_file_lib3ds_v1(Scene* scene, const char* filename, const char* model_dir,
                                      const char* resource_dir);
  /// The same with the first loader plugin named "FBX".
  bool load_scene_from_file_fbx_v1(Scene* scene, const char* filename, const char* model_dir,
                                   const char* resource_dir);

  /// Plugin name of the loader for OBJ files: "ObjLoaderV1" (at first) or "ObjLoaderV2". Null is
  /// ignored.
  void set_current_3d_obj_loader_name(const char* name);
  /// The name that was set last.
  const char* get_current_3d_obj_loader_name() const;

 private:
  Kernel();
  ~Kernel() = delete;

  bool load_core_loader3d_plugins();
  bool load_core_image_codec_plugins();
  Model* load_model_with(const MeshDataVertexAttribsAllocParams& params, Loader3D* loader,
                         const char* filename, const char* model_dir, const char* resource_dir);

  KernelData* data_;
};

}  // namespace orv
