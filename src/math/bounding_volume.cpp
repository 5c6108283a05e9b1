#include <orv/math/bounding_volume.h>

#include <orv/core/log_mgr.h>
#include <orv/math/math.h>

namespace orv {

namespace {

// Radius of a sphere round a box of that size, or in it.
float radius_of_box(const vec4& size, bool inscribed) {
  const float half_diagonal = size.length() * 0.5f;
  return inscribed ? half_diagonal / 1.732f : half_diagonal;
}

// x, y, z of the middle of a box; the fourth lane is that of `w`.
vec4 middle(const vec4& min, const vec4& size, float w) {
  return vec4(size.x * 0.5f + min.x, size.y * 0.5f + min.y, size.z * 0.5f + min.z, w);
}

vec4 size_of(const vec4& min, const vec4& max) {
  return vec4(max.x - min.x, max.y - min.y, max.z - min.z, 1.0f);
}

// Lowers x, y, z of `min` and raises those of `max` to hold the other box.
void grow(vec4& min, vec4& max, const vec4& other_min, const vec4& other_max) {
  for (std::size_t i = 0; i < 3; ++i) {
    if (other_min[i] < min[i]) min[i] = other_min[i];
    if (other_max[i] > max[i]) max[i] = other_max[i];
  }
}

constexpr float FAR = BoundingVolume::FAR_AWAY;
constexpr vec4 EMPTY_MIN(FAR, FAR, FAR, 1.0f);
constexpr vec4 EMPTY_MAX(-FAR, -FAR, -FAR, 1.0f);

}  // namespace

void BoundingVolume::reset_locals() {
  sphere_center = vec4();
  sphere_radius = 0.0f;
  box_min = EMPTY_MIN;
  box_max = EMPTY_MAX;
  box_size = vec4();
}

void BoundingVolume::reset_globals() {
  global_sphere_center = vec4();
  global_sphere_radius = 0.0f;
  global_box_min = EMPTY_MIN;
  global_box_max = EMPTY_MAX;
  global_box_size = vec4();
  aabb_min = EMPTY_MIN;
  aabb_max = EMPTY_MAX;
  aabb_size = vec4();
}

void BoundingVolume::set_box(const vec4& min, const vec4& max) {
  box_min = min;
  box_max = max;
  box_size = size_of(box_min, box_max);
  sphere_center = middle(box_min, box_size, 1.0f);
  sphere_radius = radius_of_box(box_size, inscribed_sphere);
}

void BoundingVolume::set_sphere(const vec4& center, float radius) {
  sphere_center = center;
  sphere_radius = radius;
}

void BoundingVolume::update_globals(const vec4& min, const vec4& max) {
  grow(global_box_min, global_box_max, min, max);
  global_box_size = size_of(global_box_min, global_box_max);
  global_sphere_center = middle(global_box_min, global_box_size, 1.0f);
  global_sphere_radius = radius_of_box(global_box_size, inscribed_sphere);
}

void BoundingVolume::update(const mat4& matrix) {
  vec4 local_corners[8];
  _update_corners(local_corners, sphere_center, box_size);
  for (int i = 0; i < 8; ++i) corners[i] = matrix * local_corners[i];

  global_sphere_center = matrix * sphere_center;
  global_box_min = corners[0];
  global_box_max = corners[0];
  for (int i = 1; i < 8; ++i) grow(global_box_min, global_box_max, corners[i], corners[i]);
  global_box_size = size_of(global_box_min, global_box_max);
  aabb_min = global_box_min;
  aabb_max = global_box_max;
  aabb_size = global_box_size;
  _update_corners(aabb_corners, global_sphere_center, global_box_size);

  const vec4 half = global_box_size * 0.5f;
  global_sphere_radius = Math::maxi(half.x, Math::maxi(half.y, half.z));
}

void BoundingVolume::merge(const BoundingVolume& other) {
  grow(box_min, box_max, other.box_min, other.box_max);
  box_size = size_of(box_min, box_max);
  sphere_center = middle(box_min, box_size, sphere_center.w);
  LogMgr::get().tracef(
      "BoundingVolume::merge() - box size:<%.2f;%.2f;%.2f> - sphere center:<%.2f;%.2f;%.2f>",
      static_cast<double>(box_size.x), static_cast<double>(box_size.y),
      static_cast<double>(box_size.z), static_cast<double>(sphere_center.x),
      static_cast<double>(sphere_center.y), static_cast<double>(sphere_center.z));
}

void BoundingVolume::_update_corners(vec4* out, const vec4& center, const vec4& size) {
  if (!out) return;
  static constexpr signed char SIGNS[8][3] = {{-1, -1, -1}, {-1, 1, -1}, {1, 1, -1},  {1, -1, -1},
                                              {1, 1, 1},    {-1, 1, 1},  {-1, -1, 1}, {1, -1, 1}};
  const vec4 c = center;  // `center` may be one of the vectors written
  const vec4 h = size * 0.5f;
  for (int i = 0; i < 8; ++i) {
    out[i].x = SIGNS[i][0] < 0 ? c.x - h.x : c.x + h.x;
    out[i].y = SIGNS[i][1] < 0 ? c.y - h.y : c.y + h.y;
    out[i].z = SIGNS[i][2] < 0 ? c.z - h.z : c.z + h.z;
  }
}

}  // namespace orv
