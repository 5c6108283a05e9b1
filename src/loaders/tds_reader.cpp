#include "loaders/tds_reader.h"

#include <lib3ds/chunk.h>
#include <lib3ds/file.h>
#include <lib3ds/io.h>
#include <lib3ds/node.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstring>
#include <span>

namespace orv {

namespace {

using Bytes = std::span<const unsigned char>;

constexpr std::size_t HEADER_SIZE = 6;
/// Names with their end, as lib3ds keeps them.
constexpr std::size_t NAME_SIZE = 64;

constexpr std::size_t POINT_SIZE = 12;
constexpr std::size_t TEXEL_SIZE = 8;
constexpr std::size_t FACE_SIZE = 8;
constexpr std::size_t MATRIX_SIZE = 48;
constexpr std::size_t CAMERA_SIZE = 32;
constexpr std::size_t TRACK_HEADER_SIZE = 14;

std::uint16_t u16_at(Bytes bytes, std::size_t at) {
  return static_cast<std::uint16_t>(bytes[at] | bytes[at + 1] << 8);
}

std::uint32_t u32_at(Bytes bytes, std::size_t at) {
  return u16_at(bytes, at) | static_cast<std::uint32_t>(u16_at(bytes, at + 2)) << 16;
}

/// Calls `visit(id, body)` for each chunk; the visitor says false for a damaged one. False when
/// anything is damaged. Fewer bytes than a header at the end are padding.
template <class Visit>
bool for_each_chunk(Bytes bytes, Visit visit) {
  while (bytes.size() >= HEADER_SIZE) {
    const std::size_t length = u32_at(bytes, 2);
    if (length < HEADER_SIZE || length > bytes.size()) return false;
    if (!visit(u16_at(bytes, 0), bytes.subspan(HEADER_SIZE, length - HEADER_SIZE))) return false;
    bytes = bytes.subspan(length);
  }
  return true;
}

/// The text at the start with its end. Empty when it does not end within NAME_SIZE.
Bytes text_at_start(Bytes bytes) {
  const std::size_t limit = std::min(bytes.size(), NAME_SIZE);
  const auto end = std::find(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(limit),
                             static_cast<unsigned char>(0));
  const std::size_t length = static_cast<std::size_t>(end - bytes.begin());
  return length < limit ? bytes.first(length + 1) : Bytes();
}

/// The list behind a 16-bit count, without the count. False when it is cut short.
bool counted_list(Bytes body, std::size_t element_size, Bytes& list) {
  if (body.size() < 2) return false;
  const std::size_t size = u16_at(body, 0) * element_size;
  if (body.size() - 2 < size) return false;
  list = body.subspan(2, size);
  return true;
}

class ChunkWriter {
 public:
  explicit ChunkWriter(std::vector<unsigned char>& out) : out_(out) {}

  std::size_t begin(unsigned id) {
    const std::size_t start = out_.size();
    u16(id);
    u32(0);
    return start;
  }
  void end(std::size_t start) {
    const std::size_t length = out_.size() - start;
    for (std::size_t i = 0; i < 4; ++i) {
      out_[start + 2 + i] = static_cast<unsigned char>(length >> (8 * i));
    }
  }
  void chunk(unsigned id, Bytes body) {
    const std::size_t start = begin(id);
    bytes(body);
    end(start);
  }
  void bytes(Bytes data) { out_.insert(out_.end(), data.begin(), data.end()); }
  void u16(std::size_t value) {
    out_.push_back(static_cast<unsigned char>(value));
    out_.push_back(static_cast<unsigned char>(value >> 8));
  }
  void u32(std::size_t value) {
    u16(value);
    u16(value >> 16);
  }

 private:
  std::vector<unsigned char>& out_;
};

/// Writes the first `size` bytes of a body. False when there are fewer.
bool copy_fixed(ChunkWriter& out, unsigned id, Bytes body, std::size_t size) {
  if (body.size() < size) return false;
  out.chunk(id, body.first(size));
  return true;
}

bool copy_text(ChunkWriter& out, unsigned id, Bytes body) {
  const Bytes text = text_at_start(body);
  if (text.empty()) return false;
  out.chunk(id, text);
  return true;
}

// ---- materials -------------------------------------------------------------------------------

/// Writes a chunk with what `copy(id, body)` writes of its parts.
template <class Copy>
bool copy_parts(ChunkWriter& out, unsigned id, Bytes body, Copy copy) {
  const std::size_t start = out.begin(id);
  if (!for_each_chunk(body, copy)) return false;
  out.end(start);
  return true;
}

bool copy_color(ChunkWriter& out, unsigned id, Bytes body) {
  return copy_parts(out, id, body, [&](unsigned part, Bytes value) {
    switch (part) {
      case LIB3DS_COLOR_24:
      case LIB3DS_LIN_COLOR_24:
        return copy_fixed(out, part, value, 3);
      case LIB3DS_COLOR_F:
      case LIB3DS_LIN_COLOR_F:
        return copy_fixed(out, part, value, 12);
      default:
        return true;
    }
  });
}

bool copy_percentage(ChunkWriter& out, unsigned id, Bytes body) {
  return copy_parts(out, id, body, [&](unsigned part, Bytes value) {
    return part != LIB3DS_INT_PERCENTAGE || copy_fixed(out, part, value, 2);
  });
}

bool copy_texture(ChunkWriter& out, unsigned id, Bytes body) {
  return copy_parts(out, id, body, [&](unsigned part, Bytes value) {
    return part != LIB3DS_MAT_MAPNAME || copy_text(out, part, value);
  });
}

bool copy_material(ChunkWriter& out, Bytes body) {
  return copy_parts(out, LIB3DS_MAT_ENTRY, body, [&](unsigned part, Bytes value) {
    switch (part) {
      case LIB3DS_MAT_NAME:
        return copy_text(out, part, value);
      case LIB3DS_MAT_AMBIENT:
      case LIB3DS_MAT_DIFFUSE:
      case LIB3DS_MAT_SPECULAR:
        return copy_color(out, part, value);
      case LIB3DS_MAT_SHININESS:
      case LIB3DS_MAT_TRANSPARENCY:
        return copy_percentage(out, part, value);
      case LIB3DS_MAT_TEXMAP:
        return copy_texture(out, part, value);
      default:
        return true;
    }
  });
}

// ---- meshes and cameras ----------------------------------------------------------------------

/// The parts of a mesh. Of a part that stands twice the last one counts.
struct MeshParts {
  Bytes points;
  Bytes texels;
  Bytes matrix;
  Bytes faces;
  Bytes face_parts;  // the chunks behind the face list
};

bool read_mesh(Bytes body, MeshParts& mesh) {
  return for_each_chunk(body, [&](unsigned id, Bytes value) {
    switch (id) {
      case LIB3DS_POINT_ARRAY:
        return counted_list(value, POINT_SIZE, mesh.points);
      case LIB3DS_TEX_VERTS:
        return counted_list(value, TEXEL_SIZE, mesh.texels);
      case LIB3DS_MESH_MATRIX:
        if (value.size() < MATRIX_SIZE) return false;
        mesh.matrix = value.first(MATRIX_SIZE);
        return true;
      case LIB3DS_FACE_ARRAY:
        if (!counted_list(value, FACE_SIZE, mesh.faces)) return false;
        mesh.face_parts = value.subspan(2 + mesh.faces.size());
        return true;
      default:
        return true;
    }
  });
}

constexpr std::uint16_t NO_FACE = 0xFFFF;

/// Writes the faces whose corners exist, with their smoothing groups and materials.
class FaceCopy {
 public:
  FaceCopy(ChunkWriter& out, const MeshParts& mesh) : out_(out), mesh_(mesh) {}

  bool run(std::size_t& dropped_faces) {
    number_faces();
    dropped_faces += new_index_.size() - kept_;
    const std::size_t start = out_.begin(LIB3DS_FACE_ARRAY);
    out_.u16(kept_);
    for (std::size_t i = 0; i < new_index_.size(); ++i) {
      if (new_index_[i] != NO_FACE) out_.bytes(mesh_.faces.subspan(i * FACE_SIZE, FACE_SIZE));
    }
    const bool whole = for_each_chunk(mesh_.face_parts, [this](unsigned id, Bytes value) {
      if (id == LIB3DS_SMOOTH_GROUP) return copy_smoothing(value);
      if (id == LIB3DS_MSH_MAT_GROUP) return copy_material_faces(value);
      return true;
    });
    out_.end(start);
    return whole;
  }

 private:
  void number_faces() {
    const std::size_t points = mesh_.points.size() / POINT_SIZE;
    new_index_.resize(mesh_.faces.size() / FACE_SIZE, NO_FACE);
    for (std::size_t i = 0; i < new_index_.size(); ++i) {
      const Bytes face = mesh_.faces.subspan(i * FACE_SIZE, FACE_SIZE);
      if (u16_at(face, 0) >= points || u16_at(face, 2) >= points || u16_at(face, 4) >= points) {
        continue;
      }
      new_index_[i] = static_cast<std::uint16_t>(kept_++);
    }
  }

  bool copy_smoothing(Bytes value) {
    if (value.size() < new_index_.size() * 4) return false;
    const std::size_t start = out_.begin(LIB3DS_SMOOTH_GROUP);
    for (std::size_t i = 0; i < new_index_.size(); ++i) {
      if (new_index_[i] != NO_FACE) out_.bytes(value.subspan(i * 4, 4));
    }
    out_.end(start);
    return true;
  }

  bool copy_material_faces(Bytes value) {
    const Bytes name = text_at_start(value);
    Bytes list;
    if (name.empty() || !counted_list(value.subspan(name.size()), 2, list)) return false;
    std::vector<std::uint16_t> kept;
    kept.reserve(list.size() / 2);
    for (std::size_t at = 0; at < list.size(); at += 2) {
      const std::size_t face = u16_at(list, at);
      if (face < new_index_.size() && new_index_[face] != NO_FACE) kept.push_back(new_index_[face]);
    }
    const std::size_t start = out_.begin(LIB3DS_MSH_MAT_GROUP);
    out_.bytes(name);
    out_.u16(kept.size());
    for (const std::uint16_t face : kept) out_.u16(face);
    out_.end(start);
    return true;
  }

  ChunkWriter& out_;
  const MeshParts& mesh_;
  std::vector<std::uint16_t> new_index_;
  std::size_t kept_ = 0;
};

bool copy_mesh(ChunkWriter& out, Bytes body, std::size_t& dropped_faces) {
  MeshParts mesh;
  if (!read_mesh(body, mesh)) return false;
  const std::size_t points = mesh.points.size() / POINT_SIZE;
  const std::size_t texels = std::min(mesh.texels.size() / TEXEL_SIZE, points);

  // Points come first: lib3ds makes the normals of the faces while it reads them.
  const std::size_t start = out.begin(LIB3DS_N_TRI_OBJECT);
  if (points > 0) {
    const std::size_t list = out.begin(LIB3DS_POINT_ARRAY);
    out.u16(points);
    out.bytes(mesh.points);
    out.end(list);
  }
  if (texels > 0) {
    const std::size_t list = out.begin(LIB3DS_TEX_VERTS);
    out.u16(texels);
    out.bytes(mesh.texels.first(texels * TEXEL_SIZE));
    out.end(list);
  }
  if (!mesh.matrix.empty()) out.chunk(LIB3DS_MESH_MATRIX, mesh.matrix);
  if (!mesh.faces.empty() && !FaceCopy(out, mesh).run(dropped_faces)) return false;
  out.end(start);
  return true;
}

bool copy_camera(ChunkWriter& out, Bytes body) {
  if (body.size() < CAMERA_SIZE) return false;
  const std::size_t start = out.begin(LIB3DS_N_CAMERA);
  out.bytes(body.first(CAMERA_SIZE));
  const bool whole = for_each_chunk(body.subspan(CAMERA_SIZE), [&](unsigned id, Bytes value) {
    return id != LIB3DS_CAM_RANGES || copy_fixed(out, id, value, 8);
  });
  out.end(start);
  return whole;
}

/// Materials, meshes and cameras of the file.
class DataCopy {
 public:
  DataCopy(ChunkWriter& out, TdsFile& file) : out_(out), file_(file) {}

  bool run(Bytes body) {
    return for_each_chunk(body, [this](unsigned id, Bytes value) {
      if (id == LIB3DS_MAT_ENTRY) return !take(materials_) || copy_material(out_, value);
      if (id == LIB3DS_NAMED_OBJECT) return copy_object(value);
      return true;
    });
  }

 private:
  bool take(std::size_t& count) {
    if (count++ < TDS_MAX_OBJECTS) return true;
    ++file_.dropped_objects;
    return false;
  }

  bool copy_object(Bytes body) {
    const Bytes name = text_at_start(body);
    if (name.empty()) return false;
    return for_each_chunk(body.subspan(name.size()), [&](unsigned id, Bytes value) {
      if (id == LIB3DS_N_TRI_OBJECT && take(meshes_)) {
        return copy_named(name, [&] { return copy_mesh(out_, value, file_.dropped_faces); });
      }
      if (id == LIB3DS_N_CAMERA && take(cameras_)) {
        return copy_named(name, [&] { return copy_camera(out_, value); });
      }
      return true;
    });
  }

  template <class Copy>
  bool copy_named(Bytes name, Copy copy) {
    const std::size_t start = out_.begin(LIB3DS_NAMED_OBJECT);
    out_.bytes(name);
    if (!copy()) return false;
    out_.end(start);
    return true;
  }

  ChunkWriter& out_;
  TdsFile& file_;
  std::size_t materials_ = 0;
  std::size_t meshes_ = 0;
  std::size_t cameras_ = 0;
};

// ---- nodes -----------------------------------------------------------------------------------

struct Track {
  unsigned flags = 0;
  std::size_t num_keys = 0;
  Bytes keys;
};

struct Node {
  bool is_object = false;
  std::uint16_t id = 0;
  std::uint16_t parent_id = LIB3DS_NO_PARENT;
  Bytes name;
  Bytes flags;
  Bytes pivot;
  Bytes instance;
  Track position;
  Track rotation;
  Track scale;
};

constexpr unsigned TCB_FLAGS = 0x1F;  // each set bit puts one float into the key

bool read_track(Bytes body, std::size_t value_size, Track& track) {
  if (body.size() < TRACK_HEADER_SIZE) return false;
  // Repeating plays no part at frame 0, and lib3ds looks behind the last key for it.
  track.flags = u16_at(body, 0) & ~static_cast<unsigned>(LIB3DS_REPEAT);
  const std::size_t count = u32_at(body, TRACK_HEADER_SIZE - 4);
  track.num_keys = std::min(count, TDS_MAX_KEYS);
  std::size_t at = TRACK_HEADER_SIZE;
  for (std::size_t i = 0; i < track.num_keys; ++i) {
    if (body.size() - at < 6) return false;
    const unsigned parameters = u16_at(body, at + 4) & TCB_FLAGS;
    const std::size_t size =
        6 + 4 * static_cast<std::size_t>(std::popcount(parameters)) + value_size;
    if (body.size() - at < size) return false;
    at += size;
  }
  track.keys = body.subspan(TRACK_HEADER_SIZE, at - TRACK_HEADER_SIZE);
  return true;
}

bool read_node_header(Bytes body, Node& node) {
  node.name = text_at_start(body);
  if (node.name.empty() || body.size() - node.name.size() < 6) return false;
  node.flags = body.subspan(node.name.size(), 4);
  node.parent_id = u16_at(body, node.name.size() + 4);
  return true;
}

bool read_node(Bytes body, Node& node) {
  return for_each_chunk(body, [&](unsigned id, Bytes value) {
    if (id == LIB3DS_NODE_ID) {
      if (value.size() < 2) return false;
      node.id = u16_at(value, 0);
      return true;
    }
    if (id == LIB3DS_NODE_HDR) return read_node_header(value, node);
    if (!node.is_object) return true;
    switch (id) {
      case LIB3DS_PIVOT:
        if (value.size() < 12) return false;
        node.pivot = value.first(12);
        return true;
      case LIB3DS_INSTANCE_NAME:
        node.instance = text_at_start(value);
        return !node.instance.empty();
      case LIB3DS_POS_TRACK_TAG:
        return read_track(value, 12, node.position);
      case LIB3DS_ROT_TRACK_TAG:
        return read_track(value, 16, node.rotation);
      case LIB3DS_SCL_TRACK_TAG:
        return read_track(value, 12, node.scale);
      default:
        return true;
    }
  });
}

void write_track(ChunkWriter& out, unsigned id, const Track& track) {
  if (track.num_keys == 0) return;
  const std::size_t start = out.begin(id);
  out.u16(track.flags);
  out.u32(0);
  out.u32(0);
  out.u32(track.num_keys);
  out.bytes(track.keys);
  out.end(start);
}

void write_node(ChunkWriter& out, const Node& node, std::size_t id, std::size_t parent_id) {
  static constexpr unsigned char NO_NAME[] = {0};
  static constexpr unsigned char NO_FLAGS[4] = {};
  const std::size_t start = out.begin(LIB3DS_OBJECT_NODE_TAG);
  std::size_t part = out.begin(LIB3DS_NODE_ID);
  out.u16(id);
  out.end(part);
  part = out.begin(LIB3DS_NODE_HDR);
  out.bytes(node.name.empty() ? Bytes(NO_NAME) : node.name);
  out.bytes(node.flags.empty() ? Bytes(NO_FLAGS) : node.flags);
  out.u16(parent_id);
  out.end(part);
  if (!node.pivot.empty()) out.chunk(LIB3DS_PIVOT, node.pivot);
  if (!node.instance.empty()) out.chunk(LIB3DS_INSTANCE_NAME, node.instance);
  write_track(out, LIB3DS_POS_TRACK_TAG, node.position);
  write_track(out, LIB3DS_ROT_TRACK_TAG, node.rotation);
  write_track(out, LIB3DS_SCL_TRACK_TAG, node.scale);
  out.end(start);
}

/// The nodes of the file, written parents first under numbers of our own, so that lib3ds finds each
/// parent and no node comes to stand below itself.
class NodeTree {
 public:
  bool read(Bytes body, TdsFile& file) {
    return for_each_chunk(body, [&](unsigned id, Bytes value) {
      if (id < LIB3DS_AMBIENT_NODE_TAG || id > LIB3DS_SPOTLIGHT_NODE_TAG) return true;
      file.has_nodes = true;
      if (nodes_.size() >= TDS_MAX_OBJECTS) {
        ++file.dropped_objects;
        return true;
      }
      Node node;
      node.is_object = id == LIB3DS_OBJECT_NODE_TAG;
      node.id = static_cast<std::uint16_t>(nodes_.size());  // that of a file that names none
      if (!read_node(value, node)) return false;
      nodes_.push_back(node);
      return true;
    });
  }

  void write(ChunkWriter& out, TdsFile& file) {
    if (nodes_.empty()) return;
    link();
    const std::size_t start = out.begin(LIB3DS_KFDATA);
    std::size_t written = 0;
    for (std::size_t i = 0; i < order_.size(); ++i) write_linked(out, i, written);
    out.end(start);
    file.dropped_objects += nodes_.size() - order_.size();
  }

 private:
  static constexpr int NONE = -1;

  /// Lists the nodes that hang on a root, level by level. Those on a circle never come up.
  void link() {
    std::vector<int> by_id(0x10000, NONE);
    for (std::size_t i = 0; i < nodes_.size(); ++i) {
      int& entry = by_id[nodes_[i].id];
      if (entry == NONE) entry = static_cast<int>(i);
    }
    by_id[LIB3DS_NO_PARENT] = NONE;

    const std::size_t count = nodes_.size();
    parents_.resize(count);
    first_child_.assign(count, NONE);
    next_.assign(count, NONE);
    std::vector<int> last_child(count, NONE);
    for (std::size_t i = 0; i < count; ++i) {
      const int self = static_cast<int>(i);
      parents_[i] = by_id[nodes_[i].parent_id];
      if (parents_[i] == NONE) {
        order_.push_back(self);
        continue;
      }
      const std::size_t parent = static_cast<std::size_t>(parents_[i]);
      (last_child[parent] == NONE ? first_child_[parent]
                                  : next_[static_cast<std::size_t>(last_child[parent])]) = self;
      last_child[parent] = self;
    }
    list_descendants();
  }

  void list_descendants() {
    std::size_t level_end = order_.size();
    int depth = 1;
    for (std::size_t i = 0; i < order_.size(); ++i) {
      if (i == level_end) {
        level_end = order_.size();
        ++depth;
      }
      if (depth >= TDS_MAX_DEPTH) return;
      const std::size_t node = static_cast<std::size_t>(order_[i]);
      for (int child = first_child_[node]; child != NONE;
           child = next_[static_cast<std::size_t>(child)]) {
        order_.push_back(child);
      }
    }
  }

  /// Writes node `i` of the order unless it or an ancestor is of another type.
  void write_linked(ChunkWriter& out, std::size_t i, std::size_t& written) {
    if (i == 0) new_id_.assign(nodes_.size(), LIB3DS_NO_PARENT);
    const std::size_t index = static_cast<std::size_t>(order_[i]);
    if (!nodes_[index].is_object) return;
    std::size_t parent_id = LIB3DS_NO_PARENT;
    if (parents_[index] != NONE) {
      parent_id = new_id_[static_cast<std::size_t>(parents_[index])];
      if (parent_id == LIB3DS_NO_PARENT) return;
    }
    new_id_[index] = written;
    write_node(out, nodes_[index], written, parent_id);
    ++written;
  }

  std::vector<Node> nodes_;
  std::vector<int> parents_;
  std::vector<int> first_child_;
  std::vector<int> next_;
  std::vector<int> order_;
  std::vector<std::size_t> new_id_;
};

// ---- file ------------------------------------------------------------------------------------

bool is_main_chunk(unsigned id) {
  return id == LIB3DS_M3DMAGIC || id == LIB3DS_MLIBMAGIC || id == LIB3DS_CMAGIC;
}

/// Copies the contents of the main chunk, which stands in a chunk of the writer's.
bool copy_main(ChunkWriter& out, Bytes body, TdsFile& file) {
  DataCopy data(out, file);
  NodeTree nodes;
  const std::size_t start = out.begin(LIB3DS_MDATA);
  bool whole = for_each_chunk(body, [&](unsigned id, Bytes value) {
    if (id == LIB3DS_MDATA) return data.run(value);
    if (id == LIB3DS_KFDATA) return nodes.read(value, file);
    return true;
  });
  out.end(start);
  if (whole) nodes.write(out, file);
  return whole;
}

}  // namespace

bool tds_clean(const unsigned char* data, std::size_t size, TdsFile& out) {
  out = TdsFile();
  const Bytes bytes(data, data ? size : 0);
  if (bytes.size() < HEADER_SIZE) return false;
  const std::size_t length = u32_at(bytes, 2);
  if (length < HEADER_SIZE || length > bytes.size()) return false;
  const unsigned id = u16_at(bytes, 0);
  if (!is_main_chunk(id) && id != LIB3DS_MDATA) return false;

  out.bytes.reserve(length);
  ChunkWriter writer(out.bytes);
  const std::size_t start = writer.begin(LIB3DS_M3DMAGIC);
  // A file may be the data chunk alone.
  const Bytes body =
      is_main_chunk(id) ? bytes.subspan(HEADER_SIZE, length - HEADER_SIZE) : bytes.first(length);
  const bool whole = copy_main(writer, body, out);
  writer.end(start);
  if (whole && out.bytes.size() <= UINT32_MAX) return true;
  out = TdsFile();
  return false;
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
