#include <orv/loaders/loader3d_obj.h>

#include <string>
#include <vector>

#include "core/core_author.h"
#include "core/mapped_file.h"
#include "core/read_file.h"
#include "loaders/loader_names.h"
#include "loaders/obj_model_builder.h"
#include "loaders/obj_parser.h"

namespace orv {

Loader3D_OBJ::Loader3D_OBJ() {
  set_name("ObjLoaderV1");
  set_description("OBJ 3D loader (core plugin).");
  set_author(CORE_AUTHOR);
  set_build_info(detail::loader_build_info().c_str());
  set_version(0, 1, 0);
}

Loader3D_OBJ::~Loader3D_OBJ() = default;

bool Loader3D_OBJ::load_model(Model* model, const char* filename) {
  if (!model || !detail::ends_in_letters(filename, "obj")) return false;
  const std::string directory = get_model_dir();
  const std::string path = directory + filename;
  detail::ObjDocument document;
  {
    const detail::MappedFile file(path.c_str());
    if (!file.is_open()) {
      tracef_debug("can't read %s: %s", path.c_str(), file.fault());
      return false;
    }
    const auto read_library = [&](const std::string& name, std::vector<unsigned char>& library) {
      const char* fault = nullptr;
      if (detail::read_whole_file((directory + name).c_str(), library, &fault)) return true;
      tracef_debug("%s: can't read material library %s: %s", path.c_str(), name.c_str(), fault);
      return false;
    };
    detail::parse_obj(file.text(), read_library, document);
  }
  detail::build_obj_model(document, *model);
  return true;
}

bool Loader3D_OBJ::load_scene(Scene*, const char*, const char*) { return false; }

}  // namespace orv
