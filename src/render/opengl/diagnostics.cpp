// Errors of OpenGL and of the renderer, and the driver's debug output.
#include <orv/core/log_mgr.h>

#include <cstdarg>
#include <cstdio>
#include <string>

#include "render/opengl/renderer_opengl.h"

namespace orv {
namespace {

constexpr int MAX_PENDING_ERRORS = 64;  // a lost context reports errors for ever
constexpr std::size_t MAX_ERROR_NAMES = 511;

const char* debug_source_name(GLenum source) {
  switch (source) {
    case GL_DEBUG_SOURCE_API_ARB:
      return "GL_DEBUG_SOURCE_API_ARB";
    case GL_DEBUG_SOURCE_SHADER_COMPILER_ARB:
      return "GL_DEBUG_SOURCE_SHADER_COMPILER_ARB";
    case GL_DEBUG_SOURCE_WINDOW_SYSTEM_ARB:
      return "GL_DEBUG_SOURCE_WINDOW_SYSTEM_ARB";
    case GL_DEBUG_SOURCE_THIRD_PARTY_ARB:
      return "GL_DEBUG_SOURCE_THIRD_PARTY_ARB";
    case GL_DEBUG_SOURCE_APPLICATION_ARB:
      return "GL_DEBUG_SOURCE_APPLICATION_ARB";
    default:
      return "GL_DEBUG_SOURCE_OTHER_ARB";
  }
}

const char* debug_type_name(GLenum type) {
  switch (type) {
    case GL_DEBUG_TYPE_ERROR_ARB:
      return "GL_DEBUG_TYPE_ERROR_ARB";
    case GL_DEBUG_TYPE_DEPRECATED_BEHAVIOR_ARB:
      return "GL_DEBUG_TYPE_DEPRECATED_BEHAVIOR_ARB";
    case GL_DEBUG_TYPE_UNDEFINED_BEHAVIOR_ARB:
      return "GL_DEBUG_TYPE_UNDEFINED_BEHAVIOR_ARB";
    case GL_DEBUG_TYPE_PERFORMANCE_ARB:
      return "GL_DEBUG_TYPE_PERFORMANCE_ARB";
    case GL_DEBUG_TYPE_PORTABILITY_ARB:
      return "GL_DEBUG_TYPE_PORTABILITY_ARB";
    default:
      return "GL_DEBUG_TYPE_OTHER_ARB";
  }
}

void APIENTRY log_debug_message(GLenum source, GLenum type, GLuint, GLenum, GLsizei,
                                const GLchar* message, const void*) {
  LogMgr::get().tracef("[OpenGL Debug] source: %s - type: %s - message: %s",
                       debug_source_name(source), debug_type_name(type), message ? message : "");
}

}  // namespace

// ---- debug output ----------------------------------------------------------------------------

bool RendererOpenGL::debug_callback_set(void* user_callback, void* user_data) {
  if (lacks(gl_.glDebugMessageCallbackARB, "glDebugMessageCallbackARB")) return false;
  const auto callback =
      user_callback ? reinterpret_cast<GLDEBUGPROCARB>(user_callback) : log_debug_message;
  gl_.glDebugMessageCallbackARB(callback, user_data);
  return true;
}

// ---- errors of OpenGL ------------------------------------------------------------------------

unsigned int RendererOpenGL::check_gl_error(bool check, const char* where) {
  if (!core_.glGetError) return 0;
  if (!check) return core_.glGetError();
  std::string names;
  unsigned int first = 0;
  for (int i = 0; i < MAX_PENDING_ERRORS; ++i) {
    const unsigned int code = core_.glGetError();
    if (code == GL_NO_ERROR) break;
    if (first == 0) first = code;
    names += ' ';
    names += gl_error_to_string(code);
  }
  if (names.size() > MAX_ERROR_NAMES) names.resize(MAX_ERROR_NAMES);
  LogMgr& log = LogMgr::get();
  if (first != 0 && where) {
    log.tracef_error("GL_ERROR - %s - %s (%d)", where, names.c_str(), static_cast<int>(first));
  } else if (first != 0) {
    log.tracef_error("GL_ERROR - %s (%d)", names.c_str(), static_cast<int>(first));
  } else if (where) {
    log.tracef_debug("GL_OK - %s", where);
  } else {
    log.tracef_debug("GL_OK");
  }
  return first;
}

const char* RendererOpenGL::gl_error_to_string(unsigned int code) {
  switch (code) {
    case GL_NO_ERROR:
      return "GL_NO_ERROR";
    case GL_INVALID_ENUM:
      return "GL_INVALID_ENUM";
    case GL_INVALID_VALUE:
      return "GL_INVALID_VALUE";
    case GL_INVALID_OPERATION:
      return "GL_INVALID_OPERATION";
    case GL_STACK_OVERFLOW:
      return "GL_STACK_OVERFLOW";
    case GL_STACK_UNDERFLOW:
      return "GL_STACK_UNDERFLOW";
    case GL_OUT_OF_MEMORY:
      return "GL_OUT_OF_MEMORY";
    case GL_INVALID_FRAMEBUFFER_OPERATION:
      return "GL_INVALID_FRAMEBUFFER_OPERATION";
    case GL_CONTEXT_LOST:
      return "GL_CONTEXT_LOST";
    case GL_TABLE_TOO_LARGE:
      return "GL_TABLE_TOO_LARGE";
    default:
      return "GL_UNKNOWN_ERROR";
  }
}

void RendererOpenGL::swallow_gl_errors() { detail::swallow_gl_errors(find_questions()); }

// ---- errors of the renderer ------------------------------------------------------------------

void RendererOpenGL::report_lack(const char* name) const {
  LogMgr::get().tracef_debug("OpenGL renderer - no %s: %s", name,
                             is_started() ? "the context is without it" : "not started");
}

void RendererOpenGL::log_error(const char* format, ...) {
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(error_text_.data(), error_text_.size(), format, arguments);
  va_end(arguments);
  LogMgr::get().tracef_error("%s renderer - %s", get_api_name(), error_text_.data());
}

}  // namespace orv
