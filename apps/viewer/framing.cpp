#include "viewer/framing.h"

#include <algorithm>
#include <cmath>

namespace viewer {

using orv::vec4;

void Box::add(const Box& other) {
  for (int i = 0; i < 3; ++i) {
    const auto lane = static_cast<std::size_t>(i);
    min[lane] = std::min(min[lane], other.min[lane]);
    max[lane] = std::max(max[lane], other.max[lane]);
  }
}

bool Box::is_usable() const {
  const float sum = min.x + min.y + min.z + max.x + max.y + max.z;
  return std::isfinite(sum) && min.x <= max.x && min.y <= max.y && min.z <= max.z;
}

vec4 Box::get_center() const {
  return vec4(min.x * 0.5f + max.x * 0.5f, min.y * 0.5f + max.y * 0.5f, min.z * 0.5f + max.z * 0.5f,
              1.0f);
}

vec4 Box::get_half_size() const {
  return vec4(max.x * 0.5f - min.x * 0.5f, max.y * 0.5f - min.y * 0.5f, max.z * 0.5f - min.z * 0.5f,
              0.0f);
}

UnitPlacement place_in_unit(const Box& box) {
  constexpr double smallest = 1e-30;
  const vec4 half = box.get_half_size();
  const vec4 center = box.get_center();
  const double x = half.x, y = half.y, z = half.z;
  const double radius = std::sqrt(x * x + y * y + z * z);
  UnitPlacement placement;
  if (radius > smallest) placement.scale = static_cast<float>(1.0 / radius);
  const float s = placement.scale;
  placement.offset = vec4(-center.x * s, -center.y * s, -center.z * s, 1.0f);
  placement.half_size = vec4(half.x * s, half.y * s, half.z * s, 0.0f);
  return placement;
}

float fit_distance(const vec4& half_size, float pitch, float fov, float aspect) {
  constexpr double radians = 0.017453292519943295;
  constexpr double margin = 0.92;  // of the picture's half sides
  constexpr double closest = 0.3;
  const double tan_y = std::tan(fov * 0.5 * radians) * margin;
  const double tan_x = tan_y * aspect;
  const double sin_pitch = std::sin(pitch * radians);
  const double cos_pitch = std::cos(pitch * radians);
  double distance = closest;
  for (int degrees = 0; degrees < 360; degrees += 3) {
    const double sin_yaw = std::sin(degrees * radians);
    const double cos_yaw = std::cos(degrees * radians);
    for (int corner = 0; corner < 8; ++corner) {
      const double x = corner & 1 ? half_size.x : -half_size.x;
      const double y = corner & 2 ? half_size.y : -half_size.y;
      const double z = corner & 4 ? half_size.z : -half_size.z;
      // Into the axes of the view: right, up, towards the eye.
      const double forth = x * sin_yaw + z * cos_yaw;
      const double right = x * cos_yaw - z * sin_yaw;
      const double up = y * cos_pitch - forth * sin_pitch;
      const double near = y * sin_pitch + forth * cos_pitch;
      distance =
          std::max(distance, near + std::max(std::fabs(right) / tan_x, std::fabs(up) / tan_y));
    }
  }
  return static_cast<float>(distance);
}

float round_step(float extent) {
  if (!(extent > 0.0f) || !std::isfinite(extent)) return 1.0f;
  const double step = extent / 10.0;
  const double power = std::pow(10.0, std::floor(std::log10(step)));
  const double share = step / power;
  const double round = share < 1.5 ? 1.0 : share < 3.5 ? 2.0 : share < 7.5 ? 5.0 : 10.0;
  return static_cast<float>(round * power);
}

}  // namespace viewer
