/// @file
/// Loader of binary STL files.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/loaders/loader3d.h>

namespace orv {

/// Core loader "STL". Reads the binary form of STL and makes one Mesh without a face list: three
/// vertices for each triangle, with the facet's normal. The file's Z axis becomes the Y axis.
class ORV_API Loader3D_STL : public Loader3D {
 public:
  /// Ready to load.
  Loader3D_STL();
  ~Loader3D_STL() override;

  /// Adds the mesh to `model` as a child. False for null arguments, for a name that does not end in
  /// "stl" in any case or has fewer than five characters, and, with an error in the log, when the
  /// file cannot be read. True whenever it could be read, also when it holds no triangles or is in
  /// the text form; the model then gets no mesh.
  bool load_model(Model* model, const char* filename) override;

  /// False: the format holds no scenes.
  bool load_scene(Scene* scene, const char* filename, const char* what) override;
};

}  // namespace orv
