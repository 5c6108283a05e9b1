#include "core/read_file.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstring>

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

const char* system_fault(int error) {
  const char* text = strerrordesc_np(error);
  return text ? text : "unknown error";
}

namespace {

/// Null when all of the file is in `out`.
const char* read_or_tell(const char* path, std::vector<unsigned char>& out) {
  if (!path) return "no name";
  // Without O_NONBLOCK, opening a pipe that nobody writes to would wait for ever.
  const Descriptor file(open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK));
  if (file.fd < 0) return system_fault(errno);
  struct stat status {};
  if (fstat(file.fd, &status) != 0) return system_fault(errno);
  if (!S_ISREG(status.st_mode)) return NOT_PLAIN_FILE;
  if (status.st_size < 0 || status.st_size >= INT_MAX) return FILE_TOO_LARGE;
  out.reserve(static_cast<size_t>(status.st_size) + 1);
  out.resize(static_cast<size_t>(status.st_size));
  return read_all(file.fd, out) ? nullptr : system_fault(errno);
}

const char* stat_or_tell(const char* path) {
  if (!path) return "no name";
  struct stat status {};
  if (stat(path, &status) != 0) return system_fault(errno);
  return S_ISREG(status.st_mode) ? nullptr : NOT_PLAIN_FILE;
}

}  // namespace

bool read_whole_file(const char* path, std::vector<unsigned char>& out, const char** fault) {
  out.clear();
  const char* cause = read_or_tell(path, out);
  if (cause) out.clear();
  if (fault) *fault = cause;
  return cause == nullptr;
}

bool is_plain_file(const char* path, const char** fault) {
  const char* cause = stat_or_tell(path);
  if (fault) *fault = cause;
  return cause == nullptr;
}

}  // namespace orv::detail
