#include <orv/scene/node.h>

#include <orv/core/log_mgr.h>
#include <orv/core/thread.h>
#include <orv/core/utils.h>

#include <cstring>
#include <deque>
#include <string_view>
#include <unordered_set>
#include <vector>

#include "scene/node_data.h"

namespace orv {

namespace {

// Calls `work` on each child that stands in the list of `node` when the walk begins. A child may
// take itself or others out on the way.
template <class Work>
void for_each_child(const Node* node, Work work) {
  const ChildList& children = NodeData::of(node).children;
  unsigned int i = 0;
  for (unsigned int left = children.size(); left > 0; --left) {
    Node* child = children.at(i);
    if (!child) return;
    work(child);
    if (children.at(i) == child) ++i;
  }
}

}  // namespace

Node::Node() : id_(utils::gen_id()), data_(new NodeData(this, id_)) {}

Node::~Node() { delete data_; }

// ---- walks ------------------------------------------------------------------------------------

bool Node::init(Renderer* renderer, Node* node) {
  _init(renderer);
  for_each_child(node ? node : this, [=](Node* child) { child->init(renderer, nullptr); });
  return true;
}

bool Node::cleanup(Renderer* renderer, Node* node) {
  for_each_child(node ? node : this, [=](Node* child) { child->cleanup(renderer, nullptr); });
  return _cleanup(renderer);
}

bool Node::update(float dt, Node* node) {
  _update(dt);
  for_each_child(node ? node : this, [=](Node* child) { child->update(dt, nullptr); });
  return true;
}

bool Node::build(Node* node) {
  _build();
  for_each_child(node ? node : this, [](Node* child) { child->build(nullptr); });
  return true;
}

void Node::render(Renderer* renderer, Node* /*node*/) {
  if (data_->render_state) _render(renderer);
}

void Node::set_render_state(bool state, Node* node) {
  data_->render_state = state;
  if (!node) return;
  for_each_child(node, [=](Node* child) { child->set_render_state(state, child); });
}

// ---- workers ----------------------------------------------------------------------------------

bool Node::_init(Renderer* /*renderer*/) { return true; }

bool Node::_cleanup(Renderer* /*renderer*/) { return true; }

bool Node::_update(float /*dt*/) { return true; }

bool Node::_build() { return true; }

void Node::_render(Renderer* /*renderer*/) {}

// ---- end --------------------------------------------------------------------------------------

bool Node::kill(Renderer* renderer, Node* node) {
  release(renderer, node);
  return true;
}

bool Node::_kill(Renderer* renderer) {
  _cleanup(renderer);
  data_->leave_all_lists();
  data_->set_parent(nullptr);
  delete this;
  return true;
}

namespace {

// A node whose children are being released. The node is held meanwhile, since it may be among them;
// a child's end may still kill it, so it stands in a list that then forgets it.
struct ReleaseWalk {
  ReleaseWalk(Node* node, Node* parent) : self(nullptr), leaving(nullptr) {
    self.append(node);
    node->add_ref();
    leaving.take_all(NodeData::of(parent).children);
  }

  // The next child that hasn't died, or null at the end.
  Node* next() {
    while (place < leaving.size()) {
      if (Node* child = leaving.take(place++)) return child;
    }
    return nullptr;
  }

  // The node itself, held no longer; null when it has died.
  Node* finish() {
    Node* node = self.take(0);
    if (node) node->remove_ref();
    return node;
  }

  ChildList self;
  ChildList leaving;
  unsigned int place = 0;
};

bool has_children(const Node* node) { return NodeData::of(node).children.size() > 0; }

}  // namespace

int Node::release(Renderer* renderer, Node* node) {
  Node* parent = node ? node : this;
  if (!has_children(parent)) return _release(renderer);
  // Trees may be deeper than the stack allows, and the lists being walked must not move.
  std::deque<ReleaseWalk> open;
  open.emplace_back(this, parent);
  int left = 0;
  while (!open.empty()) {
    if (Node* child = open.back().next()) {
      if (has_children(child)) {
        open.emplace_back(child, child);
      } else {
        child->_release(renderer);
      }
      continue;
    }
    Node* done = open.back().finish();
    open.pop_back();
    left = done ? done->_release(renderer) : 0;
  }
  return left;
}

int Node::_release(Renderer* renderer) {
  if (--data_->ref > 0) return data_->ref;
  _kill(renderer);
  return 0;
}

// ---- identity ---------------------------------------------------------------------------------

const char* Node::get_name() const { return data_->name.c_str(); }

void Node::set_name(const char* name) {
  if (name) data_->name = name;
}

void Node::set_type(NODE_TYPE type) { data_->type_stack.push_back(type); }

NODE_TYPE Node::get_type() const { return data_->type_stack.back(); }

bool Node::is_type_of(NODE_TYPE type) const {
  for (const NODE_TYPE entry : data_->type_stack) {
    if (entry == type) return true;
  }
  return false;
}

// ---- reference count --------------------------------------------------------------------------

void Node::add_ref() { ++data_->ref; }

void Node::remove_ref() { --data_->ref; }

int Node::get_ref() const { return data_->ref; }

// ---- tree -------------------------------------------------------------------------------------

bool Node::stands_below(const Node* other) const {
  if (other == this) return true;
  const NodeData& above = NodeData::of(other);
  if (above.children.size() == 0 && !above.first_ward && !above.has_other_lists) return false;
  std::unordered_set<const Node*> seen;
  std::vector<const Node*> waiting{this};
  while (!waiting.empty()) {
    const NodeData& data = NodeData::of(waiting.back());
    waiting.pop_back();
    const auto visit = [&](const Node* up) {
      if (up && seen.insert(up).second) waiting.push_back(up);
    };
    visit(data.parent);
    for (const ChildList* list : data.holders) visit(list->owner());
  }
  return seen.count(other) != 0;
}

void Node::set_parent(Node* parent) {
  if (parent && parent->stands_below(this)) {
    LogMgr::get().tracef_debug("Node::set_parent() - \"%s\" stands above \"%s\": refused",
                               get_name(), parent->get_name());
    return;
  }
  data_->set_parent(parent);
}

Node* Node::get_parent() const { return data_->parent; }

bool Node::add_child(Node* child) {
  if (!child) return false;
  // A ring would send every walk round for ever.
  if (stands_below(child)) {
    LogMgr::get().tracef_debug("Node::add_child() - \"%s\" stands above \"%s\": refused",
                               child->get_name(), get_name());
    return false;
  }
  data_->children.append(child);
  child->add_ref();
  child->data_->set_parent(this);
  return true;
}

namespace {

using Waiting = std::vector<const Node*>;

// Puts the children of a node on a stack, so that the first of them comes off first.
void push_children(Waiting& waiting, const Node* node) {
  const ChildList& children = NodeData::of(node).children;
  for (unsigned int i = children.size(); i-- > 0;) waiting.push_back(children.at(i));
}

}  // namespace

bool Node::take_child(Node* child) const {
  if (!data_->children.remove(child)) return false;
  child->remove_ref();
  child->data_->set_parent(nullptr);
  return true;
}

int Node::remove_child(Node* child) {
  if (!child) return -1;
  if (take_child(child)) return child->get_ref();
  Waiting waiting;
  push_children(waiting, this);
  while (!waiting.empty()) {
    const Node* holder = waiting.back();
    waiting.pop_back();
    if (!holder->take_child(child)) {
      push_children(waiting, holder);
    } else if (child->get_ref() >= 0) {
      return child->get_ref();
    }
  }
  return -1;
}

void Node::clear_children_list() { data_->children.clear(); }

unsigned int Node::get_num_children() const { return data_->children.size(); }

Node* Node::get_child(unsigned int index) const { return data_->children.at(index); }

namespace {

template <class Matches>
Node* find_among_children(const Node* node, Matches matches) {
  const ChildList& children = NodeData::of(node).children;
  for (unsigned int i = 0; i < children.size(); ++i) {
    if (matches(NodeData::of(children.at(i)))) return children.at(i);
  }
  return nullptr;
}

// First child of `self` that `matches`; then, with a node, the first below the children of that
// node, the children of each before what stands further down.
template <class Matches>
Node* find_below(const Node* self, const Node* node, Matches matches) {
  if (Node* found = find_among_children(self, matches)) return found;
  if (!node) return nullptr;
  Waiting waiting;
  push_children(waiting, node);
  while (!waiting.empty()) {
    const Node* parent = waiting.back();
    waiting.pop_back();
    if (Node* found = find_among_children(parent, matches)) return found;
    push_children(waiting, parent);
  }
  return nullptr;
}

}  // namespace

Node* Node::find_child(const char* name, Node* node) const {
  if (!name) return nullptr;
  const std::string_view wanted(name);
  return find_below(this, node, [=](const NodeData& child) { return child.name == wanted; });
}

Node* Node::find_child(int id, Node* node) const {
  return find_below(this, node, [=](const NodeData& child) { return child.node->id_ == id; });
}

// ---- thread -----------------------------------------------------------------------------------

Thread& Node::get_thread() { return data_->thread; }

Thread* Node::get_thread_ptr() { return &data_->thread; }

void Node::update_thread() { data_->thread.update(); }

bool Node::check_thread() const { return Thread().is_equal(data_->thread); }

// ---- for the host and the renderer ------------------------------------------------------------

void Node::set_user_data_ptr(void* data) { data_->user_data = data; }

void* Node::get_user_data_ptr() const { return data_->user_data; }

int Node::get_layer() const { return data_->layer; }

void Node::set_layer(int layer) { data_->layer = layer; }

bool Node::get_render_state() const { return data_->render_state; }

int Node::get_renderer_id() { return data_->renderer_id; }

void Node::set_renderer_id(int id) { data_->renderer_id = id; }

}  // namespace orv
