#pragma once

#include <orv/math/vec3.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orv {

/// Finds, for each of many positions, the later ones that lie within a distance on all three axes.
///
/// Positions are sorted into the cells of a hashed grid, so that only neighbouring cells are looked
/// at. The answers are exactly those of comparing every pair, in ascending order.
class NormalWelder {
 public:
  NormalWelder(const std::vector<vec3>& positions, float eps);

  /// Fills `out` with all j > i for which position i lies in [position j - eps, position j + eps].
  void find_later(unsigned int i, std::vector<unsigned int>& out) const;

 private:
  struct Cell {
    std::int32_t x;
    std::int32_t y;
    std::int32_t z;
    bool operator==(const Cell& c) const { return x == c.x && y == c.y && z == c.z; }
  };

  void choose_cell_size();
  void sort_into_buckets();
  Cell cell_of(const vec3& p) const;
  std::uint32_t bucket_of(const Cell& cell) const;
  /// False for coordinates that are not numbers, which are near to nothing.
  bool is_place(std::size_t i) const;
  bool near(unsigned int i, unsigned int j) const;

  const std::vector<vec3>& positions_;
  float eps_;
  bool compare_all_ = false;  ///< distances overflow, so that cells can't tell neighbours
  double cells_per_unit_ = 1.0;
  std::uint32_t bucket_mask_ = 0;
  std::vector<Cell> cells_;                  ///< of each position
  std::vector<unsigned int> bucket_starts_;  ///< into items_, one more than there are buckets
  std::vector<unsigned int> items_;          ///< positions by bucket, ascending in each
};

}  // namespace orv
