/// @file
/// The library's own loader of Wavefront OBJ files.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/loaders/loader3d.h>

namespace orv {

/// Core loader "ObjLoaderV1". Reads positions, normals, texture coordinates, faces of any number of
/// corners, groups and material libraries, and makes one Mesh for each group and each `usemtl`
/// statement. Vertices are not shared between triangles. Lenient: what it cannot read is passed
/// over, and a face index that names no element, relative ones included, takes the first element.
class ORV_API Loader3D_OBJ : public Loader3D {
 public:
  /// Ready to load.
  Loader3D_OBJ();
  ~Loader3D_OBJ() override;

  /// Adds the file's meshes to `model` as children. False for null arguments, for a name that does
  /// not end in "obj" in any case or has fewer than five characters, and when the file cannot be
  /// read; nothing is logged above debug level. A file without faces is a success without meshes.
  ///
  /// Materials are shared by name through MaterialMgr. Material libraries are searched in the model
  /// directory; a missing one is passed over.
  bool load_model(Model* model, const char* filename) override;

  /// False: the format holds no scenes.
  bool load_scene(Scene* scene, const char* filename, const char* what) override;
};

}  // namespace orv
