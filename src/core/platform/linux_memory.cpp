#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstdint>

#include "core/large_array.h"
#include "core/mapped_file.h"
#include "core/read_file.h"

namespace orv::detail {

void advise_large_pages(void* begin, std::size_t bytes) {
  constexpr std::uintptr_t PAGE = 4096;
  if (bytes < LARGE_BLOCK) return;
  const std::uintptr_t first = (reinterpret_cast<std::uintptr_t>(begin) + PAGE - 1) & ~(PAGE - 1);
  const std::uintptr_t last = (reinterpret_cast<std::uintptr_t>(begin) + bytes) & ~(PAGE - 1);
  // A system without large pages refuses, which changes nothing.
  madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
}

MappedFile::MappedFile(const char* path) {
  if (!path) {
    fault_ = "no name";
    return;
  }
  // Without O_NONBLOCK, opening a pipe that nobody writes to would wait for ever.
  const int file = ::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) {
    fault_ = system_fault(errno);
    return;
  }
  fault_ = map(file);
  close(file);
}

const char* MappedFile::map(int file) {
  struct stat status {};
  if (fstat(file, &status) != 0) return system_fault(errno);
  if (!S_ISREG(status.st_mode)) return NOT_PLAIN_FILE;
  if (status.st_size < 0 || status.st_size >= INT_MAX) return FILE_TOO_LARGE;
  if (status.st_size == 0) return nullptr;
  const auto size = static_cast<std::size_t>(status.st_size);
  void* bytes = mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file, 0);
  if (bytes == MAP_FAILED) return system_fault(errno);
  bytes_ = bytes;
  size_ = size;
  madvise(bytes_, size_, MADV_SEQUENTIAL);
  return nullptr;
}

MappedFile::~MappedFile() {
  if (bytes_) munmap(bytes_, size_);
}

}  // namespace orv::detail
