/// @file
/// The geometry of lines.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/geometry_core.h>

namespace orv {

/// Geometry of one or several polylines, which share it by reference count (see Polyline). Drawn as
/// a line strip unless told otherwise.
class ORV_API PolylineData : public GeometryCore {
 public:
  /// Without vertices, attached to no polyline.
  PolylineData();
  ~PolylineData() override;
};

}  // namespace orv
