#include <orv/geometry/mesh_data.h>

namespace orv {

MeshData::MeshData() = default;

MeshData::~MeshData() = default;

bool MeshData::set_vertex_alloc_params(const MeshDataVertexAttribsAllocParams& params) {
  params_mirror_ = params;
  set_alloc_params(params_mirror_);
  return true;
}

MeshDataVertexAttribsAllocParams& MeshData::get_vertex_alloc_params() {
  params_mirror_ = alloc_params;
  return params_mirror_;
}

void MeshData::set_vertex_alloc_params_num_vertices(unsigned int n) {
  set_alloc_params_num_vertices(n);
}

void MeshData::set_vertex_alloc_params_num_user_attribs(unsigned int n) {
  set_alloc_params_num_user_attribs(n);
}

}  // namespace orv
