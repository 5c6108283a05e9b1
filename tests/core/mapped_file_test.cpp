#include "core/mapped_file.h"

#include "support/temp_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

#include <climits>
#include <string>

namespace orv::detail {
namespace {

using test::TempFolder;

TEST(MappedFile, ShowsAllBytes) {
  TempFolder folder;
  const std::string contents("a\0b\r\n\xff", 6);
  const MappedFile file(folder.write("f", contents).c_str());
  ASSERT_TRUE(file.is_open());
  EXPECT_EQ(file.text(), contents);
}

TEST(MappedFile, EmptyFileIsOpen) {
  TempFolder folder;
  const MappedFile file(folder.write("f", "").c_str());
  EXPECT_TRUE(file.is_open());
  EXPECT_EQ(file.text(), "");
}

TEST(MappedFile, OpensPlainFilesOnly) {
  TempFolder folder;
  ASSERT_EQ(mkfifo(folder.file("pipe").c_str(), 0600), 0);
  const std::string pipe = folder.file("pipe");
  const std::string missing = folder.file("missing");
  const char* names[] = {nullptr, pipe.c_str(), missing.c_str(), folder.path().c_str(),
                         "/dev/zero"};
  for (const char* name : names) {
    const MappedFile file(name);
    EXPECT_FALSE(file.is_open()) << (name ? name : "null");
    EXPECT_EQ(file.text(), "");
  }
}

TEST(MappedFile, RefusesFilesOfTwoGigabytes) {
  TempFolder folder;
  const std::string path = folder.write("f", "x");
  ASSERT_EQ(truncate(path.c_str(), INT_MAX), 0);
  EXPECT_FALSE(MappedFile(path.c_str()).is_open());
}

}  // namespace
}  // namespace orv::detail
