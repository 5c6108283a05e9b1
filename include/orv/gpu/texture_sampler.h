/// @file
/// How a texture is sampled.
#pragma once

#include <orv/core/api.h>
#include <orv/gpu/gpu_enums.h>

namespace orv {

/// Sampling settings as a record of its own. The library constructs and copies samplers and does
/// not apply them; textures carry their settings in TextureData.
class ORV_API TextureSampler {
 public:
  /// Linear and wrapping, with an identity of its own.
  TextureSampler();

  /// Identity within the process.
  int getid() const { return id; }

  int id;  ///< identity within the process; a copy keeps it
  SAMPLER_FILTERING_MODE filtering_mode = SAMPLER_FILTERING_LINEAR;  ///< how texels are mixed
  SAMPLER_ADDRESSING_MODE addressing_mode_s =
      SAMPLER_ADDRESSING_WRAP;  ///< what lies outside 0 to 1 along s
  SAMPLER_ADDRESSING_MODE addressing_mode_t = SAMPLER_ADDRESSING_WRAP;  ///< along t
  SAMPLER_ADDRESSING_MODE addressing_mode_r = SAMPLER_ADDRESSING_WRAP;  ///< along r
  float anisotropy = 1.0f;                                              ///< samples, 1 for none
  unsigned int api_words[2] = {0, 0};  ///< free for the graphics API
};

}  // namespace orv
