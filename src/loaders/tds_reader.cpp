#include "loaders/tds_reader.h"

#include <lib3ds/chunk.h>
#include <lib3ds/file.h>
#include <lib3ds/io.h>

#include <algorithm>
#include <cstdint>
#include <cstring>

#include "loaders/tds_chunks.h"
#include "loaders/tds_nodes.h"
#include "loaders/tds_objects.h"

namespace orv {

namespace {

using tds::Bytes;
using tds::ChunkWriter;

bool is_main_chunk(unsigned id) {
  return id == LIB3DS_M3DMAGIC || id == LIB3DS_MLIBMAGIC || id == LIB3DS_CMAGIC;
}

/// Copies the contents of the main chunk, which stands in a chunk of the writer's.
bool copy_main(ChunkWriter& out, Bytes body, TdsFile& file) {
  tds::ObjectCopy objects(out, file);
  tds::NodeTree nodes;
  const std::size_t start = out.begin(LIB3DS_MDATA);
  bool whole = tds::for_each_chunk(body, [&](unsigned id, Bytes value) {
    if (id == LIB3DS_MDATA) return objects.run(value);
    if (id == LIB3DS_KFDATA) return nodes.read(value, file);
    return true;
  });
  out.end(start);
  if (whole) nodes.write(out, file);
  return whole;
}

// ---- what is wrong with a file ----

/// How many bytes of a chunk's body stand in front of the chunks in it; -1 where there are none.
int offset_of_parts(unsigned id, Bytes body) {
  switch (id) {
    case LIB3DS_MDATA:
    case LIB3DS_KFDATA:
    case LIB3DS_MAT_ENTRY:
    case LIB3DS_N_TRI_OBJECT:
    case LIB3DS_OBJECT_NODE_TAG:
      return 0;
    case LIB3DS_NAMED_OBJECT:
      return static_cast<int>(tds::text_at_start(body).size());
    default:
      return is_main_chunk(id) ? 0 : -1;
  }
}

/// The first chunk that reaches out of the one around it, looked for down to this depth; none that
/// the reader looks into stands deeper.
const unsigned char* find_cut_chunk(Bytes bytes, int depth = 6) {
  while (bytes.size() >= tds::HEADER_SIZE) {
    const std::size_t length = tds::u32_at(bytes, 2);
    if (length < tds::HEADER_SIZE || length > bytes.size()) return bytes.data();
    const Bytes body = bytes.subspan(tds::HEADER_SIZE, length - tds::HEADER_SIZE);
    const int offset = offset_of_parts(tds::u16_at(bytes, 0), body);
    if (offset >= 0 && depth > 0) {
      const Bytes parts = body.subspan(static_cast<std::size_t>(offset));
      if (const unsigned char* cut = find_cut_chunk(parts, depth - 1)) return cut;
    }
    bytes = bytes.subspan(length);
  }
  return nullptr;
}

bool refuse(TdsFile& out, const char* fault, std::size_t at) {
  out = TdsFile();
  out.fault = fault;
  out.fault_at = at;
  return false;
}

bool refuse_damaged(TdsFile& out, Bytes bytes) {
  const unsigned char* cut = find_cut_chunk(bytes);
  if (!cut) return refuse(out, "a chunk is too short for what it counts, somewhere behind", 0);
  return refuse(out, "a chunk of a wrong length", static_cast<std::size_t>(cut - bytes.data()));
}

}  // namespace

bool tds_clean(const unsigned char* data, std::size_t size, TdsFile& out) {
  out = TdsFile();
  const Bytes bytes(data, data ? size : 0);
  if (bytes.size() < tds::HEADER_SIZE) return refuse(out, "no chunk", 0);
  const unsigned id = tds::u16_at(bytes, 0);
  if (!is_main_chunk(id) && id != LIB3DS_MDATA) return refuse(out, "no main chunk", 0);
  const std::size_t length = tds::u32_at(bytes, 2);
  if (length < tds::HEADER_SIZE) return refuse(out, "a chunk of a wrong length", 0);
  if (length > bytes.size()) return refuse(out, "truncated", bytes.size());

  out.bytes.reserve(length);
  ChunkWriter writer(out.bytes);
  const std::size_t start = writer.begin(LIB3DS_M3DMAGIC);
  // A file may be the data chunk alone.
  const Bytes body = is_main_chunk(id) ? bytes.subspan(tds::HEADER_SIZE, length - tds::HEADER_SIZE)
                                       : bytes.first(length);
  const bool whole = copy_main(writer, body, out);
  writer.end(start);
  if (!whole) return refuse_damaged(out, bytes.first(length));
  return out.bytes.size() <= UINT32_MAX || refuse(out, "too large", 0);
}

// ---- lib3ds ----------------------------------------------------------------------------------

namespace {

struct MemoryFile {
  const std::vector<unsigned char>& bytes;
  std::size_t at = 0;
};

Lib3dsBool memory_error(void*) { return LIB3DS_FALSE; }

long memory_seek(void* self, long offset, Lib3dsIoSeek origin) {
  MemoryFile& file = *static_cast<MemoryFile*>(self);
  const long size = static_cast<long>(file.bytes.size());
  const long base = origin == LIB3DS_SEEK_SET   ? 0
                    : origin == LIB3DS_SEEK_CUR ? static_cast<long>(file.at)
                                                : size;
  if (offset < -base || offset > size - base) return -1;
  file.at = static_cast<std::size_t>(base + offset);
  return 0;
}

long memory_tell(void* self) { return static_cast<long>(static_cast<MemoryFile*>(self)->at); }

size_t memory_read(void* self, void* buffer, size_t size) {
  MemoryFile& file = *static_cast<MemoryFile*>(self);
  const size_t count = std::min(size, file.bytes.size() - file.at);
  if (count > 0) std::memcpy(buffer, file.bytes.data() + file.at, count);
  file.at += count;
  return count;
}

size_t memory_write(void*, const void*, size_t) { return 0; }

}  // namespace

void TdsFree::operator()(Lib3dsFile* file) const { lib3ds_file_free(file); }

TdsPtr tds_parse(const TdsFile& clean) {
  TdsPtr file(lib3ds_file_new());
  if (!file) return nullptr;
  MemoryFile memory{clean.bytes};
  Lib3dsIo* io =
      lib3ds_io_new(&memory, memory_error, memory_seek, memory_tell, memory_read, memory_write);
  if (!io) return nullptr;
  const bool read = lib3ds_file_read(file.get(), io);
  lib3ds_io_free(io);
  if (!read) return nullptr;
  return file;
}

}  // namespace orv
