#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "loaders/obj_document.h"

namespace orv::detail {

/// Gives the text of the material library of a name; false when there is none.
using ReadMaterialLibrary =
    std::function<bool(const std::string& name, std::vector<unsigned char>& text)>;

/// Reads the text of an OBJ file into an empty document. The text is a stream of words: a word's
/// first letter decides what is read behind it, and line ends matter only to names and to what is
/// passed over.
void parse_obj(std::string_view text, const ReadMaterialLibrary& read_library,
               ObjDocument& document);

}  // namespace orv::detail
