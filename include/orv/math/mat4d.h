/// @file
/// 4x4 matrix of doubles.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// 4x4 matrix of doubles, column-major like `mat4`, identity by default: storage only.
class ORV_API mat4d {
 public:
  double m[16];  ///< column after column

  /// Identity.
  constexpr mat4d() : m{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1} {}
  /// Sixteen values in storage order: the first four are the first column.
  constexpr mat4d(double m0, double m1, double m2, double m3, double m4, double m5, double m6,
                  double m7, double m8, double m9, double m10, double m11, double m12, double m13,
                  double m14, double m15)
      : m{m0, m1, m2, m3, m4, m5, m6, m7, m8, m9, m10, m11, m12, m13, m14, m15} {}
  /// Copy of another matrix; identity when null.
  explicit mat4d(const mat4d* other) : mat4d() { *this = other; }

  /// Reads sixteen doubles in storage order; null changes nothing.
  mat4d& operator=(const double* p) {
    if (!p) return *this;
    for (int i = 0; i < 16; ++i) m[i] = p[i];
    return *this;
  }
  /// Copies another matrix; null changes nothing.
  mat4d& operator=(const mat4d* other) {
    if (other) *this = *other;
    return *this;
  }

  /// Becomes the identity.
  void identity() { *this = mat4d(); }
  /// The sixteen elements.
  double* ptr() { return m; }
  /// The sixteen elements.
  const double* ptr() const { return m; }
};

static_assert(sizeof(mat4d) == 128);

}  // namespace orv
