/// @file
/// A complete pipeline state for back ends that take one.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// Pipeline state record of Direct3D and Vulkan back ends. The library numbers, names and copies
/// it; what the values mean is up to the back end. Copies keep the id of their source.
class ORV_API GpuPipelineStateData {
 public:
  /// With an identity and the name made of it.
  GpuPipelineStateData();

  /// Identity within the process.
  int getid() const { return id; }

  int id;                              ///< identity within the process
  char name[128];                      ///< "GpuPipelineStateData_" and the id
  bool flags[5] = {};                  ///< the back end's, as the rest below
  int values[6] = {1, 1, 2, 0, 1, 1};  ///< the back end's
  float scale = 1.0f;                  ///< the back end's
  unsigned char state_flags[14] = {};  ///< the back end's
  int modes[5] = {1, 0, 1, 0, 0};      ///< the back end's
};

}  // namespace orv
