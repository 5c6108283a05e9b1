#pragma once

#include <orv/gpu/gpu_program_data.h>

#include <gtest/gtest.h>

namespace orv::test {

/// A record of uniforms and the renderer that sends them.
class UniformFixture : public testing::Test {
 protected:
  /// Plays the renderer that sent all values.
  void send_all() {
    for (unsigned int i = 0; i < data.get_num_uniforms(); ++i) {
      GpuProgramUniform* uniform = data.get_uniforms_list()[i];
      if (!uniform) continue;
      uniform->location = static_cast<int>(i);
      uniform->dirty = false;
      ++uniform->num_uploads;
    }
    data._uniforms_optimization_ok();
  }

  bool is_dirty(const char* name) const { return data.find_uniform(name)->dirty; }

  GpuProgramData data;
};

}  // namespace orv::test
