/// @file
/// One uniform value kept on the CPU side.
#pragma once

#include <orv/core/api.h>
#include <orv/gpu/gpu_enums.h>

namespace orv {

/// One named uniform of a GpuProgramData with its value, which the renderer sends when it is dirty.
/// Matrices are kept as given, column by column.
class ORV_API GpuProgramUniform {
 public:
  /// gpu_buffer_offset of a uniform that is not in a constant buffer.
  static constexpr unsigned int NO_OFFSET = 0xFFFFFFFFu;

  /// Without a name, a single integer.
  GpuProgramUniform() = default;

  /// @{
  /// Copies the value arrays too.
  GpuProgramUniform(const GpuProgramUniform& other);
  GpuProgramUniform& operator=(const GpuProgramUniform& other);
  /// @}

  ~GpuProgramUniform();

  int location = -1;  ///< in the linked program, -1 while unknown or missing
  GPU_SHADER_UNIFORM type = GPU_SHADER_UNIFORM_1i;  ///< which of the values below counts
  bool dirty = false;                               ///< to be sent at the next flush
  int num_uploads = 0;                              ///< times sent
  char name[64] = {};                               ///< empty for constant buffer uniforms
  unsigned int value_ui[4] = {};                    ///< value of the unsigned types
  int value_i[4] = {0, 0, 0, 1};                    ///< value of the integer types
  float value_f[4] = {0, 0, 0, 1};                  ///< value of the float types
  double value_d[4] = {0, 0, 0, 1};                 ///< value of the double types
  float value_mat4f[16] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1};  ///< 3x3: first nine
  double value_mat4d[16] = {1, 0, 0, 0, 0, 1, 0, 0,
                            0, 0, 1, 0, 0, 0, 0, 1};  ///< matrices of doubles; 3x3: first nine
  int count = 0;                                      ///< entries of the value array
  int elements = 0;                                   ///< values per entry, 1 to 4
  float* values_f = nullptr;   ///< count * elements values, owned; also null for other types
  double* values_d = nullptr;  ///< the same for arrays of doubles, owned
  int* values_i = nullptr;     ///< the same for arrays of integers, owned
  unsigned long long* values_ui64 = nullptr;        ///< also holds the one value of type 1ui64
  GPU_SHADER_TYPE shader_type = GPU_SHADER_VERTEX;  ///< stage of a subroutine uniform
  char subroutine_name[64] = {};                    ///< chosen subroutine
  unsigned int gpu_buffer_offset = NO_OFFSET;       ///< bytes, in the constant buffer
};

}  // namespace orv
