#include "support/fake_gl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <sstream>
#include <tuple>
#include <type_traits>
#include <unordered_map>
#include <utility>

#include "render/opengl/renderer_opengl.h"

namespace orv::test {
namespace {

FakeGl* current_fake = nullptr;

// ---- printing --------------------------------------------------------------------------------

const std::unordered_map<GLenum, const char*>& enum_names() {
  static const std::unordered_map<GLenum, const char*> names = {
#define ORV_GL_ENUM(name) {name, #name},
#include "support/gl_enum_names.inc"
  };
  return names;
}

struct NamedBit {
  GLbitfield bit;
  const char* name;
};

std::string print_bits(GLbitfield value, const std::vector<NamedBit>& names) {
  std::string text;
  for (const NamedBit& named : names) {
    if (!(value & named.bit)) continue;
    text += (text.empty() ? "" : "|") + std::string(named.name);
    value &= ~named.bit;
  }
  if (value == 0 && !text.empty()) return text;
  char rest[16];
  std::snprintf(rest, sizeof(rest), "0x%X", value);
  return text.empty() ? rest : text + "|" + rest;
}

std::string print_bitfield(const std::string& function, GLbitfield value) {
  if (function == "glClear" || function == "glBlitFramebuffer") {
    return print_bits(value, {{GL_COLOR_BUFFER_BIT, "GL_COLOR_BUFFER_BIT"},
                              {GL_DEPTH_BUFFER_BIT, "GL_DEPTH_BUFFER_BIT"},
                              {GL_STENCIL_BUFFER_BIT, "GL_STENCIL_BUFFER_BIT"}});
  }
  return print_bits(value, {});
}

std::string print_numbered(const char* name, GLenum base, GLenum value) {
  return name + std::to_string(value - base);
}

std::string print_enum(const std::string& function, const std::string& parameter, GLenum value) {
  static const char* const PRIMITIVES[] = {"GL_POINTS",
                                           "GL_LINES",
                                           "GL_LINE_LOOP",
                                           "GL_LINE_STRIP",
                                           "GL_TRIANGLES",
                                           "GL_TRIANGLE_STRIP",
                                           "GL_TRIANGLE_FAN",
                                           "GL_QUADS",
                                           "GL_QUAD_STRIP",
                                           "GL_POLYGON",
                                           "GL_LINES_ADJACENCY",
                                           "GL_LINE_STRIP_ADJACENCY",
                                           "GL_TRIANGLES_ADJACENCY",
                                           "GL_TRIANGLE_STRIP_ADJACENCY",
                                           "GL_PATCHES"};
  const bool draws =
      (function.rfind("glDraw", 0) == 0 && function != "glDrawBuffer") || function == "glBegin";
  if (draws && parameter == "mode" && value < std::size(PRIMITIVES)) return PRIMITIVES[value];
  if (function == "glBlendFunc" && value < 2) return value == 0 ? "GL_ZERO" : "GL_ONE";
  if (value == 0) return "GL_NONE";
  if (value >= GL_TEXTURE0 && value < GL_TEXTURE0 + 32) {
    return print_numbered("GL_TEXTURE", GL_TEXTURE0, value);
  }
  if (value >= GL_COLOR_ATTACHMENT0 && value < GL_COLOR_ATTACHMENT0 + 32) {
    return print_numbered("GL_COLOR_ATTACHMENT", GL_COLOR_ATTACHMENT0, value);
  }
  if (value >= GL_LIGHT0 && value < GL_LIGHT0 + 8) {
    return print_numbered("GL_LIGHT", GL_LIGHT0, value);
  }
  const auto found = enum_names().find(value);
  if (found != enum_names().end()) return found->second;
  char text[16];
  std::snprintf(text, sizeof(text), "0x%04X", value);
  return text;
}

std::string print_number(double value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

// Declared type and name of each parameter, as the lists spell them.
struct Parameter {
  std::string type;
  std::string name;
};

std::vector<Parameter> parse_parameters(const char* text) {
  std::vector<Parameter> parameters;
  std::string body(text);
  body = body.substr(1, body.size() - 2);
  std::stringstream stream(body);
  std::string part;
  while (std::getline(stream, part, ',')) {
    const std::size_t space = part.find_last_of(" *");
    if (space == std::string::npos) continue;
    std::string type = part.substr(0, space + 1);
    const std::size_t begin = type.find_first_not_of(' ');
    const std::size_t end = type.find_last_not_of(' ');
    parameters.push_back({type.substr(begin, end - begin + 1), part.substr(space + 1)});
  }
  return parameters;
}

// How many values a pointer to numbers leads to, as far as the function tells; 0 when it does not.
int count_values(const std::string& function, const std::vector<std::string>& printed) {
  if (function.find("Matrix4fv") != std::string::npos) return 16 * std::stoi(printed[1]);
  if (function.find("Matrix3fv") != std::string::npos) return 9 * std::stoi(printed[1]);
  if (function == "glLoadMatrixf" || function == "glMultMatrixf") return 16;
  if (function.rfind("glUniform", 0) == 0 && function.back() == 'v') {
    const char digit = function[9];
    if (digit >= '1' && digit <= '4') return (digit - '0') * std::stoi(printed[1]);
    return function.rfind("glUniformSubroutines", 0) == 0 ? std::stoi(printed[1]) : 0;
  }
  if (function.rfind("glVertexAttrib", 0) == 0 && function.back() == 'v') {
    return function[14] >= '1' && function[14] <= '4' ? function[14] - '0' : 0;
  }
  if (function == "glVertex4fv" || function == "glColor4fv") return 4;
  if (function == "glVertex3fv") return 3;
  if (function == "glLightfv") {
    if (printed[1] == "GL_SPOT_DIRECTION") return 3;
    return printed[1] == "GL_SPOT_EXPONENT" || printed[1] == "GL_SPOT_CUTOFF" ? 1 : 4;
  }
  if (function == "glMaterialfv" || function == "glLightModelfv") return 4;
  if (function.rfind("glClearBuffer", 0) == 0 && function.back() == 'v') {
    return printed[0] == "GL_COLOR" ? 4 : 1;
  }
  if (function.rfind("glDelete", 0) == 0 || function == "glDrawBuffers") {
    return std::stoi(printed[0]);
  }
  return 0;
}

class Printer {
 public:
  Printer(const char* function, const std::vector<Parameter>& parameters)
      : function_(function), parameters_(parameters) {}

  template <class T>
  void add(const T& value) {
    const Parameter& parameter = parameters_[printed_.size()];
    printed_.push_back(print(parameter, value));
  }

  std::string text() const {
    std::string all = function_ + "(";
    for (std::size_t i = 0; i < printed_.size(); ++i) all += (i > 0 ? ", " : "") + printed_[i];
    return all + ")";
  }

 private:
  template <class T>
  std::string print(const Parameter& parameter, const T& value) {
    if constexpr (std::is_pointer_v<T>) {
      return print_pointer(parameter, value);
    } else if constexpr (std::is_floating_point_v<T>) {
      return print_number(static_cast<double>(value));
    } else {
      if (parameter.type == "GLenum") {
        return print_enum(function_, parameter.name, static_cast<GLenum>(value));
      }
      if (parameter.type == "GLboolean") return value ? "GL_TRUE" : "GL_FALSE";
      if (parameter.type == "GLbitfield") {
        return print_bitfield(function_, static_cast<GLbitfield>(value));
      }
      if (is_enum_in_disguise(parameter)) {
        return print_enum(function_, parameter.name, static_cast<GLenum>(value));
      }
      return std::to_string(value);
    }
  }

  // Parameters of textures and the like are declared as plain integers.
  bool is_enum_in_disguise(const Parameter& parameter) const {
    if (parameter.name == "internalFormat" || parameter.name == "internalformat") return true;
    if (parameter.name != "param" || printed_.size() < 2) return false;
    static const std::set<std::string> ENUM_PARAMETERS = {
        "GL_TEXTURE_MIN_FILTER",   "GL_TEXTURE_MAG_FILTER", "GL_TEXTURE_WRAP_S",
        "GL_TEXTURE_WRAP_T",       "GL_TEXTURE_WRAP_R",     "GL_TEXTURE_COMPARE_MODE",
        "GL_TEXTURE_COMPARE_FUNC", "GL_DEPTH_TEXTURE_MODE", "GL_TEXTURE_ENV_MODE"};
    return ENUM_PARAMETERS.count(printed_[1]) != 0;
  }

  template <class T>
  std::string print_pointer(const Parameter& parameter, T value) {
    using Pointee = std::remove_cv_t<std::remove_pointer_t<T>>;
    if constexpr (std::is_same_v<Pointee, char>) {
      if (parameter.type == "const GLchar*" && value) return "\"" + std::string(value) + "\"";
    }
    if constexpr (std::is_void_v<Pointee>) {
      // Offsets into buffers are handed over as pointers.
      const bool offset =
          parameter.name == "pointer" || parameter.name == "indices" || parameter.name == "ptr";
      if (offset && reinterpret_cast<std::uintptr_t>(value) < 0x1000000) {
        return std::to_string(reinterpret_cast<std::uintptr_t>(value));
      }
    }
    if (!value) return "null";
    if constexpr (std::is_arithmetic_v<Pointee>) {
      if (parameter.type.rfind("const", 0) == 0) {
        const int count = count_values(function_, printed_);
        if (count > 0) return print_values(parameter, value, count);
      }
    }
    return "ptr";
  }

  template <class T>
  std::string print_values(const Parameter& parameter, const T* values, int count) {
    std::string text = "[";
    for (int i = 0; i < count; ++i) {
      if (i > 0) text += " ";
      text += parameter.type == "const GLenum*"
                  ? print_enum(function_, parameter.name, static_cast<GLenum>(values[i]))
                  : print_number(static_cast<double>(values[i]));
    }
    return text + "]";
  }

  std::string function_;
  const std::vector<Parameter>& parameters_;
  std::vector<std::string> printed_;
};

}  // namespace

// ---- answers ---------------------------------------------------------------------------------

/// One type for each function, to pick its answer by.
namespace tag {
#define ORV_GL(result, name, parameters, arguments, grants) \
  struct name {};
#include "render/opengl/gl_core_functions.inc"
#define ORV_GL(result, name, parameters, arguments, grants) \
  struct name {};
#include "render/opengl/gl_entry_points.inc"
}  // namespace tag

/// What the functions answer that write through pointers or give something back. All others do
/// nothing and give 0.
struct FakeGlAnswers {
  FakeGl& fake;

  // -- strings and numbers --

  const GLubyte* answer(tag::glGetString, GLenum name) {
    if (name == GL_EXTENSIONS) {
      // Core contexts have no such text.
      const bool core = integer(GL_CONTEXT_PROFILE_MASK) & GL_CONTEXT_CORE_PROFILE_BIT;
      if (core) {
        fake.errors_.push_back(GL_INVALID_ENUM);
        return nullptr;
      }
      fake.joined_extensions_.clear();
      for (const std::string& extension : fake.extensions_) {
        fake.joined_extensions_ += extension + " ";
      }
      return bytes(fake.joined_extensions_);
    }
    const auto found = fake.strings_.find(name);
    return found == fake.strings_.end() ? nullptr : bytes(found->second);
  }
  const GLubyte* answer(tag::glGetStringi, GLenum name, GLuint index) {
    if (name != GL_EXTENSIONS || index >= fake.extensions_.size()) return nullptr;
    return bytes(fake.extensions_[index]);
  }
  void answer(tag::glGetIntegerv, GLenum name, GLint* params) {
    if (fake.rejected_.count(name)) {
      fake.errors_.push_back(GL_INVALID_ENUM);
      return;
    }
    if (name == GL_NUM_EXTENSIONS) {
      *params = static_cast<GLint>(fake.extensions_.size());
      return;
    }
    const auto found = fake.integers_.find(name);
    if (found == fake.integers_.end()) {
      *params = static_cast<GLint>(binding(name));
    } else {
      std::copy(found->second.begin(), found->second.end(), params);
    }
  }
  void answer(tag::glGetIntegeri_v, GLenum name, GLuint index, GLint* data) {
    const auto found = fake.integers_.find(name);
    const bool known = found != fake.integers_.end() && index < found->second.size();
    *data = known ? found->second[index] : 0;
  }
  void answer(tag::glGetFloatv, GLenum name, GLfloat* params) {
    const auto found = fake.floats_.find(name);
    *params = found == fake.floats_.end() ? 0.0f : found->second;
  }
  GLenum answer(tag::glGetError) {
    if (fake.endless_error_) return fake.endless_error_;
    if (fake.errors_.empty()) return GL_NO_ERROR;
    const GLenum code = fake.errors_.front();
    fake.errors_.pop_front();
    return code;
  }

  // -- objects --

  void answer(tag::glGenBuffers, GLsizei n, GLuint* ids) { generate(n, ids); }
  void answer(tag::glGenTextures, GLsizei n, GLuint* ids) { generate(n, ids); }
  void answer(tag::glGenFramebuffers, GLsizei n, GLuint* ids) { generate(n, ids); }
  void answer(tag::glGenRenderbuffers, GLsizei n, GLuint* ids) { generate(n, ids); }
  void answer(tag::glGenVertexArrays, GLsizei n, GLuint* ids) { generate(n, ids); }
  void answer(tag::glGenQueries, GLsizei n, GLuint* ids) { generate(n, ids); }
  void answer(tag::glDeleteBuffers, GLsizei n, const GLuint* ids) {
    for (GLsizei i = 0; i < n; ++i) {
      fake.buffers_.erase(ids[i]);
      for (auto& [target, bound] : fake.bound_buffers_) {
        if (bound == ids[i]) bound = 0;
      }
    }
    release(n, ids);
  }
  void answer(tag::glDeleteTextures, GLsizei n, const GLuint* ids) { release(n, ids); }
  void answer(tag::glDeleteFramebuffers, GLsizei n, const GLuint* ids) { release(n, ids); }
  void answer(tag::glDeleteRenderbuffers, GLsizei n, const GLuint* ids) { release(n, ids); }
  void answer(tag::glDeleteVertexArrays, GLsizei n, const GLuint* ids) { release(n, ids); }
  void answer(tag::glDeleteQueries, GLsizei n, const GLuint* ids) { release(n, ids); }
  GLuint answer(tag::glCreateProgram) {
    const GLuint id = generate();
    fake.programs_.insert(id);
    return id;
  }
  GLuint answer(tag::glCreateShader, GLenum) { return generate(); }
  void answer(tag::glDeleteProgram, GLuint id) {
    fake.programs_.erase(id);
    release(1, &id);
  }
  void answer(tag::glDeleteShader, GLuint id) { release(1, &id); }
  GLboolean answer(tag::glIsProgram, GLuint id) { return fake.programs_.count(id) ? 1 : 0; }
  GLboolean answer(tag::glIsVertexArray, GLuint id) { return fake.live_ids_.count(id) ? 1 : 0; }
  GLboolean answer(tag::glIsTexture, GLuint id) { return fake.live_ids_.count(id) ? 1 : 0; }
  GLboolean answer(tag::glIsQuery, GLuint id) { return fake.live_ids_.count(id) ? 1 : 0; }
  GLuint answer(tag::glGenLists, GLsizei range) {
    const GLuint first = fake.next_id_;
    for (GLsizei i = 0; i < range; ++i) generate();
    return first;
  }
  void answer(tag::glDeleteLists, GLuint list, GLsizei range) {
    for (GLsizei i = 0; i < range; ++i) fake.live_ids_.erase(list + static_cast<GLuint>(i));
  }

  // -- buffers --

  void answer(tag::glBindBuffer, GLenum target, GLuint id) { fake.bound_buffers_[target] = id; }
  void answer(tag::glBindBufferBase, GLenum target, GLuint, GLuint id) {
    fake.bound_buffers_[target] = id;
  }
  void answer(tag::glBufferData, GLenum target, GLsizeiptr size, const void* data, GLenum) {
    auto& bytes = fake.buffers_[fake.bound_buffers_[target]];
    bytes.assign(static_cast<std::size_t>(size), 0);
    if (data) std::memcpy(bytes.data(), data, bytes.size());
  }
  void answer(tag::glBufferStorage, GLenum target, GLsizeiptr size, const void* data, GLbitfield) {
    answer(tag::glBufferData(), target, size, data, 0);
  }
  void answer(tag::glBufferSubData, GLenum target, GLintptr offset, GLsizeiptr size,
              const void* data) {
    if (unsigned char* place = range(target, offset, size)) {
      std::memcpy(place, data, static_cast<std::size_t>(size));
    }
  }
  void answer(tag::glGetBufferSubData, GLenum target, GLintptr offset, GLsizeiptr size,
              void* data) {
    if (const unsigned char* place = range(target, offset, size)) {
      std::memcpy(data, place, static_cast<std::size_t>(size));
    }
  }
  void answer(tag::glCopyBufferSubData, GLenum from, GLenum to, GLintptr read, GLintptr write,
              GLsizeiptr size) {
    const unsigned char* source = range(from, read, size);
    unsigned char* target = range(to, write, size);
    if (source && target) std::memmove(target, source, static_cast<std::size_t>(size));
  }
  void answer(tag::glGetBufferParameteriv, GLenum target, GLenum name, GLint* params) {
    const auto& bytes = fake.buffers_[fake.bound_buffers_[target]];
    *params = name == GL_BUFFER_SIZE ? static_cast<GLint>(bytes.size()) : 0;
    if (name == GL_BUFFER_MAPPED) *params = fake.mapped_.count(fake.bound_buffers_[target]) ? 1 : 0;
  }
  void* answer(tag::glMapBuffer, GLenum target, GLenum) { return map(target, 0, 0); }
  void* answer(tag::glMapBufferRange, GLenum target, GLintptr offset, GLsizeiptr size, GLbitfield) {
    return map(target, offset, size);
  }
  GLboolean answer(tag::glUnmapBuffer, GLenum target) {
    return fake.mapped_.erase(fake.bound_buffers_[target]) ? GL_TRUE : GL_FALSE;
  }

  // -- programs --

  void answer(tag::glGetShaderiv, GLuint, GLenum name, GLint* params) {
    *params = 0;
    if (name == GL_COMPILE_STATUS) *params = fake.compile_result ? 1 : 0;
    if (name == GL_INFO_LOG_LENGTH) *params = log_length(fake.shader_log);
  }
  void answer(tag::glGetProgramiv, GLuint, GLenum name, GLint* params) {
    *params = 0;
    if (name == GL_LINK_STATUS) *params = fake.link_result ? 1 : 0;
    if (name == GL_VALIDATE_STATUS) *params = fake.validate_result ? 1 : 0;
    if (name == GL_INFO_LOG_LENGTH) *params = log_length(fake.program_log);
    if (name == GL_ACTIVE_ATTRIBUTES) *params = static_cast<GLint>(fake.active_attribs.size());
    if (name == GL_ACTIVE_ATTRIBUTE_MAX_LENGTH) *params = 64;
    if (name == GL_ACTIVE_UNIFORM_BLOCKS) *params = static_cast<GLint>(fake.uniform_blocks.size());
  }
  void answer(tag::glGetShaderInfoLog, GLuint, GLsizei size, GLsizei* length, GLchar* text) {
    copy_text(fake.shader_log, size, length, text);
  }
  void answer(tag::glGetProgramInfoLog, GLuint, GLsizei size, GLsizei* length, GLchar* text) {
    copy_text(fake.program_log, size, length, text);
  }
  void answer(tag::glGetActiveAttrib, GLuint, GLuint index, GLsizei size, GLsizei* length,
              GLint* count, GLenum* type, GLchar* name) {
    if (index >= fake.active_attribs.size()) return;
    copy_text(fake.active_attribs[index].name, size, length, name);
    if (count) *count = 1;
    if (type) *type = GL_FLOAT_VEC4;
  }
  GLint answer(tag::glGetAttribLocation, GLuint, const GLchar* name) {
    for (const FakeGl::ActiveAttrib& attrib : fake.active_attribs) {
      if (attrib.name == name) return attrib.location;
    }
    return -1;
  }
  void answer(tag::glBindAttribLocation, GLuint, GLuint index, const GLchar* name) {
    for (FakeGl::ActiveAttrib& attrib : fake.active_attribs) {
      if (attrib.name == name) attrib.location = static_cast<int>(index);
    }
  }
  GLint answer(tag::glGetUniformLocation, GLuint, const GLchar* name) {
    return look_up(fake.uniform_locations, name, -1);
  }
  GLuint answer(tag::glGetUniformBlockIndex, GLuint, const GLchar* name) {
    return look_up(fake.uniform_blocks, name, GL_INVALID_INDEX);
  }
  void answer(tag::glGetActiveUniformBlockiv, GLuint, GLuint, GLenum, GLint* params) {
    *params = fake.uniform_block_size;
  }
  void answer(tag::glGetUniformIndices, GLuint, GLsizei count, const GLchar* const* names,
              GLuint* indices) {
    for (GLsizei i = 0; i < count; ++i) {
      indices[i] = look_up(fake.uniform_indices, names[i], GL_INVALID_INDEX);
    }
  }
  void answer(tag::glGetActiveUniformsiv, GLuint, GLsizei count, const GLuint*, GLenum,
              GLint* params) {
    for (GLsizei i = 0; i < count; ++i) params[i] = fake.active_uniform_value;
  }
  GLuint answer(tag::glGetProgramResourceIndex, GLuint, GLenum, const GLchar* name) {
    return look_up(fake.storage_blocks, name, GL_INVALID_INDEX);
  }
  GLint answer(tag::glGetSubroutineUniformLocation, GLuint, GLenum, const GLchar* name) {
    return look_up(fake.subroutine_locations, name, -1);
  }
  GLuint answer(tag::glGetSubroutineIndex, GLuint, GLenum, const GLchar* name) {
    return look_up(fake.subroutine_indices, name, GL_INVALID_INDEX);
  }
  void answer(tag::glGetProgramStageiv, GLuint, GLenum, GLenum, GLint* values) {
    *values = fake.num_subroutine_locations;
  }

  // -- what is bound --

  void answer(tag::glUseProgram, GLuint id) { fake.bound_program_ = id; }
  void answer(tag::glBindFramebuffer, GLenum target, GLuint id) {
    if (target != GL_READ_FRAMEBUFFER) fake.draw_framebuffer_ = id;
    if (target != GL_DRAW_FRAMEBUFFER) fake.read_framebuffer_ = id;
  }
  void answer(tag::glBindVertexArray, GLuint id) { fake.bound_vertex_array_ = id; }

  // -- the rest --

  GLenum answer(tag::glCheckFramebufferStatus, GLenum) { return fake.framebuffer_status; }
  void answer(tag::glReadPixels, GLint, GLint, GLsizei width, GLsizei height, GLenum format, GLenum,
              void* pixels) {
    const int size = width * height * (format == GL_RGB ? 3 : 4);
    if (pixels) std::memset(pixels, fake.read_pixels_value, static_cast<std::size_t>(size));
  }
  void answer(tag::glGetTexImage, GLenum, GLint, GLenum, GLenum, void* pixels) {
    if (pixels) std::copy(fake.texture_pixels.begin(), fake.texture_pixels.end(), bytes(pixels));
  }
  void answer(tag::glGetTexLevelParameteriv, GLenum, GLint, GLenum name, GLint* params) {
    const auto found = fake.integers_.find(name);
    *params = found == fake.integers_.end() ? 0 : found->second[0];
  }
  void answer(tag::glGetQueryiv, GLenum, GLenum, GLint* params) { *params = 32; }
  void answer(tag::glGetQueryObjectiv, GLuint, GLenum name, GLint* params) {
    *params = name == GL_QUERY_RESULT_AVAILABLE ? fake.query_available
                                                : static_cast<GLint>(fake.query_result);
  }
  void answer(tag::glGetQueryObjectuiv, GLuint, GLenum name, GLuint* params) {
    *params = name == GL_QUERY_RESULT_AVAILABLE ? static_cast<GLuint>(fake.query_available)
                                                : fake.query_result;
  }
  GLuint64 answer(tag::glGetTextureHandleARB, GLuint texture) { return 0x1000ull + texture; }

 private:
  static const GLubyte* bytes(const std::string& text) {
    return reinterpret_cast<const GLubyte*>(text.c_str());
  }
  static unsigned char* bytes(void* pixels) { return static_cast<unsigned char*>(pixels); }
  int integer(GLenum name) const {
    const auto found = fake.integers_.find(name);
    return found == fake.integers_.end() ? 0 : found->second[0];
  }
  GLuint generate() {
    fake.live_ids_.insert(fake.next_id_);
    return fake.next_id_++;
  }
  void generate(GLsizei n, GLuint* ids) {
    for (GLsizei i = 0; i < n; ++i) ids[i] = generate();
  }
  void release(GLsizei n, const GLuint* ids) {
    for (GLsizei i = 0; i < n; ++i) {
      if (ids[i] != 0 && fake.live_ids_.erase(ids[i]) == 0) {
        ADD_FAILURE() << "OpenGL object " << ids[i] << " deleted that is not there";
      }
    }
  }
  // What a question for a binding answers, unless a test has set another answer.
  GLuint binding(GLenum name) {
    switch (name) {
      case GL_CURRENT_PROGRAM:
        return fake.bound_program_;
      case GL_VERTEX_ARRAY_BINDING:
        return fake.bound_vertex_array_;
      case GL_DRAW_FRAMEBUFFER_BINDING:
        return fake.draw_framebuffer_;
      case GL_READ_FRAMEBUFFER_BINDING:
        return fake.read_framebuffer_;
      case GL_ARRAY_BUFFER_BINDING:
        return fake.bound_buffers_[GL_ARRAY_BUFFER];
      case GL_ELEMENT_ARRAY_BUFFER_BINDING:
        return fake.bound_buffers_[GL_ELEMENT_ARRAY_BUFFER];
      case GL_UNIFORM_BUFFER_BINDING:
        return fake.bound_buffers_[GL_UNIFORM_BUFFER];
      case GL_SHADER_STORAGE_BUFFER_BINDING:
        return fake.bound_buffers_[GL_SHADER_STORAGE_BUFFER];
      default:
        return 0;
    }
  }
  void* map(GLenum target, GLintptr offset, GLsizeiptr size) {
    if (!fake.map_result) return nullptr;
    fake.mapped_.insert(fake.bound_buffers_[target]);
    return range(target, offset, size);
  }
  unsigned char* range(GLenum target, GLintptr offset, GLsizeiptr size) {
    auto& buffer = fake.buffers_[fake.bound_buffers_[target]];
    const auto end = static_cast<GLsizeiptr>(buffer.size());
    if (offset < 0 || size < 0 || offset > end || size > end - offset) {
      ADD_FAILURE() << "range of a buffer out of bounds: " << offset << " + " << size << " of "
                    << end;
      return nullptr;
    }
    return buffer.data() + offset;
  }
  static GLint log_length(const std::string& log) {
    return log.empty() ? 0 : static_cast<GLint>(log.size()) + 1;
  }
  static void copy_text(const std::string& text, GLsizei size, GLsizei* length, GLchar* out) {
    if (size < 1 || !out) return;
    const auto count = std::min(text.size(), static_cast<std::size_t>(size) - 1);
    std::memcpy(out, text.data(), count);
    out[count] = '\0';
    if (length) *length = static_cast<GLsizei>(count);
  }
  template <class T>
  static T look_up(const std::map<std::string, T>& map, const GLchar* name, T missing) {
    const auto found = map.find(name);
    return found == map.end() ? missing : found->second;
  }
};

namespace {

// ---- functions -------------------------------------------------------------------------------

struct Function {
  std::string name;  ///< in the lists
  GlProc proc;
};

template <class Result, class Tag, class... Args>
Result run(const char* name, const std::vector<Parameter>& parameters,
           std::map<std::string, int>& counts, std::vector<std::string>& calls, Args... arguments) {
  ++counts[name];
  if constexpr (!std::is_same_v<Tag, tag::glGetError>) {
    Printer printer(name, parameters);
    (printer.add(arguments), ...);
    calls.push_back(printer.text());
  }
  FakeGlAnswers answers{*current_fake};
  if constexpr (requires { answers.answer(Tag(), arguments...); }) {
    return answers.answer(Tag(), arguments...);
  } else if constexpr (!std::is_void_v<Result>) {
    return Result();
  }
}

}  // namespace

/// The functions as OpenGL has them.
struct FakeGlFunctions {
  static std::map<std::string, int>& counts();
  static std::vector<std::string>& calls();

  template <class Result, class Tag, class... Args>
  static Result call(const char* name, const char* declared, std::tuple<Args...> arguments) {
    static const std::vector<Parameter> parameters = parse_parameters(declared);
    return std::apply(
        [&](Args... values) -> Result {
          return run<Result, Tag>(name, parameters, counts(), calls(), values...);
        },
        arguments);
  }

#define ORV_GL(result, name, parameters, arguments, grants)                        \
  static result APIENTRY name parameters {                                         \
    return call<result, tag::name>(#name, #parameters, std::make_tuple arguments); \
  }
#include "render/opengl/gl_core_functions.inc"
#define ORV_GL(result, name, parameters, arguments, grants)                        \
  static result APIENTRY name parameters {                                         \
    return call<result, tag::name>(#name, #parameters, std::make_tuple arguments); \
  }
#include "render/opengl/gl_entry_points.inc"
};

std::map<std::string, int>& FakeGlFunctions::counts() {
  static std::map<std::string, int> all;
  return all;
}

std::vector<std::string>& FakeGlFunctions::calls() {
  static std::vector<std::string> all;
  return all;
}

namespace {

// The names of a grants text: functions behind "=", extensions before.
void split_grants(const char* grants, const std::string& name, std::set<std::string>* functions,
                  std::set<std::string>* extensions) {
  std::stringstream stream(grants);
  std::string word;
  while (stream >> word) {
    if (word.rfind("fixed:", 0) == 0) word = word.substr(6);
    const std::size_t equals = word.find('=');
    functions->insert(equals == std::string::npos ? name : word.substr(equals + 1));
    const std::string condition = word.substr(0, equals);
    if (condition.rfind("GL_", 0) == 0) extensions->insert(condition);
  }
}

struct Directory {
  std::map<std::string, Function> functions;  ///< by every name that a grant has
  std::set<std::string> extensions;

  void add(const char* name, const char* grants, GlProc proc) {
    std::set<std::string> names = {name};
    split_grants(grants, name, &names, &extensions);
    for (const std::string& alias : names) functions[alias] = {name, proc};
  }
};

const Directory& directory() {
  static const Directory all = [] {
    Directory made;
#define ORV_GL(result, name, parameters, arguments, grants) \
  made.add(#name, grants, reinterpret_cast<GlProc>(&FakeGlFunctions::name));
#include "render/opengl/gl_core_functions.inc"
#define ORV_GL(result, name, parameters, arguments, grants) \
  made.add(#name, grants, reinterpret_cast<GlProc>(&FakeGlFunctions::name));
#include "render/opengl/gl_entry_points.inc"
    return made;
  }();
  return all;
}

}  // namespace

// ---- the fake --------------------------------------------------------------------------------

FakeGl::FakeGl() {
  EXPECT_EQ(current_fake, nullptr) << "one fake OpenGL at a time";
  current_fake = this;
  clear();
  set_version(4, 5);
  strings_[GL_VENDOR] = "Fake vendor";
  strings_[GL_RENDERER] = "Fake renderer";
  strings_[GL_SHADING_LANGUAGE_VERSION] = "4.50";
  extensions_.assign(directory().extensions.begin(), directory().extensions.end());
  extensions_.push_back("GL_EXT_texture_filter_anisotropic");
  const std::pair<GLenum, int> limits[] = {{GL_MAX_TEXTURE_SIZE, 4096},
                                           {GL_MAX_TEXTURE_IMAGE_UNITS, 16},
                                           {GL_MAX_VERTEX_ATTRIBS, 16},
                                           {GL_MAX_PATCH_VERTICES, 32},
                                           {GL_MAX_COLOR_ATTACHMENTS, 8},
                                           {GL_MAX_DRAW_BUFFERS, 8},
                                           {GL_MAX_SAMPLES, 8},
                                           {GL_MAX_INTEGER_SAMPLES, 4},
                                           {GL_MAX_IMAGE_UNITS, 8},
                                           {GL_MAX_TEXTURE_UNITS, 8},
                                           {GL_MAX_ARRAY_TEXTURE_LAYERS, 256},
                                           {GL_ACTIVE_TEXTURE, GL_TEXTURE0},
                                           {GL_DRAW_BUFFER, GL_BACK},
                                           {GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS, 32}};
  for (const auto& [name, value] : limits) set_integer(name, value);
  set_integers(GL_VIEWPORT, {0, 0, 640, 480});
  set_float(GL_MAX_TEXTURE_MAX_ANISOTROPY_EXT, 16.0f);
}

FakeGl::~FakeGl() { current_fake = nullptr; }

FakeGl* FakeGl::current() { return current_fake; }

void FakeGl::set_version(int major, int minor, bool core_profile) {
  strings_[GL_VERSION] = std::to_string(major) + "." + std::to_string(minor) +
                         (core_profile ? " (Core Profile) Fake" : " (Compatibility Profile) Fake");
  // Drivers below 3.0 do not know these names.
  if (major >= 3) {
    set_integer(GL_MAJOR_VERSION, major);
    set_integer(GL_MINOR_VERSION, minor);
    rejected_.erase(GL_MAJOR_VERSION);
    rejected_.erase(GL_MINOR_VERSION);
  } else {
    reject_integer(GL_MAJOR_VERSION);
    reject_integer(GL_MINOR_VERSION);
  }
  set_integer(GL_CONTEXT_PROFILE_MASK,
              core_profile ? GL_CONTEXT_CORE_PROFILE_BIT : GL_CONTEXT_COMPATIBILITY_PROFILE_BIT);
}

void FakeGl::set_extensions(std::vector<std::string> names) { extensions_ = std::move(names); }

void FakeGl::remove_extension(const std::string& name) {
  extensions_.erase(std::remove(extensions_.begin(), extensions_.end(), name), extensions_.end());
}

GlProc FakeGl::proc_address(const char* name) const {
  const auto found = directory().functions.find(name);
  if (found == directory().functions.end() || removed_.count(found->second.name)) return nullptr;
  return found->second.proc;
}

void FakeGl::attach(RendererOpenGL& renderer) {
  renderer.use_proc_address([this](const char* name) { return proc_address(name); });
}

bool FakeGl::start(RendererOpenGL& renderer) {
  attach(renderer);
  const bool started = renderer.start();
  clear();
  return started;
}

const std::vector<std::string>& FakeGl::calls() const { return FakeGlFunctions::calls(); }

std::vector<std::string> FakeGl::calls_of(std::initializer_list<const char*> prefixes) const {
  std::vector<std::string> found;
  for (const std::string& call : calls()) {
    for (const char* prefix : prefixes) {
      if (call.rfind(prefix, 0) != 0) continue;
      found.push_back(call);
      break;
    }
  }
  return found;
}

std::vector<std::string> FakeGl::changes() const {
  std::vector<std::string> found;
  for (const std::string& call : calls()) {
    if (call.rfind("glGet", 0) != 0 && call.rfind("glIs", 0) != 0) found.push_back(call);
  }
  return found;
}

int FakeGl::count(const std::string& name) const {
  const auto& counts = FakeGlFunctions::counts();
  const auto found = counts.find(name);
  return found == counts.end() ? 0 : found->second;
}

bool FakeGl::called(const std::string& call) const {
  return std::find(calls().begin(), calls().end(), call) != calls().end();
}

void FakeGl::clear() {
  FakeGlFunctions::calls().clear();
  FakeGlFunctions::counts().clear();
}

const std::vector<unsigned char>& FakeGl::buffer_bytes(unsigned int id) const {
  static const std::vector<unsigned char> none;
  const auto found = buffers_.find(id);
  return found == buffers_.end() ? none : found->second;
}

}  // namespace orv::test
