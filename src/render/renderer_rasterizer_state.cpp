#include <orv/render/renderer_rasterizer_state.h>

namespace orv {

bool operator==(const Renderer_Rasterizer_State& a, const Renderer_Rasterizer_State& b) {
  return a.polygon_mode == b.polygon_mode && a.polygon_face == b.polygon_face &&
         a.cull_face == b.cull_face && a.cull_enabled == b.cull_enabled &&
         a.front_ccw == b.front_ccw && a.polygon_offset_units == b.polygon_offset_units &&
         a.polygon_offset_factor == b.polygon_offset_factor &&
         a.polygon_offset_fill_enabled == b.polygon_offset_fill_enabled && a.reserved == b.reserved;
}

}  // namespace orv
