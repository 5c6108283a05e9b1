#include <orv/render/offscreen_window.h>

#include <orv/core/log_mgr.h>

#include <algorithm>

#include "render/window/offscreen_registry.h"

namespace orv {

using detail::OffscreenRegistry;

namespace {

using Lock = std::lock_guard<std::recursive_mutex>;

}  // namespace

OffscreenWindow::OffscreenWindow(int width, int height, Preference preference)
    : data_(new OffscreenWindowData) {
  data_->width = std::max(width, 1);
  data_->height = std::max(height, 1);
  data_->preference = preference;
  const Lock lock(OffscreenRegistry::get().mutex());
  OffscreenRegistry::get().add(data_);
}

OffscreenWindow::~OffscreenWindow() {
  const Lock lock(OffscreenRegistry::get().mutex());
  OffscreenRegistry::get().remove(data_);
  detail::destroy_offscreen_surface(data_);
  delete data_;
}

void* OffscreenWindow::native_handle() {
  // A number that is never followed as a pointer.
  return reinterpret_cast<void*>(data_->id);
}

int OffscreenWindow::get_width() const {
  const Lock lock(OffscreenRegistry::get().mutex());
  return data_->width;
}

int OffscreenWindow::get_height() const {
  const Lock lock(OffscreenRegistry::get().mutex());
  return data_->height;
}

bool OffscreenWindow::resize(int width, int height) {
  if (width < 1 || height < 1) return false;
  if (width > detail::MAX_OFFSCREEN_SIZE || height > detail::MAX_OFFSCREEN_SIZE) {
    LogMgr::get().tracef_debug("offscreen window: a size of %dx%d is above %d", width, height,
                               detail::MAX_OFFSCREEN_SIZE);
    return false;
  }
  const Lock lock(OffscreenRegistry::get().mutex());
  if (data_->surface && !detail::resize_offscreen_surface(data_, width, height)) return false;
  data_->width = width;
  data_->height = height;
  return true;
}

namespace detail {

// ---- registry --------------------------------------------------------------------------------

OffscreenRegistry& OffscreenRegistry::get() {
  // Never destroyed: windows may outlive static objects.
  static auto* const registry = new OffscreenRegistry;
  return *registry;
}

void OffscreenRegistry::add(OffscreenWindowData* data) {
  data->id = ++last_id_;
  living_.emplace(data->id, data);
}

void OffscreenRegistry::remove(const OffscreenWindowData* data) { living_.erase(data->id); }

OffscreenWindowData* OffscreenRegistry::find(std::uintptr_t id) const {
  const auto found = living_.find(id);
  return found == living_.end() ? nullptr : found->second;
}

}  // namespace detail
}  // namespace orv
