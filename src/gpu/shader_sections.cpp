#include "gpu/shader_sections.h"

#include <iterator>
#include <string_view>

namespace orv::detail {

namespace {

struct Marker {
  GPU_SHADER_TYPE type;
  std::string_view text;
};

constexpr Marker MARKERS[] = {
    {GPU_SHADER_VERTEX, "[Vertex_Shader]"},      {GPU_SHADER_PIXEL, "[Pixel_Shader]"},
    {GPU_SHADER_GEOMETRY, "[Geometry_Shader]"},  {GPU_SHADER_TESS_CONTROL, "[TessControl_Shader]"},
    {GPU_SHADER_TESS_EVAL, "[TessEval_Shader]"}, {GPU_SHADER_COMPUTE, "[Compute_Shader]"},
};

}  // namespace

bool ShaderSections::is_complete() const {
  const auto has = [this](GPU_SHADER_TYPE type) { return sections[type].text != nullptr; };
  return has(GPU_SHADER_COMPUTE) || (has(GPU_SHADER_VERTEX) && has(GPU_SHADER_PIXEL));
}

ShaderSections split_shader_sections(std::string& text) {
  ShaderSections result;
  std::size_t starts[std::size(MARKERS)];
  for (std::size_t i = 0; i < std::size(MARKERS); ++i) starts[i] = text.find(MARKERS[i].text);
  for (std::size_t i = 0; i < std::size(MARKERS); ++i) {
    ShaderSection& section = result.sections[i];
    section.type = MARKERS[i].type;
    if (starts[i] == std::string::npos) continue;
    text[starts[i]] = 0;
    section.text = text.c_str() + starts[i] + MARKERS[i].text.size();
  }
  return result;
}

}  // namespace orv::detail
