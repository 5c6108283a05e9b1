#include <orv/geometry/vertex_pool_data.h>

namespace orv {

VertexPoolData::VertexPoolData() { set_primitive_type(PRIMITIVE_LINE_STRIP); }

VertexPoolData::~VertexPoolData() = default;

}  // namespace orv
