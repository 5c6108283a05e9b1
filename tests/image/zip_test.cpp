#include <orv/core/utils.h>

#include "image/test_files.h"

#include <gtest/gtest.h>

#include <dirent.h>

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

TEST(Zip, LargeEntriesComeOutWhole) {
  if (test::extra_path("").empty()) GTEST_SKIP() << "no folder of real files";
  for (const EntryRow& row : LARGE_ENTRIES) expect_entry(test::extra_path(row.archive), row);
}

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

TEST(Zip, EveryTruncationIsNullOrTheWholeEntry) {
  for (const char* name : {"zip/teststored.zip", "zip/testdeflated.zip", "zip/zip64.zip"}) {
    const Bytes archive = test::read_bytes(test::data_path(name));
    ASSERT_FALSE(archive.empty());
    const TempFile file("cut.zip");
    for (std::size_t length = 0; length < archive.size(); ++length) {
      test::write_bytes(file.path(), Bytes(archive.begin(),
                                           archive.begin() + static_cast<std::ptrdiff_t>(length)));
      unsigned char* block = ZipExtractFile(file.path(), "abac-repeat.txt", nullptr);
      EXPECT_EQ(block, nullptr) << name << " cut at " << length;
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
