// A loader of text files that hold "strip N": the model gets one strip of N quads. The module
// beside this source was built from it once, against version 0.26, and is never built again: hosts
// load modules that are older than their library. README.md of this folder tells how it was built.
#include <orv/core/api.h>
#include <orv/geometry/mesh.h>
#include <orv/loaders/loader3d.h>
#include <orv/scene/model.h>

#include <cstdio>
#include <cstring>

namespace {

class StripLoader : public orv::Loader3D {
 public:
  StripLoader() {
    set_name("STRIP");
    set_description("Loader of strips, kept since 0.26.");
    set_author("The tests");
    set_version(0, 26, 1);
  }

  bool load_model(orv::Model* model, const char* filename) override {
    if (!model || !filename || !std::strstr(filename, ".strip")) return false;
    char path[1024];
    std::snprintf(path, sizeof path, "%s%s", get_model_dir(), filename);
    unsigned int quads = 0;
    if (!read_count(path, quads)) {
      tracef_debug("%s holds no strip", path);
      return false;
    }
    orv::Mesh* mesh = model->create_mesh();
    mesh->set_vertex_alloc_params_num_vertices(2 * (quads + 1));
    if (!mesh->alloc_vertex_data() || !mesh->alloc_face_data(2 * quads, false)) {
      delete mesh;
      return false;
    }
    fill(*mesh, quads);
    mesh->set_name("strip");
    model->add_child(mesh);
    return true;
  }

  bool load_scene(orv::Scene*, const char*, const char*) override { return false; }

 private:
  static bool read_count(const char* path, unsigned int& quads) {
    std::FILE* file = std::fopen(path, "r");
    if (!file) return false;
    const bool read = std::fscanf(file, "strip %u", &quads) == 1 && quads > 0 && quads < 1000;
    std::fclose(file);
    return read;
  }

  static void fill(orv::Mesh& mesh, unsigned int quads) {
    for (unsigned int i = 0; i <= quads; ++i) {
      const float x = static_cast<float>(i);
      mesh.set_vertex_position(2 * i, orv::vec4(x, 0.0f, 0.0f));
      mesh.set_vertex_position(2 * i + 1, orv::vec4(x, 1.0f, 0.0f));
    }
    for (unsigned int i = 0; i < quads; ++i) {
      mesh.set_face_indexes(2 * i, 2 * i, 2 * i + 2, 2 * i + 1);
      mesh.set_face_indexes(2 * i + 1, 2 * i + 1, 2 * i + 2, 2 * i + 3);
    }
    mesh.compute_faces_normal(nullptr);
    mesh.compute_vertices_normal(nullptr);
    mesh.bounding_volume_compute(nullptr);
  }
};

}  // namespace

ORV_PLUGIN_EXPORT orv::Plugin* orv_plugin_create() { return new StripLoader; }

ORV_PLUGIN_EXPORT void orv_plugin_destroy(orv::Plugin* plugin) {
  delete static_cast<StripLoader*>(plugin);
}
