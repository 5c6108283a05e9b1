#pragma once

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace orv::test {

/// A folder that is removed with everything in it.
class TempFolder {
 public:
  TempFolder() {
    std::string name = (std::filesystem::temp_directory_path() / "orv_test_XXXXXX").string();
    if (!mkdtemp(name.data())) std::abort();
    path_ = name;
  }
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;

  const std::string& path() const { return path_; }
  /// Path of a file in the folder, which need not exist.
  std::string file(const std::string& name) const { return path_ + "/" + name; }
  /// Writes a file and returns its path.
  std::string write(const std::string& name, const std::string& contents) const {
    std::ofstream(file(name), std::ios::binary) << contents;
    return file(name);
  }
  std::string read(const std::string& name) const { return read_file(file(name)); }
  bool has(const std::string& name) const { return std::filesystem::exists(file(name)); }

  /// All bytes of a file, "" when there is none.
  static std::string read_file(const std::string& path) {
    std::ifstream stream(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
  }

 private:
  std::string path_;
};

}  // namespace orv::test
