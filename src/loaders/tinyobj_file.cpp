#include "loaders/tinyobj_file.h"

#include <functional>
#include <istream>
#include <sstream>
#include <unordered_set>
#include <utility>

#include "core/mapped_file.h"
#include "core/read_file.h"
#include "loaders/loader_names.h"
#include "loaders/tinyobj_text.h"

namespace orv::detail {

namespace {

bool read_text(const std::string& path, std::string& text) {
  std::vector<unsigned char> bytes;
  if (!read_whole_file(path.c_str(), bytes)) return false;
  text.assign(bytes.begin(), bytes.end());
  return true;
}

class PlainFileMaterialReader : public tinyobj::MaterialReader {
 public:
  explicit PlainFileMaterialReader(std::string directory) : directory_(std::move(directory)) {
    if (!directory_.empty() && directory_.back() != '/') directory_ += '/';
  }

  bool operator()(const std::string& name, std::vector<tinyobj::material_t>* materials,
                  std::map<std::string, int>* indices, std::string* warnings,
                  std::string* errors) override {
    std::string text;
    if (!limits_.may_read_more() || !read_text(directory_ + name, text)) {
      if (warnings) {
        *warnings += "Material file [ " + name + " ] not found in a path : " + directory_ + "\n";
      }
      return false;
    }
    limits_.count(text.size());
    // Each reading appends all materials anew, and one file may have any number of names.
    if (!seen_.insert(std::hash<std::string>()(text)).second) return true;
    parse_tinyobj_library(std::move(text), materials, indices, warnings, errors);
    return true;
  }

 private:
  std::string directory_;
  MaterialLibraryLimits limits_;
  std::unordered_set<std::size_t> seen_;  ///< hashes of the texts
};

}  // namespace

bool TinyobjFile::read(const std::string& path, const std::string& directory) {
  const MappedFile file(path.c_str());
  if (!file.is_open()) {
    fault = file.fault();
    messages = "Cannot open file [" + path + "]\n";
    return false;
  }
  PlainFileMaterialReader libraries(directory);
  return parse(file.text(), libraries);
}

bool TinyobjFile::parse(std::string_view text, tinyobj::MaterialReader& libraries) {
  BoundObjBuffer buffer(text);
  std::istream stream(&buffer);
  stream.exceptions(std::ios::badbit);  // an allocation that fails is no end of the file
  std::string warnings;
  std::string errors;
  const bool loaded =
      tinyobj::LoadObj(&attrib, &shapes, &materials, &warnings, &errors, &stream, &libraries);
  messages = warnings + errors;
  if (!loaded) fault = errors.substr(0, errors.find('\n'));
  return loaded;
}

void parse_tinyobj_library(std::string text, std::vector<tinyobj::material_t>* materials,
                           std::map<std::string, int>* indices, std::string* warnings,
                           std::string* errors) {
  bound_mtl_text(text);
  std::istringstream stream(std::move(text));
  tinyobj::LoadMtl(indices, materials, &stream, warnings, errors);
}

}  // namespace orv::detail
