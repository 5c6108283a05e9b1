#include "render/opengl/gl_facts.h"

#include <utility>

namespace orv {

// ---- extensions ----

void GlExtensionList::append(std::string name) {
  set_.insert(name);
  names_.push_back(std::move(name));
}

void GlExtensionList::clear() {
  names_.clear();
  set_.clear();
  num_gl = 0;
  num_window_system = 0;
}

const char* GlExtensionList::at(unsigned int index) const {
  return index < names_.size() ? names_[index].c_str() : nullptr;
}

bool GlExtensionList::contains(const char* name) const { return name && set_.count(name) != 0; }

// ---- capabilities ----

RendererCapability* GlCapabilities::add(const char* name, GLenum gl_enum) {
  if (!name || !*name) return nullptr;
  if (RendererCapability* present = find(name)) return present;
  RendererCapability& record = records_.emplace_back();
  record.name = name;
  record.gl_enum = gl_enum;
  by_name_.emplace(name, &record);
  return &record;
}

RendererCapability* GlCapabilities::find(const char* name) {
  if (!name) return nullptr;
  const auto found = by_name_.find(name);
  return found == by_name_.end() ? nullptr : found->second;
}

const RendererCapability* GlCapabilities::at(unsigned int index) const {
  return index < records_.size() ? &records_[index] : nullptr;
}

void GlCapabilities::clear() {
  by_name_.clear();
  records_.clear();
}

}  // namespace orv
