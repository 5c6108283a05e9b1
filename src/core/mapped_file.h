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

  bool is_open() const { return fault_ == nullptr; }
  /// Why it is not open, by a text that is never freed; null when it is.
  const char* fault() const { return fault_; }
  /// All bytes of the file, "" when it is not open.
  std::string_view text() const { return {static_cast<const char*>(bytes_), size_}; }

 private:
  /// Takes the contents of an open file in; null or the fault.
  const char* map(int file);

  void* bytes_ = nullptr;
  std::size_t size_ = 0;
  const char* fault_ = nullptr;
};

}  // namespace orv::detail
