/// @file
/// Base of everything that objects share and that is backed by API objects.
#pragma once

#include <orv/core/api.h>
#include <orv/scene/node.h>

namespace orv {

/// A node that stands for something shared by many objects: a GPU program, a texture, a material,
/// a GPU buffer. It is counted like any node and found through a ResourceMgr.
///
/// A subclass that overrides set_name calls Resource::set_name, so that managers see the change.
class ORV_API Resource : public Node {
 public:
  /// A node of type NODE_TYPE_RESOURCE without references.
  Resource();
  ~Resource() override;
  Resource(const Resource&) = delete;
  Resource& operator=(const Resource&) = delete;

  /// Names the resource; null is ignored.
  void set_name(const char* name) override;

 private:
  struct ResourceData;
  ResourceData* resource_data_;
};

}  // namespace orv
