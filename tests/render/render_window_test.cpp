#include <orv/render/render_window.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <set>

#include <orv/render/offscreen_window.h>

namespace orv::test {
namespace {

TEST(RenderWindowData, Defaults) {
  const RenderWindowData data;
  EXPECT_EQ(data.app_instance, nullptr);
  EXPECT_EQ(data.parent, nullptr);
  EXPECT_EQ(data.native_window, nullptr);
  EXPECT_EQ(data.width, 0);
  EXPECT_EQ(data.height, 0);
  EXPECT_EQ(data.gl_major, 2);
  EXPECT_EQ(data.gl_minor, 1);
  EXPECT_FALSE(data.core_profile);
  EXPECT_FALSE(data.debug_context);
  EXPECT_EQ(data.fullscreen, 0);
  EXPECT_EQ(data.color_bits, 32);
  EXPECT_EQ(data.reserved, 0);
  EXPECT_EQ(data.depth_bits, 32);
  EXPECT_FALSE(data.use_existing_pixel_format);
  EXPECT_STREQ(data.msaa, "Off");
  EXPECT_EQ(sizeof(data.msaa), 64u);
}

TEST(RenderWindow, Defaults) {
  const RenderWindow window;
  EXPECT_STREQ(window.name, "");
  EXPECT_EQ(sizeof(window.name), 128u);
  EXPECT_EQ(window.getrdata(), nullptr);
  EXPECT_FALSE(window.core_profile_granted);
  EXPECT_FALSE(window.check_GL_ATI_meminfo());
  EXPECT_FALSE(window.context_created);
  EXPECT_EQ(window.device, nullptr);
  EXPECT_EQ(window.native_handle, nullptr);
  EXPECT_EQ(window.saved_device, nullptr);
}

TEST(RenderWindow, IdsAreDifferent) {
  const RenderWindow a;
  const RenderWindow b;
  EXPECT_NE(a.getid(), b.getid());
}

TEST(RenderWindow, SizeIsTold) {
  RenderWindow window;
  window.update_size(640, 480);
  EXPECT_EQ(window.get_width(), 640);
  EXPECT_EQ(window.get_height(), 480);
  window.update_size(-1, -2);
  EXPECT_EQ(window.get_width(), 0);
  EXPECT_EQ(window.get_height(), 0);
}

TEST(RenderWindow, RecordCanBeReplaced) {
  RenderWindow window;
  RenderWindowContextRecord record;
  window.setrdata(&record);
  EXPECT_EQ(window.getrdata(), &record);
}

TEST(RenderWindow, NoVisualWithoutAnXServer) {
  if (std::getenv("DISPLAY")) GTEST_SKIP() << "there is an X server here";
  EXPECT_EQ(RenderWindow::find_x11_visual_id(RenderWindowData()), 0u);
}

TEST(RenderWindow, OnlyItsDestructorIsVirtual) {
  EXPECT_TRUE(std::has_virtual_destructor_v<RenderWindow>);
}

TEST(OffscreenWindow, SizeBelowOneCountsAsOne) {
  const OffscreenWindow window(0, -5);
  EXPECT_EQ(window.get_width(), 1);
  EXPECT_EQ(window.get_height(), 1);
}

TEST(OffscreenWindow, HandlesAreNeverNullAndNeverUsedTwice) {
  std::set<void*> handles;
  for (int i = 0; i < 50; ++i) {
    OffscreenWindow window(4, 4);
    EXPECT_NE(window.native_handle(), nullptr);
    EXPECT_TRUE(handles.insert(window.native_handle()).second);
    EXPECT_EQ(handles.count(window.native_handle()), 1u);
  }
}

TEST(OffscreenWindow, ResizeBeforeThereIsAContext) {
  OffscreenWindow window(4, 4);
  EXPECT_TRUE(window.resize(10, 20));
  EXPECT_EQ(window.get_width(), 10);
  EXPECT_EQ(window.get_height(), 20);
  EXPECT_FALSE(window.resize(0, 20));
  EXPECT_FALSE(window.resize(10, -1));
  EXPECT_FALSE(window.resize(16385, 1));
  EXPECT_EQ(window.get_width(), 10);
}

}  // namespace
}  // namespace orv::test
