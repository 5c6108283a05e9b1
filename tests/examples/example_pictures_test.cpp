// Each example draws the same picture in OpenGL 4.5, core and compatibility, and, where there is
// what it shows, in OpenGL 2.1.
#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <string>
#include <tuple>

#include "examples/example_programs.h"

namespace orv::test {
namespace {

constexpr int exit_missing = 3;

struct Shown {
  const char* name;
  bool in_core = true;
  bool in_gl2 = true;
  const char* size = "480x360";
};

constexpr Shown examples[] = {
    {"01_window"},
    {"02_primitives"},
    {"03_materials", true, true, "400x300"},
    {"04_lights"},
    {"05_lines", true, false},  // thick lines need geometry shaders
    {"06_bones"},
    {"07_grid"},
    {"08_tripods"},
    {"09_shapes"},
    {"10_terrain", true, true, "400x300"},
    {"11_ribbon"},
    {"12_models"},
    {"13_render_target"},
    {"14_skybox", true, true, "400x300"},
    {"15_vertex_pool", true, true, "400x300"},
    {"16_instancing", true, true, "400x300"},
    {"17_cloth"},
    {"18_particles", true, true, "400x300"},
    {"19_picking"},
    {"20_bitmap_text", false, true},  // the fixed pipeline draws it
    {"21_bmfont"},
    {"22_truetype"},
    {"23_vector_graphics", true, false, "640x480"},  // needs OpenGL 3.2
    {"24_graph"},
    {"25_led_bar"},
    {"26_spline"},
    {"27_hud"},
    {"30_remote_control"},
    {"31_webcam"},
};

class Examples : public testing::TestWithParam<std::tuple<Shown, Generation>> {};

TEST_P(Examples, DrawsItsPicture) {
  const Shown& shown = std::get<0>(GetParam());
  const Generation& generation = std::get<1>(GetParam());
  const bool there = (shown.in_core || generation.profile != std::string("core")) &&
                     (shown.in_gl2 || generation.version != std::string("2.1"));
  const int status =
      run_example("-u DISPLAY EXAMPLE_CAMERA=none", shown.name, generation, shown.size);
  if (!there) {
    EXPECT_EQ(status, exit_missing) << "should say that this OpenGL has no such feature";
    return;
  }
  ASSERT_EQ(status, 0);
  EXPECT_EQ(compare_to_golden(read_picture(example_output(shown.name, generation)),
                              std::string("example_") + shown.name),
            "");
}

INSTANTIATE_TEST_SUITE_P(
    All, Examples, testing::Combine(testing::ValuesIn(examples), testing::ValuesIn(generations)),
    [](const auto& run) {
      return std::string(std::get<0>(run.param).name) + "_" + std::get<1>(run.param).name;
    });

TEST(WebcamExample, SaysThatThereIsNoCamera) {
  const std::string picture = std::string(ORV_TEST_OUTPUT_DIR) + "/no_camera.png";
  const std::string said = std::string(ORV_TEST_OUTPUT_DIR) + "/no_camera.txt";
  ASSERT_EQ(std::system(("env -u DISPLAY EXAMPLE_CAMERA=none " + example_program("31_webcam") +
                         " --output '" + picture + "' >'" + said + "'")
                            .c_str()),
            0);
  std::ifstream file(said);
  const std::string text((std::istreambuf_iterator<char>(file)), {});
  EXPECT_EQ(text, "no camera: a test card is shown\n");
}

TEST(ExampleOptions, WrongOnesEndWithUsage) {
  const std::string program = "env -u DISPLAY " + example_program("02_primitives");
  for (const char* options : {"--output", "--size 0x5 --output a.png",
                              "--size 5x16385 --output a.png", "--nothing at", "a"}) {
    const int status = std::system((program + " " + options + " 2>/dev/null").c_str());
    EXPECT_EQ(WEXITSTATUS(status), 2) << options;
  }
}

TEST(ExampleOptions, HelpIsNoError) {
  const std::string program = "env -u DISPLAY " + example_program("02_primitives");
  EXPECT_EQ(std::system((program + " --help | grep -q '^usage: '").c_str()), 0);
  EXPECT_EQ(WEXITSTATUS(std::system((program + " --help >/dev/null").c_str())), 0);
}

TEST(ExampleOptions, WithoutADisplayAndAnOutputThereIsAnError) {
  const std::string program = "env -u DISPLAY " + example_program("02_primitives");
  EXPECT_EQ(WEXITSTATUS(std::system((program + " 2>/dev/null").c_str())), 1);
  EXPECT_EQ(
      WEXITSTATUS(std::system((program + " --output /nonexistent/a.png 2>/dev/null").c_str())), 1);
}

}  // namespace
}  // namespace orv::test
