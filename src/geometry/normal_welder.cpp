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
  // Two positions that pass the test differ by eps and the rounding of its two sums at the most;
  // cells somewhat larger keep them in neighbouring ones.
  const double reach = static_cast<double>(eps_) + static_cast<double>(largest) * 0x1p-22;
  if (reach > 0.0) cells_per_unit_ = 1.0 / (reach * 1.001);
  if (!std::isfinite(cells_per_unit_)) compare_all_ = true;
}

NormalWelder::Cell NormalWelder::cell_of(const vec3& p) const {
  return {cell_index(static_cast<double>(p.x), cells_per_unit_),
          cell_index(static_cast<double>(p.y), cells_per_unit_),
          cell_index(static_cast<double>(p.z), cells_per_unit_)};
}

std::uint32_t NormalWelder::bucket_of(const Cell& cell) const {
  std::uint64_t hash = static_cast<std::uint32_t>(cell.x);
  hash = hash * 0x9E3779B97F4A7C15u + static_cast<std::uint32_t>(cell.y);
  hash = hash * 0x9E3779B97F4A7C15u + static_cast<std::uint32_t>(cell.z);
  hash *= 0x9E3779B97F4A7C15u;
  return static_cast<std::uint32_t>(hash >> 32) & bucket_mask_;
}

void NormalWelder::sort_into_buckets() {
  const std::size_t n = positions_.size();
  std::uint32_t buckets = 16;
  while (buckets < n && buckets < (1u << 30)) buckets *= 2;
  bucket_mask_ = buckets - 1;

  cells_.resize(n);
  bucket_starts_.assign(static_cast<std::size_t>(buckets) + 1, 0);
  for (std::size_t i = 0; i < n; ++i) {
    cells_[i] = cell_of(positions_[i]);
    if (is_place(i)) ++bucket_starts_[bucket_of(cells_[i]) + 1];
  }
  for (std::size_t b = 0; b < buckets; ++b) bucket_starts_[b + 1] += bucket_starts_[b];

  std::vector<unsigned int> next(bucket_starts_.begin(), bucket_starts_.end() - 1);
  items_.resize(n);
  for (std::size_t i = 0; i < n; ++i) {
    if (is_place(i)) items_[next[bucket_of(cells_[i])]++] = static_cast<unsigned int>(i);
  }
}

bool NormalWelder::is_place(std::size_t i) const {
  const vec3& p = positions_[i];
  return p.x == p.x && p.y == p.y && p.z == p.z;
}

bool NormalWelder::near(unsigned int i, unsigned int j) const {
  const vec3& a = positions_[i];
  const vec3& b = positions_[j];
  return within(a.x, b.x, eps_) && within(a.y, b.y, eps_) && within(a.z, b.z, eps_);
}

void NormalWelder::find_later(unsigned int i, std::vector<unsigned int>& out) const {
  out.clear();
  if (!(eps_ >= 0.0f) || !is_place(i)) return;
  if (compare_all_) {
    for (unsigned int j = i + 1; j < positions_.size(); ++j) {
      if (near(i, j)) out.push_back(j);
    }
    return;
  }
  const Cell& own = cells_[i];
  for (std::int32_t dz = -1; dz <= 1; ++dz) {
    for (std::int32_t dy = -1; dy <= 1; ++dy) {
      for (std::int32_t dx = -1; dx <= 1; ++dx) {
        const Cell cell = {own.x + dx, own.y + dy, own.z + dz};
        const std::uint32_t bucket = bucket_of(cell);
        const auto end = items_.begin() + bucket_starts_[bucket + 1];
        auto item = std::upper_bound(items_.begin() + bucket_starts_[bucket], end, i);
        for (; item != end; ++item) {
          if (cells_[*item] == cell && near(i, *item)) out.push_back(*item);
        }
      }
    }
  }
  std::sort(out.begin(), out.end());
}

}  // namespace orv
