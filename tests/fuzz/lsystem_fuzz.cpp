// Any text as an L-system program: growth ends, within 16-bit indices and with finite points.
#include "geometry/shapes/lsystem.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string_view>

namespace {

bool is_finite(const orv::vec3& v) {
  return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

}  // namespace

// The parser reports broken texts on the standard output.
extern "C" int LLVMFuzzerInitialize(int*, char***) {
  return std::freopen("/dev/null", "w", stdout) ? 0 : 1;
}

// The first three bytes are slices, depth and seed.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using orv::detail::ParShape;
  if (size < 3) return 0;
  orv::detail::LSystemParams params;
  params.slices = data[0];
  params.max_depth = data[1];
  params.seed = data[2];
  const std::string_view text(reinterpret_cast<const char*>(data) + 3, size - 3);
  ParShape shape;
  if (orv::detail::grow_lsystem(text, params, shape) != (params.slices > 0)) std::abort();
  if (shape.points.size() > ParShape::MAX_POINTS) std::abort();
  if (shape.normals.size() != shape.points.size()) std::abort();
  if (shape.tcoords.size() != shape.points.size()) std::abort();
  if (!std::all_of(shape.points.begin(), shape.points.end(), is_finite)) std::abort();
  if (!std::all_of(shape.normals.begin(), shape.normals.end(), is_finite)) std::abort();
  for (const ParShape::Triangle& t : shape.triangles) {
    if (std::max({t.a, t.b, t.c}) >= shape.points.size()) std::abort();
  }
  return 0;
}
