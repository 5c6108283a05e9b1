#include "image/png_palette.h"

#include <cstdint>
#include <cstring>

namespace orv::detail {
namespace {

constexpr unsigned char SIGNATURE[] = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::size_t CHUNK_HEAD = 8;  // length and name
constexpr std::size_t CHUNK_TAIL = 4;  // checksum, which the decoder does not read
constexpr std::uint32_t HEADER_SIZE = 13;
constexpr std::uint32_t FULL_PALETTE = 256 * 3;
constexpr unsigned char PALETTE_COLORS = 3;

/// One chunk of a file, from its length on.
struct Chunk {
  const unsigned char* begin;
  std::uint32_t length;

  bool is(const char* name) const { return std::memcmp(begin + 4, name, 4) == 0; }
  const unsigned char* contents() const { return begin + CHUNK_HEAD; }
  std::size_t size() const { return CHUNK_HEAD + length + CHUNK_TAIL; }
};

/// False at the end, and at a chunk that does not fit into the file.
bool read_chunk(const unsigned char* data, std::size_t size, std::size_t at, Chunk* chunk) {
  if (size - at < CHUNK_HEAD + CHUNK_TAIL) return false;
  const unsigned char* p = data + at;
  chunk->begin = p;
  chunk->length = std::uint32_t{p[0]} << 24 | std::uint32_t{p[1]} << 16 | std::uint32_t{p[2]} << 8 |
                  std::uint32_t{p[3]};
  return chunk->length <= size - at - CHUNK_HEAD - CHUNK_TAIL;
}

bool is_palette(const Chunk& chunk) {
  return chunk.is("PLTE") && chunk.length > 0 && chunk.length <= FULL_PALETTE &&
         chunk.length % 3 == 0;
}

void append_full_palette(const Chunk& chunk, std::vector<unsigned char>* file) {
  constexpr unsigned char HEAD[CHUNK_HEAD] = {
      0, 0, FULL_PALETTE >> 8, FULL_PALETTE & 0xFF, 'P', 'L', 'T', 'E'};
  file->insert(file->end(), HEAD, HEAD + CHUNK_HEAD);
  file->insert(file->end(), chunk.contents(), chunk.contents() + chunk.length);
  file->resize(file->size() + (FULL_PALETTE - chunk.length) + CHUNK_TAIL);
}

/// Whether pixels can name colours that a palette of the file lacks.
bool has_short_palette(const unsigned char* data, std::size_t size) {
  Chunk chunk;
  std::uint32_t named = 0;  // bytes of a palette that has all colours that pixels can name
  std::uint32_t length = 0;
  bool is_short = false;
  for (std::size_t at = sizeof(SIGNATURE); read_chunk(data, size, at, &chunk); at += chunk.size()) {
    if (chunk.is("IHDR")) {
      if (chunk.length != HEADER_SIZE || chunk.contents()[9] != PALETTE_COLORS) return false;
      const unsigned int bits = chunk.contents()[8];
      if (bits > 8) return false;
      named = (1u << bits) * 3;
    } else if (is_palette(chunk)) {
      length = chunk.length;
      is_short = is_short || length < named;
    } else if (chunk.is("tRNS") && chunk.length > length / 3) {
      return false;  // more transparencies than colours: the decoder refuses the file
    } else if (chunk.is("IEND")) {
      break;
    }
  }
  return is_short;
}

}  // namespace

bool fill_png_palette(const unsigned char* data, std::size_t size,
                      std::vector<unsigned char>* filled) {
  if (size < sizeof(SIGNATURE) || std::memcmp(data, SIGNATURE, sizeof(SIGNATURE)) != 0 ||
      !has_short_palette(data, size)) {
    return false;
  }
  filled->reserve(size + FULL_PALETTE);
  filled->assign(data, data + sizeof(SIGNATURE));
  std::size_t at = sizeof(SIGNATURE);
  Chunk chunk;
  for (; read_chunk(data, size, at, &chunk) && !chunk.is("IEND"); at += chunk.size()) {
    if (is_palette(chunk)) {
      append_full_palette(chunk, filled);
    } else {
      filled->insert(filled->end(), chunk.begin, chunk.begin + chunk.size());
    }
  }
  filled->insert(filled->end(), data + at, data + size);
  return true;
}

}  // namespace orv::detail
