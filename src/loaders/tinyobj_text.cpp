#include "loaders/tinyobj_text.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>
#include <vector>

namespace orv::detail {

namespace {

/// Polygons of so many corners are cut in no time.
constexpr std::uint64_t SMALL_POLYGON = 16;
/// Three indices and two slashes are far shorter.
constexpr std::size_t MAX_CORNER_TEXT = 64;
constexpr std::size_t MAX_MTL_LINE = 1024;

/// Part of a text, without the end of line.
struct Line {
  std::size_t begin;
  std::size_t end;
};

bool is_blank(char c) { return c == ' ' || c == '\t'; }

template <class Visit>
void for_each_line(std::string_view text, Visit visit) {
  Line line = {0, 0};
  for (; line.begin < text.size(); line.begin = line.end + 1) {
    line.end = line.begin;
    while (line.end < text.size() && text[line.end] != '\n' && text[line.end] != '\r') ++line.end;
    visit(line);
  }
}

/// Calls `visit(word)` for each word behind the keyword, up to a zero byte.
template <class Visit>
void for_each_argument(std::string_view statement, Visit visit) {
  statement = statement.substr(1, statement.find('\0') - 1);
  while (!statement.empty()) {
    const std::size_t blanks = std::min(statement.find_first_not_of(" \t"), statement.size());
    statement.remove_prefix(blanks);
    const std::string_view word = statement.substr(0, statement.find_first_of(" \t"));
    if (!word.empty()) visit(word);
    statement.remove_prefix(word.size());
  }
}

/// Whether so many corners may be cut into triangles, which uses up some of the effort.
bool take_effort(std::uint64_t num_corners, std::uint64_t& effort) {
  if (num_corners <= SMALL_POLYGON) return true;
  if (num_corners >> 20 != 0) return false;
  const std::uint64_t wanted = num_corners * num_corners * num_corners;
  if (wanted > effort) return false;
  effort -= wanted;
  return true;
}

bool has_keyword(std::string_view statement, std::string_view keyword) {
  return statement.size() > keyword.size() && statement.starts_with(keyword) &&
         is_blank(statement[keyword.size()]);
}

/// Makes comments of what is of no use and finds the polygons that are to become fans.
std::vector<Line> find_large_polygons(std::string& text) {
  std::vector<Line> polygons;
  std::uint64_t effort = MAX_EAR_CUTTING;
  for_each_line(text, [&](Line line) {
    while (line.begin < line.end && is_blank(text[line.begin])) ++line.begin;
    const auto statement = std::string_view(text).substr(line.begin, line.end - line.begin);
    if (has_keyword(statement, "t") || has_keyword(statement, "vw")) text[line.begin] = '#';
    if (!has_keyword(statement, "f")) return;
    std::uint64_t num_corners = 0;
    for_each_argument(statement, [&num_corners](std::string_view) { ++num_corners; });
    if (!take_effort(num_corners, effort)) polygons.push_back(line);
  });
  return polygons;
}

/// Each corner is written twice and the first one for each triangle, so it has to be short: a face
/// that begins with no index is left out.
void append_fan(std::string_view statement, std::string& out) {
  std::string_view first;
  std::string_view last;
  for_each_argument(statement, [&](std::string_view corner) {
    if (first.empty()) {
      first = corner;
      return;
    }
    if (!last.empty() && first.size() <= MAX_CORNER_TEXT) {
      out.append("f ").append(first).append(" ").append(last).append(" ").append(corner);
      out.append("\n");
    }
    last = corner;
  });
}

}  // namespace

std::string bound_obj_text(std::string text) {
  const std::vector<Line> polygons = find_large_polygons(text);
  if (polygons.empty()) return text;
  std::string result;
  std::size_t copied = 0;
  for (const Line& line : polygons) {
    result.append(text, copied, line.begin - copied);
    append_fan(std::string_view(text).substr(line.begin, line.end - line.begin), result);
    copied = line.end;
  }
  return result.append(text, copied);
}

void bound_mtl_text(std::string& text) {
  for_each_line(text, [&text](const Line& line) {
    if (line.end - line.begin > MAX_MTL_LINE) text[line.begin] = '#';
  });
}

}  // namespace orv::detail
