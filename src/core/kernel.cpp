#include <orv/core/kernel.h>

#include <orv/core/log_mgr.h>
#include <orv/core/plugin_mgr.h>
#include <orv/core/utils.h>
#include <orv/gpu/gpu_program_mgr.h>
#include <orv/gpu/material_mgr.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/version.h>

#include "core/kernel_data.h"
#include "core/plugin_hooks.h"

namespace orv {

namespace {

constexpr const char* DISPLAY_NAME = "Orvane Core";
constexpr const char* CODENAME = "Slatewing";
constexpr int VERSION_BUILD = 0;

}  // namespace

// ---- start and stop ----------------------------------------------------------------------------

Kernel::Kernel() : data_(new KernelData) {
  add_plugin_destroyed_hook([](Plugin* plugin) { Kernel::get()->data_->forget_loader(plugin); });
}

Kernel* Kernel::get() {
  static Kernel* const kernel = new Kernel;
  return kernel;
}

bool Kernel::start() {
  if (data_->started) return true;
  LogMgr::get().tracef_debug("%s v%d.%d.%d (codename: %s) is starting up...", DISPLAY_NAME,
                             ORV_VERSION_MAJOR, ORV_VERSION_MINOR, ORV_VERSION_PATCH, CODENAME);
  utils::init_platform_information();
  app_directory_init();
  load_core_loader3d_plugins();
  GpuProgramMgr::get()->start(nullptr);
  MaterialMgr::get()->start(nullptr);
  TextureMgr::get()->start(nullptr);
  init_texture_mgr_core_image_plugins();
  LogMgr::get().tracef_debug("%s started up ok.", DISPLAY_NAME);
  data_->started = true;
  return true;
}

bool Kernel::stop() {
  if (!data_->started) return true;
  MaterialMgr::get()->stop(nullptr);
  TextureMgr::get()->stop(nullptr);
  GpuProgramMgr::get()->stop(nullptr);
  for (Loader3D** loader : data_->core_loaders()) *loader = nullptr;
  PluginMgr::get()->unload_all_plugins();
  plugin_search_path_clear();
  LogMgr::get().tracef_debug("%s stopped ok.", DISPLAY_NAME);
  data_->started = false;
  return true;
}

int Kernel::get_version_major() const { return ORV_VERSION_MAJOR; }

int Kernel::get_version_minor() const { return ORV_VERSION_MINOR; }

int Kernel::get_version_patch() const { return ORV_VERSION_PATCH; }

int Kernel::get_version_build() const { return VERSION_BUILD; }

const char* Kernel::get_codename() const { return CODENAME; }

Renderer* Kernel::get_null_renderer() const { return nullptr; }

// ---- platform ----------------------------------------------------------------------------------

void Kernel::init_platform_information() { utils::init_platform_information(); }

const char* Kernel::get_os_name() const { return utils::get_os_name(); }

int Kernel::get_os_version_major() const { return utils::get_os_version_major(); }

int Kernel::get_os_version_minor() const { return utils::get_os_version_minor(); }

int Kernel::get_os_version_build() const { return utils::get_os_version_build(); }

const char* Kernel::get_osx_codename() const { return utils::get_osx_codename(); }

const char* Kernel::get_osx_kern_osrelease() const { return utils::get_osx_kern_osrelease(); }

void Kernel::get_osx_version(int* major_version, int* minor_version, int* build) const {
  if (major_version) *major_version = utils::get_os_version_major();
  if (minor_version) *minor_version = utils::get_os_version_minor();
  if (build) *build = utils::get_os_version_build();
}

const char* Kernel::get_linux_sysname() const { return utils::get_linux_sysname(); }

const char* Kernel::get_linux_release() const { return utils::get_linux_release(); }

const char* Kernel::get_linux_version() const { return utils::get_linux_version(); }

const char* Kernel::get_linux_machine() const { return utils::get_linux_machine(); }

const char* Kernel::get_platform_name() const { return utils::get_platform_name(); }

int Kernel::get_platform_bitness() const { return utils::get_platform_bitness(); }

bool Kernel::app_directory_init() {
  if (!data_->app_directory.empty()) return true;
  const char* directory = utils::get_app_directory();
  if (!directory || !*directory) {
    LogMgr::get().trace_debug("application directory: the path of the program is unknown");
    return false;
  }
  data_->app_directory = directory;
  return true;
}

bool Kernel::app_directory_set(const char* directory) {
  if (!directory) return false;
  data_->app_directory = directory;
  return true;
}

const char* Kernel::app_directory_get() const { return data_->app_directory.c_str(); }

// ---- textures of a render target ---------------------------------------------------------------

Texture* Kernel::create_color_texture_from_render_target(GpuRenderTarget* target,
                                                         unsigned int index) {
  if (!target) return nullptr;
  Texture* texture = TextureMgr::get()->create_texture();
  if (texture) texture->init_color_texture_from_render_target(target, index);
  return texture;
}

Texture* Kernel::create_depth_texture_from_render_target(GpuRenderTarget* target) {
  if (!target) return nullptr;
  Texture* texture = TextureMgr::get()->create_texture();
  if (texture) texture->init_depth_texture_from_render_target(target);
  return texture;
}

}  // namespace orv
