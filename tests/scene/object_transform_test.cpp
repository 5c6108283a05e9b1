// The transform side of Object.
#include <orv/scene/object.h>

#include <orv/scene/tripod.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <vector>

#include "support/held.h"

namespace orv {
namespace {

using test::Held;

TEST(ObjectTransform, SetPositionMakesWOne) {
  Object object;
  object.set_position(1, 2, 3);
  EXPECT_EQ(object.get_position(), vec4(1, 2, 3, 1));
  object.set_position(vec4(4, 5, 6, 7));
  EXPECT_EQ(object.get_position(), vec4(4, 5, 6, 7));
}

TEST(ObjectTransform, ForwardsToTheTripod) {
  Object object;
  object.set_scale(1, 2, 3);
  EXPECT_EQ(object.get_scale().y, 2.0f);
  object.set_scale(vec4(4, 5, 6, 1));
  EXPECT_EQ(object.get_tripod()->get_scale(), vec4(4, 5, 6, 1));
  object.set_orientation(quat(0, 1, 0, 0));
  EXPECT_EQ(object.get_orientation(), quat(0, 1, 0, 0));
  object.set_orientation_euler_xyz(10, 20, 30);
  float x = 0, y = 0, z = 0;
  object.get_orientation_euler_angles(&x, &y, &z);
  EXPECT_EQ(x, 10.0f);
  EXPECT_EQ(y, 20.0f);
  EXPECT_EQ(z, 30.0f);
  object.get_orientation_euler_angles(nullptr, nullptr, nullptr);
}

TEST(ObjectTransform, OrientationVectorsTakeNullPointers) {
  Object object;
  object.set_orientation_euler_xyz(0, 0, 90);
  vec4 x, y, z;
  object.get_orientation_vectors(&x, &y, &z);
  EXPECT_TRUE(x.is_equal(vec4(0, 1, 0, 1), 1e-6f));
  EXPECT_TRUE(y.is_equal(vec4(-1, 0, 0, 1), 1e-6f));
  EXPECT_EQ(z.w, 3.0f);
  object.get_orientation_vectors(nullptr, nullptr, nullptr);
  float x3[4] = {9, 9, 9, 9};
  object.get_orientation_vectors_v2(x3, nullptr, nullptr);
  EXPECT_NEAR(x3[1], 1.0f, 1e-6f);
  EXPECT_EQ(x3[3], 9.0f);
}

TEST(ObjectTransform, ChildAddsUpWithItsParent) {
  Held<Object> parent, child;
  parent->add_child(child);
  parent->set_position(0, 2, 0);
  child->set_position(1, 0, 0);
  EXPECT_EQ(child->get_absolute_position(), vec4(1, 2, 0, 1));
}

TEST(ObjectTransform, ParentIsAppliedAfterTheChild) {
  Held<Object> parent, child;
  parent->add_child(child);
  parent->set_orientation_euler_xyz(0, 0, 90);
  parent->set_scale(2, 2, 2);
  child->set_position(1, 0, 0);
  EXPECT_TRUE(child->get_absolute_position().is_equal(vec4(0, 2, 0, 1), 1e-6f));
}

TEST(ObjectTransform, LocalTransformIsStaleUntilAnAbsoluteGetterRan) {
  Object object;
  object.set_position(1, 2, 3);
  EXPECT_EQ(object.get_transform(), mat4());
  object.get_absolute_position();
  EXPECT_EQ(object.get_transform().m[12], 1.0f);
  EXPECT_EQ(object.get_transform_float_ptr()[13], 2.0f);
  EXPECT_EQ(object.get_transform_mat4_ptr()->m[14], 3.0f);
}

TEST(ObjectTransform, AbsoluteGetterBringsAncestorsUpToDate) {
  Held<Object> parent, child;
  parent->add_child(child);
  parent->set_position(1, 2, 3);
  child->get_absolute_transform();
  EXPECT_EQ(parent->get_transform().m[12], 1.0f);
}

TEST(ObjectTransform, WritingThroughThePositionPointerRaisesNoFlag) {
  Object object;
  object.get_absolute_transform();
  object.get_tripod()->get_position_ptr()[0] = 5;
  EXPECT_EQ(object.get_absolute_position(), vec4(0, 0, 0, 1));
  object.set_scale(1, 1, 1);
  EXPECT_EQ(object.get_absolute_position(), vec4(5, 0, 0, 1));
}

TEST(ObjectTransform, SetTransformLastsUntilTheNextSetter) {
  mat4 m;
  m.init_translate(1, 2, 3);
  Object object;
  object.set_transform(m);
  EXPECT_EQ(object.get_absolute_position(), vec4(1, 2, 3, 1));
  object.set_scale(1, 1, 1);
  EXPECT_EQ(object.get_absolute_position(), vec4(0, 0, 0, 1));
  m.init_translate(4, 5, 6);
  object.set_transform(m.ptr());
  EXPECT_EQ(object.get_absolute_position(), vec4(4, 5, 6, 1));
  object.set_transform(static_cast<float*>(nullptr));
  EXPECT_EQ(object.get_absolute_position(), vec4(4, 5, 6, 1));
  object.set_transform_v2(m, vec4(4, 5, 6, 1), quat());
  EXPECT_EQ(object.get_position(), vec4(4, 5, 6, 1));
}

// ---- absolute transforms of chains ----------------------------------------------------------

/// A chain of four objects and the product of their local matrices as told by the tree.
struct Chain {
  Chain() {
    for (int i = 0; i < 3; ++i) links[i]->add_child(links[i + 1]);
    for (int i = 0; i < 4; ++i) {
      const float f = static_cast<float>(i);
      links[i]->set_position(1 + f, 2 - f, 0.5f * f);
      links[i]->set_orientation_euler_xyz(10 * f, 20 + f, 30 - f);
      links[i]->set_scale(1 + 0.1f * f, 1, 2);
    }
  }
  mat4 product() {
    Object* bottom = links[3];
    bottom->get_absolute_transform();
    mat4 m = bottom->get_transform();
    for (int i = 2; i >= 0; --i) m = links[i]->get_transform() * m;
    return m;
  }
  Held<Object> links[4];
};

TEST(ObjectTransform, ChainGivesTheProductOfItsLocalTransforms) {
  Chain chain;
  EXPECT_EQ(chain.links[3]->get_absolute_transform(), chain.product());
  EXPECT_EQ(chain.links[3]->get_absolute_transform(), chain.product());
}

TEST(ObjectTransform, ChangeAtAnyLevelShows) {
  Chain chain;
  for (Held<Object>& link : chain.links) {
    const mat4 before = chain.links[3]->get_absolute_transform();
    link->set_position(-7, 8, 9);
    const mat4 after = chain.links[3]->get_absolute_transform();
    EXPECT_NE(before, after);
    EXPECT_EQ(after, chain.product());
  }
}

TEST(ObjectTransform, ChangeByPointerAtAnyLevelShows) {
  Chain chain;
  for (Held<Object>& link : chain.links) {
    const mat4 before = chain.links[3]->get_absolute_transform();
    link->get_tripod()->get_transform_ptr()[12] += 3;
    const mat4 after = chain.links[3]->get_absolute_transform();
    EXPECT_NE(before, after);
    EXPECT_EQ(after, chain.product());
  }
}

TEST(ObjectTransform, LongChainsFollowChangesAtAnyLevelToo) {
  constexpr std::size_t LENGTH = 150;
  std::vector<Object*> links;
  Object* top = new Object;
  links.push_back(top);
  while (links.size() < LENGTH) {
    Object* link = new Object;
    link->set_position(1, 0, 0);
    if (links.size() % 10 == 0) link->set_orientation_euler_xyz(0, 90, 5);
    links.back()->add_child(link);
    links.push_back(link);
  }
  const auto product = [&] {
    mat4 result = *links.back()->get_transform_mat4_ptr();
    for (std::size_t i = LENGTH - 1; i-- > 0;)
      result = *links[i]->get_transform_mat4_ptr() * result;
    return result;
  };
  Object* bottom = links.back();
  mat4 before = bottom->get_absolute_transform();
  EXPECT_EQ(before, product());
  for (const std::size_t level : {std::size_t{0}, std::size_t{85}, std::size_t{86}, LENGTH - 1}) {
    links[level]->set_position(-7, 8, 9);
    const mat4 after = bottom->get_absolute_transform();
    EXPECT_NE(before, after);
    EXPECT_EQ(after, product());
    before = after;
  }
  top->kill(nullptr, nullptr);
}

TEST(ObjectTransform, WritingIntoTheResultIsForgottenAtTheNextCall) {
  Chain chain;
  const mat4 expected = chain.links[3]->get_absolute_transform();
  chain.links[3]->get_absolute_transform_float_ptr()[0] = 99;
  EXPECT_EQ(*chain.links[3]->get_absolute_transform_mat4_ptr(), expected);
}

TEST(ObjectTransform, AnotherParentShows) {
  Held<Object> a, b, child;
  a->set_position(1, 0, 0);
  b->set_position(2, 0, 0);
  a->add_child(child);
  EXPECT_EQ(child->get_absolute_position(), vec4(1, 0, 0, 1));
  b->add_child(child);
  EXPECT_EQ(child->get_absolute_position(), vec4(2, 0, 0, 1));
  b->remove_child(child);
  EXPECT_EQ(child->get_absolute_position(), vec4(0, 0, 0, 1));
  b->add_child(child);
  a->add_child(b);
  EXPECT_EQ(child->get_absolute_position(), vec4(3, 0, 0, 1));
  a->remove_child(b);
  EXPECT_EQ(child->get_absolute_position(), vec4(2, 0, 0, 1));
}

TEST(ObjectTransform, AncestorsThatAreNoObjectsCountAsIdentity) {
  Held<Object> top, bottom;
  Held<Node> between;
  top->add_child(between);
  between->add_child(bottom);
  top->set_position(1, 0, 0);
  bottom->set_position(0, 1, 0);
  EXPECT_EQ(bottom->get_absolute_position(), vec4(1, 1, 0, 1));
}

TEST(ObjectTransform, AbsoluteAnglesAreDegrees) {
  Held<Object> parent, child;
  parent->add_child(child);
  parent->set_position(5, 6, 7);
  parent->set_orientation_euler_xyz(30, 0, 0);
  child->set_orientation_euler_xyz(15, 0, 0);
  float x = 0, y = 9, z = 9;
  child->get_absolute_orientation_euler_angles(&x, &y, &z);
  EXPECT_NEAR(x, 45.0f, 1e-4f);
  EXPECT_NEAR(y, 0.0f, 1e-4f);
  EXPECT_NEAR(z, 0.0f, 1e-4f);
  child->get_absolute_orientation_euler_angles(nullptr, nullptr, nullptr);
}

TEST(ObjectTransform, AbsoluteOrientationIsThatOfAllParents) {
  Held<Object> parent, child;
  parent->add_child(child);
  parent->set_orientation_euler_xyz(0, 0, 45);
  child->set_orientation_euler_xyz(0, 0, 45);
  quat q;
  child->get_absolute_orientation(q);
  EXPECT_NEAR(q.z, std::sqrt(0.5f), 1e-6f);
  EXPECT_NEAR(q.w, std::sqrt(0.5f), 1e-6f);
  vec4 x;
  child->get_absolute_orientation_vectors(&x, nullptr, nullptr);
  EXPECT_TRUE(x.is_equal(vec4(0, 1, 0, 1), 1e-6f));
  EXPECT_EQ(x.w, 3.0f);
  float y3[4] = {9, 9, 9, 9};
  child->get_absolute_orientation_vectors_v2(nullptr, y3, nullptr);
  EXPECT_NEAR(y3[0], -1.0f, 1e-6f);
  EXPECT_EQ(y3[3], 9.0f);
}

TEST(ObjectTransform, PlaneOfAnObjectAboveTheOrigin) {
  Object object;
  object.set_position(0, 2, 0);
  float plane[4] = {};
  object.get_plane_equation(plane);
  EXPECT_EQ(plane[0], 0.0f);
  EXPECT_EQ(plane[1], 1.0f);
  EXPECT_EQ(plane[2], 0.0f);
  EXPECT_EQ(plane[3], -2.0f);
  object.get_plane_equation(nullptr);
  float b = 0, d = 0;
  object.get_plane_equation(nullptr, &b, nullptr, &d);
  EXPECT_EQ(b, 1.0f);
  EXPECT_EQ(d, -2.0f);
}

}  // namespace
}  // namespace orv
