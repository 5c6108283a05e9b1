#include "image/jpeg_writer.h"

#include "core/read_file.h"
#include "image/jpeg_tables.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <initializer_list>
#include <memory>

namespace orv::detail {
namespace {

constexpr int QUALITY_SCALE = 20;  // quality 90
constexpr unsigned int MAX_SIDE = 65535;
constexpr std::size_t BUFFER_SIZE = 65536;

// ---- output ----

/// Collects the file in a buffer and hands it to the system in large pieces.
class JpegOutput {
 public:
  explicit JpegOutput(std::FILE* file) : file_(file) {}

  void put_byte(unsigned int byte) {
    if (used_ == BUFFER_SIZE) flush();
    buffer_[used_++] = static_cast<unsigned char>(byte);
  }

  void put_word(unsigned int word) {
    put_byte(word >> 8);
    put_byte(word & 0xFF);
  }

  template <typename Bytes>
  void put_bytes(const Bytes& bytes) {
    for (const unsigned char byte : bytes) put_byte(byte);
  }

  /// Appends the low bits of a value, high bit first; at most 32.
  void put_bits(std::uint32_t bits, unsigned int count) {
    pending_ = pending_ << count | bits;
    num_pending_ += count;
    if (num_pending_ >= 32) drain();
  }

  /// Writes what full bytes are left of the bits.
  void finish_bits() {
    for (; num_pending_ >= 8; num_pending_ -= 8) {
      put_stuffed(static_cast<unsigned int>(pending_ >> (num_pending_ - 8)) & 0xFF);
    }
    num_pending_ = 0;
  }

  void flush() {
    if (used_ > 0 && std::fwrite(buffer_, 1, used_, file_) != used_) is_good_ = false;
    used_ = 0;
  }

  bool is_good() const { return is_good_; }

 private:
  void put_stuffed(unsigned int byte) {
    put_byte(byte);
    if (byte == 0xFF) put_byte(0);
  }

  void drain() {
    const auto word = static_cast<std::uint32_t>(pending_ >> (num_pending_ - 32));
    num_pending_ -= 32;
    // Most words hold no byte of ones, and then nothing is stuffed.
    const std::uint32_t inverse = ~word;
    const bool has_ones = ((inverse - 0x01010101u) & ~inverse & 0x80808080u) != 0;
    if (has_ones || used_ + 4 > BUFFER_SIZE) {
      for (int shift = 24; shift >= 0; shift -= 8) put_stuffed(word >> shift & 0xFF);
      return;
    }
    for (int shift = 24; shift >= 0; shift -= 8) {
      buffer_[used_++] = static_cast<unsigned char>(word >> shift);
    }
  }

  std::FILE* file_;
  std::size_t used_ = 0;
  std::uint64_t pending_ = 0;  // the last num_pending_ bits count
  unsigned int num_pending_ = 0;
  bool is_good_ = true;
  unsigned char buffer_[BUFFER_SIZE];
};

// ---- quantisation ----

constexpr int scale_entry(int entry) {
  return std::clamp((entry * QUALITY_SCALE + 50) / 100, 1, 255);
}

/// Entries of a quantisation table in zig-zag order, as the file holds them.
constexpr std::array<unsigned char, 64> make_file_table(
    const std::array<unsigned char, 64>& standard) {
  std::array<unsigned char, 64> table{};
  for (std::size_t k = 0; k < 64; ++k) {
    table[k] = static_cast<unsigned char>(scale_entry(standard[JPEG_NATURAL_ORDER[k]]));
  }
  return table;
}

/// What the transform leaves on its results is taken off together with the quantisation.
constexpr std::array<float, 64> make_scale_table(const std::array<unsigned char, 64>& standard) {
  constexpr float AAN[8] = {2.828427f, 3.9231412f, 3.6955183f, 3.3258781f,
                            2.828427f, 2.222281f,  1.5307337f, 0.7803613f};
  std::array<float, 64> table{};
  for (std::size_t i = 0; i < 64; ++i) {
    const float entry = static_cast<float>(scale_entry(standard[i]));
    table[i] = 1.0f / (entry * AAN[i / 8] * AAN[i % 8]);
  }
  return table;
}

struct ComponentTables {
  std::array<float, 64> scale;
  JpegHuffmanCodes dc;
  JpegHuffmanCodes ac;
};

constexpr ComponentTables LUMINANCE = {make_scale_table(JPEG_LUMINANCE),
                                       make_jpeg_codes(JPEG_DC_LUMINANCE),
                                       make_jpeg_codes(JPEG_AC_LUMINANCE)};
constexpr ComponentTables CHROMINANCE = {make_scale_table(JPEG_CHROMINANCE),
                                         make_jpeg_codes(JPEG_DC_CHROMINANCE),
                                         make_jpeg_codes(JPEG_AC_CHROMINANCE)};

// ---- transform ----

/// Four columns of a block side by side: each lane is one column, alike and independent.
using Lanes = float __attribute__((vector_size(16)));

/// Forward cosine transform after Arai, Agui and Nakajima, over eight values in each lane.
inline void transform(Lanes* d) {
  const Lanes s0 = d[0] + d[7], s7 = d[0] - d[7];
  const Lanes s1 = d[1] + d[6], s6 = d[1] - d[6];
  const Lanes s2 = d[2] + d[5], s5 = d[2] - d[5];
  const Lanes s3 = d[3] + d[4], s4 = d[3] - d[4];

  const Lanes e0 = s0 + s3, e3 = s0 - s3;
  const Lanes e1 = s1 + s2, e2 = s1 - s2;
  const Lanes z1 = (e2 + e3) * 0.707106781f;
  d[0] = e0 + e1;
  d[4] = e0 - e1;
  d[2] = e3 + z1;
  d[6] = e3 - z1;

  const Lanes o0 = s4 + s5, o1 = s5 + s6, o2 = s6 + s7;
  const Lanes z5 = (o0 - o2) * 0.382683433f;
  const Lanes z2 = o0 * 0.541196100f + z5;
  const Lanes z4 = o2 * 1.306562965f + z5;
  const Lanes z3 = o1 * 0.707106781f;
  const Lanes z11 = s7 + z3, z13 = s7 - z3;
  d[5] = z13 + z2;
  d[3] = z13 - z2;
  d[1] = z11 + z4;
  d[7] = z11 - z4;
}

/// Transforms the eight columns of a block of rows.
void transform_columns(float* block) {
  for (std::size_t half = 0; half < 8; half += 4) {
    Lanes d[8];
    for (std::size_t i = 0; i < 8; ++i) std::memcpy(&d[i], block + i * 8 + half, sizeof(Lanes));
    transform(d);
    for (std::size_t i = 0; i < 8; ++i) std::memcpy(block + i * 8 + half, &d[i], sizeof(Lanes));
  }
}

void transpose(const float* block, float* transposed) {
  for (std::size_t row = 0; row < 8; ++row) {
    for (std::size_t column = 0; column < 8; ++column) {
      transposed[column * 8 + row] = block[row * 8 + column];
    }
  }
}

/// Rows first: the block comes with its columns as rows, so that rows lie across the lanes.
void transform_block(const float* transposed_block, float* coefficients) {
  float work[64];
  std::memcpy(work, transposed_block, sizeof(work));
  transform_columns(work);
  transpose(work, coefficients);
  transform_columns(coefficients);
}

/// Rounds to the nearest integer, halves away from zero.
void quantise(const float* coefficients, const std::array<float, 64>& scale, int* quantised) {
  using Ints = int __attribute__((vector_size(16)));
  constexpr Lanes ZERO = {0, 0, 0, 0}, HALF = {0.5f, 0.5f, 0.5f, 0.5f};
  for (std::size_t i = 0; i < 64; i += 4) {
    Lanes value, factor;
    std::memcpy(&value, coefficients + i, sizeof(value));
    std::memcpy(&factor, &scale[i], sizeof(factor));
    value *= factor;
    const Ints rounded = __builtin_convertvector(value < ZERO ? value - HALF : value + HALF, Ints);
    std::memcpy(quantised + i, &rounded, sizeof(rounded));
  }
}

// ---- entropy coding ----

/// A code followed by the bits of the value that it announces.
void put_value(JpegOutput& out, const JpegHuffmanCodes& codes, unsigned int run, int value) {
  const auto magnitude = static_cast<unsigned int>(value < 0 ? -value : value);
  const auto num_bits = static_cast<unsigned int>(std::bit_width(magnitude));
  const auto low = static_cast<unsigned int>(value < 0 ? value - 1 : value);
  const unsigned int symbol = run << 4 | num_bits;
  const std::uint32_t bits = low & ((1u << num_bits) - 1);
  out.put_bits(static_cast<std::uint32_t>(codes.code[symbol]) << num_bits | bits,
               codes.length[symbol] + num_bits);
}

/// Writes one block; gives its DC value, which the next block's is told against.
int put_block(JpegOutput& out, const float* transposed_block, const ComponentTables& tables,
              int last_dc) {
  float coefficients[64];
  int quantised[64];
  transform_block(transposed_block, coefficients);
  quantise(coefficients, tables.scale, quantised);

  put_value(out, tables.dc, 0, quantised[0] - last_dc);
  // One bit for each value that is not zero, so that runs of zeros are stepped over at once.
  std::uint64_t remaining = 0;
  for (std::size_t k = 1; k < 64; ++k) {
    remaining |= static_cast<std::uint64_t>(quantised[JPEG_NATURAL_ORDER[k]] != 0) << k;
  }
  constexpr unsigned int RUN_OF_16 = 0xF0, END_OF_BLOCK = 0x00;
  unsigned int last = 0;
  for (; remaining != 0; remaining &= remaining - 1) {
    const auto k = static_cast<unsigned int>(std::countr_zero(remaining));
    unsigned int run = k - last - 1;
    for (; run >= 16; run -= 16) {
      out.put_bits(tables.ac.code[RUN_OF_16], tables.ac.length[RUN_OF_16]);
    }
    put_value(out, tables.ac, run, quantised[JPEG_NATURAL_ORDER[k]]);
    last = k;
  }
  if (last < 63) out.put_bits(tables.ac.code[END_OF_BLOCK], tables.ac.length[END_OF_BLOCK]);
  return quantised[0];
}

// ---- picture ----

struct Picture {
  const unsigned char* pixels;
  std::size_t width;
  std::size_t height;
  std::size_t components;
};

/// The three components of an 8 by 8 block, column by column.
struct Block {
  float y[64];
  float cb[64];
  float cr[64];
};

inline void convert_pixel(const unsigned char* pixel, std::size_t green, std::size_t blue,
                          std::size_t at, Block* block) {
  const float r = pixel[0];
  const float g = pixel[green];
  const float b = pixel[blue];
  block->y[at] = 0.299f * r + 0.587f * g + 0.114f * b - 128.0f;
  block->cb[at] = -0.16874f * r - 0.33126f * g + 0.5f * b;
  block->cr[at] = 0.5f * r - 0.41869f * g - 0.08131f * b;
}

/// Past the right and the lower edge the last column and row are repeated.
void read_block(const Picture& picture, std::size_t left, std::size_t top, Block* block) {
  const std::size_t green = picture.components > 1 ? 1 : 0;
  const std::size_t blue = picture.components > 1 ? 2 : 0;
  const std::size_t columns = std::min<std::size_t>(8, picture.width - left);
  for (std::size_t row = 0; row < 8; ++row) {
    const std::size_t y = std::min(top + row, picture.height - 1);
    const unsigned char* pixel = picture.pixels + (y * picture.width + left) * picture.components;
    for (std::size_t column = 0; column < 8; ++column) {
      convert_pixel(pixel, green, blue, column * 8 + row, block);
      if (column + 1 < columns) pixel += picture.components;
    }
  }
}

void put_scan(JpegOutput& out, const Picture& picture) {
  int dc_y = 0, dc_cb = 0, dc_cr = 0;
  for (std::size_t top = 0; top < picture.height; top += 8) {
    for (std::size_t left = 0; left < picture.width; left += 8) {
      Block block;
      read_block(picture, left, top, &block);
      dc_y = put_block(out, block.y, LUMINANCE, dc_y);
      dc_cb = put_block(out, block.cb, CHROMINANCE, dc_cb);
      dc_cr = put_block(out, block.cr, CHROMINANCE, dc_cr);
    }
  }
  out.put_bits(0x7F, 7);
  out.finish_bits();
}

// ---- header ----

using Bytes = std::initializer_list<unsigned char>;

template <std::size_t SYMBOLS>
void put_huffman_table(JpegOutput& out, unsigned int id, const JpegHuffmanSpec<SYMBOLS>& spec) {
  out.put_byte(id);
  out.put_bytes(spec.counts);
  out.put_bytes(spec.symbols);
}

void put_header(JpegOutput& out, const Picture& picture) {
  // Start of image; JFIF 1.1 without a thumbnail, pixels as high as wide.
  out.put_bytes(
      Bytes{0xFF, 0xD8, 0xFF, 0xE0, 0, 0x10, 'J', 'F', 'I', 'F', 0, 1, 1, 0, 0, 1, 0, 1, 0, 0});
  // Quantisation tables.
  out.put_bytes(Bytes{0xFF, 0xDB, 0, 0x84, 0});
  out.put_bytes(make_file_table(JPEG_LUMINANCE));
  out.put_byte(1);
  out.put_bytes(make_file_table(JPEG_CHROMINANCE));
  // Baseline frame of three components, none subsampled.
  out.put_bytes(Bytes{0xFF, 0xC0, 0, 0x11, 8});
  out.put_word(static_cast<unsigned int>(picture.height));
  out.put_word(static_cast<unsigned int>(picture.width));
  out.put_bytes(Bytes{3, 1, 0x11, 0, 2, 0x11, 1, 3, 0x11, 1});
  // Huffman tables.
  out.put_bytes(Bytes{0xFF, 0xC4, 0x01, 0xA2});
  put_huffman_table(out, 0x00, JPEG_DC_LUMINANCE);
  put_huffman_table(out, 0x10, JPEG_AC_LUMINANCE);
  put_huffman_table(out, 0x01, JPEG_DC_CHROMINANCE);
  put_huffman_table(out, 0x11, JPEG_AC_CHROMINANCE);
  // Start of the scan.
  out.put_bytes(Bytes{0xFF, 0xDA, 0, 0x0C, 3, 1, 0x00, 2, 0x11, 3, 0x11, 0, 0x3F, 0});
}

const char* fault_of(unsigned int width, unsigned int height, int components,
                     const unsigned char* pixels) {
  if (!pixels || width == 0 || height == 0) return "no pixels";
  if (components != 1 && components != 3 && components != 4) {
    return "pixels of another number of components than 1, 3 or 4";
  }
  return width > MAX_SIDE || height > MAX_SIDE ? "a side of more than 65535 pixels" : nullptr;
}

/// Null when the whole file was written.
const char* write_or_tell(const char* filename, const Picture& picture) {
  std::FILE* file = std::fopen(filename, "wb");
  if (!file) return system_fault(errno);
  const auto out = std::make_unique<JpegOutput>(file);
  put_header(*out, picture);
  put_scan(*out, picture);
  out->put_word(0xFFD9);
  errno = 0;
  out->flush();
  const bool is_closed = std::fclose(file) == 0;
  if (out->is_good() && is_closed) return nullptr;
  return errno != 0 ? system_fault(errno) : "not all of it could be written";
}

}  // namespace

bool write_jpeg(const char* filename, unsigned int width, unsigned int height, int components,
                const unsigned char* pixels, const char** fault) {
  const char* cause = filename ? fault_of(width, height, components, pixels) : "no name";
  if (!cause) {
    cause = write_or_tell(filename, {pixels, width, height, static_cast<std::size_t>(components)});
  }
  if (fault) *fault = cause;
  return cause == nullptr;
}

}  // namespace orv::detail
