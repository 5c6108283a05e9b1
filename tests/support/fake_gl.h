#pragma once

#include <deque>
#include <initializer_list>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "render/opengl/gl_loader.h"
#include "render/opengl/gl_table.h"

namespace orv {
class RendererOpenGL;
}

namespace orv::test {

/// OpenGL without a driver. It stands behind every row of the two lists of functions and writes
/// each call down as text, such as "glEnable(GL_CULL_FACE)". Ids come from one counter. Buffers
/// hold their bytes, so that what was written can be read and mapped. One lives at a time.
///
///     FakeGl gl;
///     RendererOpenGL renderer;
///     gl.start(renderer);            // on OpenGL 4.5, calls of the start forgotten
///     renderer.enable_blending(true);
///     EXPECT_THAT(gl.calls(), ElementsAre("glEnable(GL_BLEND)"));
class FakeGl {
 public:
  FakeGl();
  ~FakeGl();
  FakeGl(const FakeGl&) = delete;
  FakeGl& operator=(const FakeGl&) = delete;

  // ---- the driver, to be set before start ----

  /// 4.5 with the fixed pipeline at first. Sets the version text and numbers and the profile.
  void set_version(int major, int minor, bool core_profile = false);
  /// All that a grant names at first.
  void set_extensions(std::vector<std::string> names);
  void add_extension(const std::string& name) { extensions_.push_back(name); }
  void remove_extension(const std::string& name);
  /// The driver does not give this function, by any name.
  void remove_function(const std::string& name) { removed_.insert(name); }
  void set_string(GLenum name, const std::string& text) { strings_[name] = text; }
  void remove_string(GLenum name) { strings_.erase(name); }
  void set_integer(GLenum name, int value) { integers_[name] = {value}; }
  void set_integers(GLenum name, std::vector<int> values) { integers_[name] = std::move(values); }
  void set_float(GLenum name, float value) { floats_[name] = value; }
  /// A question for this name is an error and leaves the caller's memory alone.
  void reject_integer(GLenum name) { rejected_.insert(name); }

  /// The function by a name that some version or extension has; null for others.
  GlProc proc_address(const char* name) const;
  /// Lets a renderer take OpenGL from here.
  void attach(RendererOpenGL& renderer);
  /// Attaches and starts a renderer, then forgets the calls.
  bool start(RendererOpenGL& renderer);

  // ---- what was called ----

  /// Calls so far, in order. Reading of errors is left out.
  const std::vector<std::string>& calls() const;
  /// The calls that begin with one of these texts.
  std::vector<std::string> calls_of(std::initializer_list<const char*> prefixes) const;
  /// The calls whose function does not begin with "glGet" or "glIs".
  std::vector<std::string> changes() const;
  /// How often a function was called, by its name in the lists.
  int count(const std::string& name) const;
  /// Whether this exact call was made.
  bool called(const std::string& call) const;
  void clear();

  // ---- answers ----

  void push_error(GLenum code) { errors_.push_back(code); }
  /// Errors never end, as with a lost context.
  void set_endless_error(GLenum code) { endless_error_ = code; }

  struct ActiveAttrib {
    std::string name;
    int location = -1;
  };
  bool compile_result = true;
  bool link_result = true;
  bool validate_result = true;
  std::string shader_log;
  std::string program_log;
  std::vector<ActiveAttrib> active_attribs;
  std::map<std::string, int> uniform_locations;            ///< -1 for others
  std::map<std::string, unsigned int> uniform_blocks;      ///< GL_INVALID_INDEX for others
  std::map<std::string, unsigned int> storage_blocks;      ///< GL_INVALID_INDEX for others
  std::map<std::string, unsigned int> uniform_indices;     ///< GL_INVALID_INDEX for others
  std::map<std::string, int> subroutine_locations;         ///< -1 for others
  std::map<std::string, unsigned int> subroutine_indices;  ///< GL_INVALID_INDEX for others
  int num_subroutine_locations = 0;
  int uniform_block_size = 64;
  int active_uniform_value = 4;  ///< of glGetActiveUniformsiv
  GLenum framebuffer_status = GL_FRAMEBUFFER_COMPLETE;
  unsigned int query_result = 0;
  int query_available = 1;
  std::vector<unsigned char> texture_pixels;  ///< what glGetTexImage gives
  unsigned char read_pixels_value = 0x5A;     ///< what glReadPixels fills with
  bool map_result = true;                     ///< false: mapping gives null

  /// Bytes of a buffer; empty for an unknown one.
  const std::vector<unsigned char>& buffer_bytes(unsigned int id) const;
  /// Ids that glGen* and glCreate* gave out and that were not deleted since.
  const std::set<unsigned int>& live_ids() const { return live_ids_; }
  /// Id that the next object gets.
  unsigned int next_id() const { return next_id_; }

  static FakeGl* current();

 private:
  friend struct FakeGlAnswers;

  std::map<GLenum, std::string> strings_;
  std::map<GLenum, std::vector<int>> integers_;
  std::map<GLenum, float> floats_;
  std::set<GLenum> rejected_;
  std::vector<std::string> extensions_;
  std::set<std::string> removed_;
  std::deque<GLenum> errors_;
  GLenum endless_error_ = 0;
  unsigned int next_id_ = 1;
  std::set<unsigned int> live_ids_;
  std::set<unsigned int> programs_;
  std::map<GLenum, unsigned int> bound_buffers_;
  std::map<unsigned int, std::vector<unsigned char>> buffers_;
  std::set<unsigned int> mapped_;
  unsigned int bound_program_ = 0;
  unsigned int bound_vertex_array_ = 0;
  unsigned int draw_framebuffer_ = 0;
  unsigned int read_framebuffer_ = 0;
  std::string joined_extensions_;
};

}  // namespace orv::test
