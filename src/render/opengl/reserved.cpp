// Slots that only other back ends use: each answers what its row says.
#include "render/opengl/renderer_opengl.h"

namespace orv {

#define ORV_UNNAMED_0
#define ORV_UNNAMED_1 void*
#define ORV_UNNAMED_2 ORV_UNNAMED_1, void*
#define ORV_UNNAMED_3 ORV_UNNAMED_2, void*
#define ORV_UNNAMED_4 ORV_UNNAMED_3, void*
#define ORV_UNNAMED_5 ORV_UNNAMED_4, void*
#define ORV_UNNAMED_6 ORV_UNNAMED_5, void*
#define ORV_UNNAMED_7 ORV_UNNAMED_6, void*
#define ORV_UNNAMED_8 ORV_UNNAMED_7, void*

#define ORV_OP(result, name, parameters, arguments, null_result)
#define ORV_RESERVED_OP(result, name, arity, null_result) \
  result RendererOpenGL::name(ORV_UNNAMED_##arity) { return null_result; }
#include <orv/render/renderer_ops.inc>

bool RendererOpenGL::reserved_killall_1(RendererGpu*) { return true; }

bool RendererOpenGL::reserved_killall_2(RendererGpu*) { return true; }

bool RendererOpenGL::reserved_killall_3(RendererGpu*) { return true; }

bool RendererOpenGL::texture_load_direct3d(RendererGpu*, TextureData*, unsigned int, unsigned int) {
  return true;
}

unsigned int RendererOpenGL::gpu_render_target_get_color_texture_handle(GpuRenderTarget*,
                                                                        unsigned int) {
  return 0;
}

}  // namespace orv
