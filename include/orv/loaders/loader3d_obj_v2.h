/// @file
/// Loader of Wavefront OBJ files through tinyobjloader.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/loaders/loader3d.h>

namespace orv {

/// Core loader "ObjLoaderV2". Makes one Mesh for each shape of the file; vertices are shared
/// between triangles, relative indices are resolved and polygons triangulated by tinyobjloader.
/// Polygons of thousands of corners, which would take it too long, become fans instead.
class ORV_API Loader3D_OBJ_V2 : public Loader3D {
 public:
  /// Ready to load.
  Loader3D_OBJ_V2();
  ~Loader3D_OBJ_V2() override;

  /// Adds the file's meshes to `model` as children and logs what the file holds. False for null
  /// arguments, for a name that does not end in "obj" in any case or has fewer than five
  /// characters, and, with an error in the log, when tinyobjloader refuses the file. Its warnings
  /// are logged as errors too.
  bool load_model(Model* model, const char* filename) override;

  /// False: the format holds no scenes.
  bool load_scene(Scene* scene, const char* filename, const char* what) override;
};

}  // namespace orv
