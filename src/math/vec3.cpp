#include <orv/math/vec3.h>

#include "math/turn.h"

namespace orv {

void vec3::rotate_x(float degrees) {
  const Turn t = Turn::of_degrees(degrees);
  *this = vec3(x, t.c * y - t.s * z, t.s * y + t.c * z);
}

void vec3::rotate_y(float degrees) {
  const Turn t = Turn::of_degrees(degrees);
  *this = vec3(t.c * x + t.s * z, y, t.c * z - t.s * x);
}

void vec3::rotate_z(float degrees) {
  const Turn t = Turn::of_degrees(degrees);
  *this = vec3(t.c * x - t.s * y, t.s * x + t.c * y, z);
}

}  // namespace orv
