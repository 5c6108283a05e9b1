#pragma once

#include <cstdint>
#include <streambuf>
#include <string>
#include <string_view>

namespace orv::detail {

/// tinyobjloader may take time and memory out of proportion to a text. These change such texts to
/// harmless ones, and leave all others as they are.

/// Effort of cutting the ears off polygons: the sum of the cubes of their numbers of corners, small
/// polygons left out. Enough for thirty polygons of 600 corners, or one of 2000.
inline constexpr std::uint64_t MAX_EAR_CUTTING = std::uint64_t{1} << 33;

/// Of an OBJ file: polygons beyond MAX_EAR_CUTTING become fans of triangles. Tags, for which room
/// is made for as many values as they say they have, and weights, whose indices may be any number,
/// are of no use here and become comments.
std::string bound_obj_text(std::string_view text);

/// The same text as bound_obj_text makes, given out as it is read: what stays as it is is not even
/// copied. The text has to outlive the buffer.
class BoundObjBuffer : public std::streambuf {
 public:
  explicit BoundObjBuffer(std::string_view text) : rest_(text) {}

 protected:
  int_type underflow() override;

 private:
  std::string_view rest_;
  std::uint64_t effort_ = MAX_EAR_CUTTING;
  std::string changed_;  ///< lines that did not stay
};

/// Of a material library: lines longer than any name become comments, since warnings repeat the
/// material's name.
void bound_mtl_text(std::string& text);

}  // namespace orv::detail
