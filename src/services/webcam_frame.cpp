#include "services/webcam_frame.h"

#include "image/jpeg_tables.h"
#include "image/stb_image_decode.h"

#include <emmintrin.h>

#include <cstring>
#include <new>

namespace orv::detail {
namespace {

constexpr std::uint32_t MAX_SIDE = 16384;
constexpr std::uint64_t MAX_PIXELS = std::uint64_t{1} << 26;

bool is_possible_size(std::uint64_t width, std::uint64_t height) {
  return width > 0 && height > 0 && width <= MAX_SIDE && height <= MAX_SIDE &&
         width * height <= MAX_PIXELS;
}

/// U and V of a row come in pairs, one for two pixels.
std::uint64_t pairs_of(const FrameLayout& layout) { return (std::uint64_t{layout.width} + 1) / 2; }

std::uint64_t row_bytes(const FrameLayout& layout) {
  switch (layout.format) {
    case CameraFormat::BGR24:
    case CameraFormat::RGB24:
      return std::uint64_t{layout.width} * 3;
    case CameraFormat::YUYV:
      return pairs_of(layout) * 4;
    case CameraFormat::NV12:
      return pairs_of(layout) * 2;
    default:
      return 0;
  }
}

// ---- rows ----

void swap_row(const unsigned char* in, std::size_t width, unsigned char* out) {
  for (std::size_t i = 0; i < width * 3; i += 3) {
    out[i] = in[i + 2];
    out[i + 1] = in[i + 1];
    out[i + 2] = in[i];
  }
}

constexpr int SCALE_BITS = 13;
constexpr int HALF = 1 << (SCALE_BITS - 1);

unsigned char clamp_byte(int scaled) {
  const int value = scaled >> SCALE_BITS;
  return static_cast<unsigned char>(value < 0 ? 0 : value > 255 ? 255 : value);
}

void put_pixel(const YuvScale& scale, int y, int u, int v, unsigned char* out) {
  const int luma = scale.y * (y - scale.y_zero) + HALF;
  out[0] = clamp_byte(luma + scale.b_u * (u - 128));
  out[1] = clamp_byte(luma - scale.g_u * (u - 128) - scale.g_v * (v - 128));
  out[2] = clamp_byte(luma + scale.r_v * (v - 128));
}

/// Eight pixels at once, to the same bits.
class YuvBlock {
 public:
  explicit YuvBlock(const YuvScale& scale)
      : y_zero_(_mm_set1_epi16(static_cast<short>(scale.y_zero))),
        b_(pair(scale.y, scale.b_u)),
        g_(pair(scale.y, -scale.g_u)),
        g_v_(pair(-scale.g_v, HALF)),
        r_(pair(scale.y, scale.r_v)) {}

  /// @param y  eight numbers of 16 bits
  /// @param uv four pairs of them
  void put(__m128i y, __m128i uv, unsigned char* out) const {
    uv = _mm_sub_epi16(uv, _mm_set1_epi16(128));
    y = _mm_sub_epi16(y, y_zero_);
    const __m128i u = twice<_MM_SHUFFLE(2, 2, 0, 0)>(uv), v = twice<_MM_SHUFFLE(3, 3, 1, 1)>(uv);
    const __m128i half = _mm_set1_epi32(HALF), one = _mm_set1_epi16(1);
    const __m128i g_low = _mm_madd_epi16(_mm_unpacklo_epi16(v, one), g_v_);
    const __m128i g_high = _mm_madd_epi16(_mm_unpackhi_epi16(v, one), g_v_);
    store(channel(y, u, b_, half, half), channel(y, u, g_, g_low, g_high),
          channel(y, v, r_, half, half), out);
  }

 private:
  static __m128i pair(int first, int second) {
    return _mm_set1_epi32(static_cast<int>(static_cast<unsigned int>(first & 0xFFFF) |
                                           static_cast<unsigned int>(second) << 16));
  }

  template <int ORDER>
  static __m128i twice(__m128i uv) {
    return _mm_shufflehi_epi16(_mm_shufflelo_epi16(uv, ORDER), ORDER);
  }

  /// Eight bytes, each y * weight + uv * weight + the number added.
  static __m128i channel(__m128i y, __m128i uv, __m128i weights, __m128i low, __m128i high) {
    low = _mm_add_epi32(low, _mm_madd_epi16(_mm_unpacklo_epi16(y, uv), weights));
    high = _mm_add_epi32(high, _mm_madd_epi16(_mm_unpackhi_epi16(y, uv), weights));
    const __m128i words =
        _mm_packs_epi32(_mm_srai_epi32(low, SCALE_BITS), _mm_srai_epi32(high, SCALE_BITS));
    return _mm_packus_epi16(words, words);
  }

  /// Two pixels in each half, without the bytes between them.
  static __m128i close_up(__m128i pixels) {
    const __m128i first = _mm_set1_epi64x(0xFFFFFF), second = _mm_slli_epi64(first, 24);
    return _mm_or_si128(_mm_and_si128(pixels, first),
                        _mm_and_si128(_mm_srli_epi64(pixels, 8), second));
  }

  static void store(__m128i b, __m128i g, __m128i r, unsigned char* out) {
    const __m128i bg = _mm_unpacklo_epi8(b, g), r0 = _mm_unpacklo_epi8(r, _mm_setzero_si128());
    const __m128i low = close_up(_mm_unpacklo_epi16(bg, r0));
    const __m128i high = close_up(_mm_unpackhi_epi16(bg, r0));
    // Each store ends two bytes within the next one, the last with the block.
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out), low);
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 6), _mm_unpackhi_epi64(low, low));
    _mm_storel_epi64(reinterpret_cast<__m128i*>(out + 12), high);
    const long long last = _mm_cvtsi128_si64(_mm_unpackhi_epi64(high, high));
    std::memcpy(out + 18, &last, 6);
  }

  __m128i y_zero_, b_, g_, g_v_, r_;
};

__m128i load_words(const unsigned char* bytes) {
  return _mm_unpacklo_epi8(_mm_loadl_epi64(reinterpret_cast<const __m128i*>(bytes)),
                           _mm_setzero_si128());
}

void convert_yuyv_row(const YuvScale& scale, const unsigned char* in, std::size_t width,
                      unsigned char* out) {
  const YuvBlock block(scale);
  std::size_t i = 0;
  for (; i + 8 <= width; i += 8) {
    const __m128i both = _mm_loadu_si128(reinterpret_cast<const __m128i*>(in + i * 2));
    block.put(_mm_and_si128(both, _mm_set1_epi16(255)), _mm_srli_epi16(both, 8), out + i * 3);
  }
  for (; i < width; ++i) {
    const unsigned char* uv = in + i / 2 * 4;
    put_pixel(scale, in[i * 2], uv[1], uv[3], out + i * 3);
  }
}

void convert_nv12_row(const YuvScale& scale, const unsigned char* y, const unsigned char* uv,
                      std::size_t width, unsigned char* out) {
  const YuvBlock block(scale);
  std::size_t i = 0;
  for (; i + 8 <= width; i += 8) block.put(load_words(y + i), load_words(uv + i), out + i * 3);
  for (; i < width; ++i) put_pixel(scale, y[i], uv[i & ~std::size_t{1}], uv[i | 1], out + i * 3);
}

void convert_row(const FrameLayout& layout, const unsigned char* data, std::size_t row,
                 unsigned char* out) {
  const std::size_t width = layout.width, stride = layout.stride;
  const unsigned char* in = data + row * stride;
  switch (layout.format) {
    case CameraFormat::BGR24:
      std::memcpy(out, in, width * 3);
      break;
    case CameraFormat::RGB24:
      swap_row(in, width, out);
      break;
    case CameraFormat::YUYV:
      convert_yuyv_row(layout.yuv, in, width, out);
      break;
    default:
      convert_nv12_row(layout.yuv, in, data + (layout.height + row / 2) * stride, width, out);
      break;
  }
}

/// Of a layout that was checked, with as many bytes as it needs.
bool convert_pixels(const FrameLayout& layout, const unsigned char* data, WebcamFrame* frame) {
  const std::size_t width = layout.width, height = layout.height;
  if (!frame->resize(width * height * 3)) return false;
  frame->width = layout.width;
  frame->height = layout.height;
  unsigned char* out = frame->bytes.get() + width * height * 3;
  for (std::size_t row = 0; row < height; ++row) {
    out -= width * 3;
    convert_row(layout, data, row, out);
  }
  return true;
}

// ---- MJPEG ----

constexpr unsigned int HUFFMAN_TABLES = 0xC4;
constexpr unsigned int START_OF_SCAN = 0xDA;

/// Most cameras leave the Huffman tables out, for they are always those of the standard. True too
/// for what isn't understood.
bool has_huffman_tables(const unsigned char* data, std::size_t size) {
  std::size_t at = 2;
  while (at + 4 <= size && data[at] == 0xFF) {
    const unsigned int marker = data[at + 1];
    if (marker == START_OF_SCAN) return false;
    if (marker == HUFFMAN_TABLES) return true;
    const std::size_t length =
        static_cast<std::size_t>(data[at + 2]) << 8 | static_cast<std::size_t>(data[at + 3]);
    at += marker == 0xFF ? 1 : 2 + length;  // bytes of ones may stand before a marker
  }
  return true;
}

bool is_jpeg(const unsigned char* data, std::size_t size) {
  return size >= 4 && data[0] == 0xFF && data[1] == 0xD8;
}

/// Whether a frame was delivered to its end, behind which there may be padding.
bool has_end(const unsigned char* data, std::size_t size) {
  for (std::size_t i = size; i >= 2; --i) {
    if (data[i - 1] == 0xD9 && data[i - 2] == 0xFF) return true;
  }
  return false;
}

template <std::size_t SYMBOLS>
unsigned char* put_table(unsigned char id, const JpegHuffmanSpec<SYMBOLS>& spec,
                         unsigned char* out) {
  *out++ = id;
  std::memcpy(out, spec.counts.data(), 16);
  std::memcpy(out + 16, spec.symbols.data(), SYMBOLS);
  return out + 16 + SYMBOLS;
}

constexpr std::size_t TABLES_SIZE = 4 + 4 * 17 + 2 * (12 + 162);

unsigned char* put_tables(unsigned char* out) {
  constexpr unsigned char HEAD[4] = {0xFF, HUFFMAN_TABLES, (TABLES_SIZE - 2) >> 8,
                                     (TABLES_SIZE - 2) & 0xFF};
  std::memcpy(out, HEAD, 4);
  out = put_table(0x00, JPEG_DC_LUMINANCE, out + 4);
  out = put_table(0x10, JPEG_AC_LUMINANCE, out);
  out = put_table(0x01, JPEG_DC_CHROMINANCE, out);
  return put_table(0x11, JPEG_AC_CHROMINANCE, out);
}

/// A copy, since the camera's memory could change between the checks of the decoder and its work.
bool copy_jpeg(const unsigned char* data, std::size_t size, FrameBytes* copy) {
  if (!copy->resize(size + TABLES_SIZE)) return false;
  unsigned char* out = copy->bytes.get();
  std::memcpy(out, data, size);
  if (!is_jpeg(out, size) || !has_end(out, size)) return false;
  if (has_huffman_tables(out, size)) {
    copy->size = size;
    return true;
  }
  std::memmove(out + 2 + TABLES_SIZE, out + 2, size - 2);
  put_tables(out + 2);
  return true;
}

bool convert_jpeg(const unsigned char* data, std::size_t size, WebcamFrame* frame) {
  FrameBytes copy;
  DecodedImage image;
  if (!copy_jpeg(data, size, &copy)) return false;
  if (!image.decode(copy.bytes.get(), copy.size, 3, MAX_PIXELS)) return false;
  if (!is_possible_size(image.width(), image.height())) return false;
  FrameLayout layout;
  layout.format = CameraFormat::RGB24;
  layout.width = image.width();
  layout.height = image.height();
  layout.stride = image.width() * 3;
  return convert_pixels(layout, image.pixels(), frame);
}

}  // namespace

bool FrameLayout::check() {
  if (!is_possible_size(width, height)) return false;
  if (stride == 0) stride = static_cast<std::uint32_t>(row_bytes(*this));
  return stride >= row_bytes(*this);
}

std::uint64_t FrameLayout::bytes_needed() const {
  if (format == CameraFormat::MJPEG) return 1;
  const std::uint64_t chroma_rows =
      format == CameraFormat::NV12 ? (std::uint64_t{height} + 1) / 2 : 0;
  // Behind the last row there need be no gap.
  return std::uint64_t{stride} * (height + chroma_rows - 1) + row_bytes(*this);
}

bool FrameBytes::resize(std::size_t new_size) {
  if (bytes && size == new_size) return true;
  auto* fresh = new (std::nothrow) unsigned char[new_size];
  if (!fresh) return false;
  bytes.reset(fresh);
  size = new_size;
  return true;
}

bool convert_frame(const FrameLayout& layout, const unsigned char* data, std::size_t size,
                   WebcamFrame* frame) {
  if (size < layout.bytes_needed()) return false;
  return layout.format == CameraFormat::MJPEG ? convert_jpeg(data, size, frame)
                                              : convert_pixels(layout, data, frame);
}

}  // namespace orv::detail
