#include <orv/scene/scene.h>

#include <orv/core/utils.h>
#include <orv/scene/camera.h>
#include <orv/scene/model.h>
#include <orv/scene/object.h>

#include <string>

#include "scene/node_data.h"

namespace orv {

struct SceneData {
  SceneData() { root.append(new Object); }

  int id = utils::gen_id();
  std::string name = "scene_" + std::to_string(id);
  // These neither count nor own; what ends in another tree leaves its list, the root too.
  ChildList root{nullptr, false};
  ChildList cameras{nullptr, false};
  ChildList models{nullptr, false};
};

namespace {

template <class T>
T* at(const ChildList& list, unsigned int index) {
  return static_cast<T*>(list.at(index));
}

template <class T>
T* find_by_id(const ChildList& list, int id) {
  for (unsigned int i = 0; i < list.size(); ++i) {
    if (list.at(i)->get_id() == id) return at<T>(list, i);
  }
  return nullptr;
}

void kill_all(ChildList& list, Renderer* renderer) {
  // One of them may stand in the tree below another and go with it.
  ChildList leaving(nullptr);
  leaving.take_all(list);
  for (unsigned int i = 0; i < leaving.size(); ++i) {
    if (Node* node = leaving.take(i)) node->release(renderer, nullptr);
  }
}

}  // namespace

// ---- life -----------------------------------------------------------------------------------

Scene::Scene() : data_(new SceneData) {}

Scene::~Scene() { delete data_; }

bool Scene::init(Renderer*) { return true; }

bool Scene::cleanup(Renderer* renderer) {
  camera_kill_all(renderer);
  return true;
}

int Scene::get_id() const { return data_->id; }

void Scene::set_name(const char* name) {
  if (name) data_->name = std::string(name);
}

const char* Scene::get_name() const { return data_->name.c_str(); }

// ---- tree -----------------------------------------------------------------------------------

Object* Scene::get_root() const { return at<Object>(data_->root, 0); }

bool Scene::add_node(Node* node) {
  Object* root = get_root();
  if (!node || !root) return false;
  root->add_child(node);
  return true;
}

bool Scene::remove_node(Node* node) {
  if (!node) return false;
  node->set_parent(nullptr);
  return true;
}

Node* Scene::get_node(int id, Node* node) {
  Node* start = node ? node : get_root();
  return start ? start->find_child(id, start) : nullptr;
}

// ---- cameras --------------------------------------------------------------------------------

Camera* Scene::camera_create() {
  Camera* camera = new Camera;
  data_->cameras.append(camera);
  return camera;
}

bool Scene::camera_kill(Renderer* renderer, Camera* camera) {
  if (!camera_remove(camera)) return false;
  camera->release(renderer, nullptr);
  return true;
}

bool Scene::camera_kill_all(Renderer* renderer) {
  kill_all(data_->cameras, renderer);
  return false;
}

bool Scene::camera_remove(Camera* camera) { return data_->cameras.remove(camera); }

unsigned int Scene::camera_get_num() const { return data_->cameras.size(); }

Camera* Scene::camera_get_by_index(unsigned int index) const {
  return at<Camera>(data_->cameras, index);
}

Camera* Scene::camera_get(int id) const { return find_by_id<Camera>(data_->cameras, id); }

// ---- models ---------------------------------------------------------------------------------

Model* Scene::model_create() {
  Model* model = new Model;
  model->set_mesh_vertex_alloc_params(alloc_params_);
  data_->models.append(model);
  return model;
}

bool Scene::model_kill(Renderer* renderer, Model* model) {
  if (!model_remove(model)) return false;
  model->release(renderer, nullptr);
  return true;
}

bool Scene::model_kill_all(Renderer* renderer) {
  kill_all(data_->models, renderer);
  return false;
}

bool Scene::model_remove(Model* model) { return data_->models.remove(model); }

unsigned int Scene::model_get_num() const { return data_->models.size(); }

Model* Scene::model_get_by_index(unsigned int index) const {
  return at<Model>(data_->models, index);
}

Model* Scene::model_get(int id) const { return find_by_id<Model>(data_->models, id); }

void Scene::set_mesh_vertex_alloc_params(const MeshDataVertexAttribsAllocParams& params) {
  alloc_params_ = params;
}

}  // namespace orv
