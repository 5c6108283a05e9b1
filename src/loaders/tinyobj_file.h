#pragma once

#include <tiny_obj_loader.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace orv::detail {

/// What tinyobjloader reads from a file.
struct TinyobjFile {
  tinyobj::attrib_t attrib;
  std::vector<tinyobj::shape_t> shapes;
  std::vector<tinyobj::material_t> materials;
  std::string messages;  ///< warnings, then errors; "" for none
  std::string fault;     ///< why reading failed, in one line; "" when it did not

  /// Material libraries are looked for in `directory`. Only plain files are read, since a name in
  /// an OBJ file may lead anywhere.
  bool read(const std::string& path, const std::string& directory);

  /// The same for a text in memory. `libraries` reads those that it names.
  bool parse(std::string_view text, tinyobj::MaterialReader& libraries);
};

/// Reads the text of a material library.
void parse_tinyobj_library(std::string text, std::vector<tinyobj::material_t>* materials,
                           std::map<std::string, int>* indices, std::string* warnings,
                           std::string* errors);

}  // namespace orv::detail
