#include <orv/geometry/shapes/curve.h>

#include <orv/core/log_mgr.h>

#include <algorithm>
#include <exception>
#include <new>

#include "geometry/limits.h"
#include "geometry/shapes/line_shapes.h"

namespace orv {

Curve::Curve() { set_type(NODE_TYPE_CURVE); }

Curve::~Curve() { Curve::free(); }

bool Curve::set_params(unsigned int num_points, const vec4* values) {
  vec4* const old = values_;
  values_ = nullptr;  // the new values may be copied from it
  num_points_ = 0;
  const bool stored = num_points == 0 || alloc_values(num_points);
  if (stored && values && num_points > 0) std::copy_n(values, num_points, values_);
  delete[] old;
  update_build_state(true);
  return stored;
}

bool Curve::set_build_params(unsigned int num_points, const vec4* values) {
  return set_params(num_points, values);
}

bool Curve::build(Node*) { return build_line_shape(*this); }

bool Curve::_build() {
  if (num_points_ > 0 && get_num_vertices(nullptr) != num_points_ &&
      !start_shape(num_points_, PRIMITIVE_LINE_STRIP)) {
    return false;
  }
  for (unsigned int i = 0; i < num_points_; ++i) set_vertex_position(i, values_[i]);
  return Polyline::_build();
}

// ---- values ----

bool Curve::alloc(unsigned int n) {
  Curve::free();
  if (!alloc_values(n)) return false;
  if (initialize_v2(n, PRIMITIVE_LINE_STRIP)) return true;
  Curve::free();
  return false;
}

bool Curve::alloc_values(unsigned int n) {
  try {
    check_geometry_bytes(n, sizeof(vec4));
    values_ = new vec4[n];
    num_points_ = n;
    return true;
  } catch (const std::bad_alloc& e) {
    LogMgr::get().tracef_error("std::bad_alloc exception caught - what: %s", e.what());
  } catch (const std::exception& e) {
    LogMgr::get().tracef_error("std::exception exception caught - what: %s", e.what());
  } catch (...) {
    LogMgr::get().trace_error("unknown exception caught");
  }
  return false;
}

bool Curve::free() {
  delete[] values_;
  values_ = nullptr;
  num_points_ = 0;
  return true;
}

bool Curve::set_value(unsigned int i, const vec3& v) { return set_value(i, vec4(v)); }

bool Curve::set_value(unsigned int i, const vec4& v) {
  if (i >= num_points_) return false;
  values_[i] = v;
  set_vertex_position(i, v);
  return true;
}

bool Curve::set_value(unsigned int i, float x, float y, float z, float w) {
  return set_value(i, vec4(x, y, z, w));
}

bool Curve::set_value(unsigned int i, const float* p) {
  return p && set_value(i, vec4(p[0], p[1], p[2], p[3]));
}

vec4 Curve::get_value_vec4(unsigned int i) const { return i < num_points_ ? values_[i] : vec4(); }

vec3 Curve::get_value_vec3(unsigned int i) const {
  return i < num_points_ ? values_[i].get_vec3() : vec3();
}

vec4* Curve::get_value_vec4_ptr(unsigned int i) { return i < num_points_ ? values_ + i : nullptr; }

float* Curve::get_value_xyzw_ptr(unsigned int i) {
  return i < num_points_ ? values_[i].ptr() : nullptr;
}

}  // namespace orv
