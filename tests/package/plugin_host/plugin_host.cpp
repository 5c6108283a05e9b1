// A host that loads the module of plugins/template through the search path, and models through it.
// Arguments: folder of the module, folder of the models, folder to write broken models into.
#include <orv/orv.h>

#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

namespace {

constexpr const char* MODULE = "plugin_orv_off_x64.so";

int fail(const char* what) {
  std::printf("failed: %s\n", what);
  return 1;
}

// Triangles of the model's one mesh, 0 without a model. The model goes away.
unsigned int count_triangles(const std::string& folder, const char* file) {
  orv::MeshDataVertexAttribsAllocParams params;
  orv::Model* model =
      orv::Kernel::get()->load_model_from_file(params, file, folder.c_str(), nullptr);
  if (!model) return 0;
  orv::Node* child = model->get_child(0);
  const unsigned int count = child ? static_cast<orv::Mesh*>(child)->get_num_faces(nullptr) : 0;
  model->add_ref();
  model->release(nullptr, nullptr);
  return count;
}

// No shorter text is a whole cube; each must be refused, and quietly.
bool refuses_cut_files(const std::string& models, const std::string& work) {
  std::ifstream file(models + "cube.off");
  const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
  // The line end and the last digit may be missing: what is left can be a number, too.
  for (size_t length = 0; length + 2 < text.size(); ++length) {
    std::ofstream(work + "cut.off") << text.substr(0, length);
    if (count_triangles(work, "cut.off") != 0) return false;
  }
  return true;
}

bool refuses_wrong_numbers(const std::string& work) {
  for (const char* text :
       {"OFF 3 1 0  0 0 0  1 0 0  0 1 0  3 0 1 3\n", "OFF 3 1 0  0 0 0  1 0 0  0 1 0  3 0 1 -1\n",
        "OFF 3 1 0  0 0 0  1 0 0  0 1 0  2 0 1\n", "OFF 4000000000 1 0  0 0 0\n",
        "OFF 40000000 1 0  0 0 0\n", "OFF 0 0 0\n", "OFF\n"}) {
    std::ofstream(work + "wrong.off") << text;
    if (count_triangles(work, "wrong.off") != 0) return false;
  }
  return true;
}

int run(const std::string& modules, const std::string& models, const std::string& work) {
  orv::Kernel* kernel = orv::Kernel::get();
  if (kernel->load_plugin(MODULE, false, true)) return fail("found with an empty path");
  if (count_triangles(models, "cube.off") != 0) return fail("somebody else reads OFF files");
  kernel->plugin_search_path_add_dir("/nowhere/");
  kernel->plugin_search_path_add_dir(modules.c_str());
  orv::Plugin* plugin = kernel->load_plugin(MODULE, false, true);
  if (!plugin) return fail("not loaded");
  if (plugin->get_type() != orv::PLUGIN_TYPE_LOADER3D) return fail("type");
  if (std::string(plugin->get_name()) != "OFF") return fail("name");
  if (plugin->get_full_filename() != modules + MODULE) return fail("path");
  if (count_triangles(models, "cube.off") != 12) return fail("the cube has 12 triangles");
  if (!refuses_cut_files(models, work)) return fail("a cut file gave a model");
  if (!refuses_wrong_numbers(work)) return fail("a wrong file gave a model");
  if (kernel->unload_plugin(plugin) < 0) return fail("not unloaded");
  // The module's own names are hidden, so nothing keeps it in the process.
  std::ifstream maps("/proc/self/maps");
  const std::string mapped((std::istreambuf_iterator<char>(maps)),
                           std::istreambuf_iterator<char>());
  if (mapped.find(MODULE) != std::string::npos) return fail("still mapped");
  if (count_triangles(models, "cube.off") != 0) return fail("read after unloading");
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) return fail("three folders wanted");
  orv::core::start(nullptr, true, nullptr, nullptr);
  const int status = run(argv[1], argv[2], argv[3]);
  orv::core::stop(nullptr);
  if (status == 0) std::printf("all well\n");
  return status;
}
