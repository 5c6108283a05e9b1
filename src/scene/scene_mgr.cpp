#include <orv/scene/scene_mgr.h>

#include <orv/core/thread_lock.h>
#include <orv/gpu/gpu_program_mgr.h>
#include <orv/gpu/material_mgr.h>
#include <orv/gpu/resource.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/scene/object.h>
#include <orv/scene/scene.h>

#include <algorithm>
#include <memory>
#include <vector>

#include "core/lock_guard.h"

namespace orv {

struct SceneMgrData {
  std::vector<Scene*> scenes;
  ThreadLock lock;
};

namespace {

/// A node of a scene whose children are being released. They are out of its list already.
struct OpenNode {
  explicit OpenNode(Node* parent) : node(parent) {
    for (unsigned int i = 0; i < node->get_num_children(); ++i) {
      children.push_back(node->get_child(i));
      // A node may stand in several lists: it is held until its turn here.
      children.back()->add_ref();
    }
    node->clear_children_list();
  }

  /// The next child, held no longer, or null at the end.
  Node* next() {
    if (place == children.size()) return nullptr;
    children[place]->remove_ref();
    return children[place++];
  }

  Node* node;
  std::vector<Node*> children;
  std::size_t place = 0;
};

/// Gives a resource back to its manager, any other node back to nobody.
void release_by_type(Renderer* renderer, Node* node) {
  switch (node->get_type()) {
    case NODE_TYPE_GPU_PROGRAM:
      GpuProgramMgr::get()->release_resource(renderer, static_cast<Resource*>(node), nullptr);
      break;
    case NODE_TYPE_MATERIAL:
      MaterialMgr::get()->release_resource(renderer, static_cast<Resource*>(node), nullptr);
      break;
    case NODE_TYPE_TEXTURE:
      // The pixels of a texture that others hold stay.
      if (node->get_ref() <= 1) TextureMgr::get()->free_image_resource(static_cast<Texture*>(node));
      TextureMgr::get()->release_resource(renderer, static_cast<Resource*>(node), nullptr);
      break;
    default:
      node->release(renderer, nullptr);
      break;
  }
}

}  // namespace

SceneMgr* SceneMgr::get() {
  static SceneMgr* const instance = new SceneMgr;
  return instance;
}

SceneMgr::SceneMgr() : data_(new SceneMgrData) {}

SceneMgr::~SceneMgr() {
  SceneMgr::cleanup(nullptr);
  delete data_;
}

bool SceneMgr::init(Renderer*) { return true; }

bool SceneMgr::cleanup(Renderer* renderer) {
  kill_all_scenes(renderer);
  return true;
}

Scene* SceneMgr::create_scene() {
  auto scene = std::make_unique<Scene>();
  const detail::LockGuard guard(&data_->lock);
  data_->scenes.push_back(scene.get());
  return scene.release();
}

bool SceneMgr::kill_scene(Renderer* renderer, Scene* scene) {
  const detail::LockGuard guard(&data_->lock);
  std::vector<Scene*>& scenes = data_->scenes;
  const auto found = std::find(scenes.begin(), scenes.end(), scene);
  if (found == scenes.end()) return false;
  scenes.erase(found);
  return cleanup_scene(renderer, scene);
}

bool SceneMgr::kill_all_scenes(Renderer* renderer) {
  const detail::LockGuard guard(&data_->lock);
  while (!data_->scenes.empty()) {
    Scene* scene = data_->scenes.front();
    data_->scenes.erase(data_->scenes.begin());
    cleanup_scene(renderer, scene);
  }
  return true;
}

bool SceneMgr::cleanup_scene(Renderer* renderer, Scene* scene) {
  release_scene_node(renderer, scene->get_root());
  delete scene;
  return true;
}

bool SceneMgr::release_scene_node(Renderer* renderer, Node* node) {
  if (!node) return false;
  // Children before their parents, without recursion: a tree may be deeper than the stack.
  std::vector<OpenNode> open;
  open.emplace_back(node);
  while (!open.empty()) {
    if (Node* child = open.back().next()) {
      open.emplace_back(child);
      continue;
    }
    Node* done = open.back().node;
    open.pop_back();
    release_by_type(renderer, done);
  }
  return true;
}

unsigned int SceneMgr::get_num_scenes() const {
  return static_cast<unsigned int>(data_->scenes.size());
}

Scene* SceneMgr::get_scene_by_index(unsigned int index) const {
  return index < data_->scenes.size() ? data_->scenes[index] : nullptr;
}

Scene* SceneMgr::get_scene(int id) const {
  for (Scene* scene : data_->scenes) {
    if (scene->get_id() == id) return scene;
  }
  return nullptr;
}

}  // namespace orv
