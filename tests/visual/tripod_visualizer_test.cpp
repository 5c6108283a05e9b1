#include <orv/geometry/polyline.h>
#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/gpu_program_mgr.h>
#include <orv/math/mat4.h>
#include <orv/scene/camera.h>
#include <orv/visual/tripod_visualizer_camera.h>
#include <orv/visual/tripod_visualizer_object.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "support/held.h"
#include "support/log_capture.h"
#include "support/near.h"
#include "support/vtable_slot.h"
#include "visual/draw_watcher.h"

namespace orv {
namespace {

using aux::TripodVisualizer;
using aux::TripodVisualizerCamera;
using aux::TripodVisualizerObject;
using test::DrawWatcher;
using test::Held;
using test::LogCapture;
using test::near;
using test::vtable_slot;
using testing::Contains;
using testing::ElementsAre;

constexpr vec4 ORIGIN(0, 0, 0, 1), RED(1, 0, 0, 1), GREEN(0, 1, 0, 1), BLUE(0, 0, 1, 1);

GpuProgram* tripod_program() {
  return static_cast<GpuProgram*>(GpuProgramMgr::get()->get_resource("ORV_tripod_visualizer_prog"));
}

/// Has a version of OpenGL, and gives its viewport.
class VersionRenderer : public DrawWatcher {
 public:
  bool is_api_version_at_least(int wanted_major, int wanted_minor) override {
    return major > wanted_major || (major == wanted_major && minor >= wanted_minor);
  }
  bool get_viewport(int* x, int* y, int* width, int* height) override {
    const int* viewport = get_viewport_array(0);
    *x = viewport[0];
    *y = viewport[1];
    *width = viewport[2];
    *height = viewport[3];
    return true;
  }
  bool geometry_vbo_draw(GeometryCore* geometry) override {
    projection = get_projection_matrix();
    view = get_modelview_matrix();
    return DrawWatcher::geometry_vbo_draw(geometry);
  }
  int major = 2, minor = 1;
  mat4 projection, view;
};

template <class Visualizer>
class TripodTest : public testing::Test {
 protected:
  void TearDown() override {
    tripod.cleanup(&renderer);
    GpuProgramMgr::get()->stop(nullptr);
  }
  VersionRenderer renderer;
  Visualizer tripod;
};

class TripodVisualizerTest : public TripodTest<TripodVisualizer> {};
class TripodVisualizerObjectTest : public TripodTest<TripodVisualizerObject> {};
class TripodVisualizerCameraTest : public TripodTest<TripodVisualizerCamera> {};

// ---- init and cleanup ----

TEST_F(TripodVisualizerTest, OperationsStandInTheirOrder) {
  EXPECT_EQ(vtable_slot(&TripodVisualizer::init), 2u);
  EXPECT_EQ(vtable_slot(&TripodVisualizer::cleanup), 3u);
}

TEST_F(TripodVisualizerTest, AxesAreRedGreenAndBlue) {
  EXPECT_EQ(tripod.get_axes(), nullptr);
  EXPECT_EQ(tripod.get_scale(), 1.0f);
  tripod.set_scale(2.0f);
  ASSERT_TRUE(tripod.init(&renderer));
  const Polyline& axes = *tripod.get_axes();
  ASSERT_EQ(tripod.get_axes()->get_num_vertices(nullptr), 6u);
  EXPECT_EQ(tripod.get_axes()->get_polyline_data()->get_primitive_type(), PRIMITIVE_LINES);
  const vec4 ends[] = {vec4(2, 0, 0, 1), vec4(0, 2, 0, 1), vec4(0, 0, 2, 1)};
  const vec4 colors[] = {RED, GREEN, BLUE};
  for (unsigned int i = 0; i < 3; ++i) {
    EXPECT_EQ(axes.get_vertex_position(2 * i), ORIGIN);
    EXPECT_EQ(axes.get_vertex_position(2 * i + 1), ends[i]);
    EXPECT_EQ(axes.get_vertex_color(2 * i), colors[i]);
    EXPECT_EQ(axes.get_vertex_color(2 * i + 1), colors[i]);
  }
  tripod.set_scale(5.0f);
  EXPECT_EQ(axes.get_vertex_position(3), vec4(0, 5, 0, 1)) << "at once";
}

TEST_F(TripodVisualizerTest, ProgramIsThatOfTheVersion) {
  const struct {
    int major, minor;
    const char* head;
    const char* word;
  } rows[] = {{4, 5, "#version 150\n", "in vec4 orvex_Position;"},
              {3, 2, "#version 150\n", "in vec4 orvex_Position;"},
              {3, 1, "#version 130\n", "in vec4 orvex_Position;"},
              {3, 0, "#version 130\n", "in vec4 orvex_Position;"},
              {2, 1, "#version 120\n", "attribute vec4 orvex_Position;"}};
  for (const auto& row : rows) {
    renderer.major = row.major;
    renderer.minor = row.minor;
    ASSERT_TRUE(tripod.init(&renderer));
    ASSERT_NE(tripod_program(), nullptr);
    const std::string text = tripod_program()->get_shader_source_code(GPU_SHADER_VERTEX);
    EXPECT_EQ(text.find(row.head), 0u) << row.major << row.minor;
    EXPECT_NE(text.find(row.word), std::string::npos) << row.major << row.minor;
    const std::string pixel = tripod_program()->get_shader_source_code(GPU_SHADER_PIXEL);
    EXPECT_EQ(pixel.find(row.head), 0u) << row.major << row.minor;
    EXPECT_TRUE(tripod.cleanup(&renderer));
  }
}

TEST_F(TripodVisualizerTest, SecondInitChangesNothing) {
  EXPECT_FALSE(tripod.init(nullptr));
  ASSERT_TRUE(tripod.init(&renderer));
  const Polyline* axes = tripod.get_axes();
  EXPECT_TRUE(tripod.init(&renderer));
  EXPECT_EQ(tripod.get_axes(), axes);
  EXPECT_EQ(renderer.count("gpu_shader_load"), 2);
}

TEST_F(TripodVisualizerTest, RefusedProgramIsLogged) {
  const LogCapture log(LOG_LEVEL_ERROR);
  renderer.answer("gpu_shader_load", 0);
  EXPECT_FALSE(tripod.init(&renderer));
  EXPECT_TRUE(log.contains("- unable to create the GPU program for the tripod visualizer."));
  EXPECT_EQ(tripod_program(), nullptr);
  EXPECT_EQ(tripod.get_axes(), nullptr);
}

TEST_F(TripodVisualizerTest, FailedLinkIsLogged) {
  const LogCapture log(LOG_LEVEL_ERROR);
  renderer.answer("gpu_program_link", 0);
  EXPECT_FALSE(tripod.init(&renderer));
  EXPECT_TRUE(log.contains("- tripod visualizer GPU program has erros"));
  EXPECT_TRUE(log.contains("- tripod visualizer GPU program error: "));
  EXPECT_EQ(tripod_program(), nullptr);
}

TEST_F(TripodVisualizerTest, CleanupReleasesProgramAndLines) {
  EXPECT_TRUE(tripod.cleanup(&renderer)) << "before init";
  ASSERT_TRUE(tripod.init(&renderer));
  EXPECT_TRUE(tripod.cleanup(&renderer));
  EXPECT_EQ(tripod_program(), nullptr);
  EXPECT_EQ(tripod.get_axes(), nullptr);
  EXPECT_EQ(renderer.count("gpu_program_unload"), 1);
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 1);
  EXPECT_TRUE(tripod.init(&renderer)) << "it can be made again";
}

// ---- object ----

TEST_F(TripodVisualizerObjectTest, DrawsWithTheAbsoluteTransform) {
  Object parent;
  const Held<Object> object;
  parent.add_child(object);
  parent.set_position(1, 2, 3);
  object->set_position(10, 0, 0);
  object->set_scale(2, 2, 2);
  EXPECT_FALSE(tripod.render(&renderer, object)) << "before init";
  ASSERT_TRUE(tripod.init(&renderer));
  EXPECT_FALSE(tripod.render(nullptr, object));
  EXPECT_FALSE(tripod.render(&renderer, nullptr));
  const Held<GpuProgram> previous;
  renderer.label(previous->get_data_ptr(), "previous");
  renderer.label(tripod_program()->get_data_ptr(), "tripod");
  renderer.set_current_program(previous->get_data_ptr());
  renderer.clear();
  EXPECT_TRUE(tripod.render(&renderer, object));
  EXPECT_EQ(renderer.draws.size(), 1u);
  EXPECT_EQ(tripod.get_axes()->get_absolute_transform() * RED, vec4(13, 2, 3, 1));
  EXPECT_THAT(renderer.calls(), Contains("gpu_program_bind(tripod)"));
  EXPECT_EQ(renderer.calls().back(), "gpu_program_bind(previous)");
  EXPECT_EQ(renderer.count("enable_depth_test"), 0) << "the scene may hide it";
  EXPECT_EQ(renderer.count("set_viewport"), 0);
  parent.remove_child(object);
}

// ---- camera ----

TEST_F(TripodVisualizerCameraTest, ShowsTheOrientationWithoutThePlace) {
  Camera camera;
  camera.set_position(7, 8, 9);
  camera.set_lookat(vec4(1, 0, 0, 0));
  ASSERT_TRUE(tripod.init(&renderer));
  tripod.set_scale(-3.0f);
  renderer.set_viewport(0, 5, 6, 700, 800);
  renderer.clear();
  EXPECT_TRUE(tripod.render(&renderer, &camera, 10, 20, 200, 100));
  ASSERT_EQ(renderer.draws.size(), 1u);
  EXPECT_THAT(renderer.calls(), Contains("set_viewport(0, 10, 20, 200, 100)"));
  EXPECT_THAT(renderer.calls(), Contains("enable_depth_test(false)"));
  EXPECT_EQ(renderer.view * ORIGIN, ORIGIN);
  EXPECT_TRUE(near(renderer.view * vec4(0, 0, 1, 1), vec4(1, 0, 0, 1), 1e-6f));
  // The axes fit, whatever their length; a wide rectangle shows no longer ones.
  const vec4 y_end = renderer.projection * vec4(0, 3, 0, 1);
  EXPECT_GT(y_end.y, 0.8f);
  EXPECT_LT(y_end.y, 1.0f);
  EXPECT_NEAR((renderer.projection * vec4(3, 0, 0, 1)).x, y_end.y / 2.0f, 1e-6f);
  EXPECT_LT(std::fabs((renderer.projection * vec4(0, 0, 3, 1)).z), 1.0f);
  const auto& calls = renderer.calls();
  const std::vector<std::string> end(calls.end() - 2, calls.end());
  EXPECT_THAT(end, ElementsAre("set_viewport(0, 5, 6, 700, 800)", "enable_depth_test(true)"));
}

TEST_F(TripodVisualizerCameraTest, DrawsNothingWhereNothingFits) {
  Camera camera;
  EXPECT_FALSE(tripod.render(&renderer, &camera, 0, 0, 10, 10)) << "before init";
  ASSERT_TRUE(tripod.init(&renderer));
  renderer.clear();
  EXPECT_FALSE(tripod.render(nullptr, &camera, 0, 0, 10, 10));
  EXPECT_FALSE(tripod.render(&renderer, nullptr, 0, 0, 10, 10));
  EXPECT_FALSE(tripod.render(&renderer, &camera, 0, 0, 0, 10));
  EXPECT_FALSE(tripod.render(&renderer, &camera, 0, 0, 10, -1));
  for (const float scale : {0.0f, std::numeric_limits<float>::quiet_NaN()}) {
    tripod.set_scale(scale);
    EXPECT_FALSE(tripod.render(&renderer, &camera, 0, 0, 10, 10)) << scale;
  }
  EXPECT_TRUE(renderer.calls().empty());
}

}  // namespace
}  // namespace orv
