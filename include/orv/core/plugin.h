/// @file
/// Base class of everything optional: renderers, image codecs, model loaders.
#pragma once

#include <orv/core/api.h>
#include <orv/core/thread.h>
#include <orv/fwd.h>

namespace orv {

/// What a plugin is. A module may use further numbers for interfaces of its own.
enum PLUGIN_TYPE : int {
  PLUGIN_TYPE_UNKNOWN = 0,      ///< not told
  PLUGIN_TYPE_RENDERER = 1,     ///< a Renderer
  PLUGIN_TYPE_IMAGE_CODEC = 3,  ///< an ImageCodec
  PLUGIN_TYPE_LOADER3D = 5      ///< a Loader3D
};

struct PluginData;

/// Base class of plugins. A core plugin is made inside the library; any other comes from a module,
/// a dynamic library that is loaded at run time and exports, with ORV_PLUGIN_EXPORT:
///
/// | export | role |
/// |---|---|
/// | `Plugin* orv_plugin_create()` | required: makes the plugin |
/// | `void orv_plugin_destroy(Plugin*)` | optional: destroys it; without it the object is left |
/// | `void* ORV_create_plugin(int)` | optional: a further object, for create_instance() |
/// | `int ORV_destroy_plugin(void*)` | optional: destroys one, for kill_instance() |
///
/// A plugin lives through: created, in PluginMgr's list with one reference, initialize(), start(),
/// used, stop(), terminate(), released. The order of the virtual operations is a contract with
/// modules built apart.
class ORV_API Plugin {
 public:
  /// Of unknown type, with one identity, no texts and no references.
  Plugin();
  virtual ~Plugin();
  Plugin(const Plugin&) = delete;
  Plugin& operator=(const Plugin&) = delete;

  /// @{
  /// Send "[name] text" to the default log at info, warning, error or debug level. The text is cut
  /// at 4,095 bytes; a null format does nothing.
  virtual void tracef(const char* format, ...) ORV_PRINTF_LIKE(2, 3);
  virtual void tracef_warning(const char* format, ...) ORV_PRINTF_LIKE(2, 3);
  virtual void tracef_error(const char* format, ...) ORV_PRINTF_LIKE(2, 3);
  virtual void tracef_debug(const char* format, ...) ORV_PRINTF_LIKE(2, 3);
  /// @}

  /// @{
  /// Each sets or clears its flag, with a debug line when the flag changes. Always true here.
  virtual bool initialize();
  virtual bool terminate();
  virtual bool start();
  virtual bool stop();
  /// @}

  /// Whether initialize() was called and terminate() was not.
  bool is_initialized() const { return initialized_; }
  /// Whether start() was called and stop() was not.
  bool is_started() const { return started_; }

  /// @{
  /// Identity within the process.
  int getid() const;
  int get_id() const;
  /// @}

  /// @{
  /// Texts that the plugin tells of itself, never null; borrowed, valid until they are set again.
  const char* get_name() const;
  const char* get_description() const;
  const char* get_author() const;
  const char* get_build_info() const;
  /// @}

  /// @{
  /// Version that the plugin tells of itself, 0 at first.
  int get_version_major() const;
  int get_version_minor() const;
  int get_version_patch() const;
  /// @}

  /// What the plugin is; PLUGIN_TYPE_UNKNOWN until its constructor said so.
  PLUGIN_TYPE get_type() const;

  /// @{
  /// Path that the module was loaded from, at most 1,023 bytes; "" for a core plugin.
  const char* get_full_filename() const;
  void set_full_filename(const char* filename);
  /// @}

  /// @{
  /// Handle of the module, null for a core plugin.
  void* get_dynlib_handle() const;
  void set_dynlib_handle(void* handle);
  /// @}

  /// @{
  /// A mark for hosts; the library only clears it, when it loads a module.
  bool get_core_plugin_state() const;
  void set_core_plugin_state(bool state);
  /// @}

  /// References held, by PluginMgr's list and by others.
  int get_ref() const;
  /// Adds one reference; returns the count.
  int add_ref();
  /// Takes off one reference, down to 0; returns the count.
  int dec_ref();
  /// Takes off one reference and, when none is left, destroys the plugin: through its module's
  /// "orv_plugin_destroy", after which the module is freed, or by its own destructor. Returns the
  /// count.
  int release();

  /// @{
  /// The thread that made the plugin or last called update_thread(). A record only.
  Thread get_thread() const;
  Thread* get_thread_ptr();
  /// @}

  /// Records the calling thread.
  void update_thread();
  /// Whether the calling thread is the recorded one.
  bool check_thread() const;

  /// A further object of the module, made by "ORV_create_plugin"; null when there is no such
  /// export.
  void* create_instance();
  /// Destroys one by "ORV_destroy_plugin". True when the export exists and returned non-zero.
  bool kill_instance(void* instance);

 protected:
  /// @{
  /// Each copies its text, cut at 127 characters (description: 255); null is ignored.
  void set_name(const char* name);
  void set_description(const char* description);
  void set_author(const char* author);
  void set_build_info(const char* build_info);
  /// @}

  /// Version told by get_version_major() and its kin.
  void set_version(int major_version, int minor_version, int patch_version);
  /// What the plugin is; for constructors of derived classes.
  void set_type(PLUGIN_TYPE type);

  bool initialized_ = false;  ///< set by initialize(), cleared by terminate()
  bool started_ = false;      ///< set by start(), cleared by stop()

 private:
  PluginData* data_;
};

}  // namespace orv
