#include <orv/scene/model.h>

#include <orv/geometry/mesh.h>

#include "scene/object_walk.h"

namespace orv {

namespace {

/// The child as a mesh that is to be drawn subset by subset, or null.
Mesh* mesh_with_subsets(Node* child) {
  if (!child->is_type_of(NODE_TYPE_MESH)) return nullptr;
  Mesh* mesh = static_cast<Mesh*>(child);
  return mesh->get_num_subsets() > 0 ? mesh : nullptr;
}

/// Drawing may free the subsets or the data, so both are asked for anew each time.
void render_subsets(Renderer* renderer, Mesh* mesh) {
  for (unsigned int i = 0; i < mesh->get_num_subsets(); ++i) {
    MeshData* data = mesh->get_mesh_data();
    data->set_current_subset(data->get_subsets_ptr() + i);
    mesh->_render(renderer);
    if (mesh->get_mesh_data()) mesh->get_mesh_data()->set_current_subset(nullptr);
  }
}

}  // namespace

Model::Model() { set_type(NODE_TYPE_MODEL); }

Model::~Model() = default;

void Model::render(Renderer* renderer, Node* node) {
  Node* walked = node ? node : this;
  const unsigned int count = walked->get_num_children();
  for (unsigned int i = 0; i < count; ++i) {
    Node* child = walked->get_child(i);
    if (!child) continue;
    if (Mesh* mesh = mesh_with_subsets(child)) {
      render_subsets(renderer, mesh);
    } else {
      child->render(renderer, child);
    }
  }
  if (get_render_state()) _render(renderer);
}

void Model::render_geometry(Renderer* renderer) {
  visit_object_children(this, [=](Object* child) { child->render_geometry(renderer); });
}

Mesh* Model::create_mesh() {
  Mesh* mesh = new Mesh;
  mesh->set_vertex_alloc_params(alloc_params_);
  return mesh;
}

Object* Model::create_object() { return new Object; }

void Model::init_meshes_subsets() {
  visit_object_children(this, [](Object* child) {
    if (child->is_type_of(NODE_TYPE_MESH)) static_cast<Mesh*>(child)->init_subsets();
  });
}

void Model::set_mesh_vertex_alloc_params(const MeshDataVertexAttribsAllocParams& params) {
  alloc_params_ = params;
}

bool Model::get_separate_vertex_arrays_state() const {
  return alloc_params_.separate_vertex_arrays;
}

int Model::get_vertex_alignment() const { return alloc_params_.vertex_alignment; }

}  // namespace orv
