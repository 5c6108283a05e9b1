#include <orv/visual/graph2d.h>

#include <orv/geometry/shapes/curve.h>
#include <orv/geometry/shapes/line.h>
#include <orv/scene/viewport.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "support/held.h"
#include "support/log_capture.h"
#include "visual/draw_watcher.h"

namespace orv {
namespace {

using test::DrawWatcher;
using test::Held;
using test::LogCapture;
using testing::ElementsAre;

constexpr vec4 WHITE(1, 1, 1, 1), RED(1, 0, 0, 1);

std::vector<vec4> vertices(const Curve& curve, unsigned int count) {
  std::vector<vec4> positions;
  for (unsigned int i = 0; i < count; ++i) positions.push_back(curve.get_vertex_position(i));
  return positions;
}

// ---- start ----

TEST(Graph2d, StartsWithTwoWhiteAxesAndNoRange) {
  const Held<Graph2d> graph;
  EXPECT_EQ(graph->get_type(), NODE_TYPE_GRAPH2D);
  EXPECT_TRUE(graph->is_type_of(NODE_TYPE_OBJECT));
  EXPECT_EQ(graph->get_num_curves(), 0u);
  EXPECT_TRUE(graph->is_viewport_enabled());
  EXPECT_EQ(graph->get_viewport().width, 0);
  EXPECT_EQ(graph->get_x_axis_positions()[0], vec4(0, 0, 0, 1));
  EXPECT_EQ(graph->get_x_axis_positions()[1], vec4(100, 0, 0, 1));
  EXPECT_EQ(graph->get_y_axis_positions()[0], vec4(0, 0, 0, 1));
  EXPECT_EQ(graph->get_y_axis_positions()[1], vec4(0, 100, 0, 1));
  EXPECT_EQ(graph->get_plot_start(), vec4(0, 0, 0, 1));
  EXPECT_EQ(graph->get_plot_end(), vec4(0, 0, 0, 1));
  ASSERT_NE(graph->get_axis_line(), nullptr);
  DrawWatcher renderer;
  EXPECT_TRUE(graph->draw_axis(&renderer));
  ASSERT_EQ(renderer.draws.size(), 2u);
  for (const auto& draw : renderer.draws) EXPECT_THAT(draw.colors, ElementsAre(WHITE, WHITE));
}

// ---- curves ----

TEST(Graph2d, CurvesAreToldByTheirPlace) {
  const Held<Graph2d> graph;
  Curve* first = graph->create_curve(4);
  Curve* second = graph->create_curve(6);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(graph->get_num_curves(), 2u);
  EXPECT_EQ(graph->get_curve(0), first);
  EXPECT_EQ(graph->get_curve(1), second);
  EXPECT_EQ(graph->get_curve(2), nullptr);
  EXPECT_EQ(second->get_num_points(), 6u);
  EXPECT_EQ(first->get_ref(), 1);
  EXPECT_EQ(first->get_parent(), graph.get()) << "it moves with the graph";
  EXPECT_TRUE(graph->kill_curve(nullptr, first));
  EXPECT_EQ(graph->get_curve(0), second);
  EXPECT_FALSE(graph->kill_curve(nullptr, nullptr));
  const Held<Curve> foreign;
  EXPECT_FALSE(graph->kill_curve(nullptr, foreign));
  EXPECT_TRUE(graph->kill_all_curves(nullptr));
  EXPECT_EQ(graph->get_num_curves(), 0u);
}

TEST(Graph2d, CurveWithoutVerticesIsNotMade) {
  const LogCapture log(LOG_LEVEL_ERROR);
  const Held<Graph2d> graph;
  EXPECT_EQ(graph->create_curve(0), nullptr);
  EXPECT_EQ(graph->get_num_curves(), 0u);
  EXPECT_FALSE(log.lines().empty());
}

TEST(Graph2d, CurveHeldByTheHostOutlivesTheGraph) {
  Curve* curve = nullptr;
  {
    const Held<Graph2d> graph;
    curve = graph->create_curve(2);
    curve->add_ref();
  }
  EXPECT_EQ(curve->get_ref(), 1);
  EXPECT_EQ(curve->get_parent(), nullptr);
  curve->release(nullptr, nullptr);
}

TEST(Graph2d, CleanupReleasesCurvesAndLineWithTheRenderer) {
  DrawWatcher renderer;
  const Held<Graph2d> graph;
  graph->create_curve(2);
  graph->create_curve(2);
  EXPECT_TRUE(graph->cleanup(&renderer, nullptr));
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 3);
  EXPECT_EQ(graph->get_num_curves(), 0u);
  EXPECT_EQ(graph->get_axis_line(), nullptr);
  graph->render(&renderer, nullptr);
  EXPECT_FALSE(graph->draw_axis(&renderer));
  EXPECT_TRUE(renderer.draws.empty());
}

// ---- values ----

TEST(Graph2d, AddCurveScalarOnCurveFiveOfTwoGivesZero) {
  const Held<Graph2d> graph;
  graph->create_curve(2);
  graph->create_curve(2);
  EXPECT_EQ(graph->add_curve_scalar(1, 3.0f), 1u);
  EXPECT_EQ(graph->add_curve_scalar(2, 3.0f), 0u);
  EXPECT_EQ(graph->add_curve_scalar(5, 3.0f), 0u);
}

TEST(Graph2d, OperationsOnMissingCurvesAnswerNothing) {
  DrawWatcher renderer;
  const Held<Graph2d> graph;
  EXPECT_EQ(graph->add_curve_position(0, vec4()), 0u);
  EXPECT_FALSE(graph->sync_curve_scalars(0));
  EXPECT_EQ(graph->curve_get_diff_points(0), 0u);
  EXPECT_FALSE(graph->set_curve_color(0, 1, 1, 1, 1));
  EXPECT_FALSE(graph->set_curve_value(0, 0, vec4()));
  EXPECT_FALSE(graph->draw_curve(&renderer, 0));
  EXPECT_TRUE(renderer.calls().empty());
}

TEST(Graph2d, MoreScalarsThanVerticesShowTheNewest) {
  const Held<Graph2d> graph;
  Curve* curve = graph->create_curve(4);
  graph->set_plot_range(vec4(10, 100, 0, 1), vec4(50, 7, 0, 1));
  for (int i = 1; i <= 6; ++i) graph->add_curve_scalar(0, static_cast<float>(i));
  EXPECT_TRUE(graph->sync_curve_scalars(0));
  // The step is the width by 4, not by 3.
  EXPECT_THAT(vertices(*curve, 4), ElementsAre(vec4(10, 103, 0, 1), vec4(20, 104, 0, 1),
                                               vec4(30, 105, 0, 1), vec4(40, 106, 0, 1)));
  EXPECT_EQ(graph->curve_get_diff_points(0), 2u);
}

TEST(Graph2d, VerticesBeyondTheScalarsStayWhereTheyAre) {
  const Held<Graph2d> graph;
  Curve* curve = graph->create_curve(4);
  graph->set_plot_range(vec4(), vec4(4, 0, 0, 1));
  EXPECT_TRUE(graph->set_curve_value(0, 2, vec4(7, 7, 0, 1)));
  graph->add_curve_scalar(0, 5.0f);
  graph->add_curve_scalar(0, 6.0f);
  curve->get_polyline_data()->set_vertex_draw_range(1, 1);
  EXPECT_TRUE(graph->sync_curve_scalars(0));
  EXPECT_THAT(vertices(*curve, 4),
              ElementsAre(vec4(0, 5, 0, 1), vec4(1, 6, 0, 1), vec4(7, 7, 0, 1), vec4(0, 0, 0, 1)));
  EXPECT_EQ(curve->get_polyline_data()->get_draw_start(), 0);
  EXPECT_EQ(curve->get_polyline_data()->get_draw_count(), 4);
  EXPECT_EQ(graph->curve_get_diff_points(0), 0u);
}

TEST(Graph2d, ValuesAreMovedByHalfTheViewportWhenItIsEnabled) {
  const Held<Graph2d> graph;
  Curve* curve = graph->create_curve(1);
  graph->set_plot_range(vec4(2, 3, 0, 1), vec4(9, 3, 0, 1));
  graph->set_viewport(5, 6, 101, 50);
  graph->add_curve_scalar(0, 4.0f);
  graph->sync_curve_scalars(0);
  EXPECT_EQ(curve->get_vertex_position(0), vec4(2 - 50.5f, 7 - 25, 0, 1));
  graph->enable_viewport(false);
  EXPECT_FALSE(graph->is_viewport_enabled());
  graph->sync_curve_scalars(0);
  EXPECT_EQ(curve->get_vertex_position(0), vec4(2, 7, 0, 1));
  EXPECT_EQ(graph->get_viewport().x, 5);
  EXPECT_EQ(graph->get_viewport().height, 50);
}

TEST(Graph2d, PositionsKeepTheirZAndW) {
  const Held<Graph2d> graph;
  Curve* curve = graph->create_curve(2);
  EXPECT_EQ(graph->add_curve_position(0, vec4(77, 1, 2, 3)), 1u);
  graph->sync_curve_scalars(0);
  EXPECT_EQ(curve->get_vertex_position(0), vec4(0, 1, 2, 3));
}

TEST(Graph2d, ScalarsDoNotChangeTheValuesOfTheCurve) {
  const Held<Graph2d> graph;
  Curve* curve = graph->create_curve(2);
  graph->add_curve_scalar(0, 4.0f);
  graph->sync_curve_scalars(0);
  EXPECT_EQ(curve->get_value_vec4(0), vec4(0, 0, 0, 1));
}

TEST(Graph2d, PlotsMayRunForDays) {
  const Held<Graph2d> graph;
  Curve* curve = graph->create_curve(3);
  for (int i = 0; i < 500000; ++i) graph->add_curve_scalar(0, static_cast<float>(i));
  graph->sync_curve_scalars(0);
  EXPECT_EQ(curve->get_vertex_position(0).y, 499997.0f);
  EXPECT_EQ(curve->get_vertex_position(2).y, 499999.0f);
  EXPECT_EQ(graph->curve_get_diff_points(0), 499997u);
}

TEST(Graph2d, CurveWithoutDataIsLeftAlone) {
  DrawWatcher renderer;
  const Held<Graph2d> graph;
  Curve* curve = graph->create_curve(3);
  graph->add_curve_scalar(0, 1.0f);
  curve->cleanup_polyline_data(nullptr);
  EXPECT_FALSE(graph->sync_curve_scalars(0));
  EXPECT_FALSE(graph->draw_curve(&renderer, 0));
}

// ---- drawing ----

TEST(Graph2d, CurvesWithoutValuesAreNotDrawn) {
  DrawWatcher renderer;
  const Held<Graph2d> graph;
  graph->create_curve(4);
  EXPECT_FALSE(graph->draw_curve(&renderer, 0));
  EXPECT_TRUE(graph->draw_all_curves(&renderer));
  EXPECT_TRUE(renderer.calls().empty());
}

TEST(Graph2d, VerticesPlacedByHandAreDrawnBesideValues) {
  DrawWatcher renderer;
  const Held<Graph2d> graph;
  Curve* curve = graph->create_curve(2);
  EXPECT_FALSE(graph->set_curve_value(0, 2, 1, 2, 3, 4));
  EXPECT_TRUE(graph->set_curve_value(0, 0, vec4(1, 2, 3, 1)));
  EXPECT_TRUE(graph->set_curve_value(0, 1, 4, 5, 6, 1));
  EXPECT_EQ(curve->get_value_vec4(1), vec4(4, 5, 6, 1));
  EXPECT_FALSE(graph->draw_curve(&renderer, 0)) << "no values were added";
  EXPECT_TRUE(renderer.draws.empty());
  graph->add_curve_scalar(0, 8.0f);
  EXPECT_TRUE(graph->draw_curve(&renderer, 0));
  ASSERT_EQ(renderer.draws.size(), 1u);
  EXPECT_THAT(renderer.draws[0].positions, ElementsAre(vec4(0, 8, 0, 1), vec4(4, 5, 6, 1)));
}

TEST(Graph2d, RenderDrawsTheAxesThenTheCurvesInTheirOrder) {
  DrawWatcher renderer;
  const Held<Graph2d> graph;
  for (unsigned int i = 0; i < 2; ++i) {
    graph->create_curve(2 + i);
    graph->add_curve_scalar(i, 1.0f);
  }
  EXPECT_TRUE(graph->set_curve_color(1, 1, 0, 0, 1));
  graph->set_x_axis_color(RED, WHITE);
  graph->set_y_axis_color(WHITE, RED);
  graph->render(&renderer, nullptr);
  ASSERT_EQ(renderer.draws.size(), 4u);
  EXPECT_THAT(renderer.draws[0].positions, ElementsAre(vec4(0, 0, 0, 1), vec4(100, 0, 0, 1)));
  EXPECT_THAT(renderer.draws[0].colors, ElementsAre(RED, WHITE));
  EXPECT_THAT(renderer.draws[1].positions, ElementsAre(vec4(0, 0, 0, 1), vec4(0, 100, 0, 1)));
  EXPECT_THAT(renderer.draws[1].colors, ElementsAre(WHITE, RED));
  EXPECT_EQ(renderer.draws[2].positions.size(), 2u);
  EXPECT_EQ(renderer.draws[2].primitive, PRIMITIVE_LINE_STRIP);
  EXPECT_THAT(renderer.draws[3].colors, ElementsAre(RED, RED, RED));
  EXPECT_EQ(renderer.count("set_viewport"), 0) << "that is the camera's";
}

TEST(Graph2d, NullRendererDrawsNothing) {
  const Held<Graph2d> graph;
  graph->create_curve(2);
  graph->add_curve_scalar(0, 1.0f);
  graph->render(nullptr, nullptr);
  EXPECT_FALSE(graph->draw_axis(nullptr));
  EXPECT_FALSE(graph->draw_curve(nullptr, 0));
  EXPECT_FALSE(graph->draw_all_curves(nullptr));
}

// ---- axes ----

TEST(Graph2d, AxesAreStoredMovedAndTheRangeAsItIs) {
  const Held<Graph2d> graph;
  graph->set_viewport(0, 0, 200, 100);
  graph->set_x_axis_positions(vec4(10, 20, 1, 1), vec4(190, 20, 2, 1));
  EXPECT_EQ(graph->get_x_axis_positions()[0], vec4(-90, -30, 1, 1));
  EXPECT_EQ(graph->get_x_axis_positions()[1], vec4(90, -30, 2, 1));
  EXPECT_EQ(graph->get_plot_start(), vec4(10, 20, 1, 1));
  EXPECT_EQ(graph->get_plot_end(), vec4(190, 20, 2, 1));
  graph->enable_viewport(false);
  graph->set_y_axis_positions(vec4(10, 20, 0, 1), vec4(10, 90, 0, 1));
  EXPECT_EQ(graph->get_y_axis_positions()[0], vec4(10, 20, 0, 1));
  EXPECT_EQ(graph->get_y_axis_positions()[1], vec4(10, 90, 0, 1));
  EXPECT_EQ(graph->get_plot_end(), vec4(190, 20, 2, 1)) << "the vertical axis is no range";
}

TEST(Graph2d, EndsCanBeSwapped) {
  const Held<Graph2d> graph;
  graph->set_x_axis_positions(vec4(1, 2, 0, 1), vec4(3, 4, 0, 1));
  graph->set_x_axis_positions(graph->get_plot_end(), graph->get_plot_start());
  EXPECT_EQ(graph->get_plot_start(), vec4(3, 4, 0, 1));
  EXPECT_EQ(graph->get_plot_end(), vec4(1, 2, 0, 1));
  EXPECT_EQ(graph->get_x_axis_positions()[0], vec4(3, 4, 0, 1));
  EXPECT_EQ(graph->get_x_axis_positions()[1], vec4(1, 2, 0, 1));
  const vec4* y_axis = graph->get_y_axis_positions();
  graph->set_y_axis_positions(y_axis[1], y_axis[0]);
  EXPECT_EQ(y_axis[0], vec4(0, 100, 0, 1));
  EXPECT_EQ(y_axis[1], vec4(0, 0, 0, 1));
  graph->set_plot_range(graph->get_plot_end(), graph->get_plot_start());
  EXPECT_EQ(graph->get_plot_end(), vec4(3, 4, 0, 1));
}

}  // namespace
}  // namespace orv
