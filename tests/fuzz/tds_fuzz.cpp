// 3DS files: any bytes are refused, or lib3ds reads their clean form without harm.
#include <lib3ds/file.h>
#include <lib3ds/mesh.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "loaders/tds_normals.h"
#include "loaders/tds_reader.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  orv::TdsFile clean;
  if (!orv::tds_clean(data, size, clean)) return 0;
  const orv::TdsPtr file = orv::tds_parse(clean);
  if (!file) __builtin_trap();
  lib3ds_file_eval(file.get(), 0.0f);
  std::vector<orv::vec3> normals;
  for (Lib3dsMesh* mesh = file->meshes; mesh; mesh = mesh->next) {
    orv::tds_vertex_normals(*mesh, normals);
    orv::tds_vertex_normals_bounded(*mesh, normals);
  }
  return 0;
}
