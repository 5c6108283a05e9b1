/// @file
/// A tree of nodes with its cameras and models.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/geometry/geometry_core_alloc_params.h>

namespace orv {

struct SceneData;

/// A root object with the tree below it, and lists of cameras and models. Neither cameras nor
/// models stand in the tree unless the host puts them there with add_node.
///
/// Scenes are made and destroyed by SceneMgr. The destructor releases neither the root nor cameras
/// nor models: a host calls cleanup and model_kill_all before SceneMgr::kill_scene.
class ORV_API Scene {
 public:
  /// With an empty root; hosts call SceneMgr::create_scene.
  Scene();
  virtual ~Scene();
  Scene(const Scene&) = delete;
  Scene& operator=(const Scene&) = delete;

  /// True.
  bool init(Renderer* renderer);
  /// Kills all cameras; models stay. True.
  bool cleanup(Renderer* renderer);

  /// Identity within the process.
  int get_id() const;
  /// Null is ignored. "scene_" and the id at first.
  void set_name(const char* name);
  /// The name, valid until the next set_name; never null.
  const char* get_name() const;
  /// The root, released by SceneMgr::kill_scene; null once it has ended in another tree.
  Object* get_root() const;

  /// Adds a child to the root, which takes a reference. False for null and without a root.
  bool add_node(Node* node);
  /// Clears the node's parent and leaves it in the root's list with its reference;
  /// Node::remove_child takes it out. False for null.
  bool remove_node(Node* node);
  /// Searches the tree below `node`, or below the root when null; null when there is none.
  Node* get_node(int id, Node* node);

  /// A new camera in the list; kill it with camera_kill.
  Camera* camera_create();
  /// Releases a camera and takes it out of the list. False when null or not in the list.
  bool camera_kill(Renderer* renderer, Camera* camera);
  /// Releases all cameras. Always false.
  bool camera_kill_all(Renderer* renderer);
  /// Takes a camera out of the list without releasing it. False when null or not in the list.
  bool camera_remove(Camera* camera);
  /// Cameras in the list.
  unsigned int camera_get_num() const;
  /// Null past the end.
  Camera* camera_get_by_index(unsigned int index) const;
  /// Null when there is none of this id.
  Camera* camera_get(int id) const;

  /// A new model in the list, with the scene's allocation parameters; kill it with model_kill.
  Model* model_create();
  /// Releases a model and takes it out of the list. False when null or not in the list.
  bool model_kill(Renderer* renderer, Model* model);
  /// Releases all models. Always false.
  bool model_kill_all(Renderer* renderer);
  /// Takes a model out of the list without releasing it. False when null or not in the list.
  bool model_remove(Model* model);
  /// Models in the list.
  unsigned int model_get_num() const;
  /// Null past the end.
  Model* model_get_by_index(unsigned int index) const;
  /// Null when there is none of this id.
  Model* model_get(int id) const;

  /// Parameters for the meshes of models made from now on.
  void set_mesh_vertex_alloc_params(const MeshDataVertexAttribsAllocParams& params);

 private:
  SceneData* data_;
  MeshDataVertexAttribsAllocParams alloc_params_;
};

}  // namespace orv
