#pragma once

#include <cstddef>
#include <memory>
#include <vector>

struct Lib3dsFile;

namespace orv {

/// The clean form of a 3DS file, with nothing in it but materials, meshes, cameras and object
/// nodes.
struct TdsFile {
  std::vector<unsigned char> bytes;
  bool has_nodes = false;         ///< the original has nodes, if only of other types
  std::size_t dropped_faces = 0;  ///< faces that named a vertex that is not there
  std::size_t dropped_objects =
      0;                        ///< materials, objects and nodes beyond the limits or unreachable
  const char* fault = nullptr;  ///< why there is no clean form, a text that is never freed
  std::size_t fault_at = 0;     ///< byte of the original where that shows
};

/// Checks a 3DS file and writes it anew, since lib3ds believes every length, count and index that
/// it reads. False when the file is no 3DS file, when a chunk reaches beyond the one around it, or
/// when it is too short for what it counts. Faces with wrong corners and nodes that are their own
/// ancestors are left out.
bool tds_clean(const unsigned char* data, std::size_t size, TdsFile& out);

struct TdsFree {
  void operator()(Lib3dsFile* file) const;
};
using TdsPtr = std::unique_ptr<Lib3dsFile, TdsFree>;

/// Has lib3ds read the clean form. Null when it fails.
TdsPtr tds_parse(const TdsFile& clean);

/// At most this many materials, meshes, cameras and nodes are taken: lib3ds keeps each kind in a
/// sorted list that it walks for every insertion.
inline constexpr std::size_t TDS_MAX_OBJECTS = 16384;
/// Nodes below this level are left out; lib3ds walks the tree by recursion.
inline constexpr int TDS_MAX_DEPTH = 256;
/// Keys of a track behind these are left out, for the same reason as objects.
inline constexpr std::size_t TDS_MAX_KEYS = 8192;

}  // namespace orv
