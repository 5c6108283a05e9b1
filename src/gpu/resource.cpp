#include <orv/gpu/resource.h>

#include <atomic>

#include "gpu/resource_names.h"

namespace orv {

namespace {

std::atomic<unsigned long long> name_epoch{1};

}  // namespace

unsigned long long detail::resource_name_epoch() {
  return name_epoch.load(std::memory_order_relaxed);
}

struct Resource::ResourceData {
  char reserved = 0;
};

Resource::Resource() : resource_data_(new ResourceData) { set_type(NODE_TYPE_RESOURCE); }

Resource::~Resource() { delete resource_data_; }

void Resource::set_name(const char* name) {
  Node::set_name(name);
  name_epoch.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace orv
