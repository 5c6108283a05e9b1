#pragma once

#include <string>

#include "support/read_picture.h"

namespace orv::test {

inline std::string guide_output(const std::string& name) {
  return std::string(ORV_TEST_OUTPUT_DIR) + "/" + name + ".jpg";
}

/// The command line of a step: program, picture, and the folders it reads.
inline std::string guide_command(int step, const std::string& picture,
                                 const std::string& shaders = ORV_SOURCE_DIR "/docs/guide/") {
  return "'" GUIDE_PROGRAMS + std::to_string(step) + "' '" + picture + "' '" + shaders +
         "' '" ORV_SOURCE_DIR "/apps/demo/data/'";
}

}  // namespace orv::test
