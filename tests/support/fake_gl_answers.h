#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>
#include <string>

#include "support/fake_gl.h"

namespace orv::test {

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

}  // namespace orv::test
