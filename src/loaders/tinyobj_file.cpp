#include "loaders/tinyobj_file.h"

#include <cstddef>
#include <map>
#include <sstream>

#include "core/read_file.h"
#include "loaders/loader_names.h"

namespace orv::detail {

namespace {

bool open_file(const std::string& path, std::istringstream& stream, std::size_t& size) {
  std::vector<unsigned char> bytes;
  if (!read_whole_file(path.c_str(), bytes)) return false;
  size = bytes.size();
  stream.str(std::string(bytes.begin(), bytes.end()));
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
    std::istringstream stream;
    std::size_t size = 0;
    if (!limits_.may_read_more() || !open_file(directory_ + name, stream, size)) {
      if (warnings) {
        *warnings += "Material file [ " + name + " ] not found in a path : " + directory_ + "\n";
      }
      return false;
    }
    limits_.count(size);
    tinyobj::LoadMtl(indices, materials, &stream, warnings, errors);
    return true;
  }

 private:
  std::string directory_;
  MaterialLibraryLimits limits_;
};

}  // namespace

bool TinyobjFile::read(const std::string& path, const std::string& directory) {
  std::istringstream stream;
  std::size_t size = 0;
  if (!open_file(path, stream, size)) {
    messages = "Cannot open file [" + path + "]\n";
    return false;
  }
  PlainFileMaterialReader material_reader(directory);
  std::string warnings;
  std::string errors;
  const bool loaded =
      tinyobj::LoadObj(&attrib, &shapes, &materials, &warnings, &errors, &stream, &material_reader);
  messages = warnings + errors;
  return loaded;
}

}  // namespace orv::detail
