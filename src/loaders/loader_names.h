#pragma once

#include <cstddef>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace orv {
class Material;
class Model;
}  // namespace orv

namespace orv::detail {

/// Loaders compare the names of groups and materials over this many characters and keep no more.
inline constexpr std::size_t MAX_NAME = 127;

/// Whether a file name has five characters or more and ends in `letters`, given in lower case. No
/// dot is asked for. False for null.
bool ends_in_letters(const char* filename, const char* letters);

/// When the core loaders were built, as their plugin records say it.
std::string loader_build_info();

/// Material libraries are read anew each time that a file names them; a file that does nothing else
/// is stopped by this.
class MaterialLibraryLimits {
 public:
  bool may_read_more() const { return num_files_ < 65536 && num_bytes_ < std::size_t{64} << 20; }
  void count(std::size_t bytes) {
    ++num_files_;
    num_bytes_ += bytes;
  }

 private:
  std::size_t num_files_ = 0;
  std::size_t num_bytes_ = 0;
};

/// The materials that one load meets. Materials are shared by name through MaterialMgr; the names
/// are indexed once, since each registration makes the manager's own index stale.
class SharedMaterials {
 public:
  /// `created` tells a material that is still to be filled.
  struct Found {
    Material* material;
    bool created;
  };

  SharedMaterials();
  /// The registered material of this name, or null.
  Material* find(const std::string& name) const;
  /// The registered material of this name, or a new one that MaterialMgr holds a reference of.
  Found find_or_create(const std::string& name);

 private:
  std::unordered_map<std::string, Material*> by_name_;
};

/// Gives materials to a model that has none of their names yet. The names are indexed once, so that
/// files of very many materials take no longer than their length.
class ModelMaterials {
 public:
  /// Without a model nothing is given.
  explicit ModelMaterials(Model* model);
  void add(Material* material);

 private:
  Model* model_;
  std::unordered_set<std::string> names_;  ///< over MAX_NAME characters
};

/// Shininess of the fixed pipeline, which must not be 0.
inline float usable_shininess(float shininess) { return shininess == 0.0f ? 1.0f : shininess; }

/// Fixed-pipeline shininess from the exponent of a Wavefront material, which goes up to 1000.
inline float shininess_from_wavefront(float exponent) {
  return usable_shininess(exponent / 1000.0f * 128.0f);
}

}  // namespace orv::detail
