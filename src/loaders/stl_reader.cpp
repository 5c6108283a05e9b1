#include "loaders/stl_reader.h"

#include <orv/geometry/mesh.h>
#include <orv/scene/model.h>

#include <algorithm>
#include <cstring>
#include <limits>

#include "loaders/attrib_writer.h"

namespace orv::detail {

namespace {

constexpr std::size_t HEADER_SIZE = 80;
constexpr std::size_t RECORDS_OFFSET = 84;

std::uint32_t read_u32(const unsigned char* p) {
  return static_cast<std::uint32_t>(p[0]) | static_cast<std::uint32_t>(p[1]) << 8 |
         static_cast<std::uint32_t>(p[2]) << 16 | static_cast<std::uint32_t>(p[3]) << 24;
}

/// Three floats, with the file's z axis turned to y.
vec4 read_vector(const unsigned char* p, float w) {
  float xyz[3];
  std::memcpy(xyz, p, sizeof(xyz));
  return vec4(xyz[0], -xyz[2], xyz[1], w);
}

}  // namespace

StlTriangles find_stl_triangles(const unsigned char* bytes, std::size_t size) {
  if (!bytes || size < RECORDS_OFFSET) return {nullptr, 0, ": shorter than its header"};
  const std::uint64_t count = read_u32(bytes + HEADER_SIZE);
  const bool fits = RECORDS_OFFSET + count * StlTriangles::RECORD_SIZE == size;
  if (!fits && std::memcmp(bytes, "solid", 5) == 0) return {nullptr, 0, ": the text form"};
  const std::uint64_t held = (size - RECORDS_OFFSET) / StlTriangles::RECORD_SIZE;
  return {bytes + RECORDS_OFFSET, static_cast<std::uint32_t>(std::min(count, held))};
}

bool build_stl_model(const StlTriangles& triangles, Model& model) {
  if (triangles.count == 0 || triangles.count > std::numeric_limits<unsigned int>::max() / 3) {
    return false;
  }
  Mesh* mesh = model.create_mesh();
  mesh->set_vertex_alloc_params_num_vertices(triangles.count * 3);
  if (!mesh->alloc_vertex_data()) {
    mesh->release(nullptr, nullptr);
    return false;
  }
  // Without faces the mesh is drawn as a plain list of vertices.
  mesh->alloc_face_data(0, false);
  {
    MeshData& data = *mesh->get_mesh_data();
    AttribWriter positions(data, VERTEX_ATTRIB_POSITION);
    AttribWriter normals(data, VERTEX_ATTRIB_NORMAL);
    AttribWriter(data, VERTEX_ATTRIB_COLOR).fill(vec4(1.0f, 1.0f, 1.0f, 1.0f));
    const unsigned char* record = triangles.records;
    for (std::size_t v = 0; v < std::size_t{triangles.count} * 3; v += 3) {
      const vec4 normal = read_vector(record, 0.0f);
      for (std::size_t i = 0; i < 3; ++i) {
        positions.set(v + i, read_vector(record + 12 + i * 12, 1.0f));
        normals.set(v + i, normal);
      }
      record += StlTriangles::RECORD_SIZE;
    }
  }
  model.add_child(mesh);
  return true;
}

}  // namespace orv::detail
