// What an OFF file says, as plain numbers; nothing of the library in it.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <vector>

struct OffShape {
  std::vector<std::array<float, 3>> positions;
  std::vector<std::array<std::uint32_t, 3>> triangles;  // indices of positions, all of them valid
};

// Reads a whole file. False with a reason when the text is not a complete OFF file; `shape` then
// holds nothing of use.
bool read_off_file(const char* path, OffShape& shape, std::string& reason);
