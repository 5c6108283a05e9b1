#include <orv/geometry/mesh.h>
#include <orv/gpu/material.h>

#include <algorithm>
#include <vector>

namespace orv {

namespace {

/// First and last face of one material.
struct FaceSpan {
  unsigned int material_id;
  unsigned int first = 0;
  unsigned int last = 0;
  bool found = false;
};

// Among spans sorted by material; null when none is of this one.
FaceSpan* find_span(std::vector<FaceSpan>& spans, unsigned int material_id) {
  const auto found =
      std::lower_bound(spans.begin(), spans.end(), material_id,
                       [](const FaceSpan& s, unsigned int i) { return s.material_id < i; });
  return found != spans.end() && found->material_id == material_id ? &*found : nullptr;
}

// One walk over the faces for all materials; neighbouring faces mostly share theirs.
void find_spans(const unsigned int* face_materials, unsigned int num_faces,
                std::vector<FaceSpan>& spans) {
  FaceSpan* current = nullptr;
  for (unsigned int face = 0; face < num_faces; ++face) {
    const unsigned int material_id = face_materials[face];
    if (!current || current->material_id != material_id) {
      current = find_span(spans, material_id);
      if (!current) continue;
    }
    if (!current->found) current->first = face;
    current->last = face;
    current->found = true;
  }
}

}  // namespace

bool Mesh::set_face_material(Material* material, unsigned int face) {
  if (!material || !mesh_data_ || !mesh_data_->face_materials) return false;
  if (face >= mesh_data_->num_faces) return false;
  mesh_data_->face_materials[face] = static_cast<unsigned int>(material->get_id());
  return true;
}

bool Mesh::set_material_to_all_faces(Material* material) {
  if (!material || !mesh_data_) return false;
  if (mesh_data_->face_materials) {
    std::fill_n(mesh_data_->face_materials, mesh_data_->num_faces,
                static_cast<unsigned int>(material->get_id()));
  }
  return true;
}

bool Mesh::init_subsets() {
  if (!mesh_data_) return false;
  const unsigned int count = get_num_materials();
  if (!mesh_data_->alloc_subsets(count)) return false;

  std::vector<FaceSpan> spans;
  for (unsigned int i = 0; i < count; ++i) {
    const int id = get_material_by_index(i)->get_id();
    mesh_data_->subsets[i].material_id = id;
    spans.push_back({static_cast<unsigned int>(id)});
  }
  std::sort(spans.begin(), spans.end(),
            [](const FaceSpan& a, const FaceSpan& b) { return a.material_id < b.material_id; });
  if (mesh_data_->face_materials) {
    find_spans(mesh_data_->face_materials, mesh_data_->num_faces, spans);
  }

  for (unsigned int i = 0; i < count; ++i) {
    MaterialSubset& subset = mesh_data_->subsets[i];
    const FaceSpan* span = find_span(spans, static_cast<unsigned int>(subset.material_id));
    // A span of one face is taken for an empty one.
    if (!span || !span->found || span->first >= span->last) continue;
    subset.start_face = span->first;
    subset.end_face = static_cast<int>(span->last);
  }
  return true;
}

unsigned int Mesh::get_num_subsets() const { return mesh_data_ ? mesh_data_->num_subsets : 0; }

bool Mesh::render_with_subset(Renderer* renderer, unsigned int i, void (Mesh::*step)(Renderer*)) {
  if (i >= get_num_subsets()) return false;
  mesh_data_->set_current_subset(mesh_data_->subsets + i);
  (this->*step)(renderer);
  if (mesh_data_) mesh_data_->set_current_subset(nullptr);
  return true;
}

bool Mesh::render_subset(Renderer* renderer, unsigned int i) {
  return render_with_subset(renderer, i, &Mesh::_render);
}

bool Mesh::render_subset_geometry(Renderer* renderer, unsigned int i) {
  return render_with_subset(renderer, i, &Mesh::render_geometry);
}

bool Mesh::render_subset_geometry_draw(Renderer* renderer, unsigned int i) {
  return render_with_subset(renderer, i, &Mesh::render_geometry_draw);
}

}  // namespace orv
