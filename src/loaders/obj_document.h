#pragma once

#include <orv/math/vec2.h>
#include <orv/math/vec3.h>
#include <orv/math/vec4.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "core/growing_array.h"
#include "loaders/loader_names.h"

namespace orv {
class Material;
}  // namespace orv

namespace orv::detail {

/// The values that a material has before a file says otherwise.
struct ObjMaterialDefaults {
  float ambient;
  vec4 diffuse;
  float specular;
};

/// For materials that no library defines.
inline constexpr ObjMaterialDefaults UNDEFINED_MATERIAL = {0.6f, vec4(0.8f, 0.8f, 0.8f), 0.6f};
/// For `newmtl`.
inline constexpr ObjMaterialDefaults NEW_MATERIAL = {0.4f, vec4(0.7f, 0.7f, 0.8f), 0.2f};

struct ObjMaterial {
  static constexpr std::size_t MAX_MAPS = 4;

  explicit ObjMaterial(std::string material_name) : name(std::move(material_name)) {
    reset(UNDEFINED_MATERIAL);
  }
  /// Colours, exponent and opacity; the rest stays.
  void reset(const ObjMaterialDefaults& defaults) {
    ambient = vec4(defaults.ambient, defaults.ambient, defaults.ambient);
    diffuse = defaults.diffuse;
    specular = vec4(defaults.specular, defaults.specular, defaults.specular);
    exponent = 24.0f;
    opacity = 1.0f;
  }

  std::string name;
  vec4 ambient;
  vec4 diffuse;
  vec4 specular;
  float exponent = 24.0f;
  float opacity = 1.0f;
  std::vector<std::string> maps;   ///< at most MAX_MAPS
  unsigned int num_faces = 0;      ///< face statements while this was the current material
  orv::Material* built = nullptr;  ///< set when the model is built
};

/// One-based indices as the file has them; 0 for none.
struct ObjCorner {
  int position = 0;
  int texcoord = 0;
  int normal = 0;
};

/// Polygons that follow each other in the file.
struct ObjPolygonRun {
  std::uint32_t first = 0;
  std::uint32_t count = 0;
};

struct ObjGroup {
  explicit ObjGroup(std::string group_name) : name(std::move(group_name)) {}

  std::string name;
  std::uint64_t num_triangles = 0;
  std::vector<ObjPolygonRun> runs;
  std::vector<std::uint32_t> materials;  ///< indices into ObjDocument::materials
};

/// A list of records that are found by name.
template <class Record>
class NamedList {
 public:
  /// Index of the record of this name, cut at MAX_NAME characters; made when there is none.
  std::uint32_t find_or_create(std::string_view name) {
    std::string key(name.substr(0, MAX_NAME));
    const auto [place, is_new] =
        by_name_.try_emplace(std::move(key), static_cast<std::uint32_t>(records_.size()));
    if (is_new) records_.emplace_back(place->first);
    return place->second;
  }

  std::size_t size() const { return records_.size(); }
  Record& operator[](std::size_t i) { return records_[i]; }
  const Record& operator[](std::size_t i) const { return records_[i]; }
  auto begin() { return records_.begin(); }
  auto end() { return records_.end(); }

 private:
  std::vector<Record> records_;
  std::unordered_map<std::string, std::uint32_t> by_name_;
};

/// What the text of an OBJ file and its material libraries hold. Polygons of all groups are kept
/// in one list, a polygon being the corners from the end of the one before up to its own end.
struct ObjDocument {
  GrowingArray<vec3> positions;
  GrowingArray<vec3> normals;
  GrowingArray<vec2> texcoords;
  GrowingArray<ObjCorner> corners;
  GrowingArray<std::uint32_t> polygon_ends;
  NamedList<ObjMaterial> materials;
  NamedList<ObjGroup> groups;

  /// Gives back the room for more of what there is much of.
  void shrink_to_fit() {
    positions.shrink_to_fit();
    normals.shrink_to_fit();
    texcoords.shrink_to_fit();
    corners.shrink_to_fit();
    polygon_ends.shrink_to_fit();
  }
};

}  // namespace orv::detail
