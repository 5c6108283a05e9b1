/// @file
/// Registry of materials.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/gpu/resource_mgr.h>

namespace orv {

/// Keeps materials, so that loaders share them by name.
class ORV_API MaterialMgr : public ResourceMgr {
 public:
  /// A registry of its own; the library uses the one instance alone.
  MaterialMgr();
  ~MaterialMgr() override;

  /// The one instance, made by the first call and never destroyed.
  static MaterialMgr* get();

  /// Makes a material and registers it with one reference. A null name keeps the default.
  Material* create_material(const char* name);
  /// Registers a material with one reference. False for null; true for one registered already.
  bool add_material(Material* material);
};

}  // namespace orv
