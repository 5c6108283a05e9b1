#include "core/platform/module_check.h"
#include "core/platform/platform.h"
#include "core/read_file.h"

#include <dlfcn.h>
#include <elf.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <climits>
#include <cstring>
#include <vector>

namespace orv::platform {

// ---- what the loader may be given --------------------------------------------------------------

namespace {

#if defined(__x86_64__)
constexpr Elf64_Half MACHINE = EM_X86_64;
#elif defined(__aarch64__)
constexpr Elf64_Half MACHINE = EM_AARCH64;
#else
#error "name the ELF machine of this architecture here"
#endif

/// Enough for the file header and every program header that compilers write.
constexpr size_t HEAD_BYTES = 64 * 1024;

bool fits(std::uint64_t offset, std::uint64_t length, std::uint64_t size) {
  return offset <= size && length <= size - offset;
}

const char* fault_of_header(const Elf64_Ehdr& header) {
  if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0) return "not an ELF file";
  if (header.e_ident[EI_CLASS] != ELFCLASS64 || header.e_ident[EI_DATA] != ELFDATA2LSB) {
    return "not 64 bit, little endian";
  }
  if (header.e_machine != MACHINE) return "built for another machine";
  if (header.e_type != ET_DYN) return "not a shared library";
  if (header.e_phentsize != sizeof(Elf64_Phdr) || header.e_phnum == 0) return "no program headers";
  return nullptr;
}

const char* fault_of_segments(const std::vector<Elf64_Phdr>& segments, std::uint64_t file_size) {
  bool loads = false;
  bool dynamic = false;
  for (const Elf64_Phdr& segment : segments) {
    if (segment.p_type != PT_LOAD && segment.p_type != PT_DYNAMIC) continue;
    if (!fits(segment.p_offset, segment.p_filesz, file_size)) return "truncated";
    if (segment.p_filesz > segment.p_memsz) return "a segment is larger than its memory";
    loads = loads || segment.p_type == PT_LOAD;
    dynamic = dynamic || segment.p_type == PT_DYNAMIC;
  }
  return loads && dynamic ? nullptr : "no dynamic segment";
}

}  // namespace

bool check_module_head(const unsigned char* head, size_t size, std::uint64_t file_size,
                       std::string& error) {
  Elf64_Ehdr header;
  if (size < sizeof header) {
    error = "too short";
    return false;
  }
  std::memcpy(&header, head, sizeof header);
  const char* fault = fault_of_header(header);
  if (!fault) {
    const size_t bytes = size_t{header.e_phnum} * sizeof(Elf64_Phdr);
    if (!fits(header.e_phoff, bytes, size)) {
      fault = "program headers out of reach";
    } else {
      std::vector<Elf64_Phdr> segments(header.e_phnum);
      std::memcpy(segments.data(), head + header.e_phoff, bytes);
      fault = fault_of_segments(segments, file_size);
    }
  }
  if (fault) error = fault;
  return fault == nullptr;
}

bool check_module_file(const char* path, std::string& error) {
  const int fd = open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
  if (fd < 0) {
    error = detail::system_fault(errno);
    return false;
  }
  struct stat status {};
  bool good = fstat(fd, &status) == 0 && S_ISREG(status.st_mode);
  if (good) {
    std::vector<unsigned char> head(HEAD_BYTES);
    const ssize_t got = read(fd, head.data(), head.size());
    good = check_module_head(head.data(), got > 0 ? static_cast<size_t>(got) : 0,
                             static_cast<std::uint64_t>(status.st_size), error);
  } else {
    error = detail::NOT_PLAIN_FILE;
  }
  close(fd);
  return good;
}

// ---- loading -----------------------------------------------------------------------------------

namespace {

bool is_plain_file(const std::string& path) {
  struct stat status {};
  return stat(path.c_str(), &status) == 0 && S_ISREG(status.st_mode);
}

/// Is in another working directory while it lives, if that directory can be entered.
class WorkingDirectory {
 public:
  explicit WorkingDirectory(const char* directory) {
    if (!directory || !*directory) return;
    old_ = open(".", O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (old_ < 0) return;
    if (chdir(directory) == 0) return;
    close(old_);
    old_ = -1;
  }
  ~WorkingDirectory() {
    if (old_ < 0) return;
    [[maybe_unused]] const int restored = fchdir(old_);
    close(old_);
  }
  WorkingDirectory(const WorkingDirectory&) = delete;
  WorkingDirectory& operator=(const WorkingDirectory&) = delete;

 private:
  int old_ = -1;
};

void* open_checked(const std::string& path, std::string* error) {
  std::string cause;
  if (check_module_file(path.c_str(), cause)) return open_library(path.c_str(), error);
  if (error) *error = path + ": " + cause;
  return nullptr;
}

/// A relative name against the working directory; "" when that is unknown.
std::string absolute_path(const char* filename) {
  char directory[PATH_MAX];
  if (!getcwd(directory, sizeof directory)) return {};
  return std::string(directory) + "/" + filename;
}

}  // namespace

void* open_library(const char* path, std::string* error) {
  void* library = dlopen(path, RTLD_NOW | RTLD_LOCAL);
  if (library || !error) return library;
  const char* cause = dlerror();
  *error = cause ? cause : "unknown error";
  return nullptr;
}

void* find_symbol(void* library, const char* name) {
  return library ? dlsym(library, name) : nullptr;
}

void close_library(void* library) {
  if (library) dlclose(library);
}

void* open_module(const char* filename, const char* directory, std::string* error) {
  if (!*filename) {
    // The system takes an empty name for the running program.
    if (error) *error = "empty name";
    return nullptr;
  }
  const bool absolute = *filename == '/';
  const std::string path = absolute ? filename : absolute_path(filename);
  const WorkingDirectory working_directory(directory);
  if (absolute || is_plain_file(path)) return open_checked(path, error);
  const std::string beside = std::string("./") + filename;
  if (is_plain_file(beside)) return open_checked(beside, error);
  if (!std::strchr(filename, '/')) return open_library(filename, error);
  if (error) *error = std::string(filename) + ": " + detail::system_fault(ENOENT);
  return nullptr;
}

}  // namespace orv::platform
