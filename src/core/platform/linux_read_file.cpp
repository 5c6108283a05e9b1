#include "core/read_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstddef>

namespace orv::detail {

namespace {

/// A file descriptor that closes itself.
struct Descriptor {
  explicit Descriptor(int number) : fd(number) {}
  ~Descriptor() {
    if (fd >= 0) close(fd);
  }
  Descriptor(const Descriptor&) = delete;
  Descriptor& operator=(const Descriptor&) = delete;
  const int fd;
};

bool read_all(int fd, std::vector<unsigned char>& out) {
  size_t done = 0;
  while (done < out.size()) {
    const ssize_t got = read(fd, out.data() + done, out.size() - done);
    if (got < 0 && errno == EINTR) continue;
    if (got < 0) return false;
    if (got == 0) break;
    done += static_cast<size_t>(got);
  }
  out.resize(done);
  return true;
}

}  // namespace

bool read_whole_file(const char* path, std::vector<unsigned char>& out) {
  out.clear();
  if (!path) return false;
  // Without O_NONBLOCK, opening a pipe that nobody writes to would wait for ever.
  const Descriptor file(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (file.fd < 0) return false;
  struct stat status {};
  if (fstat(file.fd, &status) != 0 || !S_ISREG(status.st_mode)) return false;
  if (status.st_size < 0 || status.st_size >= INT_MAX) return false;
  out.reserve(static_cast<size_t>(status.st_size) + 1);
  out.resize(static_cast<size_t>(status.st_size));
  if (read_all(file.fd, out)) return true;
  out.clear();
  return false;
}

bool is_plain_file(const char* path) {
  struct stat status {};
  return path && stat(path, &status) == 0 && S_ISREG(status.st_mode);
}

}  // namespace orv::detail
