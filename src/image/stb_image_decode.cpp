#include "image/stb_image_decode.h"

#include "core/large_array.h"
#include "image/bmp_palette.h"
#include "image/hdr_check.h"
#include "image/jpeg_check.h"
#include "image/png_palette.h"

#include <algorithm>
#include <climits>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <new>
#include <vector>

namespace {

/// Enough for whatever the decoder keeps besides pixels and compressed data.
constexpr std::size_t SMALL_BLOCKS = std::size_t{1} << 20;

/// The largest block that the decoder gets. A few bytes of a file can ask for gigabytes: a chunk
/// that tells a length, data that swells far beyond the picture.
thread_local std::size_t block_limit = SMALL_BLOCKS;

/// Which blocks hold zeros where nothing was copied. Of most files that end early the decoder hands
/// out pixels, and uses tables, that it never wrote: all of them do. The pixels of a PNG are
/// written whole or refused, so only its unpacked stream needs it, which may repeat bytes that do
/// not exist yet. The decoder collects packed data first, in a block that it resizes; then it
/// allocates that of the stream, resizes it, and allocates those of pixels.
enum class Zeroing { ALL, PNG_PACKED, PNG_STREAM, PNG_PIXELS };
thread_local Zeroing zeroing = Zeroing::ALL;

/// A block that begins with bytes of another one. Blocks come from new[], so that an image can take
/// the last one over.
void* copy_block(const void* source, std::size_t copied, std::size_t size, bool zeroed) {
  if (size > block_limit) return nullptr;
  unsigned char* block = new (std::nothrow) unsigned char[size];
  if (!block) return nullptr;
  orv::detail::advise_large_pages(block, size);
  if (copied > 0) std::memcpy(block, source, copied);
  if (zeroed) std::memset(block + copied, 0, size - copied);
  return block;
}

void* allocate_block(std::size_t size) {
  const bool zeroed = zeroing == Zeroing::ALL || zeroing == Zeroing::PNG_PACKED;
  if (zeroing == Zeroing::PNG_STREAM) zeroing = Zeroing::PNG_PIXELS;
  if (zeroing == Zeroing::PNG_PACKED) zeroing = Zeroing::PNG_STREAM;
  return copy_block(nullptr, 0, size, zeroed);
}

void free_block(void* block) { delete[] static_cast<unsigned char*>(block); }

void* resize_block(void* block, std::size_t old_size, std::size_t size) {
  const bool zeroed = zeroing == Zeroing::ALL || zeroing == Zeroing::PNG_STREAM;
  void* resized = copy_block(block, block ? std::min(old_size, size) : 0, size, zeroed);
  if (resized) free_block(block);
  return resized;
}

/// For an empty chunk the decoder copies nothing to nowhere, which memcpy does not allow.
inline void* copy_bytes(void* target, const void* source, std::size_t size) {
  return size > 0 ? std::memcpy(target, source, size) : target;
}

}  // namespace

#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#define STBI_NO_STDIO
#define STBI_NO_PNM
// A spoiled file must not abort the host.
#define STBI_ASSERT(x) ((void)(x))
#define STBI_MALLOC(size) allocate_block(size)
#define STBI_REALLOC_SIZED(block, old_size, size) resize_block(block, old_size, size)
#define STBI_FREE(block) free_block(block)
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#define memcpy copy_bytes
#include <stb/stb_image.h>
#undef memcpy
#pragma GCC diagnostic pop

namespace orv::detail {
namespace {

/// How many pixels a byte of a format can stand for at most, so that a short file that claims a
/// huge picture is refused before memory is taken for it.
struct Density {
  const char* magic;
  std::size_t magic_size;
  std::uint64_t pixels_per_byte;
};

constexpr Density PNG = {"\x89PNG", 4, 8300};  // packed 1032 to 1, and a byte is eight pixels
constexpr Density RADIANCE = {"#?", 2, 64};    // runs of 127 in two bytes, four times
constexpr Density SOFTIMAGE = {"\x53\x80\xF6\x34", 4, 16384};  // runs of 65535
constexpr Density DENSITIES[] = {
    {"\xFF\xD8", 2, 1024},  // JPEG: two bits for a block of 64 pixels, colour halved
    PNG,
    {"GIF8", 4, 4096},  // GIF: a code of 12 bits stands for up to 4096 pixels
    {"BM", 2, 8},       // BMP: one bit a pixel
    {"8BPS", 4, 128},   // PSD: runs of 128 in two bytes
    RADIANCE,
    SOFTIMAGE};
constexpr std::uint64_t TGA_PIXELS_PER_BYTE = 128;  // runs of 128 in two bytes
// Small pictures always pass: a quarter of a million of pixels is nobody's trouble.
constexpr std::uint64_t FREE_PIXELS = std::uint64_t{1} << 18;
// Pixels times scans of a JPEG: a second or two of decoding.
constexpr std::uint64_t MAX_JPEG_WORK = std::uint64_t{1} << 31;

bool has_magic(const unsigned char* data, std::size_t size, const Density& format) {
  return size >= format.magic_size && std::memcmp(data, format.magic, format.magic_size) == 0;
}

std::uint64_t pixels_per_byte(const unsigned char* data, std::size_t size) {
  for (const Density& density : DENSITIES) {
    if (has_magic(data, size, density)) return density.pixels_per_byte;
  }
  return TGA_PIXELS_PER_BYTE;
}

std::uint64_t magnitude(int side) {
  const std::int64_t wide = side;
  return static_cast<std::uint64_t>(wide < 0 ? -wide : wide);
}

struct PictureSize {
  std::uint64_t width = 0;
  std::uint64_t height = 0;

  std::uint64_t pixels() const { return width * height; }
};

/// Sets what the decoder gets for one picture. A pixel takes up to 16 bytes, or 32 where the block
/// doubles, and the edges of a JPEG are filled up to 32 pixels; compressed data take twice their
/// size while they are collected.
class BlockRules {
 public:
  BlockRules(const unsigned char* data, std::size_t size, const PictureSize& picture) {
    block_limit = SMALL_BLOCKS + 2 * size + 32 * (picture.width + 32) * (picture.height + 32);
    zeroing = has_magic(data, size, PNG) ? Zeroing::PNG_PACKED : Zeroing::ALL;
  }
  ~BlockRules() {
    block_limit = SMALL_BLOCKS;
    zeroing = Zeroing::ALL;
  }
  BlockRules(const BlockRules&) = delete;
  BlockRules& operator=(const BlockRules&) = delete;
};

/// What is wrong with a file is a text that is never freed; null is told of a good one.
using Fault = const char*;

constexpr Fault TOO_LARGE = "too large";

/// Why the decoder must not see the file. Without a fault the sizes of the picture are told.
Fault fault_of_contents(const unsigned char* data, std::size_t size, PictureSize* picture) {
  // First of all: the tables of a JPEG are read with its size already.
  std::uint64_t num_scans = 0;
  if (!is_sound_jpeg(data, size, &num_scans)) return "JPEG with too large a Huffman table";
  int width = 0, height = 0, channels = 0;
  if (!stbi_info_from_memory(data, static_cast<int>(size), &width, &height, &channels)) {
    return "of no known format, or its header is damaged";
  }
  // The height of a BMP that starts with its upper row is told as a negative number.
  *picture = {magnitude(width), magnitude(height)};
  if (picture->pixels() > FREE_PIXELS + size * pixels_per_byte(data, size)) {
    return "truncated: its header tells more pixels than it can hold";
  }
  return picture->pixels() * num_scans <= MAX_JPEG_WORK ? nullptr : "JPEG with too many scans";
}

/// A file as the decoder is to see it: the caller's bytes, or a mended copy of them.
struct Source {
  const unsigned char* data;
  std::size_t size;
  std::vector<unsigned char> copy;

  Fault use_copy() {
    data = copy.data();
    size = copy.size();
    return size <= INT_MAX ? nullptr : TOO_LARGE;
  }
};

/// Ends the header of an HDR file that is cut within it, so that its sizes are read the same each
/// time and that it swallows nothing of what fill_up() appends.
Fault end_header(Source* source) {
  if (!has_magic(source->data, source->size, RADIANCE)) return nullptr;
  source->copy.reserve(source->size + 1);
  source->copy.assign(source->data, source->data + source->size);
  source->copy.push_back('\n');
  return source->use_copy();
}

/// Puts zeros where an HDR file ends early: four bytes a pixel, as if nothing were packed. A packed
/// one is refused.
Fault fill_up(Source* source, const PictureSize& picture) {
  if (!is_sound_hdr(source->data, source->size, picture.width, picture.height)) {
    return "truncated within a packed row";
  }
  const std::uint64_t size = source->size + 4 * picture.pixels();
  if (size > INT_MAX) return TOO_LARGE;
  source->copy.resize(static_cast<std::size_t>(size));
  return source->use_copy();
}

/// Mends what the decoder would take from memory that nobody wrote, or tells why it must not see
/// the file.
Fault mend(Source* source, const PictureSize& picture) {
  if (has_magic(source->data, source->size, RADIANCE)) return fill_up(source, picture);
  if (fill_png_palette(source->data, source->size, &source->copy)) return source->use_copy();
  switch (rebuild_bmp_palette(source->data, source->size, &source->copy)) {
    case BmpPalette::BROKEN:
      return "BMP with a missing, too large or truncated palette";
    case BmpPalette::REBUILT:
      return source->use_copy();
    default:
      return nullptr;
  }
}

/// The decoder's word for its last failure, where it is a riddle another one.
Fault fault_of_decoder() {
  const char* reason = stbi_failure_reason();
  if (!reason) return "damaged";
  if (std::strcmp(reason, "outofdata") == 0) return "truncated";
  if (std::strcmp(reason, "outofmem") == 0) return "damaged, or memory is exhausted";
  return reason;
}

/// What comes before decoding.
Fault prepare(Source* source, PictureSize* picture, std::uint64_t max_pixels) {
  if (const Fault fault = end_header(source)) return fault;
  if (const Fault fault = fault_of_contents(source->data, source->size, picture)) return fault;
  if (picture->pixels() > max_pixels) return TOO_LARGE;
  return mend(source, *picture);
}

}  // namespace

DecodedImage::~DecodedImage() { stbi_image_free(pixels_); }

bool DecodedImage::decode(const unsigned char* data, std::size_t size, int channels,
                          std::uint64_t max_pixels) {
  fault_ = "no data";
  if (!data || size == 0 || channels < 1 || channels > 4) return false;
  fault_ = TOO_LARGE;
  if (size > INT_MAX) return false;
  PictureSize picture;
  Source source{data, size, {}};
  fault_ = prepare(&source, &picture, max_pixels);
  if (fault_) return false;
  const BlockRules rules(source.data, source.size, picture);
  int width = 0, height = 0, file_channels = 0;
  // Of a Softimage picture that fails the decoder would convert the null picture: it is converted
  // here, from the four channels that all of them are decoded to.
  const bool is_softimage = has_magic(source.data, source.size, SOFTIMAGE);
  unsigned char* pixels =
      stbi_load_from_memory(source.data, static_cast<int>(source.size), &width, &height,
                            &file_channels, is_softimage ? 4 : channels);
  if (pixels && is_softimage) {
    pixels = stbi__convert_format(pixels, 4, channels, static_cast<unsigned int>(width),
                                  static_cast<unsigned int>(height));
  }
  if (!pixels) {
    fault_ = fault_of_decoder();
    return false;
  }
  stbi_image_free(pixels_);
  pixels_ = pixels;
  width_ = static_cast<unsigned int>(width);
  height_ = static_cast<unsigned int>(height);
  return true;
}

}  // namespace orv::detail
