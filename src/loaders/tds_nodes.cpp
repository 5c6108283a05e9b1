#include "loaders/tds_nodes.h"

#include <lib3ds/chunk.h>
#include <lib3ds/node.h>

#include <algorithm>
#include <bit>

namespace orv::tds {

namespace {

constexpr std::size_t TRACK_HEADER_SIZE = 14;
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

bool read_node_header(Bytes body, NodeRecord& node) {
  node.name = text_at_start(body);
  if (node.name.empty() || body.size() - node.name.size() < 6) return false;
  node.flags = body.subspan(node.name.size(), 4);
  node.parent_id = u16_at(body, node.name.size() + 4);
  return true;
}

bool read_node(Bytes body, NodeRecord& node) {
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

void write_node(ChunkWriter& out, const NodeRecord& node, std::size_t id, std::size_t parent_id) {
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

/// No place in a list.
constexpr int NONE = -1;

}  // namespace

bool NodeTree::read(Bytes body, TdsFile& file) {
  return for_each_chunk(body, [&](unsigned id, Bytes value) {
    if (id < LIB3DS_AMBIENT_NODE_TAG || id > LIB3DS_SPOTLIGHT_NODE_TAG) return true;
    file.has_nodes = true;
    if (nodes_.size() >= TDS_MAX_OBJECTS) {
      ++file.dropped_objects;
      return true;
    }
    NodeRecord node;
    node.is_object = id == LIB3DS_OBJECT_NODE_TAG;
    node.id = static_cast<std::uint16_t>(nodes_.size());  // that of a file that names none
    if (!read_node(value, node)) return false;
    nodes_.push_back(node);
    return true;
  });
}

void NodeTree::write(ChunkWriter& out, TdsFile& file) {
  if (nodes_.empty()) return;
  link();
  const std::size_t start = out.begin(LIB3DS_KFDATA);
  std::size_t written = 0;
  for (std::size_t i = 0; i < order_.size(); ++i) write_linked(out, i, written);
  out.end(start);
  file.dropped_objects += nodes_.size() - order_.size();
}

/// Lists the nodes that hang on a root, level by level. Those on a circle never come up.
void NodeTree::link() {
  std::vector<int> by_id(0x10000, NONE);
  for (std::size_t i = 0; i < nodes_.size(); ++i) {
    int& entry = by_id[nodes_[i].id];
    if (entry == NONE) entry = static_cast<int>(i);
  }
  by_id[NO_PARENT] = NONE;

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

void NodeTree::list_descendants() {
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
void NodeTree::write_linked(ChunkWriter& out, std::size_t i, std::size_t& written) {
  if (i == 0) new_id_.assign(nodes_.size(), NO_PARENT);
  const std::size_t index = static_cast<std::size_t>(order_[i]);
  if (!nodes_[index].is_object) return;
  std::size_t parent_id = NO_PARENT;
  if (parents_[index] != NONE) {
    parent_id = new_id_[static_cast<std::size_t>(parents_[index])];
    if (parent_id == NO_PARENT) return;
  }
  new_id_[index] = written;
  write_node(out, nodes_[index], written, parent_id);
  ++written;
}

}  // namespace orv::tds
