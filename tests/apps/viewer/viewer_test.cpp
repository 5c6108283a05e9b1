// What the keys do to the files, without a window and without OpenGL.
#include "viewer/viewer.h"

#include <gtest/gtest.h>
#include <orv/orv.h>

#include <algorithm>

#include "support/temp_folder.h"

namespace viewer {
namespace {

constexpr const char* triangle = "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 3\n";

class ViewerTest : public testing::Test {
 protected:
  ViewerTest() { log_.start(false); }
  ~ViewerTest() override {
    if (viewer_) viewer_->stop(nullptr);
    viewer_.reset();
    orv::core::stop(nullptr);
  }

  void open(const std::vector<std::string>& names) {
    Options options;
    for (const std::string& name : names) options.files.push_back(folder_.file(name));
    options.stats = true;  // counts of what is shown
    viewer_ = std::make_unique<Viewer>(options, log_);
    std::string reason;
    ASSERT_TRUE(viewer_->load_first(&reason)) << reason;
  }
  /// Presses a key and keeps what is printed.
  void press(Action action) {
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    viewer_->act(action);
    out_ = testing::internal::GetCapturedStdout();
    err_ = testing::internal::GetCapturedStderr();
  }
  std::string get_file_stats() {
    testing::internal::CaptureStdout();
    viewer_->print_file_stats();
    return testing::internal::GetCapturedStdout();
  }
  void expect_kept(const std::string& why) {
    EXPECT_EQ(out_, "");
    EXPECT_NE(err_.find(why), std::string::npos) << err_;
    EXPECT_NE(err_.find("(still showing what was loaded before)"), std::string::npos) << err_;
    EXPECT_EQ(std::count(err_.begin(), err_.end(), '\n'), 1) << err_;
    EXPECT_NE(get_file_stats().find("triangles  1\n"), std::string::npos);
  }

  orv::test::TempFolder folder_;
  LogTap log_;
  std::unique_ptr<Viewer> viewer_;
  std::string out_;
  std::string err_;
};

TEST_F(ViewerTest, ReloadKeepsTheLastGoodOneWhenNothingCanBeSeen) {
  folder_.write("a.obj", triangle);
  open({"a.obj"});
  folder_.write("a.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 9\n");
  press(Action::RELOAD);
  expect_kept("a.obj: broken file: Vertex indices out of bounds");
}

TEST_F(ViewerTest, ReloadKeepsTheLastGoodOneWhenAPartIsBroken) {
  folder_.write("a.obj", triangle);
  open({"a.obj"});
  folder_.write("a.obj", std::string(triangle) + "f 3 2 9\n");
  press(Action::RELOAD);
  expect_kept("a.obj: broken file: Vertex indices out of bounds");
}

TEST_F(ViewerTest, ReloadDoesNotTurnToTheLoaderThatTakesMore) {
  folder_.write("a.obj", triangle);
  open({"a.obj"});
  folder_.write("a.obj", std::string(triangle) + "f 1 2 0\n");
  press(Action::RELOAD);
  expect_kept("a.obj: broken file: Failed parse `f' line");
  folder_.write("a.obj", std::string(triangle) + "f 3 2 1\n");
  press(Action::RELOAD);
  EXPECT_EQ(err_, "");
  EXPECT_NE(out_.find("loaded again: "), std::string::npos) << out_;
  EXPECT_NE(out_.find("triangles  2\n"), std::string::npos) << out_;
}

TEST_F(ViewerTest, ReloadKeepsTheLastGoodOneOfAnStlFileThatIsCut) {
  std::string stl = std::string(80, ' ') + std::string("\1\0\0\0", 4) + std::string(50, '\0');
  stl[84 + 24 + 2] = '\x80', stl[84 + 24 + 3] = '\x3f';  // x of the second corner
  stl[84 + 40 + 2] = '\x80', stl[84 + 40 + 3] = '\x3f';  // y of the third one
  folder_.write("a.stl", stl);
  open({"a.stl"});
  stl[80] = 2;
  folder_.write("a.stl", stl);
  press(Action::RELOAD);
  expect_kept("a.stl: broken file: it ends after 1 of its 2 triangles");
}

TEST_F(ViewerTest, ReloadOfAFileThatWasBrokenFromTheFirstShowsWhatCanBeRead) {
  folder_.write("a.obj", std::string(triangle) + "f 1 2 0\n");
  testing::internal::CaptureStderr();
  open({"a.obj"});
  EXPECT_NE(testing::internal::GetCapturedStderr().find("shown as far as it can be read"),
            std::string::npos);
  folder_.write("a.obj", std::string(triangle) + "f 3 2 1\nf 1 2 0\n");
  press(Action::RELOAD);
  EXPECT_NE(out_.find("loaded again: "), std::string::npos) << out_;
  EXPECT_NE(err_.find("shown as far as it can be read: Failed parse"), std::string::npos) << err_;
  folder_.write("a.obj", triangle);
  press(Action::RELOAD);
  EXPECT_EQ(err_, "");
  folder_.write("a.obj", std::string(triangle) + "f 1 2 0\n");
  press(Action::RELOAD);
  expect_kept("a.obj: broken file: Failed parse");
}

TEST_F(ViewerTest, ReloadWithoutATextureShowsTheModelAndSaysWhatIsMissing) {
  folder_.write("a.obj", "mtllib m.mtl\nusemtl m\n" + std::string(triangle));
  folder_.write("m.mtl", "newmtl m\n");
  open({"a.obj"});
  folder_.write("m.mtl", "newmtl m\nmap_Kd gone.png\n");
  press(Action::RELOAD);
  EXPECT_NE(out_.find("loaded again: "), std::string::npos) << out_;
  EXPECT_NE(err_.find("cannot load its texture gone.png: "), std::string::npos) << err_;
}

TEST_F(ViewerTest, TitleNamesTheFileThatIsShownAlsoBehindOneThatCannotBe) {
  folder_.write("a.obj", triangle);
  folder_.write("b.stl", "short");
  folder_.write("c.obj", triangle);
  open({"a.obj", "b.stl", "c.obj"});
  EXPECT_EQ(viewer_->get_title(), "a.obj - orv-viewer (1 of 3)");
  press(Action::NEXT_FILE);
  EXPECT_NE(err_.find("b.stl: broken or empty file: "), std::string::npos) << err_;
  EXPECT_EQ(viewer_->get_title(), "a.obj - orv-viewer (1 of 3)");
  press(Action::RELOAD);
  EXPECT_NE(out_.find("loaded again: "), std::string::npos) << out_;
  press(Action::NEXT_FILE);
  EXPECT_EQ(viewer_->get_title(), "c.obj - orv-viewer (3 of 3)");
  press(Action::NEXT_FILE);
  EXPECT_EQ(viewer_->get_title(), "a.obj - orv-viewer (1 of 3)");
}

TEST_F(ViewerTest, NameWithALineBreakIsSaidInOneLine) {
  folder_.write("a\nb.obj", triangle);
  open({"a\nb.obj"});
  EXPECT_EQ(viewer_->get_title(), "a?b.obj - orv-viewer");
  press(Action::RELOAD);
  EXPECT_NE(out_.find("a?b.obj\n"), std::string::npos) << out_;
  EXPECT_EQ(out_.find("a\nb"), std::string::npos) << out_;
  folder_.write("a\nb.obj", "");
  press(Action::RELOAD);
  EXPECT_EQ(std::count(err_.begin(), err_.end(), '\n'), 1) << err_;
}

}  // namespace
}  // namespace viewer
