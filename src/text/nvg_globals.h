/// @file
/// What the functions of orv/text/nvg.h share.
#pragma once

#include <orv/text/nvg.h>

#include <cstddef>
#include <initializer_list>
#include <vector>

#include <nanovg.h>

#include "render/vector_context.h"

namespace orv::nvg {

/// One context of the list.
struct ContextRecord {
  int id = 0;
  NVGcontext* context = nullptr;
};

struct Globals {
  bool initialized = false;
  NVGcontext* current_context = nullptr;
  std::vector<ContextRecord> contexts;
  bool in_frame = false;
  bool overflow_reported = false;  ///< in this frame
  unsigned int path_points = 0;    ///< of the current path, at most
};

/// The one instance. Never destroyed: a host may end without terminate().
Globals& globals();

/// The current context, null before init.
inline NVGcontext* current() { return globals().current_context; }

inline constexpr float MAX_COORDINATE = 1e7f;
inline constexpr std::size_t MAX_TEXT_BYTES = std::size_t{1} << 20;
inline constexpr std::size_t MAX_NAME = 63;  ///< characters that NanoVG keeps of a font's name
/// Of save(); NanoVG has some more, so that widgets always find room.
inline constexpr int MAX_SAVED = 24;

/// Whether all are finite and in the range of coordinates. What isn't would lead NanoVG to points
/// that it cannot tell apart.
bool in_range(std::initializer_list<float> values);

/// Takes so many points into the budget of the path; false when it is spent.
bool take_points(unsigned int count);

/// Whether the frame takes another shape or text.
bool take_room(NVGcontext* context);

/// NanoVG's colour of four numbers; what is no finite one counts as 0.
NVGcolor to_color(float r, float g, float b, float a);

/// The same of four floats, opaque white for null.
NVGcolor to_color(const float* rgba);

/// Fills and strokes the path when the frame has room.
void fill(NVGcontext* context);
void stroke(NVGcontext* context);

/// A font's name as NanoVG keeps it.
class FontName {
 public:
  explicit FontName(const char* name);
  const char* text() const { return text_; }
  /// Number of the font, -1 when there is none of that name.
  int find(NVGcontext* context) const { return nvgFindFont(context, text_); }

 private:
  char text_[MAX_NAME + 1] = {};
};

/// End of a text: at most MAX_TEXT_BYTES are taken.
const char* end_of_text(const char* text);

/// Whether text drawn now can be seen.
bool is_text_visible(NVGcontext* context, const char* text);

/// Saves the settings of NanoVG for the length of a block.
class Settings {
 public:
  explicit Settings(NVGcontext* context) : context_(context) { nvgSave(context_); }
  ~Settings() { nvgRestore(context_); }
  Settings(const Settings&) = delete;
  Settings& operator=(const Settings&) = delete;

 private:
  NVGcontext* context_;
};

}  // namespace orv::nvg
