/// @file
/// Name and location of one vertex attribute of a GPU program.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// One slot of the attribute table of a GpuProgramData. A slot without name or with a negative
/// location is not used.
class ORV_API GpuProgramVertexAttrib {
 public:
  int location = -1;   ///< in the linked program, -1 for none
  char name[64] = {};  ///< empty for an unused slot
};

}  // namespace orv
