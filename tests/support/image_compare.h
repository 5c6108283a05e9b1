#pragma once

#include <string>
#include <vector>

namespace orv::test {

/// A picture as RGBA bytes, bottom row first.
struct Picture {
  int width = 0;
  int height = 0;
  std::vector<unsigned char> rgba;
};

/// How much two pictures may differ: the largest channel difference of nearly all pixels, the share
/// of pixels that this holds for, and the largest difference of the rest.
struct Tolerance {
  int channel = 2;
  double share = 0.999;
  int rest = 32;
};

/// Empty when the pictures are alike, else what differs.
std::string compare_pictures(const Picture& actual, const Picture& expected,
                             const Tolerance& tolerance = {});

/// Compares with tests/golden/images/NAME.png. When they differ, the picture and a picture of the
/// differences are left in the build folder, and the result says so. With ORV_ACCEPT_GOLDEN set in
/// the environment the picture becomes the golden one: look at it first.
std::string compare_to_golden(const Picture& actual, const std::string& name,
                              const Tolerance& tolerance = {});

}  // namespace orv::test
