/// @file
/// Font files of the system, by family name.
#pragma once

#include <string>

namespace orv::detail {

/// Where a face lies.
struct FontFileName {
  std::string path;    ///< empty when the system has no fonts
  int face_index = 0;  ///< face in a collection
};

/// The installed TrueType file that comes closest to the bold style of a family. Families that are
/// not installed are replaced as the system's configuration says.
FontFileName find_bold_font_file(const char* family);

}  // namespace orv::detail
