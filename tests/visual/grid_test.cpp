#include <orv/visual/grid.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

#include "support/held.h"
#include "support/log_capture.h"
#include "visual/draw_watcher.h"

namespace orv {
namespace {

using test::DrawWatcher;
using test::Held;
using test::LogCapture;

constexpr vec4 RED(1, 0, 0, 1), BLUE(0, 0, 1, 1), YELLOW(1, 1, 0, 1), GREY(0.7f, 0.7f, 0.7f, 1);

/// All that a grid draws.
struct Lines {
  explicit Lines(Grid& grid) {
    grid.render(&renderer, nullptr);
    for (const auto& draw : renderer.draws) {
      EXPECT_EQ(draw.primitive, PRIMITIVE_LINES);
      positions.insert(positions.end(), draw.positions.begin(), draw.positions.end());
      colors.insert(colors.end(), draw.colors.begin(), draw.colors.end());
    }
  }
  /// How many lines have the colour.
  std::ptrdiff_t count(const vec4& color) const {
    return std::count(colors.begin(), colors.end(), color) / 2;
  }
  std::size_t count() const { return positions.size() / 2; }
  /// Colour of the line between two places of the plane; (0, 0, 0, 0) when there is none.
  vec4 find(float x0, float z0, float x1, float z1) const {
    for (std::size_t i = 0; i < positions.size(); i += 2) {
      if (positions[i] == vec4(x0, 0, z0, 1) && positions[i + 1] == vec4(x1, 0, z1, 1)) {
        return colors[i];
      }
    }
    return vec4(0, 0, 0, 0);
  }

  DrawWatcher renderer;
  std::vector<vec4> positions;
  std::vector<vec4> colors;
};

TEST(Grid, TenByTenCellsWithAxesAndBorderAtFirst) {
  const Held<Grid> grid;
  EXPECT_EQ(grid->get_type(), NODE_TYPE_GRID);
  const Lines lines(*grid);
  EXPECT_EQ(lines.count(), 22u) << "11 along each side";
  EXPECT_EQ(lines.count(RED), 1);
  EXPECT_EQ(lines.count(BLUE), 1);
  EXPECT_EQ(lines.count(YELLOW), 4);
  EXPECT_EQ(lines.count(GREY), 16);
  EXPECT_EQ(lines.find(-5, 0, 5, 0), RED) << "x";
  EXPECT_EQ(lines.find(0, -5, 0, 5), BLUE) << "z";
  EXPECT_EQ(lines.find(-5, -5, 5, -5), YELLOW);
  EXPECT_EQ(lines.find(5, -5, 5, 5), YELLOW);
  EXPECT_EQ(lines.find(-5, 3, 5, 3), GREY);
  EXPECT_EQ(lines.find(-4, -5, -4, 5), GREY);
}

TEST(Grid, SizeAndCellsOfEachSideAreTheirOwn) {
  const Held<Grid> grid;
  grid->set_size(8, 30);
  grid->set_num_subdiv(4, 6);
  const Lines lines(*grid);
  EXPECT_EQ(lines.count(), 12u);
  EXPECT_EQ(lines.find(-2, -15, -2, 15), GREY) << "cells of 2 along x";
  EXPECT_EQ(lines.find(-4, 10, 4, 10), GREY) << "cells of 5 along z";
  EXPECT_EQ(lines.find(-4, 15, 4, 15), YELLOW);
}

TEST(Grid, AxesAreDrawnAlsoBetweenTheCells) {
  const Held<Grid> grid;
  grid->set_size(3, 3);
  grid->set_num_subdiv(3, 3);
  const Lines lines(*grid);
  EXPECT_EQ(lines.count(), 10u);
  EXPECT_EQ(lines.find(-1.5f, 0, 1.5f, 0), RED);
  EXPECT_EQ(lines.find(0, -1.5f, 0, 1.5f), BLUE);
  EXPECT_EQ(lines.count(GREY), 4);
}

TEST(Grid, EachKindOfLinesIsSwitched) {
  const Held<Grid> grid;
  grid->set_display_lines_options(true, false);
  const Lines main(*grid);
  EXPECT_EQ(main.count(), 6u);
  EXPECT_EQ(main.count(GREY), 0);
  grid->set_display_lines_options(false, true);
  const Lines subdiv(*grid);
  EXPECT_EQ(subdiv.count(), 16u);
  EXPECT_EQ(subdiv.count(GREY), 16);
}

TEST(Grid, SetDisplayLinesOptionsFalseFalseShowsNothing) {
  const LogCapture log(LOG_LEVEL_ERROR);
  const Held<Grid> grid;
  EXPECT_GT(Lines(*grid).count(), 0u);
  grid->set_display_lines_options(false, false);
  const Lines lines(*grid);
  EXPECT_TRUE(lines.renderer.calls().empty());
  EXPECT_TRUE(log.lines().empty());
}

TEST(Grid, ColorsAreChosen) {
  const Held<Grid> grid;
  grid->set_lines_color(0.1f, 0, 0, 1);
  grid->set_main_lines_color(0.2f, 0, 0, 1);
  grid->set_main_x_axis_color(0.3f, 0, 0, 1);
  grid->set_main_z_axis_color(0.4f, 0, 0, 0.5f);
  const Lines lines(*grid);
  EXPECT_EQ(lines.count(vec4(0.1f, 0, 0, 1)), 16);
  EXPECT_EQ(lines.count(vec4(0.2f, 0, 0, 1)), 4);
  EXPECT_EQ(lines.find(-5, 0, 5, 0), vec4(0.3f, 0, 0, 1));
  EXPECT_EQ(lines.find(0, -5, 0, 5), vec4(0.4f, 0, 0, 0.5f));
}

TEST(Grid, CountsAreLimited) {
  const Held<Grid> grid;
  grid->set_num_subdiv(0, -7);
  EXPECT_EQ(Lines(*grid).count(), 2u) << "the axes alone";
  grid->set_num_subdiv(2147483647, 1);
  EXPECT_EQ(Lines(*grid).count(), 4096u + 2u + 2u);
}

TEST(Grid, LinesAreMadeAnewOnlyAfterAChange) {
  const Held<Grid> grid;
  grid->render(nullptr, nullptr);
  class Watcher : public DrawWatcher {
   public:
    bool geometry_vbo_draw(GeometryCore* geometry) override {
      serials.push_back(geometry->layout_serial);
      return true;
    }
    std::vector<unsigned long long> serials;
  } watcher;
  grid->render(&watcher, nullptr);
  grid->render(&watcher, nullptr);
  ASSERT_EQ(watcher.serials.size(), 4u);
  EXPECT_EQ(watcher.serials[0], watcher.serials[2]);
  EXPECT_EQ(watcher.serials[1], watcher.serials[3]);
  grid->set_size(4, 4);
  grid->render(&watcher, nullptr);
  EXPECT_NE(watcher.serials[4], watcher.serials[2]);
}

TEST(Grid, CleanupReleasesTheLinesAndDrawingMakesThemAgain) {
  const Held<Grid> grid;
  EXPECT_EQ(Lines(*grid).count(), 22u);
  DrawWatcher renderer;
  EXPECT_TRUE(grid->cleanup(&renderer, nullptr));
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 2);
  EXPECT_EQ(Lines(*grid).count(), 22u);
}

}  // namespace
}  // namespace orv
