#pragma once

#include <orv/math/mat4.h>
#include <orv/math/quat.h>
#include <orv/math/vec3.h>
#include <orv/math/vec4.h>

#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>

namespace orv::test {

/// Whether `count` floats agree within `eps`. NaN agrees with nothing.
inline ::testing::AssertionResult floats_near(const float* a, const float* b, std::size_t count,
                                              float eps) {
  for (std::size_t i = 0; i < count; ++i) {
    if (std::abs(a[i] - b[i]) <= eps) continue;
    return ::testing::AssertionFailure()
           << "element " << i << " is " << a[i] << ", expected " << b[i] << " within " << eps;
  }
  return ::testing::AssertionSuccess();
}

inline ::testing::AssertionResult near(const mat4& a, const mat4& b, float eps) {
  return floats_near(a.m, b.m, 16, eps);
}
inline ::testing::AssertionResult near(const vec4& a, const vec4& b, float eps) {
  return floats_near(a.ptr(), b.ptr(), 4, eps);
}
inline ::testing::AssertionResult near(const vec3& a, const vec3& b, float eps) {
  return floats_near(a.ptr(), b.ptr(), 3, eps);
}
inline ::testing::AssertionResult near(const quat& a, const quat& b, float eps) {
  const float p[4] = {a.x, a.y, a.z, a.w};
  const float q[4] = {b.x, b.y, b.z, b.w};
  return floats_near(p, q, 4, eps);
}
/// Whether both turn alike: q and -q are one rotation.
inline ::testing::AssertionResult same_rotation(const quat& a, const quat& b, float eps) {
  quat opposite = b;
  opposite.negate();
  const auto first = near(a, b, eps);
  return first ? first : near(a, opposite, eps);
}

}  // namespace orv::test

namespace orv {

inline void PrintTo(const vec3& v, std::ostream* out) {
  *out << "(" << v.x << ", " << v.y << ", " << v.z << ")";
}
inline void PrintTo(const vec4& v, std::ostream* out) {
  *out << "(" << v.x << ", " << v.y << ", " << v.z << ", " << v.w << ")";
}
inline void PrintTo(const quat& q, std::ostream* out) {
  *out << "(" << q.x << ", " << q.y << ", " << q.z << "; " << q.w << ")";
}
inline void PrintTo(const mat4& m, std::ostream* out) {
  for (int r = 0; r < 4; ++r) {
    *out << "\n  " << m.m[r] << " " << m.m[4 + r] << " " << m.m[8 + r] << " " << m.m[12 + r];
  }
}

}  // namespace orv
