#pragma once

#include <orv/gpu/gpu_program_data.h>

#include <cstring>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "support/recording_renderer.h"

namespace orv::test {

/// A renderer whose compiler remembers what it was given and fails where it is told to.
class ShaderCompiler : public RecordingRenderer {
 public:
  struct Load {
    GPU_SHADER_TYPE type;
    std::string text;
    unsigned int size;
  };

  bool gpu_shader_load(GpuProgramData* program, GPU_SHADER_TYPE type, const char* text,
                       unsigned int size) override {
    if (!program || !text || size == 0) return false;
    loads.push_back({type, std::string(text, strnlen(text, size)), size});
    const auto log = logs.find(type);
    if (log != logs.end()) {
      program->set_shader_info_log(type, log->second.c_str(),
                                   static_cast<unsigned int>(log->second.size()));
    }
    return failing.count(type) == 0;
  }

  /// Stages in the order in which they were loaded.
  std::vector<GPU_SHADER_TYPE> stages() const {
    std::vector<GPU_SHADER_TYPE> result;
    for (const Load& load : loads) result.push_back(load.type);
    return result;
  }

  std::vector<Load> loads;
  std::set<GPU_SHADER_TYPE> failing;
  std::map<GPU_SHADER_TYPE, std::string> logs;
};

}  // namespace orv::test
