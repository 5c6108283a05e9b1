#include "viewer/material_parts.h"

#include <orv/geometry/mesh.h>
#include <orv/gpu/material.h>

#include <algorithm>
#include <unordered_map>

namespace viewer {

using orv::Mesh;

namespace {

struct SortedFace {
  unsigned int place;  ///< of its material in the mesh's list
  unsigned int a, b, c;
};

/// The faces in the order of the mesh's materials; those of a material that the mesh lacks go to
/// the first one.
std::vector<SortedFace> sort_faces(Mesh& mesh, const unsigned int* ids) {
  std::unordered_map<unsigned int, unsigned int> places;
  for (unsigned int i = 0; i < mesh.get_num_materials(); ++i) {
    places.emplace(static_cast<unsigned int>(mesh.get_material_by_index(i)->get_id()), i);
  }
  std::vector<SortedFace> faces(mesh.get_num_faces(nullptr));
  for (unsigned int i = 0; i < faces.size(); ++i) {
    SortedFace& face = faces[i];
    const auto found = places.find(ids[i]);
    face.place = found == places.end() ? 0 : found->second;
    mesh.get_face_indexes(i, &face.a, &face.b, &face.c);
  }
  std::stable_sort(faces.begin(), faces.end(),
                   [](const SortedFace& x, const SortedFace& y) { return x.place < y.place; });
  return faces;
}

void write_faces(Mesh& mesh, const std::vector<SortedFace>& faces) {
  for (unsigned int i = 0; i < faces.size(); ++i) {
    mesh.set_face_indexes(i, faces[i].a, faces[i].b, faces[i].c);
    mesh.set_face_material(mesh.get_material_by_index(faces[i].place), i);
  }
}

}  // namespace

void split_by_material(Mesh& mesh, std::vector<Part>& parts) {
  orv::MeshData* data = mesh.get_mesh_data();
  const unsigned int num_materials = mesh.get_num_materials();
  const unsigned int* ids = data ? data->get_face_materials_ptr() : nullptr;
  if (num_materials < 2 || !ids) {
    parts.push_back({&mesh, -1, mesh.get_material_by_index(0)});
    return;
  }
  const std::vector<SortedFace> faces = sort_faces(mesh, ids);
  write_faces(mesh, faces);
  if (!mesh.init_subsets()) {
    parts.push_back({&mesh, -1, mesh.get_material_by_index(0)});
    return;
  }
  // The runs are set here: init_subsets leaves out the material of a single face.
  for (unsigned int begin = 0; begin < faces.size();) {
    unsigned int end = begin + 1;
    while (end < faces.size() && faces[end].place == faces[begin].place) ++end;
    const unsigned int place = faces[begin].place;
    orv::MaterialSubset& subset = data->get_subsets_ptr()[place];
    subset.start_face = begin;
    subset.end_face = static_cast<int>(end - 1);
    parts.push_back({&mesh, static_cast<int>(place), mesh.get_material_by_index(place)});
    begin = end;
  }
}

}  // namespace viewer
