#include "support/recording_renderer.h"

#include <cstdio>

namespace orv::test {

RecordingRenderer::RecordingRenderer(ORV_API3D api_type) {
  set_name("Recording");
  set_api_type(api_type);
}

RecordingRenderer::~RecordingRenderer() = default;

std::vector<std::string> RecordingRenderer::names() const {
  std::vector<std::string> names;
  for (const std::string& call : calls_) names.push_back(call.substr(0, call.find('(')));
  return names;
}

int RecordingRenderer::count(const std::string& name) const {
  int count = 0;
  for (const std::string& call : calls_) count += call.compare(0, name.size() + 1, name + "(") == 0;
  return count;
}

void RecordingRenderer::remember_program(const std::string& name, GpuProgramData* program) {
  if (name == "gpu_program_bind" || name == "gpu_program_use") current_program_ = program;
  if (name == "gpu_program_unbind" || name == "gpu_program_unuse") current_program_ = nullptr;
}

std::string RecordingRenderer::print(double value) {
  char text[40];
  std::snprintf(text, sizeof(text), "%g", value);
  return text;
}

std::string RecordingRenderer::print(const vec4& value) {
  return "(" + print(value.x) + ", " + print(value.y) + ", " + print(value.z) + ", " +
         print(value.w) + ")";
}

std::string RecordingRenderer::print(const char* value) const {
  return value ? "\"" + std::string(value) + "\"" : "null";
}

std::string RecordingRenderer::print(const void* value) const {
  if (!value) return "null";
  const auto found = labels_.find(value);
  return found == labels_.end() ? "ptr" : found->second;
}

}  // namespace orv::test
