#pragma once

#include <orv/fwd.h>

#include <string>

namespace viewer {

/// Writes what was drawn last, a frame of this size, as PNG or JPEG by the ending of the name.
/// False with a reason, which names the file.
bool write_picture(orv::Renderer* renderer, const std::string& path, int width, int height,
                   std::string* reason);

/// A name for a picture of this model, in the current folder, that no file has: "spot-1.png".
std::string free_picture_name(const std::string& model_path);

}  // namespace viewer
