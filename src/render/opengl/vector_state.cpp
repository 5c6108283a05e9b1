#include "render/opengl/vector_state.h"

#include <iterator>

namespace orv {
namespace {

constexpr GLenum CAPABILITIES[] = {GL_DEPTH_TEST, GL_CULL_FACE, GL_BLEND, GL_SCISSOR_TEST,
                                   GL_STENCIL_TEST};
// The last two exist with the fixed pipeline only.
constexpr GLenum SPOILERS[] = {
    GL_SAMPLE_ALPHA_TO_COVERAGE, GL_SAMPLE_COVERAGE, GL_COLOR_LOGIC_OP, GL_RASTERIZER_DISCARD,
    GL_POLYGON_SMOOTH,           GL_CLIP_DISTANCE0,  GL_CLIP_DISTANCE1, GL_CLIP_DISTANCE2,
    GL_CLIP_DISTANCE3,           GL_ALPHA_TEST,      GL_POLYGON_STIPPLE};
constexpr GLenum PIXEL_STORES[] = {GL_UNPACK_ALIGNMENT, GL_UNPACK_ROW_LENGTH, GL_UNPACK_SKIP_PIXELS,
                                   GL_UNPACK_SKIP_ROWS};

GLuint as_name(GLint value) { return static_cast<GLuint>(value); }
GLenum as_enum(GLint value) { return static_cast<GLenum>(value); }

template <class Function>
void fetch_one(const GlProcAddress& source, const GlFacts& facts, const char* name,
               const char* grants, Function* function) {
  *function = reinterpret_cast<Function>(detail::find_granted(source, facts, name, grants));
}

}  // namespace

bool GlVectorFunctions::fetch(const GlProcAddress& source, const GlFacts& facts) {
  fetch_one(source, facts, "glBlendFuncSeparate", "1.4", &glBlendFuncSeparate);
  fetch_one(source, facts, "glBlendEquationSeparate", "2.0", &glBlendEquationSeparate);
  fetch_one(source, facts, "glStencilFuncSeparate", "2.0", &glStencilFuncSeparate);
  fetch_one(source, facts, "glStencilMaskSeparate", "2.0", &glStencilMaskSeparate);
  fetch_one(source, facts, "glGetInteger64i_v", "3.2", &glGetInteger64i_v);
  fetch_one(source, facts, "glBindSampler", "3.3 GL_ARB_sampler_objects", &glBindSampler);
  return glBlendFuncSeparate && glBlendEquationSeparate && glStencilFuncSeparate &&
         glStencilMaskSeparate && glGetInteger64i_v;
}

// ---- writing a texture ----

GlVectorUploadState::GlVectorUploadState(const GlVectorTables& tables) : tables_(tables) {
  static_assert(std::size(PIXEL_STORES) == NUM_PIXEL_STORES);
  const GlCoreTable& core = *tables_.core;
  core.glGetIntegerv(GL_TEXTURE_BINDING_2D, &texture_);
  for (int i = 0; i < NUM_PIXEL_STORES; ++i) core.glGetIntegerv(PIXEL_STORES[i], &pixel_stores_[i]);
  core.glGetIntegerv(GL_PIXEL_UNPACK_BUFFER_BINDING, &unpack_buffer_);
  // With a buffer bound, the address of the pixels would be taken for an offset into it.
  if (unpack_buffer_ != 0) tables_.gl->glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
}

GlVectorUploadState::~GlVectorUploadState() {
  const GlCoreTable& core = *tables_.core;
  core.glBindTexture(GL_TEXTURE_2D, as_name(texture_));
  for (int i = 0; i < NUM_PIXEL_STORES; ++i) core.glPixelStorei(PIXEL_STORES[i], pixel_stores_[i]);
  if (unpack_buffer_ != 0) {
    tables_.gl->glBindBuffer(GL_PIXEL_UNPACK_BUFFER, as_name(unpack_buffer_));
  }
}

// ---- drawing a frame ----

GLint GlVectorFrameState::integer(GLenum name) const {
  // Some names give more values than one where drivers follow older versions.
  GLint values[4] = {};
  tables_.core->glGetIntegerv(name, values);
  return values[0];
}

void GlVectorFrameState::set(GLenum capability, bool enabled) const {
  if (enabled) {
    tables_.core->glEnable(capability);
  } else {
    tables_.core->glDisable(capability);
  }
}

GlVectorFrameState::GlVectorFrameState(const GlVectorTables& tables) : tables_(tables) {
  static_assert(std::size(CAPABILITIES) == NUM_CAPABILITIES);
  static_assert(std::size(SPOILERS) == NUM_SPOILERS);
  const GlCoreTable& core = *tables_.core;
  for (int i = 0; i < NUM_CAPABILITIES; ++i) {
    capabilities_[i] = core.glIsEnabled(CAPABILITIES[i]) == GL_TRUE;
  }
  cull_face_ = integer(GL_CULL_FACE_MODE);
  front_face_ = integer(GL_FRONT_FACE);
  blend_equation_[0] = integer(GL_BLEND_EQUATION_RGB);
  blend_equation_[1] = integer(GL_BLEND_EQUATION_ALPHA);
  blend_function_[0] = integer(GL_BLEND_SRC_RGB);
  blend_function_[1] = integer(GL_BLEND_DST_RGB);
  blend_function_[2] = integer(GL_BLEND_SRC_ALPHA);
  blend_function_[3] = integer(GL_BLEND_DST_ALPHA);
  core.glGetBooleanv(GL_COLOR_WRITEMASK, color_mask_);
  read_stencil();
  read_bindings();

  for (int i = 0; i < NUM_SPOILERS - (tables_.core_profile ? NUM_FIXED_SPOILERS : 0); ++i) {
    spoilers_[i] = core.glIsEnabled(SPOILERS[i]) == GL_TRUE;
    if (spoilers_[i]) core.glDisable(SPOILERS[i]);
  }
  // Core contexts know one mode for both sides, and some drivers write one value only.
  core.glGetIntegerv(GL_POLYGON_MODE, polygon_mode_);
  if (tables_.core_profile) polygon_mode_[1] = polygon_mode_[0];
  core.glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
  tables_.more->glBlendEquationSeparate(GL_FUNC_ADD, GL_FUNC_ADD);
}

GlVectorFrameState::~GlVectorFrameState() {
  const GlCoreTable& core = *tables_.core;
  put_back_bindings();
  put_back_stencil(GL_FRONT, front_);
  put_back_stencil(GL_BACK, back_);
  core.glColorMask(color_mask_[0], color_mask_[1], color_mask_[2], color_mask_[3]);
  tables_.more->glBlendEquationSeparate(as_enum(blend_equation_[0]), as_enum(blend_equation_[1]));
  tables_.more->glBlendFuncSeparate(as_enum(blend_function_[0]), as_enum(blend_function_[1]),
                                    as_enum(blend_function_[2]), as_enum(blend_function_[3]));
  if (polygon_mode_[0] == polygon_mode_[1]) {
    core.glPolygonMode(GL_FRONT_AND_BACK, as_enum(polygon_mode_[0]));
  } else {
    core.glPolygonMode(GL_FRONT, as_enum(polygon_mode_[0]));
    core.glPolygonMode(GL_BACK, as_enum(polygon_mode_[1]));
  }
  core.glFrontFace(as_enum(front_face_));
  core.glCullFace(as_enum(cull_face_));
  for (int i = 0; i < NUM_SPOILERS; ++i) {
    if (spoilers_[i]) core.glEnable(SPOILERS[i]);
  }
  for (int i = 0; i < NUM_CAPABILITIES; ++i) set(CAPABILITIES[i], capabilities_[i]);
}

void GlVectorFrameState::read_stencil() {
  front_ = {integer(GL_STENCIL_FUNC),           integer(GL_STENCIL_REF),
            integer(GL_STENCIL_VALUE_MASK),     integer(GL_STENCIL_WRITEMASK),
            integer(GL_STENCIL_FAIL),           integer(GL_STENCIL_PASS_DEPTH_FAIL),
            integer(GL_STENCIL_PASS_DEPTH_PASS)};
  back_ = {integer(GL_STENCIL_BACK_FUNC),           integer(GL_STENCIL_BACK_REF),
           integer(GL_STENCIL_BACK_VALUE_MASK),     integer(GL_STENCIL_BACK_WRITEMASK),
           integer(GL_STENCIL_BACK_FAIL),           integer(GL_STENCIL_BACK_PASS_DEPTH_FAIL),
           integer(GL_STENCIL_BACK_PASS_DEPTH_PASS)};
}

void GlVectorFrameState::put_back_stencil(GLenum face, const StencilSide& side) const {
  tables_.more->glStencilFuncSeparate(face, as_enum(side.function), side.reference,
                                      as_name(side.value_mask));
  tables_.more->glStencilMaskSeparate(face, as_name(side.write_mask));
  tables_.gl->glStencilOpSeparate(face, as_enum(side.fail), as_enum(side.depth_fail),
                                  as_enum(side.depth_pass));
}

void GlVectorFrameState::read_bindings() {
  program_ = integer(GL_CURRENT_PROGRAM);
  vertex_array_ = integer(GL_VERTEX_ARRAY_BINDING);
  array_buffer_ = integer(GL_ARRAY_BUFFER_BINDING);
  uniform_buffer_ = integer(GL_UNIFORM_BUFFER_BINDING);
  // The frames draw with the first of the numbered bindings, too.
  tables_.gl->glGetIntegeri_v(GL_UNIFORM_BUFFER_BINDING, 0, &uniform_point_);
  tables_.more->glGetInteger64i_v(GL_UNIFORM_BUFFER_START, 0, &uniform_start_);
  tables_.more->glGetInteger64i_v(GL_UNIFORM_BUFFER_SIZE, 0, &uniform_size_);
  unit_ = integer(GL_ACTIVE_TEXTURE);
  tables_.gl->glActiveTexture(GL_TEXTURE0);
  texture_ = integer(GL_TEXTURE_BINDING_2D);
  if (!tables_.more->glBindSampler) return;
  sampler_ = integer(GL_SAMPLER_BINDING);
  if (sampler_ != 0) tables_.more->glBindSampler(0, 0);
}

void GlVectorFrameState::put_back_bindings() const {
  const GlTable& gl = *tables_.gl;
  // A program that was deleted while it was current is gone by now.
  gl.glUseProgram(program_ != 0 && gl.glIsProgram(as_name(program_)) ? as_name(program_) : 0u);
  gl.glBindVertexArray(as_name(vertex_array_));
  gl.glBindBuffer(GL_ARRAY_BUFFER, as_name(array_buffer_));
  if (uniform_size_ > 0) {
    gl.glBindBufferRange(GL_UNIFORM_BUFFER, 0, as_name(uniform_point_),
                         static_cast<GLintptr>(uniform_start_),
                         static_cast<GLsizeiptr>(uniform_size_));
  } else {
    gl.glBindBufferBase(GL_UNIFORM_BUFFER, 0, as_name(uniform_point_));
  }
  gl.glBindBuffer(GL_UNIFORM_BUFFER, as_name(uniform_buffer_));
  gl.glActiveTexture(GL_TEXTURE0);
  tables_.core->glBindTexture(GL_TEXTURE_2D, as_name(texture_));
  if (sampler_ != 0) tables_.more->glBindSampler(0, as_name(sampler_));
  gl.glActiveTexture(as_enum(unit_));
}

}  // namespace orv
