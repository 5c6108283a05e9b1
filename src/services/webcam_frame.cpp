#include "services/webcam_frame.h"

#include "image/jpeg_tables.h"
#include "image/stb_image_decode.h"

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

unsigned char clamp_byte(int fixed) {
  const int value = fixed >> 16;
  return static_cast<unsigned char>(value < 0 ? 0 : value > 255 ? 255 : value);
}

/// What U and V add to each channel, with the half that rounds.
struct Chroma {
  int r, g, b;

  Chroma(const YuvScale& scale, int u, int v)
      : r(scale.r_v * (v - 128) + 32768),
        g(32768 - scale.g_u * (u - 128) - scale.g_v * (v - 128)),
        b(scale.b_u * (u - 128) + 32768) {}
};

void put_pixel(const YuvScale& scale, int y, const Chroma& chroma, unsigned char* out) {
  const int luma = scale.y * (y - scale.y_zero);
  out[0] = clamp_byte(luma + chroma.b);
  out[1] = clamp_byte(luma + chroma.g);
  out[2] = clamp_byte(luma + chroma.r);
}

/// A row whose Y stand Y_STEP bytes apart, and whose V stand V_AT bytes behind their U, twice that
/// far from pair to pair.
template <std::size_t Y_STEP, std::size_t V_AT>
void convert_row(const YuvScale& scale, const unsigned char* y, const unsigned char* u,
                 std::size_t width, unsigned char* out) {
  for (std::size_t pair = 0; pair < width / 2; ++pair, y += 2 * Y_STEP, u += 2 * V_AT, out += 6) {
    const Chroma chroma(scale, u[0], u[V_AT]);
    put_pixel(scale, y[0], chroma, out);
    put_pixel(scale, y[Y_STEP], chroma, out + 3);
  }
  if (width % 2 != 0) put_pixel(scale, y[0], Chroma(scale, u[0], u[V_AT]), out);
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
      convert_row<2, 2>(layout.yuv, in, in + 1, width, out);
      break;
    default:
      convert_row<1, 1>(layout.yuv, in, data + (layout.height + row / 2) * stride, width, out);
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
  if (!copy_jpeg(data, size, &copy) || !image.decode(copy.bytes.get(), copy.size, 3)) return false;
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
