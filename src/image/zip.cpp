// ZipExtractFile and ZipFree: one entry of a ZIP archive.
#include <orv/core/utils.h>

#include <orv/core/log_mgr.h>

#include "core/late_library.h"
#include "core/read_file.h"

#include <zip.h>

#include <algorithm>
#include <cstddef>
#include <memory>
#include <new>
#include <utility>

namespace orv {
namespace {

constexpr zip_uint64_t MAX_ENTRY_SIZE = 0x7FFFFFFF;

struct ZipLibrary {
  detail::OptionalLibrary library{ORV_ZIP_SONAME};
  ORV_LATE_FUNCTION(zip_discard);
  ORV_LATE_FUNCTION(zip_error_fini);
  ORV_LATE_FUNCTION(zip_error_init_with_code);
  ORV_LATE_FUNCTION(zip_error_strerror);
  ORV_LATE_FUNCTION(zip_fclose);
  ORV_LATE_FUNCTION(zip_file_strerror);
  ORV_LATE_FUNCTION(zip_fopen_index);
  ORV_LATE_FUNCTION(zip_fread);
  ORV_LATE_FUNCTION(zip_name_locate);
  ORV_LATE_FUNCTION(zip_open);
  ORV_LATE_FUNCTION(zip_stat_index);
  ORV_LATE_FUNCTION(zip_stat_init);
  ORV_LATE_FUNCTION(zip_strerror);
};

const ZipLibrary& zip() {
  static const ZipLibrary functions;
  return functions;
}

struct DiscardArchive {
  void operator()(zip_t* archive) const { zip().zip_discard(archive); }
};
struct CloseEntry {
  void operator()(zip_file_t* entry) const { zip().zip_fclose(entry); }
};
using Archive = std::unique_ptr<zip_t, DiscardArchive>;
using Entry = std::unique_ptr<zip_file_t, CloseEntry>;

/// Index of an entry by its whole path; a match in another case counts when no exact one is there.
zip_int64_t find_entry(zip_t* archive, const char* name) {
  const zip_int64_t exact = zip().zip_name_locate(archive, name, 0);
  return exact >= 0 ? exact : zip().zip_name_locate(archive, name, ZIP_FL_NOCASE);
}

/// Reads an entry to its very end, which is where its checksum is looked at. The block grows with
/// what really comes out, so that a lying size costs nothing.
/// Null with a fault, which lives as long as the entry.
std::unique_ptr<unsigned char[]> read_entry(zip_file_t* entry, std::size_t size,
                                            const char** fault) {
  constexpr std::size_t FIRST_STEP = 1 << 20;
  std::size_t capacity = std::min(size, FIRST_STEP);
  std::unique_ptr<unsigned char[]> block(
      new (std::nothrow) unsigned char[std::max<std::size_t>(1, capacity)]);
  *fault = "memory is exhausted";
  if (!block) return nullptr;
  std::size_t used = 0;
  while (used < size) {
    if (used == capacity) {
      capacity = std::min(size, capacity * 2);
      std::unique_ptr<unsigned char[]> larger(new (std::nothrow) unsigned char[capacity]);
      if (!larger) return nullptr;
      std::copy_n(block.get(), used, larger.get());
      block = std::move(larger);
    }
    const zip_int64_t got = zip().zip_fread(entry, block.get() + used, capacity - used);
    if (got <= 0) {
      *fault = got < 0 ? zip().zip_file_strerror(entry) : "truncated";
      return nullptr;
    }
    used += static_cast<std::size_t>(got);
  }
  unsigned char extra = 0;
  const zip_int64_t got = zip().zip_fread(entry, &extra, 1);
  if (got != 0) {
    *fault = got < 0 ? zip().zip_file_strerror(entry) : "longer than the archive says";
    return nullptr;
  }
  return block;
}

/// What an extraction is about, for the log.
struct Subject {
  const char* archive;
  const char* entry;
};

unsigned char* fail(const Subject& subject, const char* fault) {
  LogMgr::get().tracef_debug("zip %s: entry %s: %s", subject.archive, subject.entry, fault);
  return nullptr;
}

unsigned char* fail_to_open(const char* filename, int code) {
  zip_error_t error;
  zip().zip_error_init_with_code(&error, code);
  LogMgr::get().tracef_debug("zip %s: %s", filename, zip().zip_error_strerror(&error));
  zip().zip_error_fini(&error);
  return nullptr;
}

}  // namespace

unsigned char* ZipExtractFile(const char* zip_filename, const char* entry_name,
                              unsigned int* size) {
  if (!zip_filename || !entry_name) return nullptr;
  const Subject subject = {zip_filename, entry_name};
  const char* fault = nullptr;
  if (!detail::is_plain_file(zip_filename, &fault)) {
    LogMgr::get().tracef_debug("zip %s: %s", zip_filename, fault);
    return nullptr;
  }
  if (!zip().library.complete()) {
    LogMgr::get().tracef_debug("zip %s: %s", zip_filename, zip().library.fault());
    return nullptr;
  }
  int error = 0;
  const Archive archive(zip().zip_open(zip_filename, ZIP_RDONLY, &error));
  if (!archive) return fail_to_open(zip_filename, error);
  const zip_int64_t index = find_entry(archive.get(), entry_name);
  if (index < 0) {
    LogMgr::get().tracef_debug("zip %s: no entry %s", zip_filename, entry_name);
    return nullptr;
  }
  zip_stat_t info;
  zip().zip_stat_init(&info);
  const auto number = static_cast<zip_uint64_t>(index);
  if (zip().zip_stat_index(archive.get(), number, 0, &info) != 0 || !(info.valid & ZIP_STAT_SIZE)) {
    return fail(subject, "its size is unknown");
  }
  if (info.size > MAX_ENTRY_SIZE) return fail(subject, detail::FILE_TOO_LARGE);
  const Entry entry(zip().zip_fopen_index(archive.get(), number, 0));
  if (!entry) return fail(subject, zip().zip_strerror(archive.get()));
  std::unique_ptr<unsigned char[]> block =
      read_entry(entry.get(), static_cast<std::size_t>(info.size), &fault);
  if (!block) return fail(subject, fault);
  if (size) *size = static_cast<unsigned int>(info.size);
  return block.release();
}

bool ZipFree(unsigned char* block) {
  if (!block) return false;
  delete[] block;
  return true;
}

}  // namespace orv
