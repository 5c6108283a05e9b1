// Any bytes as a binary STL file: there are no more vertices than the bytes can hold.
#include <orv/geometry/mesh.h>
#include <orv/scene/model.h>

#include "loaders/stl_reader.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const orv::detail::StlTriangles triangles = orv::detail::find_stl_triangles(data, size);
  if (triangles.count * orv::detail::StlTriangles::RECORD_SIZE > size) std::abort();
  orv::Model* model = new orv::Model;
  if (orv::detail::build_stl_model(triangles, *model) != (triangles.count > 0)) std::abort();
  if (triangles.count > 0 &&
      static_cast<orv::Mesh*>(model->get_child(0))->get_data()->get_num_vertices() !=
          triangles.count * 3) {
    std::abort();
  }
  model->release(nullptr, nullptr);
  return 0;
}
