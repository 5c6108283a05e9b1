// Any bytes as a material library: names and maps stay within their lengths and number.
#include "loaders/mtl_reader.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  orv::detail::NamedList<orv::detail::ObjMaterial> materials;
  orv::detail::read_mtl({reinterpret_cast<const char*>(data), size}, materials);
  for (orv::detail::ObjMaterial& material : materials) {
    if (material.name.size() > orv::detail::MAX_NAME) std::abort();
    if (material.maps.size() > orv::detail::ObjMaterial::MAX_MAPS) std::abort();
    for (const std::string& map : material.maps) {
      if (map.size() > 255) std::abort();
    }
  }
  return 0;
}
