/// @file
/// The matrices of one object, as a block for constant buffers.
#pragma once

#include <orv/core/api.h>
#include <orv/math/mat4.h>

namespace orv {

/// The matrix set handed to renderers that take automatic uniforms from a buffer. All matrices are
/// identity at first.
class ORV_API GpuProgramModelViewParams {
 public:
  mat4 model_view_projection;
  mat4 model_view;
  mat4 model_view_2;  ///< the model-view matrix again
  mat4 view;
  mat4 projection;
  mat4 view_projection;
};

}  // namespace orv
