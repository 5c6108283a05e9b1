// Any bytes as an OBJ file, which is also the material library that it may name. Every face of the
// model has vertices, and finite coordinates stay finite.
#include <orv/geometry/mesh.h>
#include <orv/gpu/material_mgr.h>
#include <orv/scene/model.h>

#include "loaders/obj_model_builder.h"
#include "loaders/obj_parser.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdlib>

namespace {

bool is_finite(const orv::vec4& v) {
  return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

void check(const orv::Mesh& mesh, bool finite) {
  orv::MeshData& data = *mesh.get_data();
  if (data.get_num_vertices() != std::uint64_t{data.get_num_faces()} * 3u) std::abort();
  for (unsigned int i = 0; i < data.get_num_vertices(); ++i) {
    if (finite && !is_finite(data.get_position_4f(i))) std::abort();
  }
  for (unsigned int face = 0; face < data.get_num_faces(); ++face) {
    unsigned int a = 0, b = 0, c = 0;
    mesh.get_face_indexes(face, &a, &b, &c);
    if (a >= data.get_num_vertices() || b >= data.get_num_vertices() ||
        c >= data.get_num_vertices()) {
      std::abort();
    }
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size > (1u << 16)) return 0;
  orv::detail::ObjDocument document;
  const auto read_library = [=](const std::string&, std::vector<unsigned char>& text) {
    text.assign(data, data + size);
    return true;
  };
  orv::detail::parse_obj({reinterpret_cast<const char*>(data), size}, read_library, document);
  bool finite = true;
  for (const orv::vec3& position : document.positions) finite = finite && is_finite(position);

  orv::Model* model = new orv::Model;
  orv::detail::build_obj_model(document, *model);
  for (unsigned int i = 0; i < model->get_num_children(); ++i) {
    check(*static_cast<orv::Mesh*>(model->get_child(i)), finite);
  }
  model->release(nullptr, nullptr);
  orv::MaterialMgr::get()->release_all_resources(nullptr, nullptr);
  return 0;
}
