/// @file
/// Line strip through values that it keeps.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/polyline.h>
#include <orv/math/vec3.h>

namespace orv {

/// A line strip that keeps the value of each of its points beside the vertex drawn for it, so that
/// the vertex may be moved (scaled, say) without losing the value.
class ORV_API Curve : public Polyline {
 public:
  /// Without points.
  Curve();
  /// Frees the values.
  ~Curve() override;

  /// @{
  /// Store `num_points` values for the next build, copied from `values` or, when that is null, all
  /// (0, 0, 0, 1). False when they don't fit in memory; true with no points for 0.
  bool set_params(unsigned int num_points, const vec4* values);
  bool set_build_params(unsigned int num_points, const vec4* values);
  /// @}

  /// Builds this curve alone when it is due, not its children.
  bool build(Node* node) override;
  /// Puts every vertex to its value. False when there are values and no memory for the vertices.
  bool _build() override;

  /// Allocates `n` values and vertices at (0, 0, 0, 1), in place of earlier ones. False, with an
  /// error in the log, for 0 and for too little memory; there are no points then.
  bool alloc(unsigned int n);
  /// Frees the values; there are no points then. The vertices stay. True.
  bool free();
  unsigned int get_num_points() const { return num_points_; }  ///< as allocated

  /// @{
  /// Store a value and move its vertex there. w is 1 where it is not given; `p` holds four floats.
  /// False when there is no point `i` and for null.
  bool set_value(unsigned int i, const vec3& v);
  bool set_value(unsigned int i, const vec4& v);
  bool set_value(unsigned int i, float x, float y, float z, float w);
  bool set_value(unsigned int i, const float* p);
  /// @}

  /// @{
  /// Value `i`; (0, 0, 0, 1) or (0, 0, 0) when there is none.
  vec4 get_value_vec4(unsigned int i) const;
  vec3 get_value_vec3(unsigned int i) const;
  /// @}

  /// @{
  /// Value `i` in place, null when there is none. Writing to it does not move the vertex.
  vec4* get_value_vec4_ptr(unsigned int i);
  float* get_value_xyzw_ptr(unsigned int i);
  /// @}

 private:
  bool alloc_values(unsigned int n);

  unsigned int num_points_ = 0;
  vec4* values_ = nullptr;
};

}  // namespace orv
