// ZipExtractFile and ZipFree: one entry of a ZIP archive.
#include <orv/core/utils.h>

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

struct DiscardArchive {
  void operator()(zip_t* archive) const { zip_discard(archive); }
};
struct CloseEntry {
  void operator()(zip_file_t* entry) const { zip_fclose(entry); }
};
using Archive = std::unique_ptr<zip_t, DiscardArchive>;
using Entry = std::unique_ptr<zip_file_t, CloseEntry>;

/// Index of an entry by its whole path; a match in another case counts when no exact one is there.
zip_int64_t find_entry(zip_t* archive, const char* name) {
  const zip_int64_t exact = zip_name_locate(archive, name, 0);
  return exact >= 0 ? exact : zip_name_locate(archive, name, ZIP_FL_NOCASE);
}

/// Reads an entry to its very end, which is where its checksum is looked at. The block grows with
/// what really comes out, so that a lying size costs nothing.
std::unique_ptr<unsigned char[]> read_entry(zip_file_t* entry, std::size_t size) {
  constexpr std::size_t FIRST_STEP = 1 << 20;
  std::size_t capacity = std::min(size, FIRST_STEP);
  std::unique_ptr<unsigned char[]> block(
      new (std::nothrow) unsigned char[std::max<std::size_t>(1, capacity)]);
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
    const zip_int64_t got = zip_fread(entry, block.get() + used, capacity - used);
    if (got <= 0) return nullptr;
    used += static_cast<std::size_t>(got);
  }
  unsigned char extra = 0;
  if (zip_fread(entry, &extra, 1) != 0) return nullptr;
  return block;
}

}  // namespace

unsigned char* ZipExtractFile(const char* zip_filename, const char* entry_name,
                              unsigned int* size) {
  // A pipe would be waited for.
  if (!entry_name || !detail::is_plain_file(zip_filename)) return nullptr;
  int error = 0;
  const Archive archive(zip_open(zip_filename, ZIP_RDONLY, &error));
  if (!archive) return nullptr;
  const zip_int64_t index = find_entry(archive.get(), entry_name);
  if (index < 0) return nullptr;
  zip_stat_t info;
  zip_stat_init(&info);
  const auto number = static_cast<zip_uint64_t>(index);
  if (zip_stat_index(archive.get(), number, 0, &info) != 0) return nullptr;
  if (!(info.valid & ZIP_STAT_SIZE) || info.size > MAX_ENTRY_SIZE) return nullptr;
  const Entry entry(zip_fopen_index(archive.get(), number, 0));
  if (!entry) return nullptr;
  std::unique_ptr<unsigned char[]> block =
      read_entry(entry.get(), static_cast<std::size_t>(info.size));
  if (!block) return nullptr;
  if (size) *size = static_cast<unsigned int>(info.size);
  return block.release();
}

bool ZipFree(unsigned char* block) {
  if (!block) return false;
  delete[] block;
  return true;
}

}  // namespace orv
