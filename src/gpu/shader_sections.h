#pragma once

#include <orv/gpu/gpu_enums.h>

#include <string>

namespace orv::detail {

struct ShaderSection {
  GPU_SHADER_TYPE type = GPU_SHADER_VERTEX;
  const char* text = nullptr;  ///< zero terminated, inside the text split; null when absent
};

/// The stages found in one text, in the order in which they are loaded.
struct ShaderSections {
  ShaderSection sections[6];

  /// A program needs a compute stage, or both a vertex and a pixel stage. The marker of the first
  /// that is missing; null when there are enough.
  const char* find_missing() const;
};

/// Finds the sections of a shader text and terminates each with a zero, written over the marker of
/// the next. Of several markers of one kind the first counts.
ShaderSections split_shader_sections(std::string& text);

}  // namespace orv::detail
