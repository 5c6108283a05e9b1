#pragma once

#include <cstddef>
#include <string_view>

namespace orv::detail {

/// A plain file as memory, to be read from front to back.
class MappedFile {
 public:
  /// Opens nothing for a null path, for anything that is no plain file, for one of INT_MAX bytes or
  /// more, and when mapping fails.
  explicit MappedFile(const char* path);
  ~MappedFile();
  MappedFile(const MappedFile&) = delete;
  MappedFile& operator=(const MappedFile&) = delete;

  bool is_open() const { return open_; }
  /// All bytes of the file, "" when it is not open.
  std::string_view text() const { return {static_cast<const char*>(bytes_), size_}; }

 private:
  void* bytes_ = nullptr;
  std::size_t size_ = 0;
  bool open_ = false;
};

}  // namespace orv::detail
