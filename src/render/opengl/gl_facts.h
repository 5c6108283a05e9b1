/// @file
/// What is known of a context once the renderer has started on it.
#pragma once

#include <GL/gl.h>

#include <deque>
#include <string>
#include <unordered_map>
#include <unordered_set>

namespace orv {

/// Written by RendererOpenGL::start, only read later.
struct GlFacts {
  int version_major = 0;
  int version_minor = 0;
  bool version_ok = false;
  bool core_context = false;       ///< the context has no fixed pipeline
  bool use_vertex_arrays = false;  ///< geometry is drawn with vertex array objects
  bool gl2_mode = false;           ///< major version 2
  bool renderer_is_radeon = false;
  int s3tc_supported = -1;  ///< -1 unknown, 0, 1
  int rgtc_supported = -1;  ///< -1 unknown, 0, 1
  bool subroutines_supported = false;
  bool instancing_supported = false;
  /// All extensions of the context itself, whether or not a window's list was loaded.
  std::unordered_set<std::string> extensions;

  bool has_extension(const char* name) const { return extensions.count(name) != 0; }
  bool is_version_at_least(int major, int minor) const {
    return version_major > major || (version_major == major && version_minor >= minor);
  }
};

/// Extension names in the order of the driver, at most 127 characters each, with a fast test.
class GlExtensionList {
 public:
  void append(std::string name);
  void clear();
  bool empty() const { return names_.empty(); }
  unsigned int size() const { return static_cast<unsigned int>(names_.size()); }
  /// Null past the end.
  const char* at(unsigned int index) const;
  bool contains(const char* name) const;

  unsigned int num_gl = 0;             ///< names from OpenGL
  unsigned int num_window_system = 0;  ///< names from the window system

 private:
  std::deque<std::string> names_;  // keeps its elements in place for the returned texts
  std::unordered_set<std::string> set_;
};

/// A named limit of the driver, read when first asked for.
struct RendererCapability {
  GLenum gl_enum = 0;
  bool cached = false;
  std::string name;
  unsigned int values[4] = {};
  bool indexed = false;
  unsigned int num_indexed = 0;
};

/// The named limits in order of registration.
class GlCapabilities {
 public:
  /// Adds a limit. A name that is present gives the record there is, an empty name null.
  RendererCapability* add(const char* name, GLenum gl_enum);
  /// Null for null and unknown names.
  RendererCapability* find(const char* name);
  /// Null past the end.
  const RendererCapability* at(unsigned int index) const;
  unsigned int size() const { return static_cast<unsigned int>(records_.size()); }
  void clear();

 private:
  std::deque<RendererCapability> records_;
  std::unordered_map<std::string, RendererCapability*> by_name_;
};

}  // namespace orv
