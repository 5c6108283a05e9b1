// The demo as a program: what it writes, what it says, how it ends.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>

#include "support/temp_folder.h"

namespace orv::test {
namespace {

class DemoProgram : public testing::Test {
 protected:
  /// Runs the demo without a display. Arguments are words of the shell.
  int run(const std::string& arguments) {
    const std::string command = "cd '" + folder_.path() +
                                "' && env -u DISPLAY '" DEMO_PROGRAM "' " + arguments +
                                " >out.txt 2>err.txt";
    const int status = std::system(command.c_str());
    out_ = folder_.read("out.txt");
    err_ = folder_.read("err.txt");
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  TempFolder folder_;
  std::string out_;
  std::string err_;
};

TEST_F(DemoProgram, SaysThatThereIsNoDisplayAfterThePicture) {
  ASSERT_EQ(run(""), 0) << err_;
  EXPECT_EQ(err_, "no display: no window is opened\n");
  EXPECT_EQ(folder_.read("demo.png").substr(1, 3), "PNG");
}

TEST_F(DemoProgram, HeadlessNeedsNoDisplay) {
  ASSERT_EQ(run("--headless --output picture.png"), 0) << err_;
  EXPECT_EQ(err_, "");
  EXPECT_EQ(out_.rfind("picture.png (1280x720, rendered in ", 0), 0u) << out_;
  EXPECT_EQ(folder_.read("picture.png").substr(1, 3), "PNG");
}

TEST_F(DemoProgram, SaysWhyAPictureCannotBeWritten) {
  EXPECT_EQ(run("--headless --output missing/picture.png"), 1);
  EXPECT_EQ(err_, "cannot write missing/picture.png: No such file or directory\n");
}

TEST_F(DemoProgram, WrongOptionsEndWithUsage) {
  for (const char* options : {"--nothing", "--output", "picture.png", "--help me"}) {
    EXPECT_EQ(run(options), 2) << options;
    EXPECT_EQ(err_.rfind("usage: orv-demo", 0), 0u) << err_;
  }
}

TEST_F(DemoProgram, HelpIsNoError) {
  EXPECT_EQ(run("--help"), 0);
  EXPECT_EQ(out_.rfind("usage: orv-demo", 0), 0u) << out_;
  EXPECT_EQ(err_, "");
}

}  // namespace
}  // namespace orv::test
