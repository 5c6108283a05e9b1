/// @file
/// The meshes of one loaded file.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/geometry/geometry_core_alloc_params.h>
#include <orv/scene/object.h>

namespace orv {

/// An object that groups the meshes of a loaded file, with the parameters by which their vertices
/// are allocated.
class ORV_API Model : public Object {
 public:
  /// Without children.
  Model();
  ~Model() override;
  Model(const Model&) = delete;
  Model& operator=(const Model&) = delete;

  /// Draws the children of `node`, or of this model when null, then the model itself when its
  /// render state is on. A mesh with material subsets is drawn once for each subset, whatever its
  /// render state.
  void render(Renderer* renderer, Node* node) override;
  /// render_geometry on each child that is an object.
  void render_geometry(Renderer* renderer) override;

  /// A new mesh with the model's allocation parameters, not attached to anything.
  Mesh* create_mesh();
  /// A new plain object, not attached to anything.
  Object* create_object();
  /// Mesh::init_subsets on each child that is a mesh.
  void init_meshes_subsets();

  /// Parameters of the meshes that create_mesh makes from now on.
  void set_mesh_vertex_alloc_params(const MeshDataVertexAttribsAllocParams& params);
  /// Whether new meshes keep each attribute in an array of its own.
  bool get_separate_vertex_arrays_state() const;
  /// Alignment of the arrays of new meshes in bytes, 0 or less for none.
  int get_vertex_alignment() const;

 private:
  MeshDataVertexAttribsAllocParams alloc_params_;
};

}  // namespace orv
