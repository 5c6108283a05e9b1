#include "support/image_compare.h"

#include <orv/image/image.h>
#include <orv/image/image_codec_stb.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "common/png_writer.h"

namespace orv::test {

namespace {

int difference(const unsigned char* a, const unsigned char* b) {
  int largest = 0;
  for (int c = 0; c < 3; ++c) largest = std::max(largest, std::abs(a[c] - b[c]));
  return largest;
}

bool read_picture(const std::string& path, Picture* picture) {
  Image image;
  ImageCodecStb codec;
  if (!codec.load_image_from_file(&image, path.c_str(), false, PF_RGBA_U8)) return false;
  image.flip_vertical();
  picture->width = static_cast<int>(image.width);
  picture->height = static_cast<int>(image.height);
  const unsigned char* bytes = image.get_u8_ptr();
  picture->rgba.assign(bytes, bytes + static_cast<std::size_t>(picture->width) *
                                          static_cast<std::size_t>(picture->height) * 4);
  return true;
}

void write_picture(const std::string& path, const Picture& picture) {
  orv_app::write_png(path.c_str(), picture.rgba.data(), picture.width, picture.height);
}

}  // namespace

std::string compare_pictures(const Picture& actual, const Picture& expected,
                             const Tolerance& tolerance) {
  if (actual.width != expected.width || actual.height != expected.height ||
      actual.rgba.size() != expected.rgba.size()) {
    return "the sizes differ";
  }
  const std::size_t pixels = actual.rgba.size() / 4;
  std::size_t beyond = 0;
  int largest = 0;
  for (std::size_t i = 0; i < pixels; ++i) {
    const int d = difference(&actual.rgba[i * 4], &expected.rgba[i * 4]);
    largest = std::max(largest, d);
    beyond += d > tolerance.channel;
  }
  const double share =
      1.0 - static_cast<double>(beyond) / static_cast<double>(std::max<std::size_t>(pixels, 1));
  if (largest <= tolerance.rest && share >= tolerance.share) return "";
  return std::to_string(beyond) + " of " + std::to_string(pixels) + " pixels differ by more than " +
         std::to_string(tolerance.channel) + ", the largest difference is " +
         std::to_string(largest);
}

std::string compare_to_golden(const Picture& actual, const std::string& name,
                              const Tolerance& tolerance) {
  const std::string golden_path = ORV_SOURCE_DIR "/tests/golden/images/" + name + ".png";
  if (std::getenv("ORV_ACCEPT_GOLDEN")) {
    write_picture(golden_path, actual);
    return "";
  }
  Picture golden;
  if (!read_picture(golden_path, &golden)) return "no golden image " + golden_path;
  const std::string problem = compare_pictures(actual, golden, tolerance);
  if (problem.empty()) return "";

  const std::string base = std::string(ORV_TEST_OUTPUT_DIR) + "/" + name;
  write_picture(base + "_actual.png", actual);
  if (actual.rgba.size() == golden.rgba.size()) {
    Picture map = actual;
    for (std::size_t i = 0; i < map.rgba.size(); ++i) {
      map.rgba[i] =
          static_cast<unsigned char>(std::min(255, 8 * std::abs(actual.rgba[i] - golden.rgba[i])));
    }
    write_picture(base + "_difference.png", map);
  }
  return problem + "; see " + base + "_actual.png and _difference.png";
}

}  // namespace orv::test
