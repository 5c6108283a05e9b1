#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orv/render/render_window.h>

#include <string>

#include "render/opengl/renderer_opengl.h"
#include "support/fake_back_end.h"
#include "support/fake_gl.h"

namespace orv::test {
namespace {

class Extensions : public testing::Test {
 protected:
  RenderWindow* make_window() {
    renderer_.use_context_back_end(&back_end_);
    RenderWindow* window = renderer_.render_window_alloc();
    RenderWindowData data;
    data.native_window = this;
    EXPECT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
    return window;
  }
  std::vector<std::string> names() {
    std::vector<std::string> all;
    for (unsigned int i = 0; i < renderer_.get_num_extensions(); ++i) {
      all.emplace_back(renderer_.get_extension_name(i));
    }
    return all;
  }

  FakeGl gl_;
  FakeBackEnd back_end_{gl_};
  RendererOpenGL renderer_;
};

TEST_F(Extensions, ListIsEmptyBeforeLoading) {
  EXPECT_EQ(renderer_.get_num_extensions(), 0u);
  EXPECT_EQ(renderer_.get_num_gl_extensions(), 0u);
  EXPECT_EQ(renderer_.get_num_wgl_extensions(), 0u);
  EXPECT_EQ(renderer_.get_extension_name(0), nullptr);
  EXPECT_FALSE(renderer_.is_extension_supported(nullptr, "GL_a"));
}

TEST_F(Extensions, NamesOfOpenGLThenOfTheWindowSystem) {
  gl_.set_extensions({"GL_a", "GL_b"});
  make_window();
  EXPECT_THAT(names(), testing::ElementsAre("GL_a", "GL_b", "FAKE_one", "FAKE_two"));
  EXPECT_EQ(renderer_.get_num_extensions(), 4u);
  EXPECT_EQ(renderer_.get_num_gl_extensions(), 2u);
  EXPECT_EQ(renderer_.get_num_wgl_extensions(), 2u);
  EXPECT_EQ(renderer_.get_num_extensions_reserved(), 0u);
  EXPECT_EQ(renderer_.get_extension_name(4), nullptr);
}

TEST_F(Extensions, BelowThreeTheTextIsSplitAtBlanks) {
  gl_.set_version(2, 1);
  gl_.set_extensions({"GL_a", "", "GL_b"});
  make_window();
  EXPECT_THAT(names(), testing::ElementsAre("GL_a", "GL_b", "FAKE_one", "FAKE_two"));
  EXPECT_EQ(renderer_.get_num_gl_extensions(), 2u);
}

TEST_F(Extensions, NamesAreCutAt127Characters) {
  gl_.set_extensions({std::string(200, 'x')});
  make_window();
  EXPECT_EQ(names()[0], std::string(127, 'x'));
}

TEST_F(Extensions, SupportIsAskedByTheExactName) {
  gl_.set_extensions({"GL_abc"});
  RenderWindow* window = make_window();
  EXPECT_TRUE(renderer_.is_extension_supported(window, "GL_abc"));
  EXPECT_TRUE(renderer_.is_extension_supported(nullptr, "FAKE_two"));
  EXPECT_FALSE(renderer_.is_extension_supported(window, "GL_ab"));
  EXPECT_FALSE(renderer_.is_extension_supported(window, "GL_abcd"));
  EXPECT_FALSE(renderer_.is_extension_supported(window, nullptr));
  EXPECT_TRUE(renderer_.get_extension_name_0("GL_abc"));
  EXPECT_FALSE(renderer_.get_extension_name_0(nullptr));
}

TEST_F(Extensions, FilledListIsNotReadAgain) {
  gl_.set_extensions({"GL_a"});
  RenderWindow* window = make_window();
  gl_.set_extensions({"GL_a", "GL_b"});
  EXPECT_TRUE(renderer_.extensions_load(window));
  EXPECT_EQ(renderer_.get_num_gl_extensions(), 1u);
}

TEST_F(Extensions, WithoutATextLoadingFails) {
  renderer_.use_proc_address([](const char*) -> GlProc { return nullptr; });
  EXPECT_FALSE(renderer_.extensions_load(nullptr));
  EXPECT_EQ(renderer_.get_num_extensions(), 0u);
}

TEST_F(Extensions, WithoutAWindowThereAreNoNamesOfTheWindowSystem) {
  gl_.set_extensions({"GL_a"});
  gl_.attach(renderer_);
  EXPECT_TRUE(renderer_.extensions_load(nullptr));
  EXPECT_EQ(renderer_.get_num_extensions(), 1u);
  EXPECT_EQ(renderer_.get_num_wgl_extensions(), 0u);
}

TEST_F(Extensions, FreeEmptiesTheList) {
  RenderWindow* window = make_window();
  EXPECT_GT(renderer_.get_num_extensions(), 0u);
  EXPECT_TRUE(renderer_.extensions_free(window));
  EXPECT_EQ(renderer_.get_num_extensions(), 0u);
  EXPECT_EQ(renderer_.get_num_gl_extensions(), 0u);
  EXPECT_EQ(renderer_.get_num_wgl_extensions(), 0u);
  EXPECT_TRUE(renderer_.extensions_free(nullptr));
}

TEST_F(Extensions, DestroyingOneWindowsContextEmptiesTheListOfAll) {
  RenderWindow* first = make_window();
  make_window();
  EXPECT_GT(renderer_.get_num_extensions(), 0u);
  renderer_.render_window_destroy_context(first);
  EXPECT_EQ(renderer_.get_num_extensions(), 0u);
}

TEST_F(Extensions, TextOfCoreContextsIsJoinedFromTheNames) {
  gl_.set_version(3, 3, true);
  gl_.set_extensions({"GL_a", "GL_b"});
  ASSERT_TRUE(gl_.start(renderer_));
  EXPECT_STREQ(renderer_.get_gl_extensions(), "GL_a GL_b");
  EXPECT_EQ(renderer_.check_gl_error(false, nullptr), 0u);
}

TEST_F(Extensions, TextOfOtherContextsIsTheDrivers) {
  gl_.set_extensions({"GL_a", "GL_b"});
  ASSERT_TRUE(gl_.start(renderer_));
  EXPECT_STREQ(renderer_.get_gl_extensions(), "GL_a GL_b ");
}

TEST_F(Extensions, MeminfoIsNotedOnTheWindow) {
  gl_.set_extensions({"GL_ATI_meminfo"});
  EXPECT_TRUE(make_window()->check_GL_ATI_meminfo());
  renderer_.extensions_free(nullptr);
  gl_.set_extensions({"GL_a"});
  EXPECT_FALSE(make_window()->check_GL_ATI_meminfo());
}

}  // namespace
}  // namespace orv::test
