#include <orv/gpu/texture_array.h>

#include <orv/image/image.h>

#include <new>

namespace orv {

TextureArray::TextureArray() = default;

TextureArray::~TextureArray() { cleanup(); }

bool TextureArray::alloc(unsigned int count) {
  cleanup();
  if (count > MAX_LAYERS) return false;
  layers = new (std::nothrow) Image[count];
  if (!layers) return false;
  owns_layers = true;
  num_layers = count;
  return true;
}

void TextureArray::cleanup() {
  // Each Image frees its stores if it owns its pixels.
  if (owns_layers) delete[] layers;
  layers = nullptr;
  num_layers = 0;
}

Image* TextureArray::get_layer(unsigned int index) const {
  return layers && index < num_layers ? &layers[index] : nullptr;
}

}  // namespace orv
