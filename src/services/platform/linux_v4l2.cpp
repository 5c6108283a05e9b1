// The real system calls behind V4l2Sys.
#include <fcntl.h>
#include <glob.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>

#include "services/webcam_capture.h"

namespace orv::detail {
namespace {

int negated_error(int result) { return result < 0 ? -errno : result; }

int open_path(void*, const char* path) {
  return negated_error(::open(path, O_RDWR | O_NONBLOCK | O_CLOEXEC));
}

int close_file(void*, int fd) { return negated_error(::close(fd)); }

int control_device(void*, int fd, unsigned long request, void* argument) {
  return negated_error(::ioctl(fd, request, argument));
}

int map_memory(void*, int fd, std::size_t length, std::uint32_t offset, void** mapped) {
  void* bytes = ::mmap(nullptr, length, PROT_READ, MAP_SHARED, fd, static_cast<off_t>(offset));
  if (bytes == MAP_FAILED) return -errno;
  *mapped = bytes;
  return 0;
}

int unmap_memory(void*, void* mapped, std::size_t length) {
  return negated_error(::munmap(mapped, length));
}

int poll_events(void*, int fd, short events) {
  pollfd file = {fd, events, 0};
  const int result = ::poll(&file, 1, 0);
  return result < 0 ? -errno : static_cast<unsigned short>(file.revents);
}

int find_paths(void*, const char* pattern, V4l2Sys::Found found, void* to) {
  glob_t paths = {};
  const int result = ::glob(pattern, GLOB_NOSORT, nullptr, &paths);
  if (result == 0) {
    for (std::size_t i = 0; i < paths.gl_pathc; ++i) found(to, paths.gl_pathv[i]);
  }
  globfree(&paths);
  if (result == 0 || result == GLOB_NOMATCH) return 0;
  return result == GLOB_NOSPACE ? -ENOMEM : -EIO;
}

}  // namespace

const V4l2Sys& V4l2Sys::system() {
  static constexpr V4l2Sys SYSTEM = {nullptr,     &open_path,    &close_file,  &control_device,
                                     &map_memory, &unmap_memory, &poll_events, &find_paths};
  return SYSTEM;
}

}  // namespace orv::detail
