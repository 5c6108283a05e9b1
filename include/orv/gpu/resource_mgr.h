/// @file
/// Registered list of shared resources.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {

/// Keeps resources so that they can be found by id, name or index and released together.
///
/// Each entry holds one reference. A resource may be released by a renderer when it never reached
/// a renderer (its renderer id is below 1), when the renderer given is null, or when it was made by
/// this renderer (its renderer id is the renderer's plugin id). All calls for one manager come from
/// one thread at a time; releases run on the thread of the renderer.
class ORV_API ResourceMgr {
 public:
  /// An empty list.
  ResourceMgr();
  /// Frees the list and releases nothing.
  virtual ~ResourceMgr();
  /// Does nothing; true.
  virtual bool start(Renderer* renderer);
  /// Releases all resources that this renderer may release; true.
  virtual bool stop(Renderer* renderer);
  /// Releases one reference of a resource and takes it out of the list, also when others still hold
  /// it. A resource that is not in the list is released too.
  /// @param thread not read; kept for callers of older versions
  /// @return the references left, as Node::release; 0 for null and for a resource that this
  ///     renderer may not release, which stays in the list
  virtual int release_resource(Renderer* renderer, Resource* resource, Thread* thread);
  /// Releases all resources that this renderer may release. Those of other renderers stay, in
  /// their order.
  /// @param thread not read
  /// @return true
  virtual bool release_all_resources(Renderer* renderer, Thread* thread);

  ResourceMgr(const ResourceMgr&) = delete;
  ResourceMgr& operator=(const ResourceMgr&) = delete;

  /// Entries of the list.
  unsigned int get_num_resources() const;
  /// Entry in the order of addition; null past the end. The manager keeps its reference, here and
  /// below.
  Resource* get_resource_by_index(unsigned int index) const;
  /// Resource with this node id, or null.
  Resource* get_resource(int id) const;
  /// First resource added among those of exactly this name; null for none and for a null name.
  Resource* get_resource(const char* name) const;

  /// @{
  /// Whether the resource, or one with this node id, is in the list; false for null.
  bool has_resource(Resource* resource) const;
  bool has_resource(int id) const;
  /// @}

 protected:
  /// Appends a resource and takes a reference. False for null; true with no effect for a resource
  /// that is in the list already.
  bool add_resource(Resource* resource);
  /// Takes a resource out of the list and releases it unless it belongs to another renderer. False
  /// for null only.
  bool remove_resource(Renderer* renderer, Resource* resource);

 private:
  struct ResourceMgrData;
  ResourceMgrData* resource_mgr_data_;
};

}  // namespace orv
