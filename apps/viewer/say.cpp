#include "viewer/say.h"

#include <cstddef>
#include <cstdio>

namespace viewer {

namespace {

/// The control characters beyond ASCII have two bytes in UTF-8.
bool is_long_control(const std::string& text, std::size_t at) {
  const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  return byte(at) == 0xc2 && at + 1 < text.size() && byte(at + 1) >= 0x80 && byte(at + 1) <= 0x9f;
}

}  // namespace

std::string in_one_line(std::string text) {
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto byte = static_cast<unsigned char>(text[i]);
    const bool is_long = is_long_control(text, i);
    if (is_long) text.erase(i + 1, 1);
    if (is_long || byte < 0x20 || byte == 0x7f) text[i] = '?';
  }
  return text;
}

void say(const std::string& line) {
  std::printf("%s\n", in_one_line(line).c_str());
  std::fflush(stdout);
}

void print_problem(const std::string& line) {
  std::fprintf(stderr, "orv-viewer: %s\n", in_one_line(line).c_str());
}

}  // namespace viewer
