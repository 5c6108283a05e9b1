#pragma once

#include "image/test_files.h"

#include <cstddef>
#include <cstdlib>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

// Wants stdio first.
#include <jpeglib.h>

namespace orv::test {

/// A picture file of a few hundred bytes, made here.
struct SmallPicture {
  std::string name;
  unsigned int width;
  unsigned int height;
  int tolerance;  ///< how far a channel may be from small_picture_channel()
  Bytes file;
};

/// Red, green or blue (0 to 2) of every small picture at a place.
inline unsigned char small_picture_channel(unsigned int x, unsigned int y, unsigned int channel) {
  const unsigned int values[3] = {16 + x * 8, 80 + y * 8, 200 - (x + y) * 8};
  return static_cast<unsigned char>(values[channel]);
}

namespace small {

inline constexpr unsigned int WIDTH = 8;
inline constexpr unsigned int HEIGHT = 4;
inline constexpr unsigned int PIXELS = WIDTH * HEIGHT;

/// Appends numbers to a file.
class Writer {
 public:
  Writer& text(const std::string& characters) {
    bytes_.insert(bytes_.end(), characters.begin(), characters.end());
    return *this;
  }
  Writer& bytes(std::initializer_list<unsigned int> values) {
    for (const unsigned int value : values) byte(value);
    return *this;
  }
  Writer& byte(unsigned int value) {
    bytes_.push_back(static_cast<unsigned char>(value));
    return *this;
  }
  Writer& zeros(std::size_t count) {
    bytes_.resize(bytes_.size() + count);
    return *this;
  }
  Writer& little(unsigned int value) { return byte(value & 255).byte(value >> 8); }
  Writer& big(unsigned int value) { return byte(value >> 8).byte(value & 255); }
  Writer& big32(unsigned int value) { return big(value >> 16).big(value & 0xFFFF); }
  Writer& append(const Bytes& more) {
    bytes_.insert(bytes_.end(), more.begin(), more.end());
    return *this;
  }

  Bytes take() { return std::move(bytes_); }

 private:
  Bytes bytes_;
};

/// Appends bits to bytes, low bit first.
class BitWriter {
 public:
  void put(unsigned int value, unsigned int count) {
    for (unsigned int i = 0; i < count; ++i, ++used_) {
      if (used_ % 8 == 0) bytes_.push_back(0);
      bytes_.back() = static_cast<unsigned char>(bytes_.back() | (value >> i & 1) << used_ % 8);
    }
  }
  /// Huffman codes of deflate go high bit first.
  void put_code(unsigned int code, unsigned int count) {
    for (unsigned int i = count; i-- > 0;) put(code >> i & 1, 1);
  }
  Bytes take() { return std::move(bytes_); }

 private:
  Bytes bytes_;
  unsigned int used_ = 0;
};

inline void put_pixel(Writer& out, unsigned int index,
                      std::initializer_list<unsigned int> channels) {
  for (const unsigned int channel : channels) {
    out.byte(channel < 3 ? small_picture_channel(index % WIDTH, index / WIDTH, channel) : 255);
  }
}

// ---- TGA ----

enum TgaKind : unsigned int { MAPPED = 1, COLOUR = 2, GREY = 3 };

/// Rows from the top. Packed pictures alternate rows of single pixels with rows of runs.
inline Bytes make_tga(TgaKind kind, bool packed, unsigned int bits) {
  Writer out;
  out.bytes({0, kind == MAPPED ? 1u : 0u, kind + (packed ? 8u : 0u), 0, 0});
  out.little(kind == MAPPED ? PIXELS : 0).byte(kind == MAPPED ? 24 : 0).zeros(4);
  out.little(WIDTH).little(HEIGHT).byte(bits).byte(0x20);
  for (unsigned int i = 0; kind == MAPPED && i < PIXELS; ++i) put_pixel(out, i, {2, 1, 0});
  for (unsigned int i = 0; i < PIXELS; ++i) {
    if (packed && i / WIDTH % 2 == 1) out.byte(0x80);
    if (packed && i / WIDTH % 2 == 0 && i % WIDTH == 0) out.byte(WIDTH - 1);
    if (kind == MAPPED) {
      out.byte(i);
    } else if (kind == GREY) {
      put_pixel(out, i, {0});
    } else if (bits == 16) {
      const auto five = [&](unsigned int channel) {
        return small_picture_channel(i % WIDTH, i / WIDTH, channel) / 8u;
      };
      out.little(five(0) << 10 | five(1) << 5 | five(2));
    } else if (bits == 32) {
      put_pixel(out, i, {2, 1, 0, 3});
    } else {
      put_pixel(out, i, {2, 1, 0});
    }
  }
  return out.take();
}

// ---- GIF ----

/// Each pixel has a colour of its own. Codes stay at six bits: the table starts anew in time.
inline Bytes make_gif(bool interlaced) {
  Writer out;
  out.text("GIF89a").little(WIDTH).little(HEIGHT).bytes({0x84, 0, 0});
  for (unsigned int i = 0; i < PIXELS; ++i) put_pixel(out, i, {0, 1, 2});
  out.bytes({0x21, 0xF9, 4, 0, 0, 0, 0, 0});
  out.byte(0x2C).zeros(4).little(WIDTH).little(HEIGHT).byte(interlaced ? 0x40 : 0).byte(5);
  BitWriter codes;
  constexpr unsigned int CLEAR = 32, END = 33;
  for (unsigned int row = 0; row < HEIGHT; ++row) {
    const unsigned int y =
        interlaced ? std::initializer_list<unsigned int>{0, 2, 1, 3}.begin()[row] : row;
    codes.put(CLEAR, 6);
    for (unsigned int x = 0; x < WIDTH; ++x) codes.put(y * WIDTH + x, 6);
  }
  codes.put(END, 6);
  const Bytes data = codes.take();
  out.byte(static_cast<unsigned int>(data.size())).append(data).bytes({0, 0x3B});
  return out.take();
}

// ---- PSD ----

inline Bytes make_psd(bool packed, unsigned int depth) {
  Writer out;
  out.text("8BPS").big(1).zeros(6).big(3).big32(HEIGHT).big32(WIDTH).big(depth).big(3);
  out.zeros(12).big(packed ? 1 : 0);
  for (unsigned int row = 0; packed && row < 3 * HEIGHT; ++row) out.big(WIDTH + 1);
  for (unsigned int channel = 0; channel < 3; ++channel) {
    for (unsigned int i = 0; i < PIXELS; ++i) {
      if (packed && i % WIDTH == 0) out.byte(WIDTH - 1);
      put_pixel(out, i, {channel});
      if (depth == 16) out.byte(0);
    }
  }
  return out.take();
}

// ---- HDR ----

/// Values of one exponent, packed by rows: literal bytes, and a run for the exponent. The decoder's
/// gamma makes other bytes of them, so that they are compared with nothing.
inline Bytes make_hdr(bool packed) {
  Writer out;
  out.text("#?RADIANCE\nFORMAT=32-bit_rle_rgbe\n\n-Y 4 +X 8\n");
  for (unsigned int i = 0; !packed && i < PIXELS; ++i) put_pixel(out, i, {3, 0, 1, 3});
  for (unsigned int y = 0; packed && y < HEIGHT; ++y) {
    out.bytes({2, 2, 0, WIDTH});
    for (unsigned int channel = 0; channel < 3; ++channel) {
      out.byte(WIDTH);
      for (unsigned int x = 0; x < WIDTH; ++x) out.byte(small_picture_channel(x, y, channel));
    }
    out.bytes({128 + WIDTH, 128});
  }
  return out.take();
}

// ---- PIC ----

enum PicKind : unsigned int { RAW = 0, RUNS = 1, MIXED = 2 };

/// A Softimage picture. Runs are runs of one pixel; the mixed kind has rows of single values too.
inline Bytes make_pic(PicKind kind) {
  Writer out;
  out.bytes({0x53, 0x80, 0xF6, 0x34}).zeros(84);  // version and comment
  out.text("PICT").big(WIDTH).big(HEIGHT).zeros(4).big(3).zeros(2);
  out.bytes({0, 8, kind, 0xE0});
  for (unsigned int i = 0; i < PIXELS; ++i) {
    const bool is_run = kind == RUNS || (kind == MIXED && i / WIDTH % 2 == 0);
    if (is_run && kind == MIXED) out.bytes({128, 0, 1});  // a long run tells its length in a word
    if (is_run && kind == RUNS) out.byte(1);
    if (kind == MIXED && !is_run && i % WIDTH == 0) out.byte(WIDTH - 1);
    put_pixel(out, i, {0, 1, 2});
  }
  return out.take();
}

// ---- JPEG ----

struct JpegKind {
  const char* name;
  J_COLOR_SPACE space;
  int sampling;
  bool progressive;
  unsigned int restart;
};
inline constexpr JpegKind JPEGS[] = {{"grey.jpg", JCS_GRAYSCALE, 1, false, 0},
                                     {"colour.jpg", JCS_YCbCr, 1, false, 0},
                                     {"halved.jpg", JCS_YCbCr, 2, false, 0},
                                     {"restart.jpg", JCS_YCbCr, 1, false, 1},
                                     {"rgb.jpg", JCS_RGB, 1, false, 0},
                                     {"progressive.jpg", JCS_YCbCr, 1, true, 0},
                                     {"progressive_halved.jpg", JCS_YCbCr, 2, true, 2}};

inline Bytes make_jpeg(const JpegKind& kind, unsigned int width, unsigned int height) {
  jpeg_compress_struct info;
  jpeg_error_mgr errors;
  info.err = jpeg_std_error(&errors);
  jpeg_create_compress(&info);
  unsigned char* memory = nullptr;
  unsigned long size = 0;
  jpeg_mem_dest(&info, &memory, &size);
  const bool is_grey = kind.space == JCS_GRAYSCALE;
  info.image_width = width;
  info.image_height = height;
  info.input_components = is_grey ? 1 : 3;
  info.in_color_space = is_grey ? JCS_GRAYSCALE : JCS_RGB;
  jpeg_set_defaults(&info);
  jpeg_set_colorspace(&info, kind.space);
  jpeg_set_quality(&info, 95, TRUE);
  info.comp_info[0].h_samp_factor = info.comp_info[0].v_samp_factor = kind.sampling;
  info.restart_interval = kind.restart;
  info.optimize_coding = TRUE;  // short tables
  if (kind.progressive) jpeg_simple_progression(&info);
  jpeg_start_compress(&info, TRUE);
  for (unsigned int y = 0; y < height; ++y) {
    Bytes row;
    for (unsigned int x = 0; x < width; ++x) {
      for (unsigned int c = 0; c < (is_grey ? 1u : 3u); ++c) {
        row.push_back(small_picture_channel(x, y, c));
      }
    }
    JSAMPROW rows = row.data();
    jpeg_write_scanlines(&info, &rows, 1);
  }
  jpeg_finish_compress(&info);
  jpeg_destroy_compress(&info);
  Bytes file(memory, memory + size);
  std::free(memory);
  return file;
}

}  // namespace small

/// TGA, GIF, PSD, HDR, PIC and JPEG in the variants that their decoders tell apart.
inline std::vector<SmallPicture> make_small_pictures() {
  using namespace small;
  constexpr int LOSSLESS = 0, FIVE_BITS = 8, LOSSY = 24, ANYTHING = 255;
  std::vector<SmallPicture> pictures;
  const auto add = [&](const char* name, int tolerance, Bytes file) {
    pictures.push_back({name, WIDTH, HEIGHT, tolerance, std::move(file)});
  };
  add("colour.tga", LOSSLESS, make_tga(COLOUR, false, 24));
  add("colour_alpha.tga", LOSSLESS, make_tga(COLOUR, false, 32));
  add("colour_16.tga", FIVE_BITS, make_tga(COLOUR, false, 16));
  add("colour_packed.tga", LOSSLESS, make_tga(COLOUR, true, 24));
  add("mapped.tga", LOSSLESS, make_tga(MAPPED, false, 8));
  add("mapped_packed.tga", LOSSLESS, make_tga(MAPPED, true, 8));
  add("grey.tga", ANYTHING, make_tga(GREY, false, 8));
  add("grey_packed.tga", ANYTHING, make_tga(GREY, true, 8));
  add("plain.gif", LOSSLESS, make_gif(false));
  add("interlaced.gif", LOSSLESS, make_gif(true));
  add("plain.psd", LOSSLESS, make_psd(false, 8));
  add("packed.psd", LOSSLESS, make_psd(true, 8));
  add("plain_16.psd", LOSSLESS, make_psd(false, 16));
  add("plain.hdr", ANYTHING, make_hdr(false));
  add("packed.hdr", ANYTHING, make_hdr(true));
  add("raw.pic", LOSSLESS, make_pic(RAW));
  add("runs.pic", LOSSLESS, make_pic(RUNS));
  add("mixed.pic", LOSSLESS, make_pic(MIXED));
  for (const JpegKind& kind : JPEGS) {
    const bool is_grey = kind.space == JCS_GRAYSCALE;
    pictures.push_back({kind.name, 17, 9, is_grey ? ANYTHING : LOSSY, make_jpeg(kind, 17, 9)});
  }
  return pictures;
}

/// A square PNG of grey pixels whose data swell to at least this many bytes: a zero, then runs of
/// 258 bytes that repeat those at the distance of a deflate code, 0 for the last byte.
inline Bytes make_repeating_png(unsigned int side, std::size_t bytes, unsigned int distance_code) {
  using namespace small;
  // One deflate block of fixed codes.
  BitWriter bits;
  bits.put(0x78, 8);
  bits.put(0x01, 8);
  bits.put(0b011, 3);
  bits.put_code(0x30, 8);
  for (std::size_t done = 1; done < bytes; done += 258) {
    bits.put_code(0b11000101, 8);
    bits.put_code(distance_code, 5);
  }
  bits.put_code(0, 7);
  Bytes data = bits.take();
  data.resize(data.size() + 4);  // the checksum, which is not looked at
  Writer out;
  out.byte(0x89).text("PNG\r\n\x1A\n");
  out.big32(13).text("IHDR").big32(side).big32(side).bytes({8, 0, 0, 0, 0}).zeros(4);
  out.big32(static_cast<unsigned int>(data.size())).text("IDAT").append(data).zeros(4);
  out.big32(0).text("IEND").zeros(4);
  return out.take();
}

}  // namespace orv::test
