#include <orv/geometry/instancing_init_params.h>

#include <gtest/gtest.h>

namespace orv {
namespace {

TEST(InstancingInitParams, AsksForTheFiveNamedStreams) {
  const InstancingInitParams params;
  EXPECT_TRUE(params.use_position && params.use_rotation && params.use_scale);
  EXPECT_TRUE(params.use_color && params.use_misc);
  EXPECT_EQ(params.reserved, 0);
  EXPECT_EQ(params.num_vertex_streams, 5u);
  EXPECT_TRUE(params.default_names);
  EXPECT_EQ(params.first_location, -1);
}

TEST(InstancingInitParams, DisableAllClearsTheFlagsAlone) {
  InstancingInitParams params;
  params.disable_all();
  EXPECT_FALSE(params.use_position || params.use_rotation || params.use_scale);
  EXPECT_FALSE(params.use_color || params.use_misc);
  EXPECT_EQ(params.num_vertex_streams, 5u);
  EXPECT_TRUE(params.default_names);
}

}  // namespace
}  // namespace orv
