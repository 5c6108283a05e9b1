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

const char* ShaderSections::find_missing() const {
  if (sections[GPU_SHADER_COMPUTE].text) return nullptr;
  for (const GPU_SHADER_TYPE type : {GPU_SHADER_VERTEX, GPU_SHADER_PIXEL}) {
    if (!sections[type].text) return MARKERS[type].text.data();
  }
  return nullptr;
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
