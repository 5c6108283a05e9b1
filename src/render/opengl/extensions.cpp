// The list of extensions that windows share: names of OpenGL, then of the window system.
#include "render/opengl/renderer_opengl.h"
#include "render/window/context.h"

namespace orv {

bool RendererOpenGL::extensions_load(RenderWindow* window) {
  if (!extensions_.empty()) return true;
  if (lacks(detail::read_gl_extensions(find_questions(), &extensions_), "extensions")) return false;
  extensions_.num_gl = extensions_.size();
  append_window_system_extensions(window);
  return true;
}

void RendererOpenGL::append_window_system_extensions(const RenderWindow* window) {
  const detail::WindowSurface* surface = detail::surface_of(window);
  if (!surface) return;
  detail::split_extensions(surface->back_end->extension_names(*surface), &extensions_);
  extensions_.num_window_system = extensions_.size() - extensions_.num_gl;
}

bool RendererOpenGL::extensions_free(RenderWindow*) {
  extensions_.clear();
  return true;
}

unsigned int RendererOpenGL::get_num_extensions() { return extensions_.size(); }

unsigned int RendererOpenGL::get_num_gl_extensions() { return extensions_.num_gl; }

unsigned int RendererOpenGL::get_num_wgl_extensions() { return extensions_.num_window_system; }

unsigned int RendererOpenGL::get_num_extensions_reserved() { return 0; }

const char* RendererOpenGL::get_extension_name(unsigned int index) { return extensions_.at(index); }

bool RendererOpenGL::is_extension_supported(RenderWindow*, const char* name) {
  return extensions_.contains(name);
}

bool RendererOpenGL::get_extension_name_0(const char* name) {
  return is_extension_supported(nullptr, name);
}

const char* RendererOpenGL::get_gl_extensions() {
  const detail::GlQuestions questions = find_questions();
  if (!questions.glGetString) return nullptr;
  if (!is_core_context()) return get_gl_text(GL_EXTENSIONS);
  // Core contexts know no such text: the question would be an error.
  GlExtensionList list;
  detail::read_gl_extensions(questions, &list);
  joined_extensions_.clear();
  for (unsigned int i = 0; i < list.size(); ++i) {
    if (i > 0) joined_extensions_ += ' ';
    joined_extensions_ += list.at(i);
  }
  return joined_extensions_.c_str();
}

}  // namespace orv
