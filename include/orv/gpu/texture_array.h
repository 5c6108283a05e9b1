/// @file
/// Layers of an array texture.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {

/// The layers of an array texture, one Image each.
class ORV_API TextureArray {
 public:
  /// More layers than this are refused.
  static constexpr unsigned int MAX_LAYERS = 65536;

  /// Starts without layers.
  TextureArray();
  /// Cleans up.
  ~TextureArray();
  TextureArray(const TextureArray&) = delete;
  TextureArray& operator=(const TextureArray&) = delete;

  /// Replaces the layers by this many empty ones. False when there are too many or memory runs out;
  /// the array is then empty.
  bool alloc(unsigned int count);

  /// Frees the pixels that the layers own, then the layers.
  void cleanup();

  /// Pixels of a layer, owned by the array; null past the end.
  Image* get_layer(unsigned int index) const;

  bool owns_layers = true;  ///< when false, cleanup() lets go of the layers without freeing them
  Image* layers = nullptr;  ///< made with new[]
  unsigned int num_layers = 0;  ///< entries
};

}  // namespace orv
