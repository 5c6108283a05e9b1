/// @file
/// A recorded command list for back ends that have one.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// Command list record of Direct3D and Vulkan back ends.
class ORV_API GpuCommandList {
 public:
  /// With an identity of its own.
  GpuCommandList();

  /// Identity within the process.
  int getid() const { return id; }

  char name[128];            ///< "GpuCommandList_" and the id
  void* api_values[3] = {};  ///< owned by the back end
  int id;                    ///< identity within the process
};

}  // namespace orv
