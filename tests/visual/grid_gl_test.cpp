// The grid as real OpenGL draws it.
#include <orv/visual/grid.h>

#include <orv/math/mat4.h>

#include "render/opengl/gl_fixture.h"
#include "support/held.h"

namespace orv::test {
namespace {

const Pixel CYAN = {0, 255, 255, 255}, YELLOW = {255, 255, 0, 255};

class GridGlTest : public GlTest {
 protected:
  void SetUp() override {
    GlTest::SetUp();
    if (IsSkipped()) return;
    renderer.set_viewport(0, 0, 0, 64, 64);
    // From above: x to the right, z downwards, 64 units wide. Half a unit aside, so that lines at
    // whole places go through pixels.
    mat4 projection, view;
    projection.buildRHOrthographicProjectionMatrix(-32.5f, 31.5f, -31.5f, 32.5f, -10.0f, 10.0f);
    view.init_rotate_x(90.0f);
    renderer.set_projection_matrix(projection, true);
    renderer.set_modelview_matrix(view, true);
    grid->set_size(40.0f, 20.0f);
    grid->set_num_subdiv(4, 2);
    grid->set_lines_color(0, 1, 1, 1);
  }
  void TearDown() override {
    grid->_cleanup(&renderer);
    GlTest::TearDown();
  }

  /// Pixel at a place of the XZ plane.
  Pixel at(int x, int z) { return context.pixel(x + 32, 31 - z); }
  void draw() {
    clear();
    grid->render(&renderer, nullptr);
  }

  Held<Grid> grid;
};

TEST_P(GridGlTest, LinesLieWhereTheyBelong) {
  draw();
  EXPECT_EQ(at(5, 0), RED) << "the axis along x";
  EXPECT_EQ(at(-15, 0), RED);
  EXPECT_EQ(at(0, 5), BLUE) << "the axis along z";
  EXPECT_EQ(at(0, -5), BLUE);
  EXPECT_EQ(at(-20, 5), YELLOW) << "the border";
  EXPECT_EQ(at(20, 5), YELLOW);
  EXPECT_EQ(at(5, -10), YELLOW);
  EXPECT_EQ(at(5, 10), YELLOW);
  EXPECT_EQ(at(-10, 5), CYAN) << "between the cells";
  EXPECT_EQ(at(10, -5), CYAN);
  EXPECT_EQ(at(5, 5), BLACK);
  EXPECT_EQ(at(25, 0), BLACK) << "outside";
  EXPECT_EQ(at(0, 15), BLACK);
}

TEST_P(GridGlTest, EachKindOfLinesIsSwitched) {
  grid->set_display_lines_options(true, false);
  draw();
  EXPECT_EQ(at(5, 0), RED);
  EXPECT_EQ(at(20, 5), YELLOW);
  EXPECT_EQ(at(-10, 5), BLACK);
  grid->set_display_lines_options(false, true);
  draw();
  EXPECT_EQ(at(5, 0), BLACK);
  EXPECT_EQ(at(20, 5), BLACK);
  EXPECT_EQ(at(-10, 5), CYAN);
}

TEST_P(GridGlTest, WithBothKindsOffNothingIsSeen) {
  draw();
  grid->set_display_lines_options(false, false);
  draw();
  for (int i = 0; i < 64; ++i) {
    EXPECT_EQ(context.pixel(i, 31), BLACK) << i;
    EXPECT_EQ(context.pixel(32, i), BLACK) << i;
  }
}

TEST_P(GridGlTest, ChangesShowAndTheTransformCounts) {
  draw();
  grid->set_main_x_axis_color(0, 1, 0, 1);
  grid->set_size(20.0f, 20.0f);
  grid->set_position(4, 0, 0);
  draw();
  EXPECT_EQ(at(10, 0), GREEN);
  EXPECT_EQ(at(14, 5), YELLOW);
  EXPECT_EQ(at(4, 5), BLUE);
  EXPECT_EQ(at(20, 5), BLACK);
}

ORV_BOTH_PROFILES(GridGlTest);

}  // namespace
}  // namespace orv::test
