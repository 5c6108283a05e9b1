// Any text as a BMFont file, and a text of all characters in it.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "text/charset.h"
#include "text/text_queue.h"
#include "text/text_rows.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace orv::detail;
  if (size > (1u << 20)) return 0;
  const std::string xml(reinterpret_cast<const char*>(data), size);
  const char* fault = nullptr;
  const std::unique_ptr<Charset> charset = read_charset(xml.c_str(), &fault);
  if ((charset == nullptr) != (fault != nullptr)) std::abort();
  if (!charset) return 0;
  if (!std::memchr(charset->image_filename, 0, sizeof(charset->image_filename))) std::abort();
  static CharsetGlyphs glyphs;
  glyphs.prepare(*charset);
  TextQueue queue;
  std::string text;
  for (int code = 1; code < 256; ++code) text += static_cast<char>(code);
  if (!queue.add(TextItem(), text)) std::abort();
  std::vector<float> rows(queue.sum_chars() * FLOATS_PER_CHAR);
  write_charset_rows(glyphs, 1.0f, static_cast<float>(charset->spacing[0]), queue, rows.data());
  return 0;
}
