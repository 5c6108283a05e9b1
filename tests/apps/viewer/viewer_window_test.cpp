// The viewer in a window, with a hand on mouse and keys.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>

#include "apps/viewer/picture_shape.h"
#include "apps/viewer/viewer_run.h"
#include "apps/viewer/viewer_window.h"
#include "support/x11_window.h"

namespace orv::test {
namespace {

constexpr const char* red_triangle =
    "mtllib m.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl red\nf 1 2 3\n";

class ViewerWindowTest : public testing::Test {
 protected:
  void SetUp() override {
    if (!std::getenv("DISPLAY")) GTEST_SKIP() << "no X server";
    if (std::system("xdotool version >/dev/null 2>&1") != 0) GTEST_SKIP() << "no xdotool";
  }

  static bool is_alike(const Picture& a, const Picture& b) {
    return compare_pictures(a, b, {8, 0.995, 255}).empty();
  }

  TempFolder folder_;
};

TEST_F(ViewerWindowTest, KeysSwitchWireframeGridAndAxes) {
  ViewerWindow window(folder_, viewer_data("obj/box.obj") + " --size 320x240");
  ASSERT_TRUE(window.is_open()) << window.err();
  const Picture plain = window.shoot();
  ASSERT_EQ(plain.width, 320);
  ASSERT_EQ(plain.height, 240);
  const PictureShape shape = shape_of(plain);
  EXPECT_GT(shape.covered, 0.1f);

  window.press("w");
  const Picture wire = window.shoot();
  EXPECT_LT(shape_of(wire).covered, shape.covered * 0.5f);
  window.press("w");
  EXPECT_TRUE(is_alike(window.shoot(), plain));

  window.press("g");
  EXPECT_GT(shape_of(window.shoot()).width(), shape.width() * 1.1f);
  window.press("g");
  window.press("a");
  const Picture axes = window.shoot();
  EXPECT_NE(compare_pictures(axes, plain, {8, 0.9995, 255}), "");
  EXPECT_GT(shape_of(axes).covered, shape.covered);
  window.press("a");
  EXPECT_TRUE(is_alike(window.shoot(), plain));

  window.press("Escape");
  EXPECT_EQ(window.wait_for_end(), 0);
  EXPECT_EQ(window.err(), "");
}

TEST_F(ViewerWindowTest, MouseOrbitsAndWheelZooms) {
  ViewerWindow window(folder_, viewer_data("obj/spider.obj") + " --size 320x240");
  ASSERT_TRUE(window.is_open()) << window.err();
  const Picture first = window.shoot();
  window.drag(64, 24);
  const Picture turned = window.shoot();
  EXPECT_FALSE(is_alike(turned, first));
  EXPECT_NEAR(shape_of(turned).covered, shape_of(first).covered, 0.1f) << "it only turned";

  window.press("f");
  EXPECT_TRUE(is_alike(window.shoot(), first)) << "framed as at first";
  window.turn_wheel(false);
  window.turn_wheel(false);
  window.turn_wheel(false);
  EXPECT_LT(shape_of(window.shoot()).width(), shape_of(first).width() * 0.85f);
  window.press("q");
  EXPECT_EQ(window.wait_for_end(), 0);
}

TEST_F(ViewerWindowTest, MotionWithoutTheButtonAndOtherKeysChangeNothing) {
  ViewerWindow window(folder_, viewer_data("obj/box.obj") + " --size 320x240");
  ASSERT_TRUE(window.is_open()) << window.err();
  const Picture first = window.shoot();
  ASSERT_EQ(std::system("xdotool mousemove_relative -- 20 20"), 0);
  window.press("x");
  window.press("Left");
  EXPECT_TRUE(is_alike(window.shoot(), first));
}

TEST_F(ViewerWindowTest, KeyThatIsHeldActsOnce) {
  ViewerWindow window(folder_, viewer_data("obj/box.obj") + " --size 320x240");
  ASSERT_TRUE(window.is_open()) << window.err();
  window.hold("r");
  window.press("n");
  ASSERT_TRUE(window.wait_for("there is one file only"));
  const std::string said = window.out();
  const std::size_t first = said.find("loaded again");
  ASSERT_NE(first, std::string::npos) << said;
  EXPECT_EQ(said.find("loaded again", first + 1), std::string::npos) << said;
}

TEST_F(ViewerWindowTest, KeysWithCtrlAltOrTheSystemsKeyDoNothing) {
  ViewerWindow window(folder_, viewer_data("obj/box.obj") + " --size 320x240");
  ASSERT_TRUE(window.is_open()) << window.err();
  for (const char* chord : {"ctrl+s", "alt+r", "super+r", "ctrl+q", "ctrl+alt+q"}) {
    window.press(chord);
  }
  window.press("n");
  ASSERT_TRUE(window.wait_for("there is one file only")) << window.err();
  EXPECT_EQ(window.out(), "there is one file only\n");
  window.press("shift+r");
  EXPECT_TRUE(window.wait_for("loaded again")) << "a capital letter is that letter";
}

TEST_F(ViewerWindowTest, ReloadShowsTheChangedFile) {
  folder_.write("m.mtl", "newmtl red\nKd 1 0 0\n");
  folder_.write("t.obj", red_triangle);
  ViewerWindow window(folder_, "t.obj --size 320x240");
  ASSERT_TRUE(window.is_open()) << window.err();
  const Picture red = window.shoot();
  folder_.write("m.mtl", "newmtl red\nKd 0 1 0\n");
  window.press("r");
  ASSERT_TRUE(window.wait_for("loaded again: t.obj"));
  const Picture green = window.shoot();
  EXPECT_FALSE(is_alike(red, green));
  EXPECT_NEAR(shape_of(red).covered, shape_of(green).covered, 0.01f);
}

TEST_F(ViewerWindowTest, ReloadOfABrokenFileKeepsTheLastGoodOneAndSaysWhy) {
  folder_.write("m.mtl", "newmtl red\nKd 1 0 0\n");
  folder_.write("t.obj", red_triangle);
  ViewerWindow window(folder_, "t.obj --size 320x240");
  ASSERT_TRUE(window.is_open()) << window.err();
  const Picture first = window.shoot();

  folder_.write("t.obj", "v 0 0 0\nv 1 0");
  window.press("r");
  ASSERT_TRUE(window.wait_for_error("t.obj: broken or empty file: ")) << window.err();
  EXPECT_TRUE(is_alike(window.shoot(), first));
  std::remove(folder_.file("t.obj").c_str());
  window.press("r");
  ASSERT_TRUE(window.wait_for_error("t.obj: No such file")) << window.err();
  EXPECT_TRUE(is_alike(window.shoot(), first));
  const std::string said = window.err();
  EXPECT_EQ(std::count(said.begin(), said.end(), '\n'), 2) << said;

  folder_.write("t.obj", red_triangle);
  window.press("r");
  ASSERT_TRUE(window.wait_for("loaded again: t.obj"));
  EXPECT_TRUE(is_alike(window.shoot(), first));
  window.press("q");
  EXPECT_EQ(window.wait_for_end(), 0);
}

TEST_F(ViewerWindowTest, NextShowsEachFileInTurnAndSkipsNone) {
  folder_.write("broken.stl", "short");
  ViewerWindow window(folder_, viewer_data("obj/box.obj") + " broken.stl " +
                                   viewer_data("obj/spider.obj") + " --size 320x240");
  ASSERT_TRUE(window.is_open()) << window.err();
  const Picture box = window.shoot();
  window.press("n");
  ASSERT_TRUE(window.wait_for_error("broken.stl: ")) << window.err();
  EXPECT_TRUE(is_alike(window.shoot(), box)) << "the last good one stays";
  window.press("space");
  ASSERT_TRUE(window.wait_for("showing " ORV_TEST_DATA_DIR "/obj/spider.obj"));
  EXPECT_FALSE(is_alike(window.shoot(), box));
  window.press("n");
  ASSERT_TRUE(window.wait_for("showing " ORV_TEST_DATA_DIR "/obj/box.obj"));
  EXPECT_TRUE(is_alike(window.shoot(), box));
}

TEST_F(ViewerWindowTest, HelpIsDrawnOrWhereItCannotBePrinted) {
  ViewerWindow core(folder_, viewer_data("obj/box.obj") + " --size 320x240 --profile core");
  ASSERT_TRUE(core.is_open()) << core.err();
  core.press("h");
  EXPECT_TRUE(core.wait_for("wireframe on and off"));
  core.press("q");
  EXPECT_EQ(core.wait_for_end(), 0);
}

TEST_F(ViewerWindowTest, FollowsTheSizeOfTheWindow) {
  ViewerWindow window(folder_, viewer_data("obj/box.obj") + " --size 320x240");
  ASSERT_TRUE(window.is_open()) << window.err();
  const PictureShape first = shape_of(window.shoot());
  window.resize(480, 360);
  const Picture larger = window.shoot();
  EXPECT_EQ(larger.width, 480);
  EXPECT_EQ(larger.height, 360);
  EXPECT_NEAR(shape_of(larger).width(), first.width(), 0.02f);
  EXPECT_NEAR(shape_of(larger).height(), first.height(), 0.02f);
}

TEST_F(ViewerWindowTest, SameFramingOnScreensOfScaleOneOneAndAQuarterAndTwo) {
  X11Display display;
  ASSERT_TRUE(display.ok());
  struct Scale {
    const char* resources;
    int width;
    int height;
  };
  PictureShape first;
  for (const Scale& scale : {Scale{"Xft.dpi: 96\n", 320, 240}, Scale{"Xft.dpi: 120\n", 400, 300},
                             Scale{"Xft.dpi: 192\n", 640, 480}}) {
    display.set_resources(scale.resources);
    SCOPED_TRACE(scale.resources);
    folder_.write("scaled.png", "");
    const std::string command = "cd '" + folder_.path() + "' && " + start_in_window +
                                viewer_data("obj/spider.obj") +
                                " --size 320x240 --window --frames 2 --output scaled.png";
    EXPECT_EQ(std::system(command.c_str()), 0);
    const Picture picture = read_picture(folder_.file("scaled.png"));
    EXPECT_EQ(picture.width, scale.width);
    EXPECT_EQ(picture.height, scale.height);
    const PictureShape shape = shape_of(picture);
    if (scale.width == 320) first = shape;
    EXPECT_NEAR(shape.left, first.left, 0.012f);
    EXPECT_NEAR(shape.right, first.right, 0.012f);
    EXPECT_NEAR(shape.bottom, first.bottom, 0.012f);
    EXPECT_NEAR(shape.top, first.top, 0.012f);
  }
  display.set_resources("");
}

TEST_F(ViewerWindowTest, FramesEndTheProgramAndStatsArePrinted) {
  TempFolder folder;
  const std::string command = "cd '" + folder.path() + "' && " + start_in_window +
                              viewer_data("obj/box.obj") +
                              " --size 100x80 --frames 4 --stats >out.txt 2>err.txt";
  EXPECT_EQ(std::system(command.c_str()), 0);
  EXPECT_NE(folder.read("out.txt").find("median of 3"), std::string::npos);
  EXPECT_EQ(folder.read("err.txt"), "");
}

}  // namespace
}  // namespace orv::test
