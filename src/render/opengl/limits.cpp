// Limits of the driver, and the memory of GPUs.

#include "render/opengl/renderer_opengl.h"

namespace orv {
namespace {

struct NamedLimit {
  const char* name;
  GLenum gl_enum;
};

#define NAMED(name) \
  { #name, name }

constexpr NamedLimit NAMED_LIMITS[] = {
    NAMED(GL_MAX_SUBROUTINES),
    NAMED(GL_MAX_SUBROUTINE_UNIFORM_LOCATIONS),
    NAMED(GL_MAX_VERTEX_ATTRIBS),
    NAMED(GL_MAX_TEXTURE_SIZE),
    NAMED(GL_MAX_RECTANGLE_TEXTURE_SIZE),
    NAMED(GL_MAX_TEXTURE_IMAGE_UNITS),
    NAMED(GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS),
    NAMED(GL_MAX_VERTEX_TEXTURE_IMAGE_UNITS),
    NAMED(GL_MAX_COMPUTE_TEXTURE_IMAGE_UNITS),
    NAMED(GL_MAX_ARRAY_TEXTURE_LAYERS),
    NAMED(GL_MAX_COLOR_ATTACHMENTS),
    NAMED(GL_MAX_DRAW_BUFFERS),
    NAMED(GL_MAX_VIEWPORT_DIMS),
    NAMED(GL_MAX_SAMPLES),
    NAMED(GL_MAX_VERTEX_STREAMS),
    NAMED(GL_MAX_GEOMETRY_SHADER_INVOCATIONS),
    NAMED(GL_MAX_PATCH_VERTICES),
    NAMED(GL_MAX_TESS_GEN_LEVEL),
    NAMED(GL_MAX_TRANSFORM_FEEDBACK_BUFFERS),
    NAMED(GL_MAX_COMPUTE_WORK_GROUP_COUNT),
    NAMED(GL_MAX_COMPUTE_WORK_GROUP_SIZE),
    NAMED(GL_MAX_COMPUTE_WORK_GROUP_INVOCATIONS),
    NAMED(GL_MAX_COMPUTE_SHARED_MEMORY_SIZE),
    NAMED(GL_MAX_FRAMEBUFFER_WIDTH),
    NAMED(GL_MAX_FRAMEBUFFER_HEIGHT),
    NAMED(GL_MAX_FRAMEBUFFER_LAYERS),
    NAMED(GL_MAX_FRAMEBUFFER_SAMPLES),
    NAMED(GL_MAX_WIDTH),
    NAMED(GL_MAX_HEIGHT),
    NAMED(GL_MAX_DEPTH),
    NAMED(GL_MAX_LAYERS),
    NAMED(GL_MAX_COMBINED_DIMENSIONS),
    NAMED(GL_MAX_VERTEX_ATTRIB_STRIDE),
    NAMED(GL_MIN_MAP_BUFFER_ALIGNMENT),
    NAMED(GL_UNIFORM_BUFFER_OFFSET_ALIGNMENT),
    NAMED(GL_SHADER_STORAGE_BUFFER_OFFSET_ALIGNMENT),
    NAMED(GL_TEXTURE_BUFFER_OFFSET_ALIGNMENT),
    NAMED(GL_MAX_UNIFORM_BUFFER_BINDINGS),
    NAMED(GL_MAX_UNIFORM_BLOCK_SIZE),
    NAMED(GL_MAX_VERTEX_UNIFORM_BLOCKS),
    NAMED(GL_MAX_FRAGMENT_UNIFORM_BLOCKS),
    NAMED(GL_MAX_GEOMETRY_UNIFORM_BLOCKS),
    NAMED(GL_MAX_TESS_CONTROL_UNIFORM_BLOCKS),
    NAMED(GL_MAX_TESS_EVALUATION_UNIFORM_BLOCKS),
    NAMED(GL_MAX_COMPUTE_UNIFORM_BLOCKS),
    NAMED(GL_MAX_COMBINED_UNIFORM_BLOCKS),
    NAMED(GL_MAX_COMBINED_VERTEX_UNIFORM_COMPONENTS),
    NAMED(GL_MAX_COMBINED_GEOMETRY_UNIFORM_COMPONENTS),
    NAMED(GL_MAX_COMBINED_FRAGMENT_UNIFORM_COMPONENTS),
    NAMED(GL_MAX_GEOMETRY_OUTPUT_VERTICES),
    NAMED(GL_MAX_GEOMETRY_UNIFORM_COMPONENTS),
    NAMED(GL_MAX_GEOMETRY_TOTAL_OUTPUT_COMPONENTS),
    NAMED(GL_MAX_VERTEX_OUTPUT_COMPONENTS),
    NAMED(GL_MAX_GEOMETRY_INPUT_COMPONENTS),
    NAMED(GL_MAX_GEOMETRY_OUTPUT_COMPONENTS),
    NAMED(GL_MAX_FRAGMENT_INPUT_COMPONENTS),
    NAMED(GL_MAX_COLOR_TEXTURE_SAMPLES),
    NAMED(GL_MAX_DEPTH_TEXTURE_SAMPLES),
    NAMED(GL_MAX_INTEGER_SAMPLES),
    NAMED(GL_MAX_DUAL_SOURCE_DRAW_BUFFERS),
    NAMED(GL_MAX_SHADER_STORAGE_BLOCK_SIZE),
    NAMED(GL_MAX_SHADER_STORAGE_BUFFER_BINDINGS),
    NAMED(GL_MAX_VERTEX_SHADER_STORAGE_BLOCKS),
    NAMED(GL_MAX_FRAGMENT_SHADER_STORAGE_BLOCKS),
    NAMED(GL_MAX_GEOMETRY_SHADER_STORAGE_BLOCKS),
    NAMED(GL_MAX_TESS_CONTROL_SHADER_STORAGE_BLOCKS),
    NAMED(GL_MAX_TESS_EVALUATION_SHADER_STORAGE_BLOCKS),
    NAMED(GL_MAX_COMPUTE_SHADER_STORAGE_BLOCKS),
    NAMED(GL_MAX_COMBINED_SHADER_STORAGE_BLOCKS),
    NAMED(GL_MAX_ATOMIC_COUNTER_BUFFER_SIZE),
    NAMED(GL_MAX_ATOMIC_COUNTER_BUFFER_BINDINGS),
    NAMED(GL_MAX_COMBINED_ATOMIC_COUNTER_BUFFERS),
    NAMED(GL_MAX_VERTEX_ATOMIC_COUNTERS),
    NAMED(GL_MAX_FRAGMENT_ATOMIC_COUNTERS),
    NAMED(GL_MAX_GEOMETRY_ATOMIC_COUNTERS),
    NAMED(GL_MAX_TESS_CONTROL_ATOMIC_COUNTERS),
    NAMED(GL_MAX_TESS_EVALUATION_ATOMIC_COUNTERS),
    NAMED(GL_MAX_COMPUTE_ATOMIC_COUNTERS),
    NAMED(GL_MAX_CULL_DISTANCES),
    NAMED(GL_MAX_COMBINED_CLIP_AND_CULL_DISTANCES),
    NAMED(GL_SAMPLE_BUFFERS),
    NAMED(GL_SAMPLE_COVERAGE),
    NAMED(GL_SAMPLE_COVERAGE_VALUE),
    NAMED(GL_SAMPLES),
    NAMED(GL_MAX_VERTEX_UNIFORM_VECTORS),
    NAMED(GL_MAX_FRAGMENT_UNIFORM_VECTORS),
    NAMED(GL_MAX_VARYING_VECTORS),
    NAMED(GL_MAX_VERTEX_UNIFORM_COMPONENTS),
    NAMED(GL_MAX_FRAGMENT_UNIFORM_COMPONENTS),
    NAMED(GL_MAX_VARYING_FLOATS),
    NAMED(GL_MAX_SHADER_COMPILER_THREADS_ARB),
    // Listed again: finds the record there is.
    NAMED(GL_SHADER_STORAGE_BUFFER_OFFSET_ALIGNMENT),
};

#undef NAMED

constexpr unsigned int NUM_WORK_GROUP_AXES = 3;

// Of the vendors' extensions to the window systems.
constexpr int GPU_RAM_AMD = 0x21A3;
constexpr unsigned int MAX_GPUS = 64;
using GetGpuIds = unsigned int (*)(unsigned int max_count, unsigned int* ids);
using GetGpuInfo = int (*)(unsigned int id, int property, GLenum type, unsigned int size,
                           void* values);

constexpr GLenum GPU_MEMORY_TOTAL_NVX = 0x9048;
constexpr GLenum GPU_MEMORY_AVAILABLE_NVX = 0x9049;
constexpr GLenum UNNAMED_FREE_MEMORY_ATI = 0x87FE;

}  // namespace

// ---- direct reads ----------------------------------------------------------------------------

int RendererOpenGL::read_integer(unsigned int name) {
  int values[4] = {};
  if (core_.glGetIntegerv) core_.glGetIntegerv(name, values);
  return values[0];
}

int RendererOpenGL::get_max_texture_image_units() {
  return read_integer(GL_MAX_TEXTURE_IMAGE_UNITS);
}

int RendererOpenGL::get_max_texture_size() { return read_integer(GL_MAX_TEXTURE_SIZE); }

unsigned int RendererOpenGL::get_current_program_id() {
  return gl_.glUseProgram ? static_cast<unsigned int>(read_integer(GL_CURRENT_PROGRAM)) : 0;
}

float RendererOpenGL::get_max_anisotropy() {
  if (!core_.glGetFloatv) return 0.0f;
  float value = 1.0f;
  if (facts_.has_extension("GL_EXT_texture_filter_anisotropic") ||
      facts_.has_extension("GL_ARB_texture_filter_anisotropic") ||
      facts_.is_version_at_least(4, 6)) {
    core_.glGetFloatv(GL_MAX_TEXTURE_MAX_ANISOTROPY_EXT, &value);
  }
  return value;
}

unsigned int RendererOpenGL::get_texture_2d_binding_of_unit(unsigned int unit) {
  if (!gl_.glActiveTexture || unit >= units_.bound.size()) return 0;
  const int old_unit = read_integer(GL_ACTIVE_TEXTURE);
  gl_.glActiveTexture(GL_TEXTURE0 + unit);
  const int id = read_integer(GL_TEXTURE_BINDING_2D);
  gl_.glActiveTexture(static_cast<GLenum>(old_unit));
  return static_cast<unsigned int>(id);
}

unsigned int RendererOpenGL::get_texture_2d_binding_current(unsigned int unit) {
  return get_texture_2d_binding_of_unit(unit);
}

bool RendererOpenGL::is_instancing_supported() {
  return gl_.glDrawElementsInstancedARB && gl_.glVertexAttribDivisorARB;
}

// ---- named limits ----------------------------------------------------------------------------

void RendererOpenGL::register_capabilities() {
  for (const NamedLimit& limit : NAMED_LIMITS) capabilities_.add(limit.name, limit.gl_enum);
  for (const char* name : {"GL_MAX_COMPUTE_WORK_GROUP_COUNT", "GL_MAX_COMPUTE_WORK_GROUP_SIZE"}) {
    RendererCapability* record = capabilities_.find(name);
    record->indexed = true;
    record->num_indexed = NUM_WORK_GROUP_AXES;
  }
}

unsigned int RendererOpenGL::get_num_capabilities() { return capabilities_.size(); }

const char* RendererOpenGL::get_capability_name(unsigned int index) {
  const RendererCapability* record = capabilities_.at(index);
  return record ? record->name.c_str() : nullptr;
}

bool RendererOpenGL::has_capability(const char* name) {
  return capabilities_.find(name) != nullptr;
}

bool RendererOpenGL::get_capability_values(const char* name, unsigned int* a, unsigned int* b,
                                           unsigned int* c, unsigned int* d) {
  RendererCapability* record = capabilities_.find(name);
  if (!record) return false;
  if (!record->cached && !read_capability(record)) return false;
  unsigned int* const targets[] = {a, b, c, d};
  for (int i = 0; i < 4; ++i) {
    if (targets[i]) *targets[i] = record->values[i];
  }
  return true;
}

bool RendererOpenGL::read_capability(RendererCapability* record) {
  if (!core_.glGetIntegerv) return false;
  int values[4] = {};
  if (record->indexed) {
    if (lacks(gl_.glGetIntegeri_v, "glGetIntegeri_v")) return false;
    for (unsigned int i = 0; i < record->num_indexed && i < 4; ++i) {
      gl_.glGetIntegeri_v(record->gl_enum, i, &values[i]);
    }
  } else {
    core_.glGetIntegerv(record->gl_enum, values);
  }
  // Older drivers reject newer limits: those stay 0.
  swallow_gl_errors();
  for (int i = 0; i < 4; ++i) record->values[i] = static_cast<unsigned int>(values[i]);
  record->cached = true;
  return true;
}

// ---- memory ----------------------------------------------------------------------------------

int RendererOpenGL::read_vendor_integer(const char* extension, unsigned int name) {
  if (!facts_.has_extension(extension)) return 0;
  const int value = read_integer(name);
  swallow_gl_errors();
  return value;
}

int RendererOpenGL::get_gpu_total_memory_nvx() {
  return read_vendor_integer("GL_NVX_gpu_memory_info", GPU_MEMORY_TOTAL_NVX);
}

int RendererOpenGL::get_gpu_available_memory_nvx() {
  return read_vendor_integer("GL_NVX_gpu_memory_info", GPU_MEMORY_AVAILABLE_NVX);
}

int RendererOpenGL::get_gpu_used_memory_nvx() {
  return get_gpu_total_memory_nvx() - get_gpu_available_memory_nvx();
}

unsigned int RendererOpenGL::read_amd_gpu_ids(unsigned int* ids, unsigned int max_count) {
  if (!extensions_.contains("GLX_AMD_gpu_association")) return 0;
  const GlProcAddress source = find_proc_address();
  const auto get_ids = source ? reinterpret_cast<GetGpuIds>(source("glXGetGPUIDsAMD")) : nullptr;
  if (!get_ids) return 0;
  const unsigned int count = get_ids(max_count, ids);
  return count < max_count ? count : max_count;
}

unsigned int RendererOpenGL::get_num_gpus_amd() {
  unsigned int ids[MAX_GPUS] = {};
  return read_amd_gpu_ids(ids, MAX_GPUS);
}

int RendererOpenGL::get_gpu_total_memory_amd(unsigned int index) {
  unsigned int ids[MAX_GPUS] = {};
  if (index >= read_amd_gpu_ids(ids, MAX_GPUS)) return 0;
  const auto get_info = reinterpret_cast<GetGpuInfo>(find_proc_address()("glXGetGPUInfoAMD"));
  if (!get_info) return 0;
  unsigned int values[4] = {};
  get_info(ids[index], GPU_RAM_AMD, GL_UNSIGNED_INT, 4, values);
  return static_cast<int>(values[0]);
}

int RendererOpenGL::get_free_memory_ati_0x87FE() {
  return read_vendor_integer("GL_ATI_meminfo", UNNAMED_FREE_MEMORY_ATI);
}

int RendererOpenGL::get_gpu_used_memory_ati() {
  return get_gpu_total_memory_amd(0) - get_texture_free_memory_ati();
}

int RendererOpenGL::get_texture_free_memory_ati() {
  return read_vendor_integer("GL_ATI_meminfo", GL_TEXTURE_FREE_MEMORY_ATI);
}

int RendererOpenGL::get_vbo_free_memory_ati() {
  return read_vendor_integer("GL_ATI_meminfo", GL_VBO_FREE_MEMORY_ATI);
}

int RendererOpenGL::get_renderbuffer_free_memory_ati() {
  return read_vendor_integer("GL_ATI_meminfo", GL_RENDERBUFFER_FREE_MEMORY_ATI);
}

}  // namespace orv
