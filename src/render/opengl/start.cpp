// How the renderer comes up on a context and goes down: fetch the functions, read the facts,
// decide.
#include <orv/core/log_mgr.h>
#include <orv/render/render_window.h>

#include <cstdio>
#include <cstring>

#include "core/core_author.h"
#include "render/opengl/renderer_opengl.h"
#include "render/vector_context.h"

namespace orv {

// ---- life ------------------------------------------------------------------------------------

RendererOpenGL::RendererOpenGL() : error_text_(16384) {
  set_name("OpenGL");
  set_description("OpenGL renderer (OpenGL 2, 3.x and 4.x supported).");
  set_author(CORE_AUTHOR);
  set_version(0, 1, 0);
  set_type(PLUGIN_TYPE_RENDERER);
  char build_info[128];
  std::snprintf(build_info, sizeof(build_info), "BUILD_DATE: [%s] - BUILD_TIME: [%s]", __DATE__,
                __TIME__);
  set_build_info(build_info);
  set_api_type(ORV_API3D_OPENGL);
  set_api_name("OpenGL");
}

RendererOpenGL::~RendererOpenGL() {
  stop();
  render_window_free_all();
  gpu_killall();
}

bool RendererOpenGL::initialize() {
  LogMgr::get().tracef_debug("plugin %s (id=%d) - initialize()", get_name(), getid());
  initialized_ = true;
  return true;
}

bool RendererOpenGL::terminate() {
  LogMgr::get().tracef_debug("plugin %s (id=%d) - terminate()", get_name(), getid());
  initialized_ = false;
  return true;
}

// ---- start -----------------------------------------------------------------------------------

bool RendererOpenGL::start_v2(bool log_functions) {
  log_gl_functions_ = log_functions;
  return start();
}

bool RendererOpenGL::start() {
  if (started_) return started_;
  LogMgr& log = LogMgr::get();
  log.tracef_debug("plugin %s (id=%d) - start()", get_name(), getid());
  update_thread();
  facts_ = GlFacts();
  const GlProcAddress source = find_proc_address();
  detail::fetch_core_functions(source, &core_);
  facts_.version_ok = get_api_version(&facts_.version_major, &facts_.version_minor);
  if (const char* version = get_gl_version()) log.tracef("start() - GL_VERSION: %s", version);
  read_vendor();
  started_ = read_facts();
  decide_paths(get_current_render_window());
  detail::drop_ungranted_core_functions(facts_, &core_);
  detail::fetch_entry_points(source, facts_, log_gl_functions_, &gl_);
  facts_.instancing_supported = is_instancing_supported();
  if (!started_) log.tracef_debug("OpenGL renderer - not started: no context is current");
  register_capabilities();
  shadow_ = GlShadowState();
  bound_ = GlBoundGeometry();
  if (core_.glEnable) apply_pipeline_state();
  return started_;
}

void RendererOpenGL::read_vendor() {
  const char* name = get_gl_renderer();
  if (!name) return;
  LogMgr::get().tracef("start() - GL_RENDERER: %s", name);
  facts_.renderer_is_radeon = std::strstr(name, "Radeon") != nullptr;
  gpu_create(0);
}

bool RendererOpenGL::read_facts() {
  if (!core_.glGetIntegerv || !facts_.version_ok) return false;
  GlExtensionList list;
  detail::read_gl_extensions(find_questions(), &list);
  for (unsigned int i = 0; i < list.size(); ++i) facts_.extensions.insert(list.at(i));
  if (facts_.is_version_at_least(3, 2)) {
    facts_.core_context =
        (read_integer(GL_CONTEXT_PROFILE_MASK) & GL_CONTEXT_CORE_PROFILE_BIT) != 0;
  } else if (facts_.is_version_at_least(3, 1)) {
    facts_.core_context = !facts_.has_extension("GL_ARB_compatibility");
  }
  return true;
}

void RendererOpenGL::decide_paths(RenderWindow* window) {
  facts_.gl2_mode = facts_.version_major == 2;
  // Core contexts draw nothing without vertex array objects, whoever made them.
  facts_.use_vertex_arrays = facts_.core_context;
  if (window) {
    const auto has = [&](const char* name) {
      // Contexts of the host come without a loaded list.
      return extensions_.empty() ? facts_.has_extension(name) : extensions_.contains(name);
    };
    facts_.subroutines_supported = has("GL_ARB_shader_subroutine");
    facts_.s3tc_supported = has("GL_EXT_texture_compression_s3tc") ? 1 : 0;
    facts_.rgtc_supported = has("GL_EXT_texture_compression_rgtc") ? 1 : 0;
    facts_.use_vertex_arrays |= window->core_profile_granted;
  } else {
    facts_.subroutines_supported = facts_.version_major > 3;
    const char* version = get_gl_version();
    facts_.use_vertex_arrays |=
        facts_.version_major > 2 && version && !std::strstr(version, "ompatibility");
  }
}

// ---- stop ------------------------------------------------------------------------------------

bool RendererOpenGL::stop() {
  if (!started_) return true;
  LogMgr::get().tracef_debug("plugin %s (id=%d) - stop()", get_name(), getid());
  // Without a context there is nothing left to delete, and nowhere to send it.
  if (!has_current_context()) clear_tables();
  detail::release_vector_contexts(this);
  gpu_render_target_killall(nullptr);
  reserved_killall_2(nullptr);
  reserved_killall_1(nullptr);
  reserved_killall_3(nullptr);
  release_context_objects();
  capabilities_.clear();
  clear_tables();
  started_ = false;
  return true;
}

void RendererOpenGL::clear_tables() {
  gl_ = GlTable();
  core_ = GlCoreTable();
}

// ---- version ---------------------------------------------------------------------------------

bool RendererOpenGL::get_api_version(int* major, int* minor) {
  const detail::GlVersion version = detail::read_gl_version(find_questions());
  if (version.text) {
    LogMgr::get().tracef_debug("OpenGL version - GL_VERSION: %s", version.text);
  } else if (version.major > 0) {
    LogMgr::get().tracef_debug("OpenGL version - GL_MAJOR_VERSION: %d - GL_MINOR_VERSION: %d",
                               version.major, version.minor);
  }
  if (major) *major = version.major;
  if (minor) *minor = version.minor;
  return version.major > 0;
}

bool RendererOpenGL::is_api_version_at_least(int major, int minor) {
  int found_major = 0;
  int found_minor = 0;
  get_api_version(&found_major, &found_minor);
  return found_major > major || (found_major == major && found_minor >= minor);
}

int RendererOpenGL::get_major_version() { return facts_.version_major; }

int RendererOpenGL::get_minor_version() { return facts_.version_minor; }

const char* RendererOpenGL::get_gl_renderer() { return get_gl_text(GL_RENDERER); }

const char* RendererOpenGL::get_gl_vendor() { return get_gl_text(GL_VENDOR); }

const char* RendererOpenGL::get_glsl_version() { return get_gl_text(GL_SHADING_LANGUAGE_VERSION); }

const char* RendererOpenGL::get_gl_version() { return get_gl_text(GL_VERSION); }

const char* RendererOpenGL::get_gl_text(unsigned int name) {
  const detail::GlQuestions questions = find_questions();
  if (!questions.glGetString) return nullptr;
  return reinterpret_cast<const char*>(questions.glGetString(name));
}

// ---- vendor switch ---------------------------------------------------------------------------

bool RendererOpenGL::set_radeon_workaround(const char* name, bool enabled) {
  if (!name || !std::strstr(name, "radeon")) return false;
  radeon_workaround_ = enabled;
  return true;
}

}  // namespace orv
