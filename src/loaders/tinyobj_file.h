#pragma once

#include <tiny_obj_loader.h>

#include <string>
#include <vector>

namespace orv::detail {

/// What tinyobjloader reads from a file.
struct TinyobjFile {
  tinyobj::attrib_t attrib;
  std::vector<tinyobj::shape_t> shapes;
  std::vector<tinyobj::material_t> materials;
  std::string messages;  ///< warnings, then errors; "" for none

  /// Material libraries are looked for in `directory`. Only plain files are read, since a name in
  /// an OBJ file may lead anywhere.
  bool read(const std::string& path, const std::string& directory);
};

}  // namespace orv::detail
