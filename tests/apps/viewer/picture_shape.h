#pragma once

#include <algorithm>
#include <cstdlib>

#include "support/image_compare.h"
#include "viewer/viewer_scene.h"

namespace orv::test {

/// Where a picture shows something else than the background, as shares of its sides.
struct PictureShape {
  float left = 1.0f, right = 0.0f, bottom = 1.0f, top = 0.0f;
  float covered = 0.0f;  ///< share of the pixels

  float width() const { return right - left; }
  float height() const { return top - bottom; }
};

inline bool is_background(const unsigned char* rgba) {
  for (int i = 0; i < 3; ++i) {
    const int wanted = static_cast<int>(viewer::ViewerScene::background[i] * 255.0f + 0.5f);
    if (std::abs(rgba[i] - wanted) > 4) return false;
  }
  return true;
}

inline PictureShape shape_of(const Picture& picture) {
  PictureShape shape;
  long count = 0;
  const auto w = static_cast<float>(picture.width);
  const auto h = static_cast<float>(picture.height);
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      const auto pixel = (static_cast<std::size_t>(y) * static_cast<std::size_t>(picture.width) +
                          static_cast<std::size_t>(x)) *
                         4;
      if (is_background(&picture.rgba[pixel])) continue;
      ++count;
      shape.left = std::min(shape.left, static_cast<float>(x) / w);
      shape.right = std::max(shape.right, static_cast<float>(x + 1) / w);
      shape.bottom = std::min(shape.bottom, static_cast<float>(y) / h);
      shape.top = std::max(shape.top, static_cast<float>(y + 1) / h);
    }
  }
  shape.covered = static_cast<float>(count) / (w * h);
  return shape;
}

}  // namespace orv::test
