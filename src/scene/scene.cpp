#include <orv/scene/scene.h>

#include <orv/core/utils.h>
#include <orv/scene/camera.h>
#include <orv/scene/model.h>
#include <orv/scene/object.h>

#include <algorithm>
#include <string>
#include <vector>

namespace orv {

struct SceneData {
  int id = utils::gen_id();
  std::string name = "scene_" + std::to_string(id);
  Object* root = new Object;
  std::vector<Camera*> cameras;
  std::vector<Model*> models;
};

namespace {

template <class T>
bool erase(std::vector<T*>& list, const T* item) {
  const auto found = std::find(list.begin(), list.end(), item);
  if (found == list.end()) return false;
  list.erase(found);
  return true;
}

template <class T>
T* at(const std::vector<T*>& list, unsigned int index) {
  return index < list.size() ? list[index] : nullptr;
}

template <class T>
T* find_by_id(const std::vector<T*>& list, int id) {
  for (T* item : list) {
    if (item->get_id() == id) return item;
  }
  return nullptr;
}

// Cameras and models of a scene may stand in the tree below one that is released and go with it.
// They are held on the way, so that no list keeps a pointer to a destroyed node.

template <class T>
struct Held {
  T* item;
  int ref;  // before it was held
};

template <class T>
std::vector<Held<T>> hold_all(const std::vector<T*>& list) {
  std::vector<Held<T>> held;
  held.reserve(list.size());
  for (T* item : list) {
    held.push_back({item, item->get_ref()});
    item->add_ref();
  }
  return held;
}

/// Takes the holds off again. What lost its last owner meanwhile leaves the list and goes now.
template <class T>
void let_go_all(std::vector<T*>& list, const std::vector<Held<T>>& held, Renderer* renderer) {
  for (const Held<T>& h : held) {
    h.item->remove_ref();
    if (h.item->get_ref() >= h.ref || h.item->get_ref() > 0) continue;
    erase(list, h.item);
    h.item->_kill(renderer);
  }
}

/// Releases cameras or models that were just taken out of their list.
template <class T>
void release_unlisted(SceneData& scene, Renderer* renderer, const std::vector<T*>& items) {
  const auto cameras = hold_all(scene.cameras);
  const auto models = hold_all(scene.models);
  hold_all(items);
  for (T* item : items) {
    item->remove_ref();
    item->release(renderer, nullptr);
  }
  let_go_all(scene.cameras, cameras, renderer);
  let_go_all(scene.models, models, renderer);
}

template <class T>
void kill_all(SceneData& scene, std::vector<T*>& list, Renderer* renderer) {
  std::vector<T*> items;
  items.swap(list);
  release_unlisted(scene, renderer, items);
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

Object* Scene::get_root() const { return data_->root; }

bool Scene::add_node(Node* node) {
  if (!node) return false;
  data_->root->add_child(node);
  return true;
}

bool Scene::remove_node(Node* node) {
  if (!node) return false;
  node->set_parent(nullptr);
  return true;
}

Node* Scene::get_node(int id, Node* node) {
  Node* start = node ? node : data_->root;
  return start->find_child(id, start);
}

// ---- cameras --------------------------------------------------------------------------------

Camera* Scene::camera_create() {
  data_->cameras.push_back(new Camera);
  return data_->cameras.back();
}

bool Scene::camera_kill(Renderer* renderer, Camera* camera) {
  if (!camera_remove(camera)) return false;
  release_unlisted(*data_, renderer, std::vector<Camera*>{camera});
  return true;
}

bool Scene::camera_kill_all(Renderer* renderer) {
  kill_all(*data_, data_->cameras, renderer);
  return false;
}

bool Scene::camera_remove(Camera* camera) { return erase(data_->cameras, camera); }

unsigned int Scene::camera_get_num() const {
  return static_cast<unsigned int>(data_->cameras.size());
}

Camera* Scene::camera_get_by_index(unsigned int index) const { return at(data_->cameras, index); }

Camera* Scene::camera_get(int id) const { return find_by_id(data_->cameras, id); }

// ---- models ---------------------------------------------------------------------------------

Model* Scene::model_create() {
  Model* model = new Model;
  model->set_mesh_vertex_alloc_params(alloc_params_);
  data_->models.push_back(model);
  return model;
}

bool Scene::model_kill(Renderer* renderer, Model* model) {
  if (!model_remove(model)) return false;
  release_unlisted(*data_, renderer, std::vector<Model*>{model});
  return true;
}

bool Scene::model_kill_all(Renderer* renderer) {
  kill_all(*data_, data_->models, renderer);
  return false;
}

bool Scene::model_remove(Model* model) { return erase(data_->models, model); }

unsigned int Scene::model_get_num() const {
  return static_cast<unsigned int>(data_->models.size());
}

Model* Scene::model_get_by_index(unsigned int index) const { return at(data_->models, index); }

Model* Scene::model_get(int id) const { return find_by_id(data_->models, id); }

void Scene::set_mesh_vertex_alloc_params(const MeshDataVertexAttribsAllocParams& params) {
  alloc_params_ = params;
}

}  // namespace orv
