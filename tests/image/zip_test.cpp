#include <orv/core/utils.h>

#include "image/test_files.h"

#include <gtest/gtest.h>

#include <dirent.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstring>
#include <string>

namespace orv {
namespace {

using test::Bytes;
using test::TempFile;

struct EntryRow {
  const char* archive;
  const char* entry;
  unsigned int size;
  std::uint32_t crc;
};
constexpr EntryRow ENTRIES[] = {
    {"zip/cube_with_materials_notexture.zip", "cube_with_materials.mtl", 567, 0x28df4d37},
    {"zip/cube_with_materials_notexture.zip", "cube_with_materials.obj", 573, 0x46617e67},
    {"zip/teststored.zip", "abac-repeat.txt", 60, 0xb0354048},
    {"zip/testdeflated.zip", "abac-repeat.txt", 60, 0xb0354048},
    {"zip/test.zip", "test", 5, 0x3bb935c6},
    {"zip/test.zip", "testdir/", 0, 0},
    {"zip/test.zip", "testdir/test2", 5, 0x3bb935c6},
    {"zip/testdir.zip", "testdir-noslash/", 0, 0},
    {"zip/testcomment.zip", "file1", 24, 0x7970d930},
    {"zip/testcomment.zip", "file2", 25, 0x90c4d1d0},
    {"zip/testcomment.zip", "file3", 24, 0xec532ae4},
    {"zip/testcomment.zip", "file4", 25, 0x2989f508},
    {"zip/zip64.zip", "-", 2, 0xddeaa107},
    {"zip/readme.zip", "README", 1096, 0x82080ae0}};
// In the folder of real files alone.
constexpr EntryRow LARGE_ENTRIES[] = {
    {"zip/cube_with_materials.zip", "cube_texture.png", 56249, 0xe0597ce2},
    {"zip/cube_with_materials.zip", "cube_with_materials.mtl", 567, 0x28df4d37},
    {"zip/cube_with_materials.zip", "cube_with_materials.obj", 573, 0x46617e67},
    {"zip/cube_four_instances_folders.zip", "cube_four_instances.3ds", 2409, 0x1017822a},
    {"zip/cube_four_instances_folders.zip", "images/texture.png", 56249, 0xe0597ce2}};

void expect_entry(const std::string& path, const EntryRow& row) {
  unsigned int size = 12345;
  unsigned char* block = ZipExtractFile(path.c_str(), row.entry, &size);
  ASSERT_NE(block, nullptr) << path << " " << row.entry;
  EXPECT_EQ(size, row.size) << path << " " << row.entry;
  EXPECT_EQ(test::crc32(block, size), row.crc) << path << " " << row.entry;
  EXPECT_TRUE(ZipFree(block));
}

TEST(Zip, EntriesComeOutWhole) {
  for (const EntryRow& row : ENTRIES) expect_entry(test::data_path(row.archive), row);
}

TEST(Zip, EntriesOfLargerArchivesComeOutWhole) {
  if (test::extra_path("").empty()) GTEST_SKIP() << "no folder of real files";
  for (const EntryRow& row : LARGE_ENTRIES) expect_entry(test::extra_path(row.archive), row);
}

// ---- archives made here ----

/// An archive of one entry.
struct MadeArchive {
  std::string name;
  Bytes content;
  bool is_deflated = false;
  std::uint32_t told_size = 0;  // 0: the true one
};

void put(Bytes& out, std::uint64_t value, int bytes) {
  for (int i = 0; i < bytes; ++i) out.push_back(static_cast<unsigned char>(value >> 8 * i));
}

void append(Bytes& out, const std::string& text) {
  out.insert(out.end(), text.begin(), text.end());
}

/// Deflate's blocks of plain bytes.
Bytes to_plain_blocks(const Bytes& content) {
  constexpr std::size_t BLOCK = 65535;
  Bytes out;
  for (std::size_t at = 0; at < content.size(); at += BLOCK) {
    const std::size_t size = std::min(BLOCK, content.size() - at);
    put(out, at + size == content.size() ? 1 : 0, 1);
    put(out, size, 2);
    put(out, ~size & 0xFFFF, 2);
    const auto begin = content.begin() + static_cast<std::ptrdiff_t>(at);
    out.insert(out.end(), begin, begin + static_cast<std::ptrdiff_t>(size));
  }
  return out;
}

Bytes make_archive(const MadeArchive& made) {
  const Bytes packed = made.is_deflated ? to_plain_blocks(made.content) : made.content;
  Bytes common;  // what both headers tell
  put(common, 20, 2);
  put(common, 0, 2);
  put(common, made.is_deflated ? 8 : 0, 2);
  put(common, 0, 4);
  put(common, test::crc32(made.content.data(), made.content.size()), 4);
  put(common, packed.size(), 4);
  put(common, made.told_size ? made.told_size : made.content.size(), 4);
  put(common, made.name.size(), 2);
  put(common, 0, 2);

  Bytes out;
  append(out, "PK\x03\x04");
  out.insert(out.end(), common.begin(), common.end());
  append(out, made.name);
  out.insert(out.end(), packed.begin(), packed.end());
  const std::size_t directory = out.size();
  append(out, "PK\x01\x02");
  put(out, 20, 2);
  out.insert(out.end(), common.begin(), common.end());
  put(out, 0, 8);
  put(out, 0, 6);  // with it, the place of the local header: the start
  append(out, made.name);
  const std::size_t directory_size = out.size() - directory;
  append(out, "PK\x05\x06");
  put(out, 0, 4);
  put(out, 1, 2);
  put(out, 1, 2);
  put(out, directory_size, 4);
  put(out, directory, 4);
  put(out, 0, 2);
  return out;
}

Bytes make_content(std::size_t size) {
  Bytes content(size);
  unsigned int state = 1;
  for (unsigned char& byte : content) {
    state = state * 1664525u + 1013904223u;
    byte = static_cast<unsigned char>(state >> 24);
  }
  return content;
}

TEST(Zip, LargeEntriesComeOutWhole) {
  // One step of the reading, two, and a part of a third.
  for (const std::size_t size :
       {std::size_t{1} << 20, (std::size_t{1} << 20) + 1, std::size_t{5} << 20}) {
    for (const bool is_deflated : {false, true}) {
      const TempFile file("large.zip");
      const Bytes content = make_content(size);
      test::write_bytes(file.path(), make_archive({"folder/large", content, is_deflated}));
      unsigned int got = 0;
      unsigned char* block = ZipExtractFile(file.path(), "folder/large", &got);
      ASSERT_NE(block, nullptr) << size;
      ASSERT_EQ(got, size);
      EXPECT_EQ(std::memcmp(block, content.data(), size), 0);
      EXPECT_TRUE(ZipFree(block));
    }
  }
}

TEST(Zip, ALyingSizeIsNull) {
  const TempFile file("lying.zip");
  test::write_bytes(file.path(), make_archive({"a", make_content(100)}));
  unsigned char* honest = ZipExtractFile(file.path(), "a", nullptr);
  EXPECT_TRUE(ZipFree(honest));
  for (const std::uint32_t told : {1u, 99u, 101u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFEu}) {
    for (const bool is_deflated : {false, true}) {
      test::write_bytes(file.path(), make_archive({"a", make_content(100), is_deflated, told}));
      unsigned int size = 77;
      EXPECT_EQ(ZipExtractFile(file.path(), "a", &size), nullptr) << told;
      EXPECT_EQ(size, 77u);
    }
  }
}

TEST(Zip, APipeIsNotWaitedFor) {
  const TempFile pipe("pipe.zip");
  ASSERT_EQ(mkfifo(pipe.path(), 0600), 0);
  EXPECT_EQ(ZipExtractFile(pipe.path(), "a", nullptr), nullptr);
}

// ---- arguments and spoiled archives ----

TEST(Zip, SizeMayBeNull) {
  unsigned char* block = ZipExtractFile(test::data_path("zip/test.zip").c_str(), "test", nullptr);
  ASSERT_NE(block, nullptr);
  ZipFree(block);
}

TEST(Zip, NamesMatchInAnyCaseButAsAWhole) {
  const std::string path = test::data_path("zip/test.zip");
  unsigned char* block = ZipExtractFile(path.c_str(), "TESTDIR/Test2", nullptr);
  EXPECT_NE(block, nullptr);
  ZipFree(block);
  EXPECT_EQ(ZipExtractFile(path.c_str(), "test2", nullptr), nullptr);
  EXPECT_EQ(ZipExtractFile(path.c_str(), "tes", nullptr), nullptr);
}

std::size_t count_open_files() {
  std::size_t count = 0;
  DIR* folder = opendir("/proc/self/fd");
  while (readdir(folder)) ++count;
  closedir(folder);
  return count;
}

TEST(Zip, AMissingEntryIsNullLeavesTheSizeAndClosesTheArchive) {
  const std::string path = test::data_path("zip/test.zip");
  const std::size_t open_before = count_open_files();
  unsigned int size = 77;
  EXPECT_EQ(ZipExtractFile(path.c_str(), "missing", &size), nullptr);
  EXPECT_EQ(size, 77u);
  EXPECT_EQ(count_open_files(), open_before);
  EXPECT_EQ(ZipExtractFile(test::data_path("zip/testempty.zip").c_str(), "a", &size), nullptr);
}

TEST(Zip, NullNamesMissingArchivesAndDirectoriesAreNull) {
  unsigned int size = 77;
  EXPECT_EQ(ZipExtractFile(nullptr, "a", &size), nullptr);
  EXPECT_EQ(ZipExtractFile(test::data_path("zip/test.zip").c_str(), nullptr, &size), nullptr);
  EXPECT_EQ(ZipExtractFile("/no/such/archive.zip", "a", &size), nullptr);
  EXPECT_EQ(ZipExtractFile("/tmp", "a", &size), nullptr);
  EXPECT_EQ(ZipExtractFile(test::data_path("img/png/basn2c08.png").c_str(), "a", &size), nullptr);
  EXPECT_EQ(size, 77u);
}

TEST(Zip, AWrongChecksumIsNull) {
  // Damages a byte of the stored text behind its local header.
  Bytes archive = test::read_bytes(test::data_path("zip/teststored.zip"));
  const std::string text = "abac";
  const auto place = std::search(archive.begin() + 60, archive.end(), text.begin(), text.end());
  ASSERT_NE(place, archive.end());
  *place ^= 1;
  const TempFile file("damaged.zip");
  test::write_bytes(file.path(), archive);
  EXPECT_EQ(ZipExtractFile(file.path(), "abac-repeat.txt", nullptr), nullptr);
}

TEST(Zip, EveryTruncationIsNull) {
  const EntryRow rows[] = {{"zip/teststored.zip", "abac-repeat.txt", 60, 0xb0354048},
                           {"zip/testdeflated.zip", "abac-repeat.txt", 60, 0xb0354048},
                           {"zip/test.zip", "test", 5, 0x3bb935c6},
                           {"zip/testcomment.zip", "file1", 24, 0x7970d930},
                           {"zip/zip64.zip", "-", 2, 0xddeaa107}};
  for (const EntryRow& row : rows) {
    expect_entry(test::data_path(row.archive), row);
    const Bytes archive = test::read_bytes(test::data_path(row.archive));
    const TempFile file("cut.zip");
    for (std::size_t length = 0; length < archive.size(); ++length) {
      test::write_bytes(file.path(), Bytes(archive.begin(),
                                           archive.begin() + static_cast<std::ptrdiff_t>(length)));
      unsigned char* block = ZipExtractFile(file.path(), row.entry, nullptr);
      EXPECT_EQ(block, nullptr) << row.archive << " cut at " << length;
      ZipFree(block);
    }
  }
}

TEST(Zip, EverySpoiledByteEndsCleanly) {
  const Bytes archive = test::read_bytes(test::data_path("zip/testdeflated.zip"));
  const TempFile file("spoiled.zip");
  for (std::size_t at = 0; at < archive.size(); ++at) {
    for (const int value : {0x00, 0x7F, 0xFF}) {
      Bytes spoiled = archive;
      spoiled[at] = static_cast<unsigned char>(value);
      test::write_bytes(file.path(), spoiled);
      unsigned int size = 0;
      unsigned char* block = ZipExtractFile(file.path(), "abac-repeat.txt", &size);
      if (block) {
        EXPECT_EQ(test::crc32(block, size), 0xb0354048u) << at;
      }
      ZipFree(block);
    }
  }
}

TEST(Zip, FreeOfNullIsFalse) { EXPECT_FALSE(ZipFree(nullptr)); }

}  // namespace
}  // namespace orv
