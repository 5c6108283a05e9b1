#pragma once

#include <orv/math/vec3.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace orv {

/// Finds, for each of many positions, the later ones that lie within a distance on all three axes.
///
/// Positions are sorted into the cells of a hashed grid, so that only the two or fewer cells on
/// each axis that can hold near ones are looked at. The answers are exactly those of comparing
/// every pair, in ascending order.
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
  };

  /// Where a cell's positions are: a bucket, in which cells differ by their tags, mostly.
  struct Place {
    std::uint32_t bucket;
    std::uint32_t tag;
  };
  struct Item {
    unsigned int position;
    std::uint32_t tag;
  };

  void choose_cell_size();
  void sort_into_buckets();
  /// The cell of a position moved by `shift` on all axes.
  Cell cell_of(const vec3& p, double shift) const;
  Place place_of(const Cell& cell) const;
  void find_in_cell(unsigned int i, const Cell& cell, std::vector<unsigned int>& out) const;
  /// False for coordinates that are not numbers, which are near to nothing.
  bool is_number(std::size_t i) const;
  bool near(unsigned int i, unsigned int j) const;

  const std::vector<vec3>& positions_;
  float eps_;
  bool compare_all_ = false;  ///< distances overflow, so that cells can't tell neighbours
  double reach_ = 0.0;        ///< no two near positions are farther apart on any axis
  double cells_per_unit_ = 1.0;
  std::uint32_t bucket_mask_ = 0;
  std::vector<unsigned int> bucket_starts_;  ///< into items_, one more than there are buckets
  std::vector<Item> items_;                  ///< positions by bucket, ascending in each
};

}  // namespace orv
