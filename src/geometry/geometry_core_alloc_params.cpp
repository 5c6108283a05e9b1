#include <orv/geometry/geometry_core_alloc_params.h>

namespace orv {

void GeometryCoreAllocParams::reset() {
  std_vertex_attribs = true;
  separate_vertex_arrays = true;
  vertex_alignment = 0;
  for (int& dim : vertex_attrib_dim) dim = 4;
  num_vertices = 0;
  num_user_attribs = 0;
  alloc_vertex_particles = true;
  reserved = 0;
}

void GeometryCoreAllocParams::set_vertex_attrib_dim(unsigned int index, int dim) {
  if (index < MAX_VERTEX_ATTRIBS) vertex_attrib_dim[index] = dim;
}

}  // namespace orv
