#include <orv/core/plugin.h>

#include <orv/core/log_mgr.h>
#include <orv/core/utils.h>

#include "core/format_message.h"
#include "core/platform/platform.h"
#include "core/plugin_hooks.h"

#include <algorithm>
#include <cstring>

namespace orv {

struct PluginData {
  int id = utils::gen_id();
  char name[128] = {};
  char full_filename[1024] = {};
  char description[256] = {};
  char author[128] = {};
  char build_info[128] = {};
  int version_major = 0;
  int version_minor = 0;
  int version_patch = 0;
  PLUGIN_TYPE type = PLUGIN_TYPE_UNKNOWN;
  bool core_plugin_state = false;
  int ref = 0;
  Thread thread;
  void* dynlib_handle = nullptr;
};

namespace {

template <size_t size>
void copy_text(char (&field)[size], const char* text) {
  if (!text) return;
  const size_t length = strnlen(text, size - 1);
  // The text may be the field's own, so it is moved before the rest is cleared.
  std::memmove(field, text, length);
  std::memset(field + length, 0, size - length);
}

}  // namespace

// ---- life --------------------------------------------------------------------------------------

Plugin::Plugin() : data_(new PluginData) {}

Plugin::~Plugin() {
  run_plugin_destroyed_hooks(this);
  delete data_;
}

int Plugin::get_ref() const { return data_->ref; }

int Plugin::add_ref() { return ++data_->ref; }

int Plugin::dec_ref() {
  data_->ref = std::max(data_->ref - 1, 0);
  return data_->ref;
}

int Plugin::release() {
  if (const int left = dec_ref(); left > 0) return left;
  void* const library = data_->dynlib_handle;
  if (!library) {
    delete this;
    return 0;
  }
  using Destroy = void (*)(Plugin*);
  const auto destroy =
      reinterpret_cast<Destroy>(platform::find_symbol(library, "orv_plugin_destroy"));
  if (destroy) {
    destroy(this);
  } else {
    // The object stays, but its code goes away with the library.
    run_plugin_destroyed_hooks(this);
  }
  platform::close_library(library);
  return 0;
}

// ---- messages ----------------------------------------------------------------------------------

#define ORV_PLUGIN_TRACEF(operation)                          \
  if (!format) return;                                        \
  char message[4096];                                         \
  va_list arguments;                                          \
  va_start(arguments, format);                                \
  format_message(message, sizeof message, format, arguments); \
  va_end(arguments);                                          \
  LogMgr::get().operation("[%s] %s", data_->name, message)

void Plugin::tracef(const char* format, ...) { ORV_PLUGIN_TRACEF(tracef); }

void Plugin::tracef_warning(const char* format, ...) { ORV_PLUGIN_TRACEF(tracef_warning); }

void Plugin::tracef_error(const char* format, ...) { ORV_PLUGIN_TRACEF(tracef_error); }

void Plugin::tracef_debug(const char* format, ...) { ORV_PLUGIN_TRACEF(tracef_debug); }

#undef ORV_PLUGIN_TRACEF

// ---- state -------------------------------------------------------------------------------------

namespace {

bool set_flag(bool& flag, bool value, const PluginData& data, const char* what) {
  if (flag != value) {
    LogMgr::get().tracef_debug("plugin %s (id=%d) - %s()", data.name, data.id, what);
    flag = value;
  }
  return true;
}

}  // namespace

bool Plugin::initialize() { return set_flag(initialized_, true, *data_, "initialize"); }

bool Plugin::terminate() { return set_flag(initialized_, false, *data_, "terminate"); }

bool Plugin::start() { return set_flag(started_, true, *data_, "start"); }

bool Plugin::stop() { return set_flag(started_, false, *data_, "stop"); }

// ---- fields ------------------------------------------------------------------------------------

int Plugin::getid() const { return data_->id; }

int Plugin::get_id() const { return data_->id; }

const char* Plugin::get_name() const { return data_->name; }

void Plugin::set_name(const char* name) { copy_text(data_->name, name); }

const char* Plugin::get_description() const { return data_->description; }

void Plugin::set_description(const char* description) {
  copy_text(data_->description, description);
}

const char* Plugin::get_author() const { return data_->author; }

void Plugin::set_author(const char* author) { copy_text(data_->author, author); }

const char* Plugin::get_build_info() const { return data_->build_info; }

void Plugin::set_build_info(const char* build_info) { copy_text(data_->build_info, build_info); }

int Plugin::get_version_major() const { return data_->version_major; }

int Plugin::get_version_minor() const { return data_->version_minor; }

int Plugin::get_version_patch() const { return data_->version_patch; }

void Plugin::set_version(int major_version, int minor_version, int patch_version) {
  data_->version_major = major_version;
  data_->version_minor = minor_version;
  data_->version_patch = patch_version;
}

PLUGIN_TYPE Plugin::get_type() const { return data_->type; }

void Plugin::set_type(PLUGIN_TYPE type) { data_->type = type; }

const char* Plugin::get_full_filename() const { return data_->full_filename; }

void Plugin::set_full_filename(const char* filename) { copy_text(data_->full_filename, filename); }

void* Plugin::get_dynlib_handle() const { return data_->dynlib_handle; }

void Plugin::set_dynlib_handle(void* handle) { data_->dynlib_handle = handle; }

bool Plugin::get_core_plugin_state() const { return data_->core_plugin_state; }

void Plugin::set_core_plugin_state(bool state) { data_->core_plugin_state = state; }

Thread Plugin::get_thread() const { return data_->thread; }

Thread* Plugin::get_thread_ptr() { return &data_->thread; }

void Plugin::update_thread() { data_->thread.update(); }

bool Plugin::check_thread() const { return data_->thread == Thread(); }

// ---- further objects ---------------------------------------------------------------------------

namespace {

/// An optional export of the plugin's module. Its lack is said in the log.
void* find_export(const PluginData& data, const char* name) {
  void* symbol = platform::find_symbol(data.dynlib_handle, name);
  if (!symbol) {
    LogMgr::get().tracef_debug("plugin %s (id=%d): %s %s", data.name, data.id,
                               data.dynlib_handle ? "missing export" : "not from a module, so no",
                               name);
  }
  return symbol;
}

void report_refusal(const PluginData& data, const char* name) {
  LogMgr::get().tracef_debug("plugin %s (id=%d): %s failed", data.name, data.id, name);
}

}  // namespace

void* Plugin::create_instance() {
  using Create = void* (*)(int);
  const auto create = reinterpret_cast<Create>(find_export(*data_, "ORV_create_plugin"));
  if (!create) return nullptr;
  void* instance = create(0);
  if (!instance) report_refusal(*data_, "ORV_create_plugin");
  return instance;
}

bool Plugin::kill_instance(void* instance) {
  using Destroy = int (*)(void*);
  const auto destroy = reinterpret_cast<Destroy>(find_export(*data_, "ORV_destroy_plugin"));
  if (!destroy) return false;
  if (destroy(instance) != 0) return true;
  report_refusal(*data_, "ORV_destroy_plugin");
  return false;
}

}  // namespace orv
