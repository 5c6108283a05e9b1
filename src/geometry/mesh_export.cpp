#include <orv/core/log_mgr.h>
#include <orv/geometry/mesh.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>

#include "core/read_file.h"
#include "geometry/attrib_access.h"
#include "geometry/face_access.h"
#include "geometry/limits.h"

namespace orv {

namespace {

void write_vertices(std::FILE* file, MeshData& data, unsigned int count) {
  std::fputs("\n\nstatic MeshVertex vertices_list[] = {", file);
  const AttribAccess positions(data, VERTEX_ATTRIB_POSITION);
  const AttribAccess normals(data, VERTEX_ATTRIB_NORMAL);
  const AttribAccess uvs(data, VERTEX_ATTRIB_UV0);
  // A failed allocation may leave a count that no memory could hold: then only what is there.
  constexpr unsigned int LARGEST = MAX_GEOMETRY_BYTES / sizeof(Vertex);
  const unsigned int lines =
      count <= LARGEST
          ? count
          : std::max({positions.usable(count), normals.usable(count), uvs.usable(count)});
  for (unsigned int i = 0; i < lines; ++i) {
    const vec3 p = positions.get_vec3(i);
    const vec4 n = normals.get(i);
    const vec4 uv = uvs.get(i);
    std::fprintf(file, "\n\t{%ff,%ff,%ff,%ff,%ff,%ff,%ff,%ff},", static_cast<double>(p.x),
                 static_cast<double>(p.y), static_cast<double>(p.z), static_cast<double>(n.x),
                 static_cast<double>(n.y), static_cast<double>(n.z), static_cast<double>(uv.x),
                 static_cast<double>(uv.y));
  }
  std::fputs("\n};", file);
}

// Without faces of three, as in a generic index list, there is still one line per face.
void write_faces(std::FILE* file, const MeshData& data, unsigned int count) {
  const FaceAccess faces(data);
  std::fputs("\n\nstatic MeshFace faces_list[] = {", file);
  for (unsigned int i = 0; i < count; ++i) {
    const FaceU32 face = faces.get(i);
    std::fprintf(file, "\n\t{%u,%u,%u,0},", face.a, face.b, face.c);
  }
  std::fputs("\n};", file);
}

}  // namespace

bool Mesh::export_to_c(const char* path) {
  if (!path || !mesh_data_) return false;
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path, "a"), std::fclose);
  if (!file) {
    LogMgr::get().tracef_debug("mesh %s: cannot write %s: %s", get_name(), path,
                               detail::system_fault(errno));
    return false;
  }
  std::fputs("\ntypedef struct MeshVertexStruct {", file.get());
  std::fputs("\n\tfloat x, y, z; // Position", file.get());
  std::fputs("\n\tfloat nx, ny, nz; // Normal", file.get());
  std::fputs("\n\tfloat u, v; // UV Map", file.get());
  std::fputs("\n} MeshVertex;", file.get());
  std::fputs("\n\ntypedef struct MeshFaceStruct {", file.get());
  std::fputs("\n\tlong a, b, c; // Vertices list indexes", file.get());
  std::fputs("\n\tint material_index;", file.get());
  std::fputs("\n} MeshFace;", file.get());
  write_vertices(file.get(), *mesh_data_, get_num_vertices(nullptr));
  write_faces(file.get(), *mesh_data_, get_num_faces(nullptr));
  return true;
}

}  // namespace orv
