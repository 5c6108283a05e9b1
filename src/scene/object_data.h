#pragma once

#include <orv/fwd.h>
#include <orv/math/bounding_volume.h>
#include <orv/math/mat4.h>
#include <orv/math/vec4.h>
#include <orv/scene/tripod.h>

#include <unordered_map>
#include <vector>

namespace orv {

/// What display_grid draws.
struct GridParams {
  float width = 10.0f;
  float depth = 10.0f;
  int lines_x = 10;
  int lines_z = 10;
  bool show_axes = true;
  bool show_lines = true;
};

/// The private block of an Object. What drawing reads stands first and close together.
struct ObjectData {
  std::vector<Material*> materials;  // each counted
  Tripod tripod;
  bool build_state = true;
  bool display_tripod = false;
  bool display_grid = false;
  bool use_generic_vertex_attribs = true;
  bool use_fixed_mvp_matrices = false;
  bool send_camera_matrices = true;
  mat4 absolute_transform;  // value of the last get_absolute_transform

  // Local transforms from the object up to the topmost ancestor, and their product: the product is
  // taken again only when one of them changed. Hosts may write through the pointers that Tripod
  // hands out, so the matrices themselves are compared.
  std::vector<mat4> chain;
  mat4 chain_product;

  mat4 projection_matrix;
  mat4 view_matrix;
  vec4 absolute_position;             // value of the last get_absolute_position
  GpuProgram* gpu_program = nullptr;  // counted
  vec4 tripod_size{2.0f, 2.0f, 2.0f, 1.0f};
  GridParams grid;
  // Of long lists, so that loaders may add materials without end; empty for others.
  std::unordered_map<int, Material*> materials_by_id;
  BoundingVolume bounding_volume;
};

}  // namespace orv
