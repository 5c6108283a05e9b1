/// @file
/// Large model files for the benchmarks, made on first use and kept for the next run.
#pragma once

#include <cstddef>
#include <string>

namespace bench {

/// A folder with a final separator, in which the files are made.
std::string model_folder();

/// Name of an OBJ file of about so many megabytes in the folder: a wavy grid with a position, a
/// texture coordinate and a normal for each of its points, six digits behind the point as programs
/// write them, and triangles that name all three.
std::string obj_file(std::size_t megabytes);

/// Name of a binary STL file of so many triangles in the folder.
std::string stl_file(std::size_t triangles);

}  // namespace bench
