/// @file
/// Part of a mesh that is drawn with one material.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// Range of faces drawn with one material. The default range is empty.
class ORV_API MaterialSubset {
 public:
  unsigned int start_face = 0;  ///< first face of the material
  int end_face = -1;            ///< last face, inclusive
  int material_id = 0;          ///< id of the material among those of the mesh
};

}  // namespace orv
