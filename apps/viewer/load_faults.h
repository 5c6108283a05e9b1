#pragma once

#include <string>
#include <vector>

namespace viewer {

/// What the loaders told in these lines of the log about a fault of the file at this path that they
/// went on behind; "" for nothing. Materials that are not there are no fault of it.
std::string find_fault(const std::vector<std::string>& lines, const std::string& path);

/// What is missing of an STL file in binary form that ends before its last triangle; "" for
/// nothing.
std::string find_missing_records(const std::string& path);

/// What became of the textures that the materials of a model name.
struct TextureReport {
  unsigned int num_wanted = 0;
  unsigned int num_missing = 0;
  std::string first_missing;  ///< its name, and why it is missing
};

/// Reads it from the lines that the log got while they were loaded from this folder.
TextureReport report_textures(const std::vector<std::string>& lines, const std::string& folder);

}  // namespace viewer
