// Font: the queue of texts.
#include <orv/text/font.h>

#include <cstdarg>
#include <cstdint>
#include <cwchar>

#include "core/format_message.h"
#include "text/font_state.h"

namespace orv {

using detail::TextItem;

static_assert(Font::MAX_STRINGS == detail::TextQueue::CAPACITY);

namespace {

constexpr std::size_t MAX_FORMATTED = 512;
constexpr std::size_t MAX_WIDE = 255;

TextItem item_2d(int x, int y, float r, float g, float b, float a, bool new_line) {
  TextItem item;
  item.x = static_cast<float>(x);
  item.y = static_cast<float>(-std::int64_t{y});
  item.r = r;
  item.g = g;
  item.b = b;
  item.a = a;
  item.new_line = new_line;
  return item;
}

TextItem item_3d(float x, float y, float z, float r, float g, float b, float a) {
  TextItem item = item_2d(0, 0, r, g, b, a, true);
  item.x = x;
  item.y = y;
  item.z = z;
  return item;
}

bool add_formatted(detail::TextQueue& queue, const TextItem& item, const char* format,
                   va_list arguments) {
  char text[MAX_FORMATTED];
  format_message(text, sizeof(text), format, arguments);
  return queue.add(item, text);
}

}  // namespace

bool Font::bm_draw_text_2d(int x, int y, float r, float g, float b, float a, const char* text) {
  return bm_draw_text_2d_v2(x, y, r, g, b, a, true, text);
}

bool Font::bm_draw_text_2d_v2(int x, int y, float r, float g, float b, float a, bool new_line,
                              const char* text) {
  return text && state_->queue.add(item_2d(x, y, r, g, b, a, new_line), text);
}

bool Font::bm_draw_text_3d(float x, float y, float z, float r, float g, float b, float a,
                           const char* text) {
  return text && state_->queue.add(item_3d(x, y, z, r, g, b, a), text);
}

// ---- formats ----

bool Font::bm_draw_text_2df(int x, int y, float r, float g, float b, float a, const char* format,
                            ...) {
  if (!format) return false;
  va_list arguments;
  va_start(arguments, format);
  const bool added =
      add_formatted(state_->queue, item_2d(x, y, r, g, b, a, true), format, arguments);
  va_end(arguments);
  return added;
}

bool Font::bm_draw_text_2df_v2(int x, int y, float r, float g, float b, float a, bool new_line,
                               const char* format, ...) {
  if (!format) return false;
  va_list arguments;
  va_start(arguments, format);
  const bool added =
      add_formatted(state_->queue, item_2d(x, y, r, g, b, a, new_line), format, arguments);
  va_end(arguments);
  return added;
}

bool Font::bm_draw_text_3df(float x, float y, float z, float r, float g, float b, float a,
                            const char* format, ...) {
  if (!format) return false;
  va_list arguments;
  va_start(arguments, format);
  const bool added = add_formatted(state_->queue, item_3d(x, y, z, r, g, b, a), format, arguments);
  va_end(arguments);
  return added;
}

// ---- wide texts ----

bool Font::bm_draw_wtext_2d(int x, int y, float r, float g, float b, float a, const wchar_t* text) {
  if (!text) return false;
  char bytes[MAX_WIDE];
  std::size_t length = 0;
  for (; length < MAX_WIDE && text[length] != 0; ++length) {
    const wchar_t code = text[length];
    bytes[length] = code > 0 && code <= 255 ? static_cast<char>(code) : '?';
  }
  return state_->queue.add(item_2d(x, y, r, g, b, a, true), {bytes, length});
}

bool Font::bm_draw_wtext_2df(int x, int y, float r, float g, float b, float a,
                             const wchar_t* format, ...) {
  if (!format) return false;
  wchar_t text[MAX_FORMATTED] = {};
  va_list arguments;
  va_start(arguments, format);
  // A text that is cut counts as an error to it; what there was room for stands all the same.
  std::vswprintf(text, MAX_FORMATTED, format, arguments);
  va_end(arguments);
  text[MAX_FORMATTED - 1] = 0;
  return bm_draw_wtext_2d(x, y, r, g, b, a, text);
}

// ---- the queue as a whole ----

void Font::bm_draw_reset() { state_->queue.reset(); }

unsigned int Font::bm_get_num_strings() const {
  return static_cast<unsigned int>(state_->queue.count());
}

unsigned int Font::bm_get_num_chars() { return state_->queue.sum_chars(); }

}  // namespace orv
