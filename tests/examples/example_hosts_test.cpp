// The examples that bring a window of their own, on the X server of DISPLAY.
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "examples/example_programs.h"

namespace orv::test {
namespace {

// The libraries of window systems leak a little, some of it from modules that are unloaded by then;
// runs off screen look for leaks.
const std::string no_leaks = "ASAN_OPTIONS=detect_leaks=0";

// Opens the program in a window, does something there and presses Escape. The exit code.
int drive(const std::string& what, const std::string& example) {
  return std::system((no_leaks + " " ORV_SOURCE_DIR "/tests/docs/drive_window.sh " + what + " " +
                      example_program(example))
                         .c_str());
}

class ExampleHosts : public testing::TestWithParam<const char*> {
 protected:
  void SetUp() override {
    if (!std::getenv("DISPLAY")) GTEST_SKIP() << "no X server";
    if (!std::filesystem::exists(EXAMPLE_PROGRAMS + std::string(GetParam()))) {
      GTEST_SKIP() << "built without GLFW (package libglfw3-dev)";
    }
  }
};

TEST_P(ExampleHosts, DrawsItsPictureInEachGeneration) {
  for (const Generation& generation : generations) {
    ASSERT_EQ(run_example(no_leaks, GetParam(), generation, "480x360"), 0) << generation.name;
    EXPECT_EQ(compare_to_golden(read_picture(example_output(GetParam(), generation)),
                                std::string("example_") + GetParam()),
              "")
        << generation.name;
  }
}

TEST_P(ExampleHosts, EscapeEndsTheLoop) {
  if (std::system("xdotool version >/dev/null 2>&1") != 0) GTEST_SKIP() << "no xdotool";
  EXPECT_EQ(drive("look", GetParam()), 0);
}

INSTANTIATE_TEST_SUITE_P(Toolkits, ExampleHosts, testing::Values("28_glfw_host", "29_xlib_host"),
                         [](const auto& host) { return std::string(host.param); });

// The examples with the common host open a window of SDL.
TEST(ExampleWindow, EscapeEndsTheLoop) {
  if (!std::getenv("DISPLAY")) GTEST_SKIP() << "no X server";
  if (std::system("xdotool version >/dev/null 2>&1") != 0) GTEST_SKIP() << "no xdotool";
  EXPECT_EQ(drive("drag", "02_primitives"), 0);
}

}  // namespace
}  // namespace orv::test
