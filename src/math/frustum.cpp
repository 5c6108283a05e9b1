#include <orv/math/frustum.h>

#include <orv/math/bounding_volume.h>
#include <orv/math/mat4.h>
#include <orv/math/vec3.h>
#include <orv/math/vec4.h>

#include <cmath>

namespace orv {

namespace {

float distance(const float* plane, float x, float y, float z) {
  return plane[0] * x + plane[1] * y + plane[2] * z + plane[3];
}

int plane_count(bool skip_far) { return skip_far ? 5 : 6; }

// The greater of two products, or NaN when either is.
float greater(float a, float b) { return a > b || a != a ? a : b; }

// Whether all corners of a box lie strictly outside of a plane. Rounding keeps the order of sums,
// so the corner that lies furthest inside speaks for all eight.
bool box_outside(const float* plane, const vec4& center, const vec4& half) {
  const float x = greater(plane[0] * (center.x + half.x), plane[0] * (center.x - half.x));
  const float y = greater(plane[1] * (center.y + half.y), plane[1] * (center.y - half.y));
  const float z = greater(plane[2] * (center.z + half.z), plane[2] * (center.z - half.z));
  return x + y + z + plane[3] < 0.0f;
}

}  // namespace

void Frustum::update(const mat4* projection, const mat4* view) {
  if (!projection || !view) return;
  const mat4 product = *projection * *view;
  product.to_float_array(clip);
  static constexpr struct {
    int row;
    float sign;
  } SIDES[6] = {{0, -1.0f}, {0, 1.0f}, {1, 1.0f}, {1, -1.0f}, {2, 1.0f}, {2, -1.0f}};
  for (int side = 0; side < 6; ++side) {
    float* plane = planes[side];
    for (int k = 0; k < 4; ++k) {
      plane[k] = clip[4 * k + 3] + SIDES[side].sign * clip[4 * k + SIDES[side].row];
    }
    const float scale =
        1.0f / std::sqrt(plane[0] * plane[0] + plane[1] * plane[1] + plane[2] * plane[2]);
    for (int k = 0; k < 4; ++k) plane[k] *= scale;
  }
}

bool Frustum::check_point(float x, float y, float z, bool skip_far) const {
  // One plane is enough by contract; the sphere and box tests are the strict ones.
  for (int i = 0; i < plane_count(skip_far); ++i) {
    if (distance(planes[i], x, y, z) > 0.0f) return true;
  }
  return false;
}

bool Frustum::check_point(const vec3& point, bool skip_far) const {
  return check_point(point.x, point.y, point.z, skip_far);
}

bool Frustum::check_point(const vec4& point, bool skip_far) const {
  return check_point(point.x, point.y, point.z, skip_far);
}

bool Frustum::check_sphere(const vec4& center, float radius, bool skip_far) const {
  for (int i = 0; i < plane_count(skip_far); ++i) {
    if (distance(planes[i], center.x, center.y, center.z) < -radius) return false;
  }
  return true;
}

bool Frustum::check_sphere(const BoundingVolume& volume, bool skip_far) const {
  return check_sphere(volume.global_sphere_center, volume.global_sphere_radius, skip_far);
}

bool Frustum::check_axis_aligned_box(const BoundingVolume& volume, bool skip_far) const {
  const vec4 half = volume.global_box_size * 0.5f;
  for (int i = 0; i < plane_count(skip_far); ++i) {
    if (box_outside(planes[i], volume.global_sphere_center, half)) return false;
  }
  return true;
}

}  // namespace orv
