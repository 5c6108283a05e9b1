#include <orv/core/log_mgr.h>
#include <orv/geometry/mesh.h>

#include "geometry/attrib_access.h"
#include "geometry/face_access.h"
#include "geometry/voxelizer.h"

namespace orv {

namespace {

TriangleSoup soup_of(MeshData& data) {
  TriangleSoup soup;
  const AttribAccess positions(data, VERTEX_ATTRIB_POSITION);
  const AttribAccess uvs(data, VERTEX_ATTRIB_UV0);
  const unsigned int n = positions.usable(data.get_num_vertices());
  soup.positions.reserve(n);
  soup.uvs.reserve(n);
  for (unsigned int i = 0; i < n; ++i) {
    soup.positions.push_back(positions.get_vec3(i));
    soup.uvs.push_back(uvs.get(i).get_vec2());
  }
  const FaceAccess faces(data);
  soup.indices.reserve(static_cast<std::size_t>(faces.size()) * 3);
  for (unsigned int i = 0; i < faces.size(); ++i) {
    const FaceU32 face = faces.get(i);
    soup.indices.insert(soup.indices.end(), {face.a, face.b, face.c});
  }
  return soup;
}

void write_cubes(const VoxelCubes& cubes, MeshData& data) {
  AttribAccess positions(data, VERTEX_ATTRIB_POSITION);
  AttribAccess uvs(data, VERTEX_ATTRIB_UV0);
  for (unsigned int i = 0; i < cubes.positions.size(); ++i) {
    positions.set(i, cubes.positions[i]);
    uvs.set(i, vec4(cubes.uvs[i].x, cubes.uvs[i].y, 0.0f, 1.0f));
  }
  AttribAccess normals(data, VERTEX_ATTRIB_NORMAL);
  FaceAccess faces(data);
  for (unsigned int i = 0; i < faces.size(); ++i) {
    const unsigned int* corners = cubes.position_indices.data() + static_cast<std::size_t>(i) * 3;
    const vec3& normal = cubes.normals[cubes.normal_indices[static_cast<std::size_t>(i) * 3]];
    faces.set(i, corners[0], corners[1], corners[2]);
    for (int k = 0; k < 3; ++k) normals.set(corners[k], normal);
    if (data.face_normals) data.face_normals[i] = vec4(normal.x, normal.y, normal.z, 0.0f);
  }
}

}  // namespace

bool Mesh::voxelize(float dx, float dy, float dz, float precision) {
  if (!mesh_data_) return false;
  if (mesh_data_->get_num_vertices() == 0 || mesh_data_->get_num_faces() == 0) return false;
  VoxelCubes cubes;
  if (!voxelize_surface(soup_of(*mesh_data_), vec3(dx, dy, dz), precision, &cubes)) {
    LogMgr::get().tracef_debug("mesh %s: no voxels of %gx%gx%g, or too many", get_name(),
                               static_cast<double>(dx), static_cast<double>(dy),
                               static_cast<double>(dz));
    return false;
  }

  free_mesh_data();
  set_vertex_alloc_params_num_vertices(static_cast<unsigned int>(cubes.positions.size()));
  if (!alloc_vertex_data()) return false;
  const std::size_t num_faces = cubes.position_indices.size() / 3;
  if (!alloc_face_data(static_cast<unsigned int>(num_faces), false)) return false;
  write_cubes(cubes, *mesh_data_);
  return true;
}

}  // namespace orv
