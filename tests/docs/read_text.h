#pragma once

#include <fstream>
#include <iterator>
#include <string>

namespace orv::test {

/// The text of a file of the source tree; empty when there is none.
inline std::string read_text(const std::string& path) {
  std::ifstream file(std::string(ORV_SOURCE_DIR) + "/" + path);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

}  // namespace orv::test
