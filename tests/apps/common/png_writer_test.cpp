#include "common/png_writer.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <cerrno>
#include <vector>

#include "support/temp_folder.h"

namespace orv_app {
namespace {

class PngWriter : public testing::Test {
 protected:
  bool write(const std::string& path) {
    const std::vector<unsigned char> rgba(64 * 64 * 4, 0x55);
    return write_png(path.c_str(), rgba.data(), 64, 64);
  }

  orv::test::TempFolder folder_;
};

TEST_F(PngWriter, WritesAPngFromItsSignatureToItsEnd) {
  ASSERT_TRUE(write(folder_.file("a.png")));
  const std::string png = folder_.read("a.png");
  EXPECT_EQ(png.substr(0, 8), "\x89PNG\r\n\x1a\n");
  ASSERT_GT(png.size(), 20u);
  EXPECT_EQ(png.substr(png.size() - 8, 4), "IEND");
}

TEST_F(PngWriter, FullDiskIsAFailure) {
  ASSERT_EQ(symlink("/dev/full", folder_.file("full.png").c_str()), 0);
  EXPECT_FALSE(write(folder_.file("full.png")));
  EXPECT_EQ(errno, ENOSPC);
}

TEST_F(PngWriter, FolderThatIsNotThereIsAFailure) {
  EXPECT_FALSE(write(folder_.file("no/a.png")));
  EXPECT_EQ(errno, ENOENT);
}

}  // namespace
}  // namespace orv_app
