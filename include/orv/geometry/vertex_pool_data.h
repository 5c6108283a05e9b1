/// @file
/// The geometry of points.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/geometry_core.h>

namespace orv {

/// Geometry of a VertexPool, which owns it.
class ORV_API VertexPoolData : public GeometryCore {
 public:
  /// Without vertices, a line strip until the pool is initialised.
  VertexPoolData();
  ~VertexPoolData() override;
};

}  // namespace orv
