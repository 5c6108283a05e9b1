#include <orv/loaders/loader3d_stl.h>

#include <string>
#include <vector>

#include "core/core_author.h"
#include "core/read_file.h"
#include "loaders/loader_names.h"
#include "loaders/stl_reader.h"

namespace orv {

Loader3D_STL::Loader3D_STL() {
  set_name("STL");
  set_description("STL (StereoLithography) 3D loader (core plugin).");
  set_author(CORE_AUTHOR);
  set_build_info(detail::loader_build_info().c_str());
  set_version(0, 1, 0);
}

Loader3D_STL::~Loader3D_STL() = default;

bool Loader3D_STL::load_model(Model* model, const char* filename) {
  if (!model || !detail::ends_in_letters(filename, "stl")) return false;
  const std::string path = std::string(get_model_dir()) + filename;
  std::vector<unsigned char> bytes;
  const char* fault = nullptr;
  if (!detail::read_whole_file(path.c_str(), bytes, &fault)) {
    tracef_error("unable to load file: %s", path.c_str());
    tracef_debug("can't read %s: %s", path.c_str(), fault);
    return false;
  }
  const detail::StlTriangles triangles = detail::find_stl_triangles(bytes.data(), bytes.size());
  if (!detail::build_stl_model(triangles, *model)) {
    tracef_debug("%s: no mesh from %u triangles%s", path.c_str(), triangles.count,
                 triangles.fault ? triangles.fault : "");
  }
  return true;
}

bool Loader3D_STL::load_scene(Scene*, const char*, const char*) { return false; }

}  // namespace orv
