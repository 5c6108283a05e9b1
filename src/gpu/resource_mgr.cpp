#include <orv/gpu/resource_mgr.h>

#include <orv/gpu/resource.h>
#include <orv/render/renderer.h>

#include <algorithm>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

#include "gpu/resource_names.h"

namespace orv {

namespace {

struct TextHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const {
    return std::hash<std::string_view>{}(text);
  }
};

using NameIndex = std::unordered_map<std::string, Resource*, TextHash, std::equal_to<>>;

// A resource without API objects may go with any renderer, and any may go without one.
bool may_release(Renderer* renderer, Resource* resource) {
  const int renderer_id = resource->get_renderer_id();
  return renderer_id < 1 || !renderer || renderer->get_id() == renderer_id;
}

}  // namespace

// The list, with an index by pointer, one by id (ids never change) and one by name, which is
// rebuilt at the next search after any resource was renamed.
struct ResourceMgr::ResourceMgrData {
  std::vector<Resource*> resources;
  std::unordered_map<Resource*, int> ids;
  std::unordered_map<int, Resource*> by_id;
  NameIndex by_name;
  unsigned long long by_name_epoch = 0;

  bool contains(Resource* resource) const { return ids.count(resource) != 0; }

  void add(Resource* resource) {
    resources.push_back(resource);
    ids.emplace(resource, resource->get_id());
    by_id.emplace(resource->get_id(), resource);
    by_name_epoch = 0;
  }

  // Takes a resource out of the indices; false when it is in none. Does not look at it.
  bool forget(Resource* resource) {
    const auto place = ids.find(resource);
    if (place == ids.end()) return false;
    by_id.erase(place->second);
    ids.erase(place);
    by_name_epoch = 0;
    return true;
  }

  void remove(Resource* resource) {
    if (!forget(resource)) return;
    const auto entry = std::find(resources.begin(), resources.end(), resource);
    if (entry != resources.end()) resources.erase(entry);
  }

  void index_names() {
    const unsigned long long epoch = detail::resource_name_epoch();
    if (by_name_epoch == epoch) return;
    by_name.clear();
    for (Resource* resource : resources) by_name.emplace(resource->get_name(), resource);
    by_name_epoch = epoch;
  }
};

ResourceMgr::ResourceMgr() : resource_mgr_data_(new ResourceMgrData) {}

ResourceMgr::~ResourceMgr() { delete resource_mgr_data_; }

bool ResourceMgr::start(Renderer*) { return true; }

bool ResourceMgr::stop(Renderer* renderer) {
  release_all_resources(renderer, nullptr);
  return true;
}

// ---- release ---------------------------------------------------------------------------------

int ResourceMgr::release_resource(Renderer* renderer, Resource* resource, Thread*) {
  if (!resource) return 0;
  if (!may_release(renderer, resource)) return 0;
  // The entry goes first: the release may destroy the node.
  resource_mgr_data_->remove(resource);
  return resource->release(renderer, nullptr);
}

bool ResourceMgr::release_all_resources(Renderer* renderer, Thread*) {
  ResourceMgrData& data = *resource_mgr_data_;
  std::vector<Resource*> kept;
  std::vector<Resource*> released;
  for (Resource* resource : data.resources) {
    (may_release(renderer, resource) ? released : kept).push_back(resource);
  }
  data.resources = std::move(kept);
  // A release may come back to this manager and take another one out of the indices.
  for (Resource* resource : released) {
    if (data.forget(resource)) resource->release(renderer, nullptr);
  }
  return true;
}

bool ResourceMgr::remove_resource(Renderer* renderer, Resource* resource) {
  if (!resource) return false;
  resource_mgr_data_->remove(resource);
  if (may_release(renderer, resource)) resource->release(renderer, nullptr);
  return true;
}

// ---- list ------------------------------------------------------------------------------------

bool ResourceMgr::add_resource(Resource* resource) {
  if (!resource) return false;
  if (resource_mgr_data_->contains(resource)) return true;
  resource->add_ref();
  resource_mgr_data_->add(resource);
  return true;
}

unsigned int ResourceMgr::get_num_resources() const {
  return static_cast<unsigned int>(resource_mgr_data_->resources.size());
}

Resource* ResourceMgr::get_resource_by_index(unsigned int index) const {
  const std::vector<Resource*>& resources = resource_mgr_data_->resources;
  return index < resources.size() ? resources[index] : nullptr;
}

Resource* ResourceMgr::get_resource(int id) const {
  const auto found = resource_mgr_data_->by_id.find(id);
  return found == resource_mgr_data_->by_id.end() ? nullptr : found->second;
}

Resource* ResourceMgr::get_resource(const char* name) const {
  if (!name) return nullptr;
  resource_mgr_data_->index_names();
  const NameIndex& names = resource_mgr_data_->by_name;
  const auto found = names.find(std::string_view(name));
  return found == names.end() ? nullptr : found->second;
}

bool ResourceMgr::has_resource(Resource* resource) const {
  return resource && resource_mgr_data_->contains(resource);
}

bool ResourceMgr::has_resource(int id) const { return get_resource(id) != nullptr; }

}  // namespace orv
