#pragma once

#include <orv/scene/object.h>

namespace orv {

/// Calls `visit` with each direct child of `node` that is an object; nothing for null. A child that
/// leaves the list on the way is skipped.
template <class Visit>
void visit_object_children(Node* node, Visit visit) {
  if (!node) return;
  for (unsigned int i = 0; i < node->get_num_children(); ++i) {
    Node* child = node->get_child(i);
    if (child && child->is_type_of(NODE_TYPE_OBJECT)) visit(static_cast<Object*>(child));
  }
}

}  // namespace orv
