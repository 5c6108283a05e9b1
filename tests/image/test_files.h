#pragma once

#include <cstdint>
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace orv::test {

using Bytes = std::vector<unsigned char>;

inline std::string data_path(const std::string& name) {
  return std::string(ORV_TEST_DATA_DIR) + "/" + name;
}

/// Path in the folder of real files; "" when there is no such folder.
inline std::string extra_path(const std::string& name) {
  const std::string folder = ORV_EXTRA_TEST_DATA;
  return folder.empty() ? "" : folder + "/" + name;
}

/// A file that a test writes; removed at the end of the test.
class TempFile {
 public:
  explicit TempFile(const std::string& name)
      : path_(std::string("/tmp/orv_") + std::to_string(reinterpret_cast<std::uintptr_t>(this)) +
              "_" + name) {
    std::remove(path_.c_str());
  }
  ~TempFile() { std::remove(path_.c_str()); }
  TempFile(const TempFile&) = delete;
  TempFile& operator=(const TempFile&) = delete;
  const char* path() const { return path_.c_str(); }
  bool exists() const { return std::ifstream(path_).good(); }

 private:
  std::string path_;
};

inline Bytes read_bytes(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return Bytes(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

inline void write_bytes(const std::string& path, const Bytes& bytes) {
  std::ofstream file(path, std::ios::binary);
  file.write(reinterpret_cast<const char*>(bytes.data()),
             static_cast<std::streamsize>(bytes.size()));
}

inline std::uint32_t crc32(const unsigned char* data, std::size_t size) {
  std::uint32_t crc = 0xFFFFFFFFu;
  for (std::size_t i = 0; i < size; ++i) {
    crc ^= data[i];
    for (int bit = 0; bit < 8; ++bit) crc = crc >> 1 ^ (0xEDB88320u & (0u - (crc & 1u)));
  }
  return ~crc;
}

}  // namespace orv::test
