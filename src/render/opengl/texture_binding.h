/// @file
/// Binding of a texture for the length of a block.
#pragma once

#include "render/opengl/renderer_opengl.h"

namespace orv {

/// Binds a texture to a unit for as long as it lives, and then what was bound to that target of the
/// unit before. The selected unit is put back too.
class RendererOpenGL::TextureBinding {
 public:
  TextureBinding(RendererOpenGL* renderer, unsigned int unit, unsigned int target, unsigned int id)
      : renderer_(renderer),
        unit_(unit),
        target_(target),
        id_(id),
        previous_unit_(renderer->units_.current) {
    renderer_->select_unit(unit_);
    renderer_->core_.glBindTexture(target_, id_);
  }
  /// On the current unit.
  TextureBinding(RendererOpenGL* renderer, unsigned int target, unsigned int id)
      : TextureBinding(renderer, renderer->units_.current, target, id) {}
  ~TextureBinding() {
    const int index = detail::gl_texture_target_index(target_);
    const bool known = index >= 0 && renderer_->units_.has(unit_);
    const unsigned int before = known ? renderer_->units_.by_target[unit_].ids[index] : 0;
    if (before != id_) renderer_->core_.glBindTexture(target_, before);
    if (previous_unit_ != unit_) renderer_->select_unit(previous_unit_);
  }
  TextureBinding(const TextureBinding&) = delete;
  TextureBinding& operator=(const TextureBinding&) = delete;

 private:
  RendererOpenGL* renderer_;
  unsigned int unit_;
  unsigned int target_;
  unsigned int id_;
  unsigned int previous_unit_;
};

}  // namespace orv
