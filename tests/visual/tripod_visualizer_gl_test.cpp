// The axes as real OpenGL draws them.
#include <orv/gpu/gpu_program_data.h>
#include <orv/scene/camera.h>
#include <orv/visual/tripod_visualizer_camera.h>
#include <orv/visual/tripod_visualizer_object.h>

#include "render/opengl/gl_fixture.h"

namespace orv::test {
namespace {

class TripodVisualizerGlTest : public GlTest {
 protected:
  void SetUp() override {
    GlTest::SetUp();
    if (IsSkipped()) return;
    renderer.set_viewport(0, 0, 0, 64, 64);
  }

  /// How many pixels of a rectangle have the colour.
  int count(const Pixel& color, int x0 = 0, int y0 = 0, int x1 = 64, int y1 = 64) {
    int found = 0;
    for (int y = y0; y < y1; ++y) {
      for (int x = x0; x < x1; ++x) found += context.pixel(x, y) == color;
    }
    return found;
  }
};

using TripodVisualizerObjectGlTest = TripodVisualizerGlTest;
using TripodVisualizerCameraGlTest = TripodVisualizerGlTest;

TEST_P(TripodVisualizerObjectGlTest, AxesStandWhereTheObjectStands) {
  aux::TripodVisualizerObject tripod;
  ASSERT_TRUE(tripod.init(&renderer));
  Object object;
  EXPECT_TRUE(tripod.render(&renderer, &object));
  EXPECT_GT(count(RED, 33, 30, 64, 34), 25) << "x to the right";
  EXPECT_GT(count(GREEN, 30, 33, 34, 64), 25) << "y upwards";
  EXPECT_EQ(count(RED, 0, 0, 31, 64), 0);
  EXPECT_EQ(count(GREEN, 0, 0, 64, 31), 0);

  clear();
  object.set_position(-0.5f, -0.5f, 0.0f);
  object.set_orientation_euler_xyz(0.0f, 0.0f, 90.0f);
  EXPECT_TRUE(tripod.render(&renderer, &object));
  EXPECT_GT(count(RED, 14, 17, 18, 46), 25) << "x turned upwards";
  EXPECT_GT(count(GREEN, 0, 14, 15, 18), 10) << "y turned to the left";
  tripod.cleanup(&renderer);
}

TEST_P(TripodVisualizerObjectGlTest, DepthIsTestedAndTheScaleIsTheirLength) {
  aux::TripodVisualizerObject tripod;
  ASSERT_TRUE(tripod.init(&renderer));
  tripod.set_scale(0.5f);
  Object object;
  EXPECT_TRUE(tripod.render(&renderer, &object));
  EXPECT_EQ(count(RED, 50, 0, 64, 64), 0);
  EXPECT_GT(count(RED, 33, 30, 48, 34), 10);
  renderer.clear_color_depth_buffers_rgba(0, 0, 0, 1, 0);
  EXPECT_TRUE(tripod.render(&renderer, &object));
  EXPECT_EQ(count(RED), 0) << "hidden";
  tripod.cleanup(&renderer);
}

TEST_P(TripodVisualizerCameraGlTest, ShowsTheWorldAsTheCameraIsTurned) {
  aux::TripodVisualizerCamera tripod;
  ASSERT_TRUE(tripod.init(&renderer));
  tripod.set_scale(250.0f);
  Camera camera;
  camera.set_position(900.0f, -50.0f, 3.0f);
  EXPECT_TRUE(tripod.render(&renderer, &camera, 32, 0, 32, 32));
  EXPECT_GT(count(RED, 48, 14, 64, 18), 10) << "x to the right";
  EXPECT_GT(count(GREEN, 46, 16, 50, 32), 10) << "y upwards";
  EXPECT_EQ(count(BLUE), 0) << "z to the eye";
  EXPECT_EQ(count(RED, 0, 0, 32, 64) + count(GREEN, 0, 32, 64, 64), 0) << "the rectangle alone";

  clear();
  camera.set_lookat(vec4(1, 0, 0, 0));
  EXPECT_TRUE(tripod.render(&renderer, &camera, 32, 0, 32, 32));
  EXPECT_GT(count(BLUE, 48, 14, 64, 18), 10) << "seen along x, z lies to the right";
  EXPECT_EQ(count(RED), 0);
  tripod.cleanup(&renderer);
}

TEST_P(TripodVisualizerCameraGlTest, FitsIntoRectanglesOfAnyForm) {
  aux::TripodVisualizerCamera tripod;
  ASSERT_TRUE(tripod.init(&renderer));
  Camera camera;
  EXPECT_TRUE(tripod.render(&renderer, &camera, 0, 0, 64, 16));
  EXPECT_GT(count(RED, 32, 6, 42, 10), 5);
  EXPECT_EQ(count(RED, 42, 0, 64, 64), 0) << "as long as the other";
  EXPECT_EQ(count(GREEN, 0, 16, 64, 64), 0);
  tripod.cleanup(&renderer);
}

TEST_P(TripodVisualizerCameraGlTest, IsNotHiddenAndPutsStateBack) {
  aux::TripodVisualizerCamera tripod;
  ASSERT_TRUE(tripod.init(&renderer));
  renderer.clear_color_depth_buffers_rgba(0, 0, 0, 1, 0);
  Camera camera;
  camera.set_viewport(0, 0, 64, 64);
  camera.bind(&renderer, true, false, true, true, true);
  GpuProgramData program;
  load_color_program(&program);
  ASSERT_TRUE(renderer.gpu_program_bind(&program));
  EXPECT_TRUE(tripod.render(&renderer, &camera, 0, 0, 32, 32));
  EXPECT_GT(count(RED), 10);
  EXPECT_EQ(renderer.get_current_gpu_program(), &program);
  EXPECT_TRUE(context.core().glIsEnabled(GL_DEPTH_TEST));
  const int* viewport = renderer.get_viewport_array(0);
  EXPECT_EQ(std::vector<int>(viewport, viewport + 4), (std::vector<int>{0, 0, 64, 64}));
  EXPECT_EQ(renderer.get_projection_matrix(), camera.get_projection_matrix());
  EXPECT_EQ(renderer.get_modelview_matrix(), camera.get_view_matrix());
  tripod.cleanup(&renderer);
  renderer.gpu_program_unload(&program);
}

ORV_BOTH_PROFILES(TripodVisualizerObjectGlTest);
ORV_BOTH_PROFILES(TripodVisualizerCameraGlTest);

}  // namespace
}  // namespace orv::test
