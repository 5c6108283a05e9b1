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
  mat4 model_view_projection;  ///< projection * view * model
  mat4 model_view;             ///< view * model
  mat4 model_view_2;           ///< the model-view matrix again
  mat4 view;                   ///< from the world to the camera
  mat4 projection;             ///< from the camera to clip space
  mat4 view_projection;        ///< projection * view
};

}  // namespace orv
