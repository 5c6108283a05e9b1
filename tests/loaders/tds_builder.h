#pragma once

#include <lib3ds/chunk.h>

#include <cstring>
#include <initializer_list>
#include <string>
#include <vector>

/// Writes 3DS files byte by byte.
namespace orv::test::tds {

inline std::string u16(unsigned value) {
  return {static_cast<char>(value & 0xFF), static_cast<char>(value >> 8 & 0xFF)};
}

inline std::string u32(std::size_t value) {
  return u16(static_cast<unsigned>(value & 0xFFFF)) +
         u16(static_cast<unsigned>(value >> 16 & 0xFFFF));
}

inline std::string floats(std::initializer_list<float> values) {
  std::string bytes(values.size() * 4, '\0');
  std::memcpy(bytes.data(), values.begin(), bytes.size());
  return bytes;
}

inline std::string text(const std::string& value) { return value + '\0'; }

inline std::string chunk(unsigned id, const std::string& body) {
  return u16(id) + u32(body.size() + 6) + body;
}

inline std::string file(const std::string& data, const std::string& key_frames = "") {
  std::string body = chunk(LIB3DS_MDATA, data);
  if (!key_frames.empty()) body += chunk(LIB3DS_KFDATA, key_frames);
  return chunk(LIB3DS_M3DMAGIC, body);
}

// ---- materials ----

inline std::string color(unsigned id, float r, float g, float b) {
  return chunk(id, chunk(LIB3DS_COLOR_F, floats({r, g, b})));
}

inline std::string percentage(unsigned id, unsigned value) {
  return chunk(id, chunk(LIB3DS_INT_PERCENTAGE, u16(value)));
}

inline std::string material(const std::string& name, const std::string& parts = "") {
  return chunk(LIB3DS_MAT_ENTRY, chunk(LIB3DS_MAT_NAME, text(name)) + parts);
}

// ---- objects ----

inline std::string object(const std::string& name, const std::string& body) {
  return chunk(LIB3DS_NAMED_OBJECT, text(name) + body);
}

inline std::string points(std::initializer_list<float> coordinates) {
  return chunk(LIB3DS_POINT_ARRAY,
               u16(static_cast<unsigned>(coordinates.size() / 3)) + floats(coordinates));
}

inline std::string texels(std::initializer_list<float> coordinates) {
  return chunk(LIB3DS_TEX_VERTS,
               u16(static_cast<unsigned>(coordinates.size() / 2)) + floats(coordinates));
}

/// Three corners for each face; `parts` are the chunks behind the list.
inline std::string faces(const std::vector<unsigned>& corners, const std::string& parts = "") {
  std::string body = u16(static_cast<unsigned>(corners.size() / 3));
  for (std::size_t i = 0; i + 2 < corners.size(); i += 3) {
    body += u16(corners[i]) + u16(corners[i + 1]) + u16(corners[i + 2]) + u16(0);
  }
  return chunk(LIB3DS_FACE_ARRAY, body + parts);
}

inline std::string face_material(const std::string& name, const std::vector<unsigned>& list) {
  std::string body = text(name) + u16(static_cast<unsigned>(list.size()));
  for (const unsigned face : list) body += u16(face);
  return chunk(LIB3DS_MSH_MAT_GROUP, body);
}

inline std::string smoothing(const std::vector<unsigned>& groups) {
  std::string body;
  for (const unsigned group : groups) body += u32(group);
  return chunk(LIB3DS_SMOOTH_GROUP, body);
}

/// Axes and origin of a mesh.
inline std::string matrix(std::initializer_list<float> values) {
  return chunk(LIB3DS_MESH_MATRIX, floats(values));
}

inline std::string mesh(const std::string& name, const std::string& parts) {
  return object(name, chunk(LIB3DS_N_TRI_OBJECT, parts));
}

/// A triangle with its corners at (1, 2, 3), (4, 5, 6) and (7, 8, 10).
inline std::string triangle(const std::string& name, const std::string& face_parts = "",
                            const std::string& parts = "") {
  return mesh(name, points({1, 2, 3, 4, 5, 6, 7, 8, 10}) + faces({0, 1, 2}, face_parts) + parts);
}

inline std::string camera(const std::string& name, std::initializer_list<float> values,
                          const std::string& parts = "") {
  return object(name, chunk(LIB3DS_N_CAMERA, floats(values) + parts));
}

inline std::string ranges(float near_plane, float far_plane) {
  return chunk(LIB3DS_CAM_RANGES, floats({near_plane, far_plane}));
}

// ---- nodes ----

constexpr unsigned NO_PARENT = 65535;

inline std::string node_of_type(unsigned type, unsigned id, const std::string& name,
                                unsigned parent, const std::string& parts = "") {
  return chunk(type, chunk(LIB3DS_NODE_ID, u16(id)) +
                         chunk(LIB3DS_NODE_HDR, text(name) + u16(0) + u16(0) + u16(parent)) +
                         parts);
}

inline std::string node(unsigned id, const std::string& name, unsigned parent = NO_PARENT,
                        const std::string& parts = "") {
  return node_of_type(LIB3DS_OBJECT_NODE_TAG, id, name, parent, parts);
}

inline std::string track(unsigned id, unsigned flags, std::size_t count, const std::string& keys) {
  return chunk(id, u16(flags) + u32(0) + u32(0) + u32(count) + keys);
}

/// A track of one key at frame 0.
inline std::string position(float x, float y, float z) {
  return track(LIB3DS_POS_TRACK_TAG, 0, 1, u32(0) + u16(0) + floats({x, y, z}));
}

inline std::string scale(float x, float y, float z) {
  return track(LIB3DS_SCL_TRACK_TAG, 0, 1, u32(0) + u16(0) + floats({x, y, z}));
}

inline std::string instance(const std::string& name) {
  return chunk(LIB3DS_INSTANCE_NAME, text(name));
}

inline std::string pivot(float x, float y, float z) {
  return chunk(LIB3DS_PIVOT, floats({x, y, z}));
}

/// One of everything.
inline std::string sample() {
  const std::string parts =
      color(LIB3DS_MAT_DIFFUSE, 0.25f, 0.5f, 0.75f) + percentage(LIB3DS_MAT_SHININESS, 50) +
      percentage(LIB3DS_MAT_TRANSPARENCY, 25) +
      chunk(LIB3DS_MAT_TEXMAP, percentage(0, 1) + chunk(LIB3DS_MAT_MAPNAME, text("wood.png")));
  return file(
      material("wood", parts) + material("other") +
          triangle("box", smoothing({1}) + face_material("wood", {0}),
                   texels({0, 0, 1, 0, 1, 1}) + matrix({1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0})) +
          camera("eye", {1, 2, 3, 4, 5, 6, 7, 48}, ranges(2, 50)),
      node(0, "box", NO_PARENT, pivot(0, 0, 1) + instance("one") + position(1, 2, 3)) +
          node(1, "box", 0,
               track(LIB3DS_ROT_TRACK_TAG, 0, 2,
                     u32(0) + u16(0x3) + floats({0, 0, 0.5f, 0, 0, 1}) + u32(9) + u16(0) +
                         floats({1, 0, 0, 1})) +
                   scale(2, 2, 2)));
}

}  // namespace orv::test::tds
