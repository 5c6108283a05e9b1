// Uniform and storage blocks of programs.
#include <orv/gpu/gpu_program_data.h>

#include <vector>

#include "render/opengl/renderer_opengl.h"

namespace orv {

unsigned int RendererOpenGL::gpu_program_get_uniform_block_index(GpuProgramData* program,
                                                                 const char* name) {
  if (!name || !gl_.glGetUniformBlockIndex || !has_link(program)) return GL_INVALID_INDEX;
  return gl_.glGetUniformBlockIndex(program->program_id, name);
}

int RendererOpenGL::gpu_program_get_uniform_block_size(GpuProgramData* program, const char* name,
                                                       unsigned int index) {
  if (!gl_.glGetActiveUniformBlockiv || !has_link(program)) return 0;
  if (name) index = gpu_program_get_uniform_block_index(program, name);
  GLint count = 0;
  gl_.glGetProgramiv(program->program_id, GL_ACTIVE_UNIFORM_BLOCKS, &count);
  if (index >= static_cast<unsigned int>(count)) return 0;
  GLint size = 0;
  gl_.glGetActiveUniformBlockiv(program->program_id, index, GL_UNIFORM_BLOCK_DATA_SIZE, &size);
  return size;
}

bool RendererOpenGL::gpu_program_set_uniform_block_binding(GpuProgramData* program,
                                                           unsigned int block,
                                                           unsigned int binding) {
  if (lacks(gl_.glUniformBlockBinding, "glUniformBlockBinding") || block == GL_INVALID_INDEX ||
      !has_link(program))
    return false;
  gl_.glUniformBlockBinding(program->program_id, block, binding);
  return true;
}

bool RendererOpenGL::read_active_uniforms(GpuProgramData* program, const char** names,
                                          unsigned int count, unsigned int what, int missing,
                                          int* out) {
  std::vector<const char*> texts(names, names + count);
  for (const char*& text : texts) {
    if (!text) text = "";
  }
  std::vector<GLuint> indices(count, GL_INVALID_INDEX);
  gl_.glGetUniformIndices(program->program_id, static_cast<GLsizei>(count), texts.data(),
                          indices.data());
  // One unknown name would make the driver refuse the whole question.
  std::vector<GLuint> known;
  for (const GLuint index : indices) {
    if (index != GL_INVALID_INDEX) known.push_back(index);
  }
  std::vector<GLint> values(known.size(), missing);
  if (!known.empty()) {
    gl_.glGetActiveUniformsiv(program->program_id, static_cast<GLsizei>(known.size()), known.data(),
                              what, values.data());
  }
  std::size_t next = 0;
  for (unsigned int i = 0; i < count; ++i) {
    out[i] = indices[i] != GL_INVALID_INDEX ? values[next++] : missing;
  }
  return known.size() == count;
}

bool RendererOpenGL::gpu_program_get_uniform_size_and_offset(GpuProgramData* program,
                                                             const char** names, unsigned int count,
                                                             int* sizes, int* offsets) {
  if (!names || count == 0 || lacks(gl_.glGetUniformIndices, "glGetUniformIndices") ||
      lacks(gl_.glGetActiveUniformsiv, "glGetActiveUniformsiv") || !has_link(program)) {
    return false;
  }
  bool found = true;
  if (sizes) found &= read_active_uniforms(program, names, count, GL_UNIFORM_SIZE, 0, sizes);
  if (offsets) {
    found &= read_active_uniforms(program, names, count, GL_UNIFORM_OFFSET, -1, offsets);
  }
  return found;
}

bool RendererOpenGL::gpu_program_get_uniform_array_stride(GpuProgramData* program,
                                                          const char** names, unsigned int count,
                                                          int* strides) {
  if (!names || !strides || count == 0 || lacks(gl_.glGetUniformIndices, "glGetUniformIndices") ||
      lacks(gl_.glGetActiveUniformsiv, "glGetActiveUniformsiv") || !has_link(program)) {
    return false;
  }
  return read_active_uniforms(program, names, count, GL_UNIFORM_ARRAY_STRIDE, -1, strides);
}

unsigned int RendererOpenGL::gpu_program_get_shader_storage_block_index(GpuProgramData* program,
                                                                        const char* name) {
  if (!name || !gl_.glGetProgramResourceIndex || !has_link(program)) return GL_INVALID_INDEX;
  return gl_.glGetProgramResourceIndex(program->program_id, GL_SHADER_STORAGE_BLOCK, name);
}

bool RendererOpenGL::gpu_program_set_shader_storage_block_binding(GpuProgramData* program,
                                                                  unsigned int block,
                                                                  unsigned int binding) {
  if (lacks(gl_.glShaderStorageBlockBinding, "glShaderStorageBlockBinding") ||
      block == GL_INVALID_INDEX || !has_link(program)) {
    return false;
  }
  gl_.glShaderStorageBlockBinding(program->program_id, block, binding);
  return true;
}

}  // namespace orv
