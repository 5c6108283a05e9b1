// Contexts, frames and coordinates.
#include <orv/core/log_mgr.h>
#include <orv/core/utils.h>

#include <algorithm>
#include <cmath>

#include "text/nvg_globals.h"

namespace orv::nvg {

// ---- shared parts ----

Globals& globals() {
  static auto& instance = *new Globals;
  return instance;
}

bool in_range(std::initializer_list<float> values) {
  // NaN fails every comparison.
  return std::all_of(values.begin(), values.end(),
                     [](float value) { return std::fabs(value) <= MAX_COORDINATE; });
}

bool take_points(unsigned int count) {
  // NanoVG makes up to 14 vertices of a point, and counts them in 32 bits.
  constexpr unsigned int MAX_POINTS = 1u << 26;
  unsigned int& points = globals().path_points;
  if (points + count > MAX_POINTS) return false;
  points += count;
  return true;
}

bool take_room(NVGcontext* context) {
  if (detail::has_vector_room(context)) return true;
  if (!globals().overflow_reported) {
    LogMgr::get().tracef_debug("NanoVG - frame is full: the rest of it is left out");
  }
  globals().overflow_reported = true;
  return false;
}

NVGcolor to_color(float r, float g, float b, float a) {
  const auto number = [](float value) { return std::isfinite(value) ? value : 0.0f; };
  return nvgRGBAf(number(r), number(g), number(b), number(a));
}

NVGcolor to_color(const float* rgba) {
  return rgba ? to_color(rgba[0], rgba[1], rgba[2], rgba[3]) : nvgRGBAf(1.0f, 1.0f, 1.0f, 1.0f);
}

// ---- start and end ----

namespace {

bool add_context(Renderer* renderer, bool antialias) {
  constexpr int ANTIALIAS = 1, STENCIL_STROKES = 2;
  ContextRecord record;
  record.id = utils::gen_id();
  record.context = detail::create_vector_context(
      renderer, antialias ? ANTIALIAS | STENCIL_STROKES : STENCIL_STROKES);
  if (!record.context) return false;
  globals().contexts.push_back(record);
  return true;
}

}  // namespace

bool init(Renderer* renderer, bool antialias) {
  Globals& state = globals();
  if (state.initialized) return true;
  if (!add_context(renderer, antialias)) {
    LogMgr::get().trace_error("NanoVG - unable to initialize!");
    return false;
  }
  state.current_context = state.contexts.back().context;
  state.initialized = true;
  LogMgr::get().trace("NanoVG - initialized ok.");
  return true;
}

int create_context(Renderer* renderer, bool antialias) {
  Globals& state = globals();
  if (!state.initialized) return 0;
  if (!add_context(renderer, antialias)) {
    LogMgr::get().trace_error("NanoVG - unable to create a new context!");
    return 0;
  }
  return state.contexts.back().id;
}

unsigned int get_num_contexts() { return static_cast<unsigned int>(globals().contexts.size()); }

int get_context_id(unsigned int index) {
  const std::vector<ContextRecord>& contexts = globals().contexts;
  return index < contexts.size() ? contexts[index].id : 0;
}

void terminate(Renderer*) {
  for (const ContextRecord& record : globals().contexts) {
    detail::destroy_vector_context(record.context);
  }
  globals() = Globals();
  LogMgr::get().trace("NanoVG - terminated ok.");
}

// ---- frames ----

void begin_frame(int width, int height, float pixel_ratio) {
  NVGcontext* context = current();
  if (!context) return;
  const float ratio = std::isfinite(pixel_ratio) ? std::clamp(pixel_ratio, 0.1f, 16.0f) : 1.0f;
  nvgBeginFrame(context, static_cast<float>(std::max(width, 1)),
                static_cast<float>(std::max(height, 1)), ratio);
  globals().in_frame = true;
  globals().overflow_reported = false;
}

void end_frame() {
  NVGcontext* context = current();
  if (!context) return;
  nvgEndFrame(context);
  globals().in_frame = false;
}

void reset() {
  if (NVGcontext* context = current()) nvgReset(context);
}

void save() {
  NVGcontext* context = current();
  if (!context || detail::vector_state_depth(context) > MAX_SAVED) return;
  nvgSave(context);
}

void restore() {
  if (NVGcontext* context = current()) nvgRestore(context);
}

// ---- coordinates ----

namespace {

/// Applies a change unless it would leave the range.
template <class Change>
void transform(Change change) {
  NVGcontext* context = current();
  if (!context) return;
  float before[6], after[6];
  nvgCurrentTransform(context, before);
  change(context);
  nvgCurrentTransform(context, after);
  if (in_range({after[0], after[1], after[2], after[3], after[4], after[5]})) return;
  nvgResetTransform(context);
  nvgTransform(context, before[0], before[1], before[2], before[3], before[4], before[5]);
}

}  // namespace

void reset_transform() {
  if (NVGcontext* context = current()) nvgResetTransform(context);
}

void translate(float x, float y) {
  transform([=](NVGcontext* context) { nvgTranslate(context, x, y); });
}

void rotate(float angle) {
  transform([=](NVGcontext* context) { nvgRotate(context, angle); });
}

void scale(float x, float y) {
  transform([=](NVGcontext* context) { nvgScale(context, x, y); });
}

}  // namespace orv::nvg
