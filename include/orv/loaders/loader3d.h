/// @file
/// Base class of model loaders.
#pragma once

#include <orv/core/api.h>
#include <orv/core/plugin.h>
#include <orv/fwd.h>

namespace orv {

struct Loader3DData;

/// A plugin that fills a Model or a Scene from a file. A loader decides by the file's name whether
/// the file is its own, opens `model_dir` + file name (plain concatenation: the directory ends in a
/// separator), and touches no GPU object: texture names are only recorded on the materials.
///
/// The directories are kept in the loader, so one loader must not run on two threads at once.
class ORV_API Loader3D : public Plugin {
 public:
  /// A plugin of the type of loaders, without names and directories.
  Loader3D();
  ~Loader3D() override;
  Loader3D(const Loader3D&) = delete;
  Loader3D& operator=(const Loader3D&) = delete;

  /// Fills `model` from a file: adds materials to it and meshes as its children.
  /// @param model     stays the caller's in any case; after a failure it may hold some of the file
  /// @param filename  what stands behind the model directory
  /// @return false for null arguments, for a name that is not this loader's and for a file that
  ///         cannot be read
  virtual bool load_model(Model* model, const char* filename) = 0;

  /// Fills `scene` from a file. `what` holds any of the words "material", "mesh" and "camera" and
  /// says what to take; null takes nothing. False also when the loader cannot fill scenes.
  virtual bool load_scene(Scene* scene, const char* filename, const char* what) = 0;

  /// Name of the loader for the host, "" at first. The core loaders set none: they are known by
  /// their plugin name.
  const char* get_loader_name() const;
  /// What the loader reads, for the host, "" at first.
  const char* get_loader_description() const;

  /// Directory that file names are appended to, "" at first. The text is the loader's, good until
  /// the next directory is set.
  const char* get_model_dir() const;
  /// Copies the directory, which ends in its separator; null keeps the present one.
  void set_model_dir(const char* directory);

  /// Directory for loaders that look for further files, "" at first; the core loaders never read
  /// it.
  const char* get_resource_dir() const;
  /// Copies the directory; null keeps the present one.
  void set_resource_dir(const char* directory);

 protected:
  /// Copies the name; null keeps the present one.
  void set_loader_name(const char* name);
  /// Copies the description; null keeps the present one.
  void set_loader_description(const char* description);

 private:
  Loader3DData* data_;
};

}  // namespace orv
