// Private block of Node, and the links that keep the tree free of dangling pointers.
#pragma once

#include <orv/core/thread.h>
#include <orv/scene/node.h>

#include <string>
#include <vector>

namespace orv {

// Children in order. Each entry stands also in the `holders` of that child, so that a child that
// dies can leave every list it is in.
class ChildList {
 public:
  explicit ChildList(Node* owner) : ChildList(owner, !owner) {}
  ChildList(Node* owner, bool keeps_places) : owner_(owner), keeps_places_(keeps_places) {}
  ~ChildList() { clear(); }
  ChildList(const ChildList&) = delete;
  ChildList& operator=(const ChildList&) = delete;

  // Node whose children these are; null for a list outside the tree.
  Node* owner() const { return owner_; }
  unsigned int size() const { return static_cast<unsigned int>(nodes_.size()); }
  // Null past the end, and for a child that has died in a list that keeps places.
  Node* at(unsigned int i) const { return i < nodes_.size() ? nodes_[i] : nullptr; }

  void append(Node* child);
  // Takes out the first entry of `child`. False when there is none.
  bool remove(Node* child);
  // Takes out entry `i` of a list that keeps places, leaving null, and returns it.
  Node* take(unsigned int i);
  // Becomes what `other` was, which is empty afterwards.
  void take_all(ChildList& other);
  void clear();
  // Takes out one entry of a child that has dropped this list from its holders already.
  void forget(const Node* child);

 private:
  Node* owner_;
  bool keeps_places_;  // being walked by index
  std::vector<Node*> nodes_;
};

struct NodeData {
  NodeData(Node* node, int id);
  // Leaves all lists and frees all that name this node as their parent.
  ~NodeData();
  NodeData(const NodeData&) = delete;
  NodeData& operator=(const NodeData&) = delete;

  static NodeData& of(const Node* node) { return *node->data_; }
  // Whether `other` is `node` or stands above it.
  static bool stands_below(const Node* node, const Node* other) {
    return node->stands_below(other);
  }

  void set_parent(Node* new_parent);
  void leave_all_lists();
  void drop_holder(const ChildList* list);

  // What drawing reads stands first.
  Node* node;
  Node* parent = nullptr;
  bool render_state = true;
  int ref = 0;
  int layer = 0;
  int renderer_id = 0;
  void* user_data = nullptr;
  Thread thread;
  std::string name;
  std::vector<NODE_TYPE> type_stack;
  ChildList children;
  bool has_other_lists = false;  // nodes that it owns stand in lists of a derived class

  std::vector<ChildList*> holders;  // one for each entry in a list
  // Chain of the nodes that have the same parent, whether or not they stand in its list.
  NodeData* first_ward = nullptr;
  NodeData* next_ward = nullptr;
  NodeData* previous_ward = nullptr;
};

}  // namespace orv
