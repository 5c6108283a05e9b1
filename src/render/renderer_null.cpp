#include <orv/render/renderer_null.h>

#include <orv/math/mat4.h>

// Most operations of the list leave their parameters alone.
#pragma GCC diagnostic ignored "-Wunused-parameter"

namespace orv {

namespace {

const mat4 identity_matrix;

}  // namespace

RendererNull::RendererNull() {
  set_name("Null");
  set_description("Renderer without a graphics API.");
  set_version(0, 1, 0);
  set_type(PLUGIN_TYPE_RENDERER);
}

RendererNull::~RendererNull() = default;

#define ORV_NULL_MATRIX identity_matrix
#define ORV_OP(result, name, parameters, arguments, null_result) \
  result RendererNull::name parameters { return null_result; }
#define ORV_BASE_OP(result, name, parameters, arguments, null_result)
#include <orv/render/renderer_ops.inc>

}  // namespace orv
