/// @file
/// A renderer without a graphics API.
#pragma once

#include <orv/render/renderer.h>

namespace orv {

/// Runs scene and resource logic with no GPU: plugin operations are true, operations that create or
/// change something report success and leave API ids at 0, operations that read something give 0,
/// false or null. A host makes it itself.
class ORV_API RendererNull : public Renderer {
 public:
  /// Ready to use.
  RendererNull();
  ~RendererNull() override;

#define ORV_OP(result, name, parameters, arguments, null_result) result name parameters override;
#define ORV_BASE_OP(result, name, parameters, arguments, null_result)
#include <orv/render/renderer_ops.inc>
};

}  // namespace orv
