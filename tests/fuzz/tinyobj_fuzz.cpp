// Any bytes as an OBJ file for tinyobjloader, and as the material library that it may name. Each
// shape has vertices of its own for all of its corners.
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string>

#include "loaders/tinyobj_file.h"
#include "loaders/tinyobj_shape.h"

namespace {

class SameTextReader : public tinyobj::MaterialReader {
 public:
  explicit SameTextReader(const std::string& text) : text_(text) {}

  bool operator()(const std::string&, std::vector<tinyobj::material_t>* materials,
                  std::map<std::string, int>* indices, std::string* warnings,
                  std::string* errors) override {
    // The file reader passes over texts that it has read, too.
    if (!read_) {
      orv::detail::parse_tinyobj_library(text_, materials, indices, warnings, errors);
    }
    read_ = true;
    return true;
  }

 private:
  const std::string& text_;
  bool read_ = false;
};

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > (1u << 16)) return 0;
  const std::string text(reinterpret_cast<const char*>(data), size);
  SameTextReader libraries(text);
  orv::detail::TinyobjFile file;
  file.parse(text, libraries);
  for (const tinyobj::shape_t& shape : file.shapes) {
    const orv::detail::TinyobjShape made = orv::detail::make_tinyobj_shape(file.attrib, shape.mesh);
    if (made.indices.size() % 3 != 0) std::abort();
    for (const unsigned int index : made.indices) {
      if (index >= made.vertices.size()) std::abort();
    }
  }
  return 0;
}
