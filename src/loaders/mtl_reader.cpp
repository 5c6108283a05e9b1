#include "loaders/mtl_reader.h"

#include <cstddef>
#include <string>

#include "loaders/text_scanner.h"

namespace orv::detail {

namespace {

/// Longer lines are cut, and what is left of them counts as the next line.
constexpr std::size_t MAX_LINE = 255;
constexpr std::size_t MAX_MAP_NAME = 255;
/// "newmtl " and "map_Kd " are as long.
constexpr std::size_t NAME_OFFSET = 7;

bool is_line_end(char c) { return c == '\n' || c == '\r'; }

/// The name behind a keyword that starts at `keyword`.
std::string_view name_behind(std::string_view line, std::size_t keyword, std::size_t max_length) {
  if (line.size() - keyword <= NAME_OFFSET) return {};
  const std::string_view rest = line.substr(keyword + NAME_OFFSET);
  return rest.substr(0, rest.find_first_of("\n\r")).substr(0, max_length);
}

void skip_keyword(TextScanner& scanner) { scanner.read_word(); }

void scan_color(std::string_view line, vec4& color) {
  TextScanner scanner(line);
  skip_keyword(scanner);
  if (scanner.read_float(color.x) && scanner.read_float(color.y)) scanner.read_float(color.z);
  color.w = 1.0f;
}

void scan_float(std::string_view line, float& value) {
  TextScanner scanner(line);
  skip_keyword(scanner);
  scanner.read_float(value);
}

void scan_int(std::string_view line, int& value) {
  TextScanner scanner(line);
  skip_keyword(scanner);
  scanner.read_int(value);
}

class MtlReader {
 public:
  explicit MtlReader(NamedList<ObjMaterial>& materials) : materials_(materials) {}

  /// `last` is set for text that the end of the file ended, not a line end.
  void read_line(std::string_view line, bool last);

 private:
  void read_value(std::string_view line, ObjMaterial& material);

  static constexpr std::uint32_t NONE = 0xFFFFFFFFu;
  static constexpr int HIGHLIGHTS = 2;  ///< the illumination model with specular light

  NamedList<ObjMaterial>& materials_;
  std::uint32_t current_ = NONE;
  std::size_t num_maps_ = 0;
  int illumination_ = 1;
};

void MtlReader::read_line(std::string_view line, bool last) {
  constexpr std::size_t NOWHERE = std::string_view::npos;
  if (line.empty() || line[0] == '#' || is_line_end(line[0])) return;
  if (const std::size_t place = line.find("newmtl"); place != NOWHERE) {
    current_ = materials_.find_or_create(name_behind(line, place, MAX_NAME));
    ObjMaterial& material = materials_[current_];
    material.reset(NEW_MATERIAL);
    material.maps.clear();
    num_maps_ = 0;
    illumination_ = 1;
    return;
  }
  if (current_ == NONE) return;
  ObjMaterial& material = materials_[current_];
  if (const std::size_t place = line.find("map_Kd"); place != NOWHERE) {
    if (num_maps_++ >= ObjMaterial::MAX_MAPS) return;
    // A name counts only with the line end behind it.
    if (!last) material.maps.emplace_back(name_behind(line, place, MAX_MAP_NAME));
    return;
  }
  read_value(line, material);
}

void MtlReader::read_value(std::string_view line, ObjMaterial& material) {
  const auto has = [line](std::string_view keyword) {
    return line.find(keyword) != std::string_view::npos;
  };
  if (has("Kd")) {
    scan_color(line, material.diffuse);
  } else if (has("Ns")) {
    scan_float(line, material.exponent);
  } else if (has("Ka")) {
    scan_color(line, material.ambient);
  } else if (has("illum ")) {
    scan_int(line, illumination_);
  } else if (illumination_ == HIGHLIGHTS && has("Ks")) {
    scan_color(line, material.specular);
  } else if (has("d ") || has("Tr ")) {
    scan_float(line, material.opacity);
  }
}

}  // namespace

void read_mtl(std::string_view text, NamedList<ObjMaterial>& materials) {
  MtlReader reader(materials);
  TextScanner scanner(text);
  while (!scanner.at_end()) {
    const std::string_view line = scanner.read_line(MAX_LINE);
    const bool last = scanner.at_end() && line.size() < MAX_LINE && line.back() != '\n';
    reader.read_line(line.substr(0, line.find('\0')), last);
  }
}

}  // namespace orv::detail
