#include "off_text.h"

#include <fstream>

namespace {

// Beyond these a file is taken for broken, before anything is allocated for it.
constexpr std::uint32_t MOST_VERTICES = 50'000'000;
constexpr std::uint32_t MOST_CORNERS = 1000;  // of one polygon

bool read_positions(std::istream& text, std::uint32_t count, OffShape& shape) {
  for (std::uint32_t i = 0; i < count; ++i) {
    std::array<float, 3> p;
    if (!(text >> p[0] >> p[1] >> p[2])) return false;
    // Grown as numbers arrive: a count that lies costs no memory.
    shape.positions.push_back(p);
  }
  return true;
}

// A polygon becomes a fan of triangles around its first corner.
bool read_polygon(std::istream& text, OffShape& shape) {
  std::uint32_t corners = 0;
  if (!(text >> corners) || corners < 3 || corners > MOST_CORNERS) return false;
  std::array<std::uint32_t, 3> triangle{};
  for (std::uint32_t i = 0; i < corners; ++i) {
    std::uint32_t index = 0;
    if (!(text >> index) || index >= shape.positions.size()) return false;
    if (i < 2) {
      triangle[i] = index;
      continue;
    }
    triangle[2] = index;
    shape.triangles.push_back(triangle);
    triangle[1] = index;
  }
  std::string colour;
  std::getline(text, colour);
  return true;
}

}  // namespace

bool read_off_file(const char* path, OffShape& shape, std::string& reason) {
  std::ifstream text(path);
  if (!text) return reason = "cannot be opened", false;
  std::string word;
  std::uint32_t vertices = 0, polygons = 0, edges = 0;
  if (!(text >> word) || word != "OFF") return reason = "does not begin with OFF", false;
  if (!(text >> vertices >> polygons >> edges)) return reason = "has no counts", false;
  if (vertices > MOST_VERTICES) return reason = "claims too many vertices", false;
  if (!read_positions(text, vertices, shape)) return reason = "ends among the vertices", false;
  for (std::uint32_t i = 0; i < polygons; ++i) {
    if (!read_polygon(text, shape)) {
      return reason = "has a bad polygon " + std::to_string(i), false;
    }
  }
  return true;
}
