/// @file
/// Loader of 3DS files.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/loaders/loader3d.h>

namespace orv {

/// Core loader "ORV_plugin_core_lib3ds". Reads materials, meshes and cameras of 3DS files through
/// lib3ds and makes one Mesh for each object node of the key-frame section, or one for each mesh
/// when there are no nodes. The file's Z axis becomes the Y axis: (x, y, z) is stored as (x, z,
/// -y).
///
/// Nodes are placed as they stand at frame 0; lights and the further key frames are not used.
/// Materials, meshes and cameras come in alphabetical order, not in the file's. Files are checked
/// before lib3ds sees them: one that is cut short or whose lengths disagree is refused, and faces
/// that name missing vertices and nodes that are their own ancestors are left out.
class ORV_API Loader3D_Lib3ds : public Loader3D {
 public:
  /// Ready to load.
  Loader3D_Lib3ds();
  ~Loader3D_Lib3ds() override;

  /// Adds the file's materials and meshes to `model`, the meshes as children. False for null
  /// arguments, for a name that does not end in "3ds" (letters in either case) or has fewer than
  /// five characters, and when the file cannot be read; the log says nothing above debug level.
  ///
  /// Materials are shared by name through MaterialMgr: a name that is known already keeps its
  /// values, and faces that use it get the mesh's default material. If two materials of the file
  /// have one name, all are renamed "ORV_mat_0", "ORV_mat_1" and so on.
  bool load_model(Model* model, const char* filename) override;

  /// Makes of the file what `what` names: "material", "mesh" (in a new model of the scene) and
  /// "camera". Null takes nothing, and is a success if the file can be read. False as in
  /// load_model, and for a null scene.
  bool load_scene(Scene* scene, const char* filename, const char* what) override;
};

}  // namespace orv
