// The programs of the guide run off screen, and each leaves the picture that the guide describes.
#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <set>
#include <string>

#include "docs/guide_programs.h"

namespace orv::test {
namespace {

const std::string shaders = ORV_SOURCE_DIR "/docs/guide/";

// Runs a step without a display.
int run_step(int step, const std::string& picture, const std::string& folder) {
  return std::system(("env -u DISPLAY " + guide_command(step, picture, folder)).c_str());
}

std::size_t count_colors(const Picture& picture) {
  std::set<unsigned int> colors;
  for (std::size_t i = 0; i + 3 < picture.rgba.size(); i += 4) {
    const unsigned char* p = &picture.rgba[i];
    colors.insert(p[0] / 16u << 8 | p[1] / 16u << 4 | p[2] / 16u);
  }
  return colors.size();
}

struct Step {
  int number;
  std::size_t least_colors;  ///< of 4096
};

class Guide : public testing::TestWithParam<Step> {};

TEST_P(Guide, StepDrawsItsPicture) {
  const Step step = GetParam();
  if (step.number == 6 && !GUIDE_WITH_WINDOW) GTEST_SKIP() << "built without SDL2";
  const std::string name = "guide_step" + std::to_string(step.number);
  const std::string file = guide_output(name);
  std::remove(file.c_str());
  ASSERT_EQ(run_step(step.number, file, shaders), 0);
  const Picture picture = read_picture(file);
  ASSERT_EQ(picture.width, 256);
  ASSERT_EQ(picture.height, 256);
  EXPECT_GE(count_colors(picture), step.least_colors);
  EXPECT_EQ(compare_to_golden(picture, name), "");
}

INSTANTIATE_TEST_SUITE_P(Steps, Guide,
                         testing::Values(Step{1, 1}, Step{2, 30}, Step{3, 20}, Step{4, 40},
                                         Step{5, 60}, Step{6, 60}),
                         [](const auto& step) { return std::to_string(step.param.number); });

TEST(GuideFailures, ProgramsEndWithAnErrorWhenTheirFilesAreMissing) {
  const std::string file = guide_output("guide_missing");
  std::remove(file.c_str());
  for (int step : {3, 4, 5}) EXPECT_NE(run_step(step, file, "/nonexistent/"), 0) << step;
  EXPECT_EQ(std::fopen(file.c_str(), "rb"), nullptr);
}

}  // namespace
}  // namespace orv::test
