#pragma once

#include <string_view>

#include "loaders/obj_document.h"

namespace orv::detail {

/// Reads the text of a material library into the materials of a document. Lenient: a keyword counts
/// wherever it stands in its line, and numbers that are missing leave the values as they were.
void read_mtl(std::string_view text, NamedList<ObjMaterial>& materials);

}  // namespace orv::detail
