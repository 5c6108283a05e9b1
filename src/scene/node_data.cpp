#include "scene/node_data.h"

#include <algorithm>

namespace orv {

// ---- child list -------------------------------------------------------------------------------

void ChildList::append(Node* child) {
  NodeData& data = NodeData::of(child);
  data.holders.push_back(this);
  try {
    nodes_.push_back(child);
  } catch (...) {
    data.holders.pop_back();
    throw;
  }
}

bool ChildList::remove(Node* child) {
  const auto place = std::find(nodes_.begin(), nodes_.end(), child);
  if (place == nodes_.end()) return false;
  nodes_.erase(place);
  NodeData::of(child).drop_holder(this);
  return true;
}

Node* ChildList::take(unsigned int i) {
  Node* child = nodes_[i];
  if (!child) return nullptr;
  nodes_[i] = nullptr;
  NodeData::of(child).drop_holder(this);
  return child;
}

void ChildList::take_all(ChildList& other) {
  clear();
  nodes_.swap(other.nodes_);
  for (Node* child : nodes_) {
    std::vector<ChildList*>& holders = NodeData::of(child).holders;
    *std::find(holders.begin(), holders.end(), &other) = this;
  }
}

void ChildList::clear() {
  for (Node* child : nodes_) {
    if (child) NodeData::of(child).drop_holder(this);
  }
  nodes_.clear();
}

void ChildList::forget(const Node* child) {
  const auto place = std::find(nodes_.begin(), nodes_.end(), child);
  if (place == nodes_.end()) return;
  if (keeps_places_) {
    *place = nullptr;
  } else {
    nodes_.erase(place);
  }
}

// ---- node data --------------------------------------------------------------------------------

NodeData::NodeData(Node* self, int id)
    : node(self),
      name("node_" + std::to_string(id)),
      type_stack(1, NODE_TYPE_NODE),
      children(self) {}

NodeData::~NodeData() {
  leave_all_lists();
  set_parent(nullptr);
  while (first_ward) first_ward->set_parent(nullptr);
}

void NodeData::set_parent(Node* new_parent) {
  if (parent) {
    if (previous_ward) {
      previous_ward->next_ward = next_ward;
    } else {
      of(parent).first_ward = next_ward;
    }
    if (next_ward) next_ward->previous_ward = previous_ward;
  }
  parent = new_parent;
  previous_ward = nullptr;
  next_ward = nullptr;
  if (!parent) return;
  NodeData& above = of(parent);
  next_ward = above.first_ward;
  if (next_ward) next_ward->previous_ward = this;
  above.first_ward = this;
}

void NodeData::leave_all_lists() {
  while (!holders.empty()) {
    ChildList* list = holders.back();
    holders.pop_back();
    list->forget(node);
  }
}

void NodeData::drop_holder(const ChildList* list) {
  const auto place = std::find(holders.begin(), holders.end(), list);
  if (place != holders.end()) holders.erase(place);
}

}  // namespace orv
