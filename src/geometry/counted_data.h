#pragma once

#include <orv/render/renderer.h>

namespace orv {

/// Puts `data`, which may be null, in the place of `held`, and counts it. The data held before
/// loses a reference and, when that was the last, ends, its GPU objects with it if there is a
/// renderer. False when it is the same data.
template <class Data>
bool replace_counted_data(Renderer* renderer, Data*& held, Data* data) {
  if (data == held) return false;
  // The new reference is taken first: the old data may be all that keeps the new one's owner.
  if (data) data->inc_ref();
  Data* old = held;
  held = data;
  if (!old) return true;
  old->dec_ref();
  if (old->get_ref() > 0) return true;
  if (renderer) renderer->geometry_vbo_destroy(old);
  old->free_data();
  delete old;
  return true;
}

}  // namespace orv
