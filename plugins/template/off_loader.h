// A loader of OFF files, a plain text format of vertices and polygons.
#pragma once

#include <orv/loaders/loader3d.h>

class OffLoader : public orv::Loader3D {
 public:
  OffLoader();

  bool load_model(orv::Model* model, const char* filename) override;
  bool load_scene(orv::Scene* scene, const char* filename, const char* what) override;

 private:
  bool load_off_file(orv::Model& model, const char* filename);
};
