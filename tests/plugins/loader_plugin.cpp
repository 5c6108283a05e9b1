// A loader of text files that hold "points" and a number: the model gets one mesh of that many
// vertices. Its plugin name is "FBX", by which hosts find their loader of that format.

#include <orv/core/api.h>
#include <orv/geometry/mesh.h>
#include <orv/loaders/loader3d.h>
#include <orv/scene/model.h>
#include <orv/scene/scene.h>

#include <cstdio>
#include <cstring>
#include <string>

namespace {

class PointsLoader : public orv::Loader3D {
 public:
  PointsLoader() {
    set_name("FBX");
    set_description("Loader of the plugin tests.");
    set_author("The tests");
    set_version(1, 2, 3);
  }

  bool load_model(orv::Model* model, const char* filename) override {
    if (!model || !filename) return false;
    const std::string path = std::string(get_model_dir()) + filename;
    std::FILE* file = std::fopen(path.c_str(), "r");
    if (!file) return false;
    unsigned int count = 0;
    const bool read = std::fscanf(file, "points %u", &count) == 1 && count > 0 && count < 1000;
    std::fclose(file);
    if (!read) return false;
    orv::Mesh* mesh = model->create_mesh();
    mesh->set_name("points");
    mesh->set_vertex_alloc_params_num_vertices(count);
    mesh->alloc_vertex_data();
    model->add_child(mesh);
    return true;
  }

  bool load_scene(orv::Scene* scene, const char* filename, const char* what) override {
    if (!scene || !filename || !what) return false;
    return std::strcmp(what, "material + mesh + camera") == 0;
  }
};

int instances = 0;

}  // namespace

ORV_PLUGIN_EXPORT orv::Plugin* orv_plugin_create() { return new PointsLoader; }

ORV_PLUGIN_EXPORT void orv_plugin_destroy(orv::Plugin* plugin) {
  delete static_cast<PointsLoader*>(plugin);
}

ORV_PLUGIN_EXPORT void* ORV_create_plugin(int argument) {
  ++instances;
  return new int(1000 * instances + argument);
}

ORV_PLUGIN_EXPORT int ORV_destroy_plugin(void* instance) {
  delete static_cast<int*>(instance);
  return instance ? 1 : 0;
}
