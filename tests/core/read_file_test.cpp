#include "core/read_file.h"

#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <string>

namespace orv::detail {
namespace {

using test::TempFolder;

std::vector<unsigned char> leftover() { return {1, 2, 3}; }

TEST(ReadWholeFile, ReadsAllBytes) {
  TempFolder folder;
  const std::string contents("a\0b\r\n\xff", 6);
  std::vector<unsigned char> out = leftover();
  ASSERT_TRUE(read_whole_file(folder.write("f", contents).c_str(), out));
  EXPECT_EQ(std::string(out.begin(), out.end()), contents);
}

TEST(ReadWholeFile, EmptyFileIsRead) {
  TempFolder folder;
  std::vector<unsigned char> out = leftover();
  EXPECT_TRUE(read_whole_file(folder.write("f", "").c_str(), out));
  EXPECT_TRUE(out.empty());
}

TEST(ReadWholeFile, RefusesWhatIsNoPlainFile) {
  TempFolder folder;
  const std::string pipe = folder.file("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  for (const std::string& path :
       {folder.path(), pipe, std::string("/dev/zero"), std::string(), folder.file("missing")}) {
    std::vector<unsigned char> out = leftover();
    EXPECT_FALSE(read_whole_file(path.c_str(), out)) << path;
    EXPECT_TRUE(out.empty());
  }
  std::vector<unsigned char> out = leftover();
  EXPECT_FALSE(read_whole_file(nullptr, out));
  EXPECT_TRUE(out.empty());
}

TEST(ReadWholeFile, RefusesTwoGigabytes) {
  TempFolder folder;
  const std::string path = folder.write("huge", "x");
  if (truncate(path.c_str(), INT_MAX) != 0) GTEST_SKIP() << "no sparse files here";
  std::vector<unsigned char> out;
  EXPECT_FALSE(read_whole_file(path.c_str(), out));
}

}  // namespace
}  // namespace orv::detail
