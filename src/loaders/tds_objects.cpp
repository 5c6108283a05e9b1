#include "loaders/tds_objects.h"

#include <lib3ds/chunk.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace orv::tds {

namespace {

constexpr std::size_t POINT_SIZE = 12;
constexpr std::size_t TEXEL_SIZE = 8;
constexpr std::size_t FACE_SIZE = 8;
constexpr std::size_t MATRIX_SIZE = 48;
constexpr std::size_t CAMERA_SIZE = 32;

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

}  // namespace

// ---- all of them ------------------------------------------------------------------------------

bool ObjectCopy::run(Bytes body) {
  return for_each_chunk(body, [this](unsigned id, Bytes value) {
    if (id == LIB3DS_MAT_ENTRY) return !take(materials_) || copy_material(out_, value);
    if (id == LIB3DS_NAMED_OBJECT) return copy_object(value);
    return true;
  });
}

bool ObjectCopy::take(std::size_t& count) {
  if (count++ < TDS_MAX_OBJECTS) return true;
  ++file_.dropped_objects;
  return false;
}

bool ObjectCopy::copy_object(Bytes body) {
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
bool ObjectCopy::copy_named(Bytes name, Copy copy) {
  const std::size_t start = out_.begin(LIB3DS_NAMED_OBJECT);
  out_.bytes(name);
  if (!copy()) return false;
  out_.end(start);
  return true;
}

}  // namespace orv::tds
