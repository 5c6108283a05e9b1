#include "loaders/obj_parser.h"

#include <cstddef>

#include "loaders/mtl_reader.h"
#include "loaders/text_scanner.h"

namespace orv::detail {

namespace {

/// Text behind `g` that can hold the name.
constexpr std::size_t MAX_GROUP_LINE = 511;
constexpr std::size_t MAX_LIBRARY_NAME = 259;

/// How the corners of one face statement are written.
enum class CornerLayout { NONE, POSITION, POSITION_TEXCOORD, POSITION_NORMAL, ALL };

/// Reads one corner; false when any of its numbers is missing, in which case the others are set.
bool read_corner(TextScanner& scanner, CornerLayout layout, ObjCorner& corner) {
  if (!scanner.read_int(corner.position)) return false;
  switch (layout) {
    case CornerLayout::POSITION:
      return true;
    case CornerLayout::POSITION_TEXCOORD:
      return scanner.read_literal('/') && scanner.read_int(corner.texcoord);
    case CornerLayout::POSITION_NORMAL:
      return scanner.read_literal('/') && scanner.read_literal('/') &&
             scanner.read_int(corner.normal);
    default:
      return scanner.read_literal('/') && scanner.read_int(corner.texcoord) &&
             scanner.read_literal('/') && scanner.read_int(corner.normal);
  }
}

/// Finds the layout by the first corner's word and reads that corner.
CornerLayout read_corner_word(std::string_view word, ObjCorner& corner) {
  const std::size_t slashes = word.find("//");
  TextScanner scanner(word);
  if (slashes != word.npos && word.substr(0, slashes).find('\0') == word.npos) {
    read_corner(scanner, CornerLayout::POSITION_NORMAL, corner);
    return CornerLayout::POSITION_NORMAL;
  }
  if (!scanner.read_int(corner.position)) return CornerLayout::NONE;
  if (!scanner.read_literal('/') || !scanner.read_int(corner.texcoord)) {
    return CornerLayout::POSITION;
  }
  if (!scanner.read_literal('/') || !scanner.read_int(corner.normal)) {
    return CornerLayout::POSITION_TEXCOORD;
  }
  return CornerLayout::ALL;
}

/// The same for a word that is written as it should be; NONE for any other.
CornerLayout read_plain_corner(TextScanner& scanner, ObjCorner& corner) {
  if (!scanner.read_int(corner.position)) return CornerLayout::NONE;
  if (scanner.at_word_end()) return CornerLayout::POSITION;
  if (!scanner.read_literal('/')) return CornerLayout::NONE;
  if (scanner.read_literal('/')) {
    const bool plain = !scanner.at_word_end() && scanner.read_int(corner.normal);
    return plain && scanner.at_word_end() ? CornerLayout::POSITION_NORMAL : CornerLayout::NONE;
  }
  if (scanner.at_word_end() || !scanner.read_int(corner.texcoord)) return CornerLayout::NONE;
  if (scanner.at_word_end()) return CornerLayout::POSITION_TEXCOORD;
  if (!scanner.read_literal('/') || scanner.at_word_end() || !scanner.read_int(corner.normal)) {
    return CornerLayout::NONE;
  }
  return scanner.at_word_end() ? CornerLayout::ALL : CornerLayout::NONE;
}

CornerLayout read_first_corner(TextScanner& scanner, ObjCorner& corner) {
  const TextScanner start = scanner;
  const CornerLayout layout = read_plain_corner(scanner, corner);
  if (layout != CornerLayout::NONE) return layout;
  scanner = start;
  corner = {};
  return read_corner_word(scanner.read_word(), corner);
}

/// A name in the rest of a line: from the first character that is no blank to the line end.
std::string_view name_in_line(std::string_view line) {
  const std::size_t begin = line.find_first_not_of(" \t");
  if (begin == line.npos) return {};
  line.remove_prefix(begin);
  return line.substr(0, line.find_first_of(std::string_view("\n\r\0", 3))).substr(0, MAX_NAME);
}

class ObjParser {
 public:
  ObjParser(std::string_view text, const ReadMaterialLibrary& read_library, ObjDocument& document)
      : scanner_(text), read_library_(read_library), document_(document) {}

  void parse();

 private:
  void read_statement(std::string_view word);
  void read_vertex(std::string_view word);
  vec2 read_vec2();
  vec3 read_vec3();
  void read_face();
  void append_polygon(CornerLayout layout, ObjCorner corner);
  void read_group();
  void read_library();
  void read_material();
  void enter_group(std::string_view name);

  static constexpr std::uint32_t NONE = 0xFFFFFFFFu;

  TextScanner scanner_;
  const ReadMaterialLibrary& read_library_;
  ObjDocument& document_;
  std::uint32_t material_ = 0;
  std::uint32_t group_ = NONE;
  int counter_ = 0;  ///< of `g` and `usemtl` statements, for names
  MaterialLibraryLimits library_limits_;
};

void ObjParser::parse() {
  material_ = document_.materials.find_or_create("ORV_obj_default_material");
  for (;;) {
    const std::string_view word = scanner_.read_word();
    if (word.empty()) break;
    read_statement(word);
  }
  document_.shrink_to_fit();
}

void ObjParser::read_statement(std::string_view word) {
  switch (word[0]) {
    case 'v':
      return read_vertex(word);
    case 'f':
      return read_face();
    case 'g':
      return read_group();
    case 'm':
      return read_library();
    case 'u':
      if (word.substr(1, 5) == "semtl") read_material();
      return;
    default:
      scanner_.read_line();
  }
}

// ---- vertices ----

void ObjParser::read_vertex(std::string_view word) {
  const char second = word.size() > 1 ? word[1] : '\0';
  if (second == '\0') return document_.positions.push_back(read_vec3());
  if (second == 'n') return document_.normals.push_back(read_vec3());
  if (second == 't') return document_.texcoords.push_back(read_vec2());
}

/// Numbers behind one that is missing are zero and stay in the text.
vec2 ObjParser::read_vec2() {
  vec2 v;
  if (scanner_.read_float(v.x)) scanner_.read_float(v.y);
  return v;
}

vec3 ObjParser::read_vec3() {
  vec3 v;
  if (scanner_.read_float(v.x) && scanner_.read_float(v.y)) scanner_.read_float(v.z);
  return v;
}

// ---- faces ----

void ObjParser::read_face() {
  ++document_.materials[material_].num_faces;
  if (group_ == NONE) enter_group("obj_default_group");
  ObjCorner corner;
  const CornerLayout layout = read_first_corner(scanner_, corner);
  if (layout != CornerLayout::NONE) append_polygon(layout, corner);
}

/// Takes the other corners for as long as they can be read. The second and the third are there in
/// any case: numbers that are missing are those of the corner before.
void ObjParser::append_polygon(CornerLayout layout, ObjCorner corner) {
  GrowingArray<ObjCorner>& corners = document_.corners;
  corners.push_back(corner);
  for (int i = 0; i < 2; ++i) {
    read_corner(scanner_, layout, corner);
    corners.push_back(corner);
  }
  std::uint64_t num_triangles = 1;
  for (; read_corner(scanner_, layout, corner); ++num_triangles) corners.push_back(corner);

  const auto polygon = static_cast<std::uint32_t>(document_.polygon_ends.size());
  document_.polygon_ends.push_back(static_cast<std::uint32_t>(corners.size()));
  ObjGroup& group = document_.groups[group_];
  group.num_triangles += num_triangles;
  if (group.runs.empty() || group.runs.back().first + group.runs.back().count != polygon) {
    group.runs.push_back({polygon, 0});
  }
  ++group.runs.back().count;
}

// ---- groups and materials ----

void ObjParser::enter_group(std::string_view name) {
  group_ = document_.groups.find_or_create(name);
}

void ObjParser::read_group() {
  const std::string_view name = name_in_line(scanner_.read_line(MAX_GROUP_LINE));
  enter_group(name.empty() ? "obj_group_" + std::to_string(counter_) : std::string(name));
  ++counter_;
}

void ObjParser::read_material() {
  const std::string_view name = name_in_line(scanner_.read_line());
  if (name.empty()) return;
  enter_group("obj_group_" + std::string(name) + "_" + std::to_string(counter_));
  ++counter_;
  material_ = document_.materials.find_or_create(name);
  document_.groups[group_].materials.push_back(material_);
}

void ObjParser::read_library() {
  const std::string_view line = scanner_.read_line();
  TextScanner words(line.substr(0, line.find('\0')));
  const std::string name(words.read_word().substr(0, MAX_LIBRARY_NAME));
  if (name.empty() || !library_limits_.may_read_more()) return;
  std::vector<unsigned char> text;
  const bool found = read_library_(name, text);
  library_limits_.count(text.size());
  if (!found) return;
  read_mtl({reinterpret_cast<const char*>(text.data()), text.size()}, document_.materials);
}

}  // namespace

void parse_obj(std::string_view text, const ReadMaterialLibrary& read_library,
               ObjDocument& document) {
  ObjParser(text, read_library, document).parse();
}

}  // namespace orv::detail
