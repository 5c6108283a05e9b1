/// @file
/// The geometry of meshes.
#pragma once

#include <orv/core/api.h>
#include <orv/geometry/geometry_core.h>
#include <orv/geometry/geometry_core_alloc_params.h>

namespace orv {

/// Geometry of one or several meshes, which share it by reference count (see Mesh).
class ORV_API MeshData : public GeometryCore {
 public:
  /// Without vertices and faces, attached to no mesh.
  MeshData();
  ~MeshData() override;

  /// Takes over what alloc_vertex_data will allocate. True.
  virtual bool set_vertex_alloc_params(const MeshDataVertexAttribsAllocParams& params);
  /// What alloc_vertex_data will allocate; a copy kept by this object, written anew at each call.
  virtual MeshDataVertexAttribsAllocParams& get_vertex_alloc_params();

  /// @{
  /// One field of the parameters.
  void set_vertex_alloc_params_num_vertices(unsigned int n);
  void set_vertex_alloc_params_num_user_attribs(unsigned int n);
  /// @}

  int owner_id = 0;  ///< id of the Mesh that attached this data last

 private:
  MeshDataVertexAttribsAllocParams params_mirror_;
};

}  // namespace orv
