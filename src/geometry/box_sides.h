#pragma once

#include <orv/math/vec3.h>

namespace orv {

/// Side of a box: its outer normal and the directions in which its texture coordinates grow, with
/// u x v = normal.
struct BoxSide {
  vec3 normal;
  vec3 u;
  vec3 v;
};

/// The sides in the order +Z, -Z, -X, +X, +Y, -Y.
inline constexpr BoxSide BOX_SIDES[6] = {
    {vec3(0, 0, 1), vec3(1, 0, 0), vec3(0, 1, 0)},  {vec3(0, 0, -1), vec3(-1, 0, 0), vec3(0, 1, 0)},
    {vec3(-1, 0, 0), vec3(0, 0, 1), vec3(0, 1, 0)}, {vec3(1, 0, 0), vec3(0, 0, -1), vec3(0, 1, 0)},
    {vec3(0, 1, 0), vec3(1, 0, 0), vec3(0, 0, -1)}, {vec3(0, -1, 0), vec3(1, 0, 0), vec3(0, 0, 1)},
};

}  // namespace orv
