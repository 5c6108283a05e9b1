#pragma once

#include <orv/gpu/texture_mgr.h>
#include <orv/image/image_codec_stb.h>

#include <string>
#include <vector>

#include "support/temp_folder.h"

namespace orv::test {

/// Small picture files in a folder of their own, and the codec that reads them.
class PictureFiles {
 public:
  PictureFiles() {
    TextureMgr::get()->register_image_codec_plugin(&codec_);
    TextureMgr::get()->set_current_image_codec_name(codec_.get_name());
  }
  ~PictureFiles() { TextureMgr::get()->stop(nullptr); }
  PictureFiles(const PictureFiles&) = delete;
  PictureFiles& operator=(const PictureFiles&) = delete;

  using Rgb = std::vector<int>;

  /// Writes a picture, upper row first, as an uncompressed TGA file and gives its path.
  std::string write(const std::string& name, int width, int height,
                    const std::vector<Rgb>& pixels) const {
    std::string file = {0, 0, 2, 0, 0, 0, 0, 0, 0, 0, 0, 0};
    for (const int side : {width, height}) file += {static_cast<char>(side), 0};
    file += {24, 0x20};
    for (const Rgb& pixel : pixels) {
      for (const std::size_t channel : {2u, 1u, 0u}) file += static_cast<char>(pixel[channel]);
    }
    return folder_.write(name, file);
  }
  /// The same of 2 x 2 pixels of one colour.
  std::string write(const std::string& name, const Rgb& color) const {
    return write(name, 2, 2, std::vector<Rgb>(4, color));
  }
  /// A path without a file.
  std::string missing() const { return folder_.file("missing.tga"); }

 private:
  TempFolder folder_;
  ImageCodecStb codec_;
};

}  // namespace orv::test
