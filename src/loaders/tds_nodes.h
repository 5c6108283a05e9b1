#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "loaders/tds_chunks.h"
#include "loaders/tds_reader.h"

namespace orv::tds {

/// What a node without a parent names as its parent.
inline constexpr std::uint16_t NO_PARENT = 0xFFFF;

/// The keys of one track of a node.
struct Track {
  unsigned flags = 0;
  std::size_t num_keys = 0;
  Bytes keys;
};

/// What is kept of a node. The bytes are those of the file; empty where it has none.
struct NodeRecord {
  bool is_object = false;
  std::uint16_t id = 0;
  std::uint16_t parent_id = NO_PARENT;
  Bytes name;
  Bytes flags;
  Bytes pivot;
  Bytes instance;
  Track position;
  Track rotation;
  Track scale;
};

/// The nodes of the file, written parents first under numbers of our own, so that lib3ds finds each
/// parent and no node comes to stand below itself.
class NodeTree {
 public:
  /// Takes the nodes of a key-frame chunk's body. False when anything in it is damaged.
  bool read(Bytes body, TdsFile& file);

  /// Writes a key-frame chunk, or nothing without nodes. Counts in `file` the nodes that hang on no
  /// root or too deep.
  void write(ChunkWriter& out, TdsFile& file);

 private:
  void link();
  void list_descendants();
  void write_linked(ChunkWriter& out, std::size_t i, std::size_t& written);

  std::vector<NodeRecord> nodes_;
  // Places in nodes_, or -1.
  std::vector<int> parents_;
  std::vector<int> first_child_;
  std::vector<int> next_;
  std::vector<int> order_;
  std::vector<std::size_t> new_id_;
};

}  // namespace orv::tds
