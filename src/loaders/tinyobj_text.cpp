#include "loaders/tinyobj_text.h"

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <string_view>
#include <vector>

namespace orv::detail {

namespace {

/// Polygons of so many corners are cut in no time.
constexpr std::uint64_t SMALL_POLYGON = 16;
/// Three indices and two slashes are far shorter.
constexpr std::size_t MAX_CORNER_TEXT = 64;
constexpr std::size_t MAX_MTL_LINE = 1024;
/// Text that is bounded at once, unless a line is longer.
constexpr std::size_t PART_SIZE = std::size_t{1} << 16;

/// Part of a text, without the end of line.
struct Line {
  std::size_t begin;
  std::size_t end;
};

bool is_blank(char c) { return c == ' ' || c == '\t'; }

/// Where the next such character stands, or the end of the text.
std::size_t find_from(std::string_view text, std::size_t at, char c) {
  const void* found = std::memchr(text.data() + at, c, text.size() - at);
  return found ? static_cast<std::size_t>(static_cast<const char*>(found) - text.data())
               : text.size();
}

template <class Visit>
void for_each_line(std::string_view text, Visit visit) {
  std::size_t next_return = 0;
  bool knows_return = false;
  for (Line line = {0, 0}; line.begin < text.size(); line.begin = line.end + 1) {
    // Most texts have no carriage returns at all, and then they are looked for once.
    if (!knows_return || next_return < line.begin) next_return = find_from(text, line.begin, '\r');
    knows_return = true;
    line.end = find_from(text.substr(0, next_return), line.begin, '\n');
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

/// Whether there are too few blanks for more than a small number of corners.
bool is_small_polygon(std::string_view statement) {
  return std::count_if(statement.begin(), statement.end(), is_blank) <=
         static_cast<std::ptrdiff_t>(SMALL_POLYGON);
}

enum class Fate { STAYS, BECOMES_COMMENT, BECOMES_FAN };

/// What is to become of a line without the blanks in front of it. Uses up effort.
Fate fate_of(std::string_view statement, std::uint64_t& effort) {
  const char first = statement.empty() ? '\0' : statement[0];
  if (first == 'v') return has_keyword(statement, "vw") ? Fate::BECOMES_COMMENT : Fate::STAYS;
  if (first == 't') return has_keyword(statement, "t") ? Fate::BECOMES_COMMENT : Fate::STAYS;
  if (first != 'f' || !has_keyword(statement, "f") || is_small_polygon(statement)) {
    return Fate::STAYS;
  }
  std::uint64_t num_corners = 0;
  for_each_argument(statement, [&num_corners](std::string_view) { ++num_corners; });
  return take_effort(num_corners, effort) ? Fate::STAYS : Fate::BECOMES_FAN;
}

/// Calls `visit(line, fate)` for each line, which begins behind its blanks.
template <class Visit>
void for_each_fate(std::string_view text, std::uint64_t& effort, Visit visit) {
  for_each_line(text, [&](Line line) {
    while (line.begin < line.end && is_blank(text[line.begin])) ++line.begin;
    visit(line, fate_of(text.substr(line.begin, line.end - line.begin), effort));
  });
}

/// Whether whole lines stay as they are. If so, their effort is used up.
bool is_bounded(std::string_view text, std::uint64_t& effort) {
  bool bounded = true;
  std::uint64_t left = effort;
  for_each_fate(text, left, [&](Line, Fate fate) { bounded = bounded && fate == Fate::STAYS; });
  if (bounded) effort = left;
  return bounded;
}

/// Makes comments of what is of no use and finds the polygons that are to become fans.
std::vector<Line> find_large_polygons(std::string& text, std::uint64_t& effort) {
  std::vector<Line> polygons;
  for_each_fate(text, effort, [&](Line line, Fate fate) {
    if (fate == Fate::BECOMES_COMMENT) text[line.begin] = '#';
    if (fate == Fate::BECOMES_FAN) polygons.push_back(line);
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

/// Bounds whole lines where they stand.
void bound_lines(std::string& text, std::uint64_t& effort) {
  const std::vector<Line> polygons = find_large_polygons(text, effort);
  if (polygons.empty()) return;
  std::string result;
  std::size_t copied = 0;
  for (const Line& line : polygons) {
    result.append(text, copied, line.begin - copied);
    append_fan(std::string_view(text).substr(line.begin, line.end - line.begin), result);
    copied = line.end;
  }
  text = result.append(text, copied);
}

}  // namespace

std::string bound_obj_text(std::string_view text) {
  std::uint64_t effort = MAX_EAR_CUTTING;
  std::string result(text);
  bound_lines(result, effort);
  return result;
}

BoundObjBuffer::int_type BoundObjBuffer::underflow() {
  std::string_view part;
  // A large polygon that names nothing leaves no text behind.
  while (part.empty() && !rest_.empty()) {
    part = rest_;
    if (part.size() > PART_SIZE) part = part.substr(0, find_from(rest_, PART_SIZE, '\n') + 1);
    rest_.remove_prefix(part.size());
    if (is_bounded(part, effort_)) break;
    changed_ = part;
    bound_lines(changed_, effort_);
    part = changed_;
  }
  // Nobody writes through the pointers: characters that are put back only move them.
  char* begin = const_cast<char*>(part.data());
  setg(begin, begin, begin + part.size());
  return part.empty() ? traits_type::eof() : traits_type::to_int_type(part.front());
}

void bound_mtl_text(std::string& text) {
  for_each_line(text, [&text](const Line& line) {
    if (line.end - line.begin > MAX_MTL_LINE) text[line.begin] = '#';
  });
}

}  // namespace orv::detail
