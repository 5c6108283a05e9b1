/// @file
/// The scenes of the process.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {

struct SceneMgrData;

/// Makes scenes and takes them down. One instance, made on first use and never destroyed.
///
/// Making and killing scenes is locked; the getters are not.
class ORV_API SceneMgr {
 public:
  /// The one instance. Never null.
  static SceneMgr* get();
  SceneMgr(const SceneMgr&) = delete;
  SceneMgr& operator=(const SceneMgr&) = delete;

 private:
  /// Kills all scenes without a renderer.
  virtual ~SceneMgr();

 public:
  /// True.
  virtual bool init(Renderer* renderer);
  /// Kills all scenes. True.
  virtual bool cleanup(Renderer* renderer);

  /// A new scene, owned by the manager until kill_scene.
  Scene* create_scene();
  /// Releases the scene's tree, handing resources in it to their managers, and destroys the scene.
  /// Its cameras and models are not reached. False when the scene is not in the list.
  bool kill_scene(Renderer* renderer, Scene* scene);
  /// True.
  bool kill_all_scenes(Renderer* renderer);
  /// Scenes in the list.
  unsigned int get_num_scenes() const;
  /// Null past the end.
  Scene* get_scene_by_index(unsigned int index) const;
  /// Null when there is none of this id.
  Scene* get_scene(int id) const;

 private:
  SceneMgr();
  bool cleanup_scene(Renderer* renderer, Scene* scene);
  bool release_scene_node(Renderer* renderer, Node* node);

  SceneMgrData* data_;
};

}  // namespace orv
