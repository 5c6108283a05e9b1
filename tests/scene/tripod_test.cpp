#include <orv/scene/tripod.h>

#include <gtest/gtest.h>

#include <type_traits>

#include <orv/math/mat4.h>
#include <orv/math/quat.h>
#include <orv/math/vec4.h>
#include <orv/scene/object.h>

#include "support/near.h"

namespace orv {
namespace {

using test::near;

static_assert(std::has_virtual_destructor_v<Tripod>);
static_assert(!std::is_copy_constructible_v<Tripod>);

const mat4 some_matrix(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16);

quat turn(float degrees, float x, float y, float z) {
  quat q;
  q.from_axis_angle(degrees, x, y, z);
  return q;
}

// The transform of an object without parents: asking for the absolute one brings it up to date.
class TripodOfObject : public ::testing::Test {
 protected:
  TripodOfObject() {
    translation.init_translate(1, 2, 3);
    rotation.from_quat(orientation);
    scale.init_scale(2, 3, 4);
  }
  ~TripodOfObject() override { object->kill(nullptr, nullptr); }

  const mat4& updated() {
    object->get_absolute_transform();
    return tripod.get_transform();
  }
  void set_all() {
    tripod.set_position(1, 2, 3);
    tripod.set_orientation(orientation);
    tripod.set_scale(2, 3, 4);
  }

  Object* object = new Object;
  Tripod& tripod = *object->get_tripod();
  const quat orientation = turn(30, 0.6f, 0, 0.8f);
  mat4 translation;
  mat4 rotation;
  mat4 scale;
};

TEST(Tripod, Defaults) {
  Tripod tripod;
  EXPECT_EQ(tripod.get_position(), vec4(0, 0, 0, 1));
  EXPECT_EQ(tripod.get_scale(), vec4(1, 1, 1, 1));
  EXPECT_EQ(tripod.get_orientation(), quat());
  EXPECT_EQ(tripod.get_orientation_euler_angles(), vec4(0, 0, 0, 1));
  EXPECT_EQ(tripod.get_transform(), mat4());
  EXPECT_EQ(tripod.get_transform_order(), TRANSFORM_ORDER_TRS);
}

TEST(Tripod, HoldsWhatIsSet) {
  Tripod tripod;
  tripod.set_position(1, 2, 3, 4);
  EXPECT_EQ(tripod.get_position(), vec4(1, 2, 3, 4));
  tripod.set_position(vec4(5, 6, 7, 8));
  EXPECT_EQ(*tripod.get_position_vec4_ptr(), vec4(5, 6, 7, 8));
  EXPECT_EQ(tripod.get_position_ptr()[3], 8.0f);
  tripod.set_scale(2, 3, 4);
  EXPECT_EQ(tripod.get_scale(), vec4(2, 3, 4, 1));
  tripod.set_scale(vec4(5, 6, 7, 8));
  EXPECT_EQ(*tripod.get_scale_vec4_ptr(), vec4(5, 6, 7, 8));
  EXPECT_EQ(tripod.get_scale_ptr()[0], 5.0f);
  tripod.set_orientation(quat(1, 0, 0, 0));
  EXPECT_EQ(tripod.get_orientation(), quat(1, 0, 0, 0));
  EXPECT_EQ(tripod.get_transform_mat4_ptr(), &tripod.get_transform());
  EXPECT_EQ(tripod.get_transform_ptr(), tripod.get_transform().m);
}

TEST_F(TripodOfObject, TransformShowsAPositionOnlyOnceUpdated) {
  tripod.set_position(1, 2, 3);
  EXPECT_EQ(tripod.get_transform(), mat4());
  object->get_absolute_transform();
  EXPECT_EQ(tripod.get_transform(), translation);
}

TEST_F(TripodOfObject, OrdersComposeTheThreeMatrices) {
  const struct {
    TRANSFORM_ORDER order;
    mat4 expected;
  } cases[] = {
      {TRANSFORM_ORDER_TRS, translation * rotation * scale},
      {TRANSFORM_ORDER_RTS, rotation * translation * scale},
      {TRANSFORM_ORDER_TSR, translation * scale * rotation},
      {TRANSFORM_ORDER_RST, rotation * scale * translation},
  };
  for (const auto& c : cases) {
    tripod.set_transform_order(c.order);
    set_all();
    EXPECT_EQ(updated(), c.expected) << c.order;
  }
}

TEST_F(TripodOfObject, OrderActsAtTheNextChange) {
  set_all();
  EXPECT_EQ(updated(), translation * rotation * scale);
  tripod.set_transform_order(TRANSFORM_ORDER_RST);
  EXPECT_EQ(tripod.get_transform_order(), TRANSFORM_ORDER_RST);
  EXPECT_EQ(updated(), translation * rotation * scale);
  tripod.set_scale(2, 3, 4);
  EXPECT_EQ(updated(), rotation * scale * translation);
}

TEST_F(TripodOfObject, UnknownOrderLeavesTheMatrixAndClearsTheFlag) {
  set_all();
  const mat4 before = updated();
  tripod.set_transform_order(static_cast<TRANSFORM_ORDER>(7));
  tripod.set_position(9, 9, 9);
  EXPECT_EQ(updated(), before);
  tripod.set_transform_order(TRANSFORM_ORDER_TRS);
  EXPECT_EQ(updated(), before) << "the change of position was used up";
  tripod.set_position(9, 9, 9);
  EXPECT_EQ(updated().m[12], 9.0f);
}

TEST(Tripod, EulerAnglesOfZeroAreTheIdentity) {
  Tripod tripod;
  tripod.set_orientation(turn(40, 0, 1, 0));
  tripod.set_orientation_euler_angles(0, 0, 0);
  EXPECT_EQ(tripod.get_orientation(), quat());
}

TEST(Tripod, EulerAnglesAreXTimesYTimesZ) {
  Tripod tripod;
  tripod.set_orientation_euler_angles(20, 30, 40);
  EXPECT_EQ(tripod.get_orientation_euler_angles(), vec4(20, 30, 40, 1));
  EXPECT_EQ(tripod.get_orientation(), turn(20, 1, 0, 0) * turn(30, 0, 1, 0) * turn(40, 0, 0, 1));
}

TEST_F(TripodOfObject, EulerAnglesReachTheMatrix) {
  tripod.set_orientation_euler_angles(0, 0, 90);
  mat4 expected;
  expected.init_rotate_z(90);
  EXPECT_TRUE(near(updated(), expected, 1e-6f));
}

TEST(Tripod, OrientationDropsAnglesSetBefore) {
  Tripod tripod;
  tripod.set_orientation_euler_angles(20, 30, 40);
  tripod.set_orientation(turn(10, 1, 0, 0));
  EXPECT_EQ(tripod.get_orientation(), turn(10, 1, 0, 0));
  EXPECT_EQ(tripod.get_orientation_euler_angles(), vec4(20, 30, 40, 1));
}

TEST(Tripod, OrientationVectorsHaveW3) {
  Tripod tripod;
  tripod.set_orientation_euler_angles(0, 0, 90);
  vec4 x;
  vec4 y;
  vec4 z;
  tripod.get_orientation_vectors(&x, &y, &z);
  EXPECT_TRUE(near(x, vec4(0, 1, 0, 3), 1e-6f));
  EXPECT_TRUE(near(y, vec4(-1, 0, 0, 3), 1e-6f));
  EXPECT_TRUE(near(z, vec4(0, 0, 1, 3), 1e-6f));
}

TEST(Tripod, OrientationVectorsOfNullOnlyUpdateTheOrientation) {
  Tripod tripod;
  tripod.set_orientation_euler_angles(0, 0, 90);
  tripod.get_orientation_vectors(nullptr, nullptr, nullptr);
  EXPECT_EQ(tripod.get_orientation(), turn(90, 0, 0, 1));
  EXPECT_EQ(tripod.get_transform(), mat4());
  vec4 y;
  tripod.get_orientation_vectors(nullptr, &y, nullptr);
  EXPECT_TRUE(near(y, vec4(-1, 0, 0, 3), 1e-6f));
}

TEST_F(TripodOfObject, SetTransformStaysUntilTheNextSetterLosesIt) {
  set_all();
  tripod.set_transform(some_matrix);
  EXPECT_EQ(updated(), some_matrix);
  EXPECT_EQ(tripod.get_position(), vec4(1, 2, 3, 1)) << "kept, out of use";
  tripod.set_position(1, 2, 3);
  EXPECT_EQ(updated(), translation * rotation * scale);
}

TEST_F(TripodOfObject, SetTransformFromFloats) {
  float floats[16];
  some_matrix.to_float_array(floats);
  tripod.set_transform(floats);
  EXPECT_EQ(updated(), some_matrix);
}

TEST_F(TripodOfObject, SetTransformFromNullOnlyClearsTheFlag) {
  tripod.set_position(1, 2, 3);
  tripod.set_transform(static_cast<float*>(nullptr));
  EXPECT_EQ(updated(), mat4()) << "the change of position was dropped";
  EXPECT_EQ(tripod.get_position(), vec4(1, 2, 3, 1));
}

TEST_F(TripodOfObject, SetTransformV2StoresAllAndScale1) {
  tripod.set_scale(2, 3, 4);
  tripod.set_orientation_euler_angles(10, 20, 30);
  tripod.set_transform_v2(translation * rotation, vec4(1, 2, 3), orientation);
  EXPECT_EQ(updated(), translation * rotation);
  EXPECT_EQ(tripod.get_position(), vec4(1, 2, 3, 1));
  EXPECT_EQ(tripod.get_orientation(), orientation) << "angles set before don't turn away from it";
  EXPECT_EQ(tripod.get_scale(), vec4(1, 1, 1, 1));
  tripod.set_position(1, 2, 3);
  EXPECT_EQ(updated(), translation * rotation) << "all agree";
}

TEST_F(TripodOfObject, WritingThroughAPointerRaisesNoFlag) {
  EXPECT_EQ(updated(), mat4());
  tripod.get_position_ptr()[0] = 5;
  tripod.get_scale_vec4_ptr()->y = 7;
  EXPECT_EQ(updated(), mat4());
  tripod.set_orientation(quat());
  EXPECT_EQ(updated().m[12], 5.0f);
  EXPECT_EQ(updated().m[5], 7.0f);
}

}  // namespace
}  // namespace orv
