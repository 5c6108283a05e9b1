/// @file
/// One face of a cube map.
#pragma once

#include <orv/core/api.h>
#include <orv/image/image.h>

namespace orv {

/// One of the six faces of a cube map.
class ORV_API TextureCubeMapFace {
 public:
  bool loaded = true;  ///< the face is in use
  Image image;         ///< its pixels
};

}  // namespace orv
