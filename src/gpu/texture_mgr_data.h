/// @file
/// Private block of TextureMgr.
#pragma once

#include <orv/fwd.h>
#include <orv/image/image.h>

#include "core/repeated_attempt.h"

#include <string>
#include <vector>

namespace orv {

struct TextureMgrData {
  std::vector<ImageCodec*> image_codecs;  // in order of registration, counted but not owned
  ImageCodec* last_codec = nullptr;
  std::string current_image_codec_name = "stb";
  std::string fallback_image_codec_name = "stb";
  Image screenshot_image;

  /// First codec whose name equals this one in its first 127 characters.
  ImageCodec* find_codec(const char* name) const;
  ImageCodec* find_codec(int plugin_id) const;

  /// Runs an action with the current codec and, when that gives false, with the fallback. The two
  /// may be one: it is asked twice then. `subject` tells in the log what there was no codec for.
  template <typename Action>
  bool try_codecs(const char* subject, Action action) {
    const ImageCodec* last = nullptr;
    for (const std::string* name : {&current_image_codec_name, &fallback_image_codec_name}) {
      // The names are copied: a codec may change them.
      ImageCodec* codec = find_codec(std::string(*name).c_str());
      if (!codec) continue;
      const detail::RepeatedAttempt attempt(codec == last);
      if (action(*codec)) return true;
      last = codec;
    }
    if (!last) report_no_codec(subject);
    return false;
  }
  void report_no_codec(const char* subject) const;

  /// Asks the codec that made an image to free the pixels that it lent to it.
  void free_lent_pixels(Image* image) const;
  /// Frees the pixels of an image: those that its codec holds and those that it owns.
  void free_image(Image* image) const;
};

}  // namespace orv
