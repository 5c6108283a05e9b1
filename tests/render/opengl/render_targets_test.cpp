#include <orv/gpu/gpu_render_target.h>

#include "render/opengl/fake_gl_fixture.h"
#include "support/log_capture.h"

using namespace orv;
using namespace orv::test;
using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::Ge;
using ::testing::IsEmpty;
using ::testing::Le;
using ::testing::SizeIs;

namespace {

class RenderTargetsTest : public FakeGlTest {
 protected:
  void TearDown() override {
    renderer.gpu_render_target_release(nullptr, &target);
    EXPECT_THAT(gl.live_ids(), IsEmpty()) << "every object is deleted";
  }
  bool init_2d(unsigned int num_color = 1, bool renderbuffer = false, bool linear = false,
               bool clamp = true, int msaa = 0, PIXEL_FORMAT format = PF_RGBA_U8) {
    return renderer.gpu_render_target_init_2d(nullptr, &target, 32, 16, format, num_color,
                                              renderbuffer, linear, clamp, msaa);
  }
  bool init_rb(unsigned int num_color = 1, bool depth = true, int msaa = 0) {
    return renderer.gpu_render_target_init_rb(nullptr, &target, 32, 16, PF_RGBA_U8, true, num_color,
                                              depth, msaa);
  }
  Calls images() { return gl.calls_of({"glTexImage"}); }

  GpuRenderTarget target;
};

}  // namespace

// ---- textures ----

TEST_F(RenderTargetsTest, ColorAndDepthAreMadeAndAttached) {
  start();
  ASSERT_TRUE(init_2d(2));
  EXPECT_THAT(
      images(),
      ElementsAre(
          "glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 32, 16, 0, GL_RGBA, GL_UNSIGNED_BYTE, null)",
          "glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 32, 16, 0, GL_RGBA, GL_UNSIGNED_BYTE, null)",
          "glTexImage2D(GL_TEXTURE_2D, 0, GL_DEPTH_COMPONENT24, 32, 16, 0, GL_DEPTH_COMPONENT, "
          "GL_FLOAT, null)"));
  EXPECT_THAT(
      gl.calls_of({"glFramebuffer", "glBindFramebuffer", "glDrawBuffers", "glCheckFramebuffer"}),
      ElementsAre(
          "glBindFramebuffer(GL_FRAMEBUFFER, 4)",
          "glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, 1, 0)",
          "glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT1, GL_TEXTURE_2D, 2, 0)",
          "glFramebufferTexture2D(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_TEXTURE_2D, 3, 0)",
          "glDrawBuffers(2, [GL_COLOR_ATTACHMENT0 GL_COLOR_ATTACHMENT1])",
          "glCheckFramebufferStatus(GL_FRAMEBUFFER)", "glBindFramebuffer(GL_FRAMEBUFFER, 0)"));
  EXPECT_TRUE(gl.called("glActiveTexture(GL_TEXTURE1)")) << "the second texture on unit 1";
}

TEST_F(RenderTargetsTest, RecordTellsOfTheTarget) {
  start();
  ASSERT_TRUE(init_2d(2, false, true, false));
  EXPECT_EQ(32, target.width);
  EXPECT_EQ(16, target.height);
  EXPECT_EQ(2u, target.num_color_targets);
  EXPECT_EQ(PF_RGBA_U8, target.pixel_format);
  EXPECT_EQ(0, target.msaa_samples);
  EXPECT_TRUE(target.linear_filtering);
  EXPECT_FALSE(target.clamp);
  EXPECT_EQ(static_cast<unsigned int>(GL_TEXTURE_2D), target.gl.target);
  EXPECT_FALSE(target.gl.is_rectangle);
  EXPECT_FALSE(target.gl.is_cube);
}

TEST_F(RenderTargetsTest, FiltersAndWrapping) {
  start();
  ASSERT_TRUE(init_2d(1, true, false, true));
  EXPECT_TRUE(gl.called("glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST)"));
  EXPECT_TRUE(gl.called("glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE)"));
  gl.clear();
  ASSERT_TRUE(init_2d(1, true, true, false));
  EXPECT_TRUE(gl.called("glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR)"));
  EXPECT_TRUE(gl.called("glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_REPEAT)"));
}

TEST_F(RenderTargetsTest, RecordsClampTheOldWay) {
  EXPECT_EQ(0x2900u, target.gl.color_wrap) << "GL_CLAMP";
  EXPECT_EQ(0x2900u, target.gl.depth_wrap);
  start();
  for (const bool clamp : {false, true}) {
    ASSERT_TRUE(init_2d(1, false, false, clamp));
    EXPECT_THAT(gl.calls_of({"glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP)"}),
                IsEmpty())
        << "OpenGL is asked for GL_CLAMP_TO_EDGE";
  }
}

TEST_F(RenderTargetsTest, WhatWasBoundIsPutBack) {
  start();
  renderer.texture_bind_2d_by_id(90, 0);
  renderer.texture_bind_2d_by_id(91, 5);
  gl.clear();
  ASSERT_TRUE(init_2d(1));
  const Calls calls = gl.calls_of({"glActiveTexture", "glBindTexture"});
  EXPECT_EQ("glActiveTexture(GL_TEXTURE5)", calls.back());
  EXPECT_EQ("glBindTexture(GL_TEXTURE_2D, 90)", calls[calls.size() - 2]);
}

TEST_F(RenderTargetsTest, ColorTargetsAreCapped) {
  start();
  ASSERT_TRUE(init_2d(100));
  EXPECT_EQ(8u, target.num_color_targets);
  EXPECT_NE(0u, target.gl.color_textures[7]);
  gl.set_integer(GL_MAX_COLOR_ATTACHMENTS, 4);
  ASSERT_TRUE(init_2d(6));
  EXPECT_EQ(4u, target.num_color_targets);
  EXPECT_EQ(0u, target.gl.color_textures[4]);
  gl.set_integer(GL_MAX_COLOR_ATTACHMENTS, 32);
  ASSERT_TRUE(init_2d(~0u));
  EXPECT_EQ(8u, target.num_color_targets);
}

TEST_F(RenderTargetsTest, IntegerFormatsAreTargetsOnly) {
  start();
  ASSERT_TRUE(init_2d(1, true, true, true, 0, PF_RG_I16));
  EXPECT_THAT(images(), ElementsAre("glTexImage2D(GL_TEXTURE_2D, 0, GL_RG16I, 32, 16, 0, "
                                    "GL_RG_INTEGER, GL_SHORT, null)"));
  EXPECT_TRUE(gl.called("glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST)"))
      << "integers cannot be blended between";
}

TEST_F(RenderTargetsTest, SamplesAreCappedAndHaveNoSamplingSettings) {
  start();
  ASSERT_TRUE(init_2d(1, false, true, true, 64));
  EXPECT_EQ(8, target.msaa_samples);
  EXPECT_EQ(static_cast<unsigned int>(GL_TEXTURE_2D_MULTISAMPLE), target.gl.target);
  EXPECT_EQ(2u, gl.calls_of({"glTexImage2DMultisample(GL_TEXTURE_2D_MULTISAMPLE, 8, "}).size());
  for (const std::string& call : gl.calls_of({"glTexParameter"})) {
    EXPECT_TRUE(call.find("_LEVEL") != std::string::npos) << call;
  }
  EXPECT_EQ(4u, gl.calls_of({"glTexParameter"}).size());
  ASSERT_TRUE(init_2d(1, false, false, true, -3));
  EXPECT_EQ(0, target.msaa_samples);
}

TEST_F(RenderTargetsTest, IntegersHaveFewerSamples) {
  start();
  ASSERT_TRUE(init_2d(1, false, false, true, 8, PF_R_U32));
  EXPECT_EQ(4, target.msaa_samples);
}

TEST_F(RenderTargetsTest, WithoutMultisampledTexturesThereAreNoSamples) {
  gl.remove_function("glTexImage2DMultisample");
  start();
  ASSERT_TRUE(init_2d(1, false, false, true, 4));
  EXPECT_EQ(0, target.msaa_samples);
  EXPECT_EQ(static_cast<unsigned int>(GL_TEXTURE_2D), target.gl.target);
}

TEST_F(RenderTargetsTest, DepthMayBeARenderbuffer) {
  start();
  ASSERT_TRUE(init_2d(1, true));
  EXPECT_EQ(0u, target.gl.depth_texture);
  EXPECT_TRUE(gl.called("glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT24, 32, 16)"));
  EXPECT_THAT(gl.calls_of({"glFramebufferRenderbuffer"}), SizeIs(1));
}

TEST_F(RenderTargetsTest, RectanglesClampAndHaveNoSamples) {
  start();
  ASSERT_TRUE(renderer.gpu_render_target_init_rect(nullptr, &target, 8, 8, PF_RGB_U8, 1, false,
                                                   false, false, 4));
  EXPECT_TRUE(target.gl.is_rectangle);
  EXPECT_EQ(0, target.msaa_samples);
  EXPECT_TRUE(
      gl.called("glTexParameteri(GL_TEXTURE_RECTANGLE, GL_TEXTURE_WRAP_S, "
                "GL_CLAMP_TO_EDGE)"));
  EXPECT_THAT(gl.calls_of({"glTexImage2D(GL_TEXTURE_RECTANGLE"}), SizeIs(2));
}

TEST_F(RenderTargetsTest, CubesHaveSixFaces) {
  start();
  ASSERT_TRUE(renderer.gpu_render_target_init_cube(nullptr, &target, 16, PF_RGBA_U8, false, 4,
                                                   false, true));
  EXPECT_TRUE(target.gl.is_cube);
  EXPECT_NE(0u, target.gl_get_color_cube_texture());
  EXPECT_NE(0u, target.gl_get_depth_cube_texture());
  EXPECT_EQ(0u, target.gl_get_color_texture(0));
  EXPECT_THAT(images(), SizeIs(12));
  EXPECT_TRUE(
      gl.called("glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, "
                "GL_TEXTURE_CUBE_MAP_POSITIVE_X, 1, 0)"));
}

TEST_F(RenderTargetsTest, DepthAloneDrawsNoColor) {
  start();
  ASSERT_TRUE(renderer.gpu_render_target_init_depth_2d(nullptr, &target, 8, 8, true, true));
  EXPECT_FALSE(target.has_color);
  EXPECT_THAT(images(), SizeIs(1));
  EXPECT_TRUE(gl.called("glDrawBuffer(GL_NONE)"));
  EXPECT_TRUE(gl.called("glReadBuffer(GL_NONE)"));
  EXPECT_TRUE(gl.called("glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR)"));
  ASSERT_TRUE(renderer.gpu_render_target_init_depth_rect(nullptr, &target, 8, 8, false, true));
  EXPECT_TRUE(target.gl.is_rectangle);
}

TEST_F(RenderTargetsTest, ArraysHaveLayersUpToTheLimit) {
  start();
  LogCapture log;
  ASSERT_TRUE(renderer.gpu_render_target_init_2d_array(nullptr, &target, 300, false, 8, 4,
                                                       PF_RGBA_U8, 0, false, true));
  EXPECT_TRUE(log.contains("number of layers limited to 256"));
  EXPECT_EQ(256, target.depth_layers);
  EXPECT_TRUE(
      gl.called("glTexImage3D(GL_TEXTURE_2D_ARRAY, 0, GL_RGBA, 8, 4, 256, 0, GL_RGBA, "
                "GL_UNSIGNED_BYTE, null)"));
  EXPECT_TRUE(
      gl.called("glFramebufferTextureLayer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, 1, 0, 0)"));
  log.clear();
  ASSERT_TRUE(renderer.gpu_render_target_init_2d_array(nullptr, &target, 256, false, 8, 4,
                                                       PF_RGBA_U8, 0, false, true));
  EXPECT_FALSE(log.contains("limited"));
  EXPECT_FALSE(renderer.gpu_render_target_init_2d_array(nullptr, &target, 0, false, 8, 4,
                                                        PF_RGBA_U8, 0, false, true));
}

// ---- renderbuffers ----

TEST_F(RenderTargetsTest, RenderbuffersHaveSizedFormats) {
  start();
  ASSERT_TRUE(init_rb(2));
  EXPECT_EQ(2u, target.gl.num_color_renderbuffers);
  EXPECT_THAT(gl.calls_of({"glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, 32, 16)"}), SizeIs(2));
  EXPECT_TRUE(gl.called("glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT, 32, 16)"));
  ASSERT_TRUE(
      renderer.gpu_render_target_init_rb(nullptr, &target, 4, 4, PF_RGB_U8, true, 1, false, 0));
  EXPECT_TRUE(gl.called("glRenderbufferStorage(GL_RENDERBUFFER, GL_RGB8, 4, 4)"));
  EXPECT_EQ(0u, target.gl.depth_renderbuffer);
  EXPECT_FALSE(target.has_depth);
}

TEST_F(RenderTargetsTest, RenderbuffersAndTheirSamplesAreCapped) {
  start();
  ASSERT_TRUE(init_rb(20, true, 20));
  EXPECT_EQ(8u, target.gl.num_color_renderbuffers);
  EXPECT_EQ(8, target.msaa_samples);
  EXPECT_THAT(gl.calls_of({"glRenderbufferStorageMultisample(GL_RENDERBUFFER, 8, GL_RGBA8, "}),
              SizeIs(8));
}

TEST_F(RenderTargetsTest, IntegerRenderbuffersHaveFewerSamples) {
  start();
  ASSERT_TRUE(
      renderer.gpu_render_target_init_rb(nullptr, &target, 4, 4, PF_R_U32, true, 1, true, 8));
  EXPECT_EQ(4, target.msaa_samples);
  ASSERT_TRUE(
      renderer.gpu_render_target_init_rb(nullptr, &target, 4, 4, PF_R_U32, false, 1, true, 8));
  EXPECT_EQ(8, target.msaa_samples) << "no integers without colour";
}

TEST_F(RenderTargetsTest, OldDriversAreNotAskedForTheLimitOfIntegers) {
  gl.set_extensions({});
  start(3, 0, false);
  renderer.gpu_render_target_init_rb(nullptr, &target, 4, 4, PF_R_U32, true, 1, false, 8);
  for (const std::string& call : gl.calls_of({"glGetIntegerv"})) {
    EXPECT_EQ(std::string::npos, call.find("GL_MAX_INTEGER_SAMPLES"));
  }
}

TEST_F(RenderTargetsTest, DepthRenderbufferAlone) {
  start();
  ASSERT_TRUE(
      renderer.gpu_render_target_init_rb(nullptr, &target, 4, 4, PF_RGB_U8, false, 4, true, 0));
  EXPECT_EQ(0u, target.gl.num_color_renderbuffers);
  EXPECT_TRUE(gl.called("glDrawBuffer(GL_NONE)"));
}

// ---- failures ----

TEST_F(RenderTargetsTest, IncompleteTargetsFailAndLeaveNothing) {
  start();
  gl.framebuffer_status = 0x8CD6;
  LogCapture log;
  EXPECT_FALSE(init_2d());
  EXPECT_TRUE(log.contains("OpenGL renderer - GPU render target - FBO creation error: 8CD6"));
  EXPECT_THAT(gl.live_ids(), IsEmpty());
  EXPECT_EQ(nullptr, renderer.gpu_render_target_create_depth_2d(nullptr, 4, 4, true, true));
  EXPECT_TRUE(
      log.contains("GPU render target - create depth only target - FBO creation error: 8CD6"));
  EXPECT_EQ(0u, renderer.gpu_render_target_get_num());
  log.clear();
  EXPECT_FALSE(init_rb());
  EXPECT_TRUE(log.contains("[OpenGL] GPU render target - FBO creation error: 8CD6"));
  EXPECT_EQ("glBindFramebuffer(GL_FRAMEBUFFER, 0)", gl.calls_of({"glBindFramebuffer"}).back());
}

TEST_F(RenderTargetsTest, SizesAndFormatsAreTested) {
  start();
  const auto init = [&](int width, int height, PIXEL_FORMAT format) {
    return renderer.gpu_render_target_init_2d(nullptr, &target, width, height, format, 1, false,
                                              false, false, 0);
  };
  EXPECT_FALSE(init(0, 4, PF_RGBA_U8));
  EXPECT_FALSE(init(4, -4, PF_RGBA_U8));
  EXPECT_FALSE(init(4097, 4, PF_RGBA_U8));
  EXPECT_FALSE(init(4, 4, PF_UNKNOWN));
  EXPECT_FALSE(init(4, 4, static_cast<PIXEL_FORMAT>(31)));
  EXPECT_FALSE(renderer.gpu_render_target_init_2d(nullptr, nullptr, 4, 4, PF_RGBA_U8, 1, false,
                                                  false, false, 0));
  EXPECT_FALSE(renderer.gpu_render_target_init_2d_array(nullptr, nullptr, 4, false, 4, 4,
                                                        PF_RGBA_U8, 0, false, false));
  EXPECT_EQ(0, gl.count("glGenTextures"));
}

TEST_F(RenderTargetsTest, OldDriversHaveNoTargets) {
  gl.set_extensions({});
  start(2, 1, false);
  EXPECT_FALSE(init_2d());
  EXPECT_FALSE(init_rb());
  EXPECT_FALSE(renderer.gpu_render_target_resize(&target, 4, 4));
  EXPECT_THAT(take_changes(), IsEmpty());
}

// ---- new size and end ----

TEST_F(RenderTargetsTest, SecondCreationReplacesTheFirst) {
  start();
  ASSERT_TRUE(init_2d(3));
  ASSERT_TRUE(init_2d(1, true));
  EXPECT_EQ(3u, gl.live_ids().size()) << "colour, depth and framebuffer";
}

TEST_F(RenderTargetsTest, NewSizeKeepsTheFramebuffer) {
  start();
  ASSERT_TRUE(init_2d(1));
  const unsigned int fbo = target.gl.fbo;
  gl.clear();
  EXPECT_TRUE(renderer.gpu_render_target_resize(&target, 64, 8));
  EXPECT_EQ(64, target.width);
  EXPECT_EQ(8, target.height);
  EXPECT_EQ(fbo, target.gl.fbo);
  EXPECT_THAT(images(), ElementsAre("glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, 64, 8, 0, GL_RGBA, "
                                    "GL_UNSIGNED_BYTE, null)",
                                    "glTexImage2D(GL_TEXTURE_2D, 0, GL_DEPTH_COMPONENT24, 64, 8, "
                                    "0, GL_DEPTH_COMPONENT, GL_FLOAT, null)"));
  EXPECT_EQ(0, gl.count("glGenTextures") + gl.count("glGenFramebuffers"));
}

TEST_F(RenderTargetsTest, NewSizesOfEveryKind) {
  start();
  ASSERT_TRUE(init_rb(2, true, 4));
  gl.clear();
  EXPECT_TRUE(renderer.gpu_render_target_resize(&target, 6, 7));
  EXPECT_THAT(
      gl.calls_of({"glRenderbufferStorage"}),
      ElementsAre(
          "glRenderbufferStorageMultisample(GL_RENDERBUFFER, 4, GL_RGBA8, 6, 7)",
          "glRenderbufferStorageMultisample(GL_RENDERBUFFER, 4, GL_RGBA8, 6, 7)",
          "glRenderbufferStorageMultisample(GL_RENDERBUFFER, 4, GL_DEPTH_COMPONENT, 6, 7)"));
  ASSERT_TRUE(init_2d(1, true, false, true, 4));
  gl.clear();
  EXPECT_TRUE(renderer.gpu_render_target_resize(&target, 6, 7));
  EXPECT_TRUE(
      gl.called("glTexImage2DMultisample(GL_TEXTURE_2D_MULTISAMPLE, 4, GL_RGBA, 6, 7, GL_TRUE)"));
  ASSERT_TRUE(renderer.gpu_render_target_init_rect(nullptr, &target, 8, 8, PF_RGB_U8, 1, true,
                                                   false, false, 0));
  gl.clear();
  EXPECT_TRUE(renderer.gpu_render_target_resize(&target, 6, 7));
  EXPECT_THAT(gl.calls_of({"glTexImage2D(GL_TEXTURE_RECTANGLE, 0, GL_RGB, 6, 7, "}), SizeIs(1));
}

TEST_F(RenderTargetsTest, CubesStaySquare) {
  start();
  ASSERT_TRUE(
      renderer.gpu_render_target_init_cube(nullptr, &target, 16, PF_RGBA_U8, true, 0, false, true));
  gl.clear();
  EXPECT_FALSE(renderer.gpu_render_target_resize(&target, 8, 4));
  EXPECT_TRUE(renderer.gpu_render_target_resize(&target, 8, 8));
  EXPECT_THAT(images(), SizeIs(6));
}

TEST_F(RenderTargetsTest, SizesThatCannotBeAreRefused) {
  start();
  ASSERT_TRUE(init_2d());
  for (const auto& [width, height] : {std::pair{0, 4}, {4, 0}, {-1, 4}, {4097, 4}, {4, 4097}}) {
    EXPECT_FALSE(renderer.gpu_render_target_resize(&target, width, height));
  }
  EXPECT_EQ(32, target.width);
  EXPECT_FALSE(renderer.gpu_render_target_resize(nullptr, 4, 4));
}

TEST_F(RenderTargetsTest, ReleasedTargetsHaveNothing) {
  start();
  ASSERT_TRUE(init_2d(2));
  EXPECT_TRUE(renderer.gpu_render_target_release(nullptr, &target));
  EXPECT_EQ(0u, target.gl.fbo);
  EXPECT_EQ(0u, target.gl.color_textures[0]);
  EXPECT_EQ(0u, target.gl.depth_texture);
  EXPECT_THAT(gl.live_ids(), IsEmpty());
  EXPECT_TRUE(renderer.gpu_render_target_release(nullptr, &target));
  EXPECT_FALSE(renderer.gpu_render_target_release(nullptr, nullptr));
}

TEST_F(RenderTargetsTest, BoundTargetIsUnboundBeforeItGoes) {
  start();
  ASSERT_TRUE(init_2d());
  renderer.gpu_render_target_bind(&target);
  gl.clear();
  renderer.gpu_render_target_release(nullptr, &target);
  const Calls calls = take_changes();
  EXPECT_EQ("glBindFramebuffer(GL_FRAMEBUFFER, 0)", calls.front());
  EXPECT_EQ("glDeleteFramebuffers(1, [3])", calls.back());
}

TEST_F(RenderTargetsTest, CreatedAndKilledTargetsLeaveNothing) {
  start();
  GpuRenderTarget* made =
      renderer.gpu_render_target_create_2d(nullptr, 4, 4, PF_RGBA_U8, 1, false, false, true, 0);
  ASSERT_NE(nullptr, made);
  EXPECT_TRUE(renderer.gpu_render_target_kill(nullptr, made));
  EXPECT_EQ(0u, renderer.gpu_render_target_get_num());
  EXPECT_THAT(gl.live_ids(), IsEmpty());
}
