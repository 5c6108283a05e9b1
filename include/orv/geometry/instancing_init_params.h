/// @file
/// What Mesh::instancing_init makes.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// Arrays wanted for an instanced mesh. Mesh::instancing_init reads `num_vertex_streams` and
/// `default_names` alone; the other fields are carried for the host.
class ORV_API InstancingInitParams {
 public:
  /// Five streams with the engine's names.
  InstancingInitParams() = default;
  /// Clears the five `use_` flags.
  void disable_all();

  bool use_position = true;             ///< for the host
  bool use_rotation = true;             ///< for the host
  bool use_scale = true;                ///< for the host
  bool use_color = true;                ///< for the host
  bool use_misc = true;                 ///< for the host
  int reserved = 0;                     ///< not used
  unsigned int num_vertex_streams = 5;  ///< arrays to make
  /// The first five arrays get "orvex_Instance_Position" and its kin, any more keep "orvex_Attrib"
  /// and their index. False: all get "orvex_Instance_Attrib" and their location.
  bool default_names = true;
  int first_location = -1;  ///< for the host
};

}  // namespace orv
