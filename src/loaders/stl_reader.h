#pragma once

#include <cstddef>
#include <cstdint>

namespace orv {
class Model;
}  // namespace orv

namespace orv::detail {

/// The records of a binary STL file that can be used.
struct StlTriangles {
  static constexpr std::size_t RECORD_SIZE = 50;

  const unsigned char* records = nullptr;
  std::uint32_t count = 0;
  /// Why there are none, as the end of a sentence that is never freed; null when there may be some.
  const char* fault = nullptr;
};

/// Looks for the records in the bytes of a file: as many as the file says it has and holds. None
/// for the text form, which begins with "solid" and has no fitting count.
StlTriangles find_stl_triangles(const unsigned char* bytes, std::size_t size);

/// Makes a mesh of the triangles and adds it to the model. False when there are none or too many.
bool build_stl_model(const StlTriangles& triangles, Model& model);

}  // namespace orv::detail
