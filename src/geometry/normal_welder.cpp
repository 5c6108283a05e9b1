#include "geometry/normal_welder.h"

#include <algorithm>
#include <cfloat>
#include <cmath>

namespace orv {

namespace {

constexpr std::int32_t FAR_CELL = 1 << 30;  // cell of infinite coordinates

std::int32_t cell_index(double coordinate, double cells_per_unit) {
  const double cell = std::floor(coordinate * cells_per_unit);
  // Finite coordinates stay far below the limit; what is not a number is near to nothing anyway.
  if (!(cell > -FAR_CELL)) return -FAR_CELL;
  if (cell > FAR_CELL) return FAR_CELL;
  return static_cast<std::int32_t>(cell);
}

bool within(float a, float b, float eps) { return a >= b - eps && a <= b + eps; }

}  // namespace

NormalWelder::NormalWelder(const std::vector<vec3>& positions, float eps)
    : positions_(positions), eps_(eps) {
  if (!(eps >= 0.0f)) return;
  choose_cell_size();
  if (!compare_all_) sort_into_buckets();
}

void NormalWelder::choose_cell_size() {
  float largest = 0.0f;
  for (const vec3& p : positions_) {
    for (const float coordinate : {p.x, p.y, p.z}) {
      const float size = std::fabs(coordinate);
      if (size > largest && size <= FLT_MAX) largest = size;
    }
  }
  if (static_cast<double>(largest) + static_cast<double>(eps_) > FLT_MAX / 2.0) {
    compare_all_ = true;
    return;
  }
  // Two positions that pass the test differ by eps and the rounding of its two sums at the most.
  reach_ = (static_cast<double>(eps_) + static_cast<double>(largest) * 0x1p-22) * 1.001;
  // What is within reach on both sides then touches two cells at the most.
  if (reach_ > 0.0) cells_per_unit_ = 1.0 / (reach_ * 2.001);
  if (!std::isfinite(cells_per_unit_)) compare_all_ = true;
}

NormalWelder::Cell NormalWelder::cell_of(const vec3& p, double shift) const {
  return {cell_index(static_cast<double>(p.x) + shift, cells_per_unit_),
          cell_index(static_cast<double>(p.y) + shift, cells_per_unit_),
          cell_index(static_cast<double>(p.z) + shift, cells_per_unit_)};
}

NormalWelder::Place NormalWelder::place_of(const Cell& cell) const {
  constexpr std::uint64_t MIX = 0x9E3779B97F4A7C15u;
  const auto x = static_cast<std::uint32_t>(cell.x);
  const auto y = static_cast<std::uint32_t>(cell.y);
  const auto z = static_cast<std::uint32_t>(cell.z);
  // Blocks of 4 by 4 by 4 cells have their buckets side by side: neighbours are read together.
  std::uint64_t hash = x >> 2;
  hash = hash * MIX + (y >> 2);
  hash = hash * MIX + (z >> 2);
  hash = (hash ^ hash >> 29) * MIX;
  const std::uint32_t cell_in_block = (z & 3) << 4 | (y & 3) << 2 | (x & 3);
  return {(static_cast<std::uint32_t>(hash >> 32) + cell_in_block) & bucket_mask_,
          static_cast<std::uint32_t>(hash) ^ cell_in_block};
}

void NormalWelder::sort_into_buckets() {
  const std::size_t n = positions_.size();
  std::uint32_t buckets = 16;
  while (buckets / 2 < n && buckets < (1u << 30)) buckets *= 2;
  bucket_mask_ = buckets - 1;

  std::vector<Place> places(n);
  bucket_starts_.assign(static_cast<std::size_t>(buckets) + 1, 0);
  for (std::size_t i = 0; i < n; ++i) {
    places[i] = place_of(cell_of(positions_[i], 0.0));
    if (is_number(i)) ++bucket_starts_[places[i].bucket + 1];
  }
  for (std::size_t b = 0; b < buckets; ++b) bucket_starts_[b + 1] += bucket_starts_[b];

  std::vector<unsigned int> next(bucket_starts_.begin(), bucket_starts_.end() - 1);
  items_.resize(n);
  for (std::size_t i = 0; i < n; ++i) {
    if (!is_number(i)) continue;
    items_[next[places[i].bucket]++] = {static_cast<unsigned int>(i), places[i].tag};
  }
}

bool NormalWelder::is_number(std::size_t i) const {
  const vec3& p = positions_[i];
  return p.x == p.x && p.y == p.y && p.z == p.z;
}

bool NormalWelder::near(unsigned int i, unsigned int j) const {
  const vec3& a = positions_[i];
  const vec3& b = positions_[j];
  return within(a.x, b.x, eps_) && within(a.y, b.y, eps_) && within(a.z, b.z, eps_);
}

void NormalWelder::find_in_cell(unsigned int i, const Cell& cell,
                                std::vector<unsigned int>& out) const {
  const auto [bucket, tag] = place_of(cell);
  const auto end = items_.begin() + bucket_starts_[bucket + 1];
  auto item =
      std::upper_bound(items_.begin() + bucket_starts_[bucket], end, i,
                       [](unsigned int k, const Item& other) { return k < other.position; });
  for (; item != end; ++item) {
    if (item->tag == tag && near(i, item->position)) out.push_back(item->position);
  }
}

void NormalWelder::find_later(unsigned int i, std::vector<unsigned int>& out) const {
  out.clear();
  if (!(eps_ >= 0.0f) || !is_number(i)) return;
  if (compare_all_) {
    for (unsigned int j = i + 1; j < positions_.size(); ++j) {
      if (near(i, j)) out.push_back(j);
    }
    return;
  }
  const Cell low = cell_of(positions_[i], -reach_);
  const Cell high = cell_of(positions_[i], reach_);
  for (std::int32_t z = low.z; z <= high.z; ++z) {
    for (std::int32_t y = low.y; y <= high.y; ++y) {
      for (std::int32_t x = low.x; x <= high.x; ++x) find_in_cell(i, {x, y, z}, out);
    }
  }
  std::sort(out.begin(), out.end());
  // Two cells may share bucket and tag, and then each finds the positions of both.
  out.erase(std::unique(out.begin(), out.end()), out.end());
}

}  // namespace orv
