#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <cstdint>

#include "core/large_array.h"
#include "core/mapped_file.h"

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
  if (!path) return;
  // Without O_NONBLOCK, opening a pipe that nobody writes to would wait for ever.
  const int file = ::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (file < 0) return;
  struct stat status {};
  if (fstat(file, &status) == 0 && S_ISREG(status.st_mode) && status.st_size >= 0 &&
      status.st_size < INT_MAX) {
    size_ = static_cast<std::size_t>(status.st_size);
    if (size_ > 0) {
      void* bytes = mmap(nullptr, size_, PROT_READ, MAP_PRIVATE, file, 0);
      if (bytes == MAP_FAILED) {
        size_ = 0;
      } else {
        bytes_ = bytes;
        madvise(bytes_, size_, MADV_SEQUENTIAL);
      }
    }
    open_ = bytes_ || status.st_size == 0;
  }
  close(file);
}

MappedFile::~MappedFile() {
  if (bytes_) munmap(bytes_, size_);
}

}  // namespace orv::detail
