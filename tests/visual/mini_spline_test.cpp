#include <orv/visual/mini_spline.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>

#include "support/held.h"
#include "support/near.h"
#include "visual/draw_watcher.h"
#include "visual/mini_spline_data.h"

namespace orv {
namespace {

using test::DrawWatcher;
using test::Held;
using test::near;

vec3 value_at(MiniSpline& spline, float t) {
  float out[3] = {-1, -1, -1};
  spline.get_value(t, out);
  return vec3(out[0], out[1], out[2]);
}

// ---- keyframes ----

TEST(MiniSpline, StartsWithoutKeyframesAndAllDirty) {
  const Held<MiniSpline> spline;
  EXPECT_EQ(spline->get_type(), NODE_TYPE_MINI_SPLINE);
  EXPECT_EQ(spline->get_num_keyframes(), 0u);
  const MiniSplineData& data = MiniSplineData::of(*spline);
  EXPECT_TRUE(data.dirty_size);
  EXPECT_TRUE(data.dirty_values);
  EXPECT_TRUE(data.dirty_line);
  EXPECT_EQ(data.num_render_samples, 1000);
}

TEST(MiniSpline, AddGivesTheIndexAndSetRefusesAMissingOne) {
  const Held<MiniSpline> spline;
  EXPECT_EQ(spline->add_keyframe(0, 1, 2, 3), 0u);
  EXPECT_EQ(spline->add_keyframe(1, 4, 5, 6), 1u);
  EXPECT_EQ(spline->get_num_keyframes(), 2u);
  EXPECT_TRUE(spline->set_keyframe(1, 1, 7, 8, 9));
  EXPECT_FALSE(spline->set_keyframe(2, 1, 7, 8, 9));
  EXPECT_EQ(value_at(*spline, 1), vec3(7, 8, 9));
}

TEST(MiniSpline, SetKeyframeIsSeenWithoutANewAllocation) {
  const Held<MiniSpline> spline;
  for (int i = 0; i < 3; ++i) spline->add_keyframe(static_cast<float>(i), 0, 0, 0);
  value_at(*spline, 1);
  const MiniSplineData& data = MiniSplineData::of(*spline);
  const float* packed = data.packed_keys.data();
  EXPECT_FALSE(data.dirty_values);
  ASSERT_TRUE(spline->set_keyframe(1, 1, 5, 6, 7));
  EXPECT_TRUE(data.dirty_values);
  EXPECT_FALSE(data.dirty_size);
  EXPECT_EQ(value_at(*spline, 1), vec3(5, 6, 7));
  EXPECT_EQ(data.packed_keys.data(), packed);
  EXPECT_FALSE(data.dirty_values);
}

// ---- values ----

TEST(MiniSpline, ValueAtTheTimeOfAKeyframeIsThatOfTheKeyframe) {
  const Held<MiniSpline> spline;
  const vec4 keys[] = {vec4(1, 2, 3, -4.0f), vec4(-5, 0.1f, 100, 0.5f), vec4(7, 8, -9, 0.7f),
                       vec4(0, 0, 0, 3.0f), vec4(2, 4, 8, 90.0f)};
  for (const vec4& key : keys) spline->add_keyframe(key.w, key.x, key.y, key.z);
  for (const vec4& key : keys) {
    EXPECT_TRUE(near(value_at(*spline, key.w), vec3(key.x, key.y, key.z), 1e-5f)) << key.w;
  }
}

TEST(MiniSpline, ValuesBetweenAreThoseOfCatmullAndRom) {
  const Held<MiniSpline> spline;
  const float values[] = {0, 1, 3, 2};
  for (int i = 0; i < 4; ++i) spline->add_keyframe(static_cast<float>(i * i), values[i], 0, 5);
  // In the middle of the second and the third, whatever their times: (-p0 + 9 p1 + 9 p2 - p3) / 16.
  EXPECT_TRUE(near(value_at(*spline, 2.5f), vec3((9 + 27 - 2) / 16.0f, 0, 5), 1e-6f));
  // The outer keyframes count twice at the ends: p0 for the one before it.
  EXPECT_TRUE(near(value_at(*spline, 0.5f), vec3((9 - 3) / 16.0f, 0, 5), 1e-6f));
  EXPECT_TRUE(near(value_at(*spline, 6.5f), vec3((-1 + 27 + 18 - 2) / 16.0f, 0, 5), 1e-6f));
}

TEST(MiniSpline, EvenKeyframesGiveAStraightLineInside) {
  const Held<MiniSpline> spline;
  for (int i = 0; i < 5; ++i) {
    const auto f = static_cast<float>(i);
    spline->add_keyframe(f, 2 * f, -f, 1);
  }
  for (float t = 1.0f; t <= 3.0f; t += 0.125f) {
    EXPECT_TRUE(near(value_at(*spline, t), vec3(2 * t, -t, 1), 1e-5f)) << t;
  }
}

TEST(MiniSpline, TimeIsLimitedToThatOfTheKeyframes) {
  const Held<MiniSpline> spline;
  spline->add_keyframe(1, 1, 2, 3);
  spline->add_keyframe(2, 4, 5, 6);
  constexpr float INF = std::numeric_limits<float>::infinity();
  for (const float t : {-100.0f, 0.999f, -INF, std::nanf("")}) {
    EXPECT_TRUE(near(value_at(*spline, t), vec3(1, 2, 3), 1e-6f)) << t;
  }
  for (const float t : {2.001f, 1e30f, INF}) {
    EXPECT_TRUE(near(value_at(*spline, t), vec3(4, 5, 6), 1e-6f)) << t;
  }
}

TEST(MiniSpline, NoneAndOneKeyframe) {
  const Held<MiniSpline> spline;
  EXPECT_EQ(value_at(*spline, 3), vec3(0, 0, 0));
  spline->add_keyframe(5, 1, 2, 3);
  for (const float t : {0.0f, 5.0f, 9.0f}) EXPECT_EQ(value_at(*spline, t), vec3(1, 2, 3));
  spline->get_value(0, nullptr);
}

TEST(MiniSpline, EqualTimesAndTimesOutOfOrderEnd) {
  const Held<MiniSpline> spline;
  spline->add_keyframe(0, 1, 0, 0);
  spline->add_keyframe(0, 2, 0, 0);
  EXPECT_EQ(value_at(*spline, 0).x, 1.0f);
  spline->add_keyframe(-5, 3, 0, 0);
  spline->add_keyframe(std::nanf(""), 4, 0, 0);
  for (const float t : {-9.0f, -2.0f, 0.0f, 7.0f}) value_at(*spline, t);
}

TEST(MiniSpline, FirstKeyframeThatIsNotBeforeTheTimeCounts) {
  const Held<MiniSpline> spline;
  const vec3 first(1, 2, 3);
  spline->add_keyframe(5, first.x, first.y, first.z);
  spline->add_keyframe(3, 7, 8, 9);
  spline->add_keyframe(7, 4, 5, 6);
  EXPECT_TRUE(near(value_at(*spline, 5), first, 1e-6f)) << "also where times are out of order";
  EXPECT_TRUE(near(value_at(*spline, 7), vec3(4, 5, 6), 1e-6f));
}

// ---- drawing ----

TEST(MiniSpline, DrawsAThousandPointsFromTheFirstToTheLastKeyframe) {
  DrawWatcher renderer;
  const Held<MiniSpline> spline;
  spline->render(&renderer, nullptr);
  EXPECT_TRUE(renderer.calls().empty()) << "without keyframes";
  spline->add_keyframe(2, 1, 2, 3);
  spline->add_keyframe(4, 5, 6, 7);
  spline->add_keyframe(8, 9, 9, 9);
  spline->render(nullptr, nullptr);
  spline->render(&renderer, nullptr);
  ASSERT_EQ(renderer.draws.size(), 1u);
  const DrawWatcher::Draw& draw = renderer.draws[0];
  EXPECT_EQ(draw.primitive, PRIMITIVE_LINE_STRIP);
  ASSERT_EQ(draw.positions.size(), 1000u);
  EXPECT_TRUE(near(draw.positions[0], vec4(1, 2, 3, 1), 1e-5f));
  EXPECT_TRUE(near(draw.positions[999], vec4(9, 9, 9, 1), 1e-5f));
  const vec3 third = value_at(*spline, 2.0f + 6.0f * (333.0f / 999.0f));
  EXPECT_TRUE(near(draw.positions[333], vec4(third), 1e-5f));
  EXPECT_EQ(draw.colors[500], vec4(1, 1, 1, 1));
}

TEST(MiniSpline, RenderStateIsNotLookedAt) {
  DrawWatcher renderer;
  const Held<MiniSpline> spline;
  spline->add_keyframe(0, 0, 0, 0);
  spline->set_render_state(false, nullptr);
  spline->render(&renderer, nullptr);
  EXPECT_EQ(renderer.draws.size(), 1u);
}

TEST(MiniSpline, LineFollowsKeyframesColorAndTransform) {
  DrawWatcher renderer;
  const Held<MiniSpline> spline;
  spline->add_keyframe(0, 1, 1, 1);
  spline->set_vertices_color(vec4(1, 0, 0, 1), nullptr);
  spline->render(&renderer, nullptr);
  EXPECT_EQ(renderer.draws[0].colors[7], vec4(1, 0, 0, 1));
  Polyline* line = MiniSplineData::of(*spline).line;
  spline->set_keyframe(0, 0, 2, 2, 2);
  spline->set_vertices_color(0, 1, 0, 1, nullptr);
  spline->render(&renderer, nullptr);
  EXPECT_EQ(renderer.draws[1].positions[7], vec4(2, 2, 2, 1));
  EXPECT_EQ(renderer.draws[1].colors[7], vec4(0, 1, 0, 1));
  EXPECT_EQ(MiniSplineData::of(*spline).line, line);
  EXPECT_EQ(line->get_parent(), spline.get());
}

TEST(MiniSpline, CleanupReleasesTheLineAndKeepsTheKeyframes) {
  DrawWatcher renderer;
  const Held<MiniSpline> spline;
  spline->add_keyframe(0, 1, 1, 1);
  spline->render(&renderer, nullptr);
  EXPECT_TRUE(spline->cleanup(&renderer, nullptr));
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 1);
  EXPECT_EQ(spline->get_num_keyframes(), 1u);
  spline->render(&renderer, nullptr);
  ASSERT_EQ(renderer.draws.size(), 2u);
  EXPECT_EQ(renderer.draws[1].positions[3], vec4(1, 1, 1, 1));
}

}  // namespace
}  // namespace orv
