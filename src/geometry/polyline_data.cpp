#include <orv/geometry/polyline_data.h>

namespace orv {

PolylineData::PolylineData() { set_primitive_type(PRIMITIVE_LINE_STRIP); }

PolylineData::~PolylineData() = default;

}  // namespace orv
