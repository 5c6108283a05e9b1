/// @file
/// What stands in for the fixed pipeline in a core profile context.
#pragma once

#include <orv/gpu/gpu_program_data.h>

namespace orv {

/// A program that colours vertices, and a small buffer for lines. One for each context.
struct GlCoreColorProgram {
  GpuProgramData program;
  bool usable = false;
  int projection = -1;  ///< uniform locations
  int modelview = -1;
  unsigned int line_array = 0;   ///< vertex array object
  unsigned int line_buffer = 0;  ///< two positions and two colours, alternating
  unsigned int previous_program = 0;
};

}  // namespace orv
