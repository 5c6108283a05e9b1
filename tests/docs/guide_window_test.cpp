// The last program of the guide in a window, with a hand on the mouse.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "docs/guide_programs.h"

namespace orv::test {
namespace {

Picture drive(const std::string& what) {
  const std::string file = guide_output("guide_window_" + what);
  std::remove(file.c_str());
  // The toolkit's libraries leak a little, some of it from modules that are unloaded by then.
  const std::string command = "ASAN_OPTIONS=detect_leaks=0 " ORV_SOURCE_DIR
                              "/tests/docs/drive_window.sh " +
                              what + " " + guide_command(6, file);
  EXPECT_EQ(std::system(command.c_str()), 0) << what;
  return read_picture(file);
}

TEST(GuideWindow, MouseOrbitsAndEscapeEnds) {
  if (!std::getenv("DISPLAY")) GTEST_SKIP() << "no X server";
  if (std::system("xdotool version >/dev/null 2>&1") != 0) GTEST_SKIP() << "no xdotool";
  const Picture still = drive("look");
  const Picture turned = drive("drag");
  ASSERT_EQ(still.width, 960);
  ASSERT_EQ(still.height, 720);
  ASSERT_EQ(turned.width, still.width);
  EXPECT_NE(compare_pictures(turned, still, {32, 0.9, 255}), "") << "the mouse changed nothing";
}

}  // namespace
}  // namespace orv::test
