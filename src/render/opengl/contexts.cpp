// Which context is current, for the few objects that contexts don't share.
#include <orv/render/render_window.h>

#include <utility>

#include "render/opengl/renderer_opengl.h"

namespace orv {

void RendererOpenGL::note_context_created(const RenderWindow* window) {
  if (window) context_ids_[window->getid()] = ++last_context_id_;
}

void RendererOpenGL::change_context(unsigned int id) {
  if (id == current_context_id_) return;
  const std::size_t num_units = units_.bound.size();
  // Number 0 stands for contexts that are not known here.
  if (current_context_id_ != 0) units_of_others_[current_context_id_] = std::move(units_);
  current_context_id_ = id;
  const auto found = units_of_others_.find(id);
  if (found != units_of_others_.end() && found->second.bound.size() == num_units) {
    units_ = std::move(found->second);
  } else {
    units_.reset(num_units);
  }
}

void RendererOpenGL::note_context_bound(const RenderWindow* window) {
  const auto found = window ? context_ids_.find(window->getid()) : context_ids_.end();
  // A context that the host made has no number yet.
  if (window && found == context_ids_.end()) {
    note_context_created(window);
    change_context(last_context_id_);
  } else {
    change_context(window ? found->second : 0u);
  }
}

void RendererOpenGL::note_context_destroyed(const RenderWindow* window) {
  if (!window) return;
  const auto found = context_ids_.find(window->getid());
  if (found == context_ids_.end()) return;
  core_color_programs_.erase(found->second);
  scratch_vertex_arrays_.erase(found->second);
  if (current_context_id_ == found->second) change_context(0);
  units_of_others_.erase(found->second);
  context_ids_.erase(found);
}

void RendererOpenGL::note_context_saved(const RenderWindow* window) {
  if (window) saved_context_ids_[window->getid()] = current_context_id_;
}

void RendererOpenGL::note_context_restored(const RenderWindow* window) {
  if (!window) return;
  const auto found = saved_context_ids_.find(window->getid());
  change_context(found != saved_context_ids_.end() ? found->second : 0u);
}

unsigned int RendererOpenGL::scratch_vertex_array() {
  unsigned int& id = scratch_vertex_arrays_[current_context_id_];
  if (id == 0) gl_.glGenVertexArrays(1, &id);
  return id;
}

void RendererOpenGL::release_context_objects() {
  const auto scratch = scratch_vertex_arrays_.find(current_context_id_);
  if (scratch != scratch_vertex_arrays_.end() && gl_.glDeleteVertexArrays) {
    gl_.glDeleteVertexArrays(1, &scratch->second);
  }
  release_core_color_program();
  scratch_vertex_arrays_.clear();
  core_color_programs_.clear();
  failed_shaders_.clear();
  units_of_others_.clear();
  // Programs may be gone before the next start.
  current_program_id_ = 0;
  current_program_ = nullptr;
  // Another start may be on another context of the host's.
  current_context_id_ = ++last_context_id_;
}

}  // namespace orv
