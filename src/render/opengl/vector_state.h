/// @file
/// What a frame of vector graphics changes of OpenGL's state, kept and put back.
#pragma once

#include "render/opengl/gl_loader.h"

namespace orv {

/// Functions beyond the renderer's tables that such frames need.
struct GlVectorFunctions {
  PFNGLBLENDFUNCSEPARATEPROC glBlendFuncSeparate = nullptr;
  PFNGLBLENDEQUATIONSEPARATEPROC glBlendEquationSeparate = nullptr;
  PFNGLSTENCILFUNCSEPARATEPROC glStencilFuncSeparate = nullptr;
  PFNGLSTENCILMASKSEPARATEPROC glStencilMaskSeparate = nullptr;
  PFNGLGETINTEGER64I_VPROC glGetInteger64i_v = nullptr;
  PFNGLBINDSAMPLERPROC glBindSampler = nullptr;  ///< null before OpenGL 3.3 without the extension

  /// False when one is missing that is needed.
  bool fetch(const GlProcAddress& source, const GlFacts& facts);
};

/// Everything through which the frames call OpenGL. Borrowed.
struct GlVectorTables {
  const GlCoreTable* core = nullptr;
  const GlTable* gl = nullptr;
  const GlVectorFunctions* more = nullptr;
  bool core_profile = false;
};

/// Keeps what writing a texture changes: the binding of the current unit, how pixels are read.
class GlVectorUploadState {
 public:
  explicit GlVectorUploadState(const GlVectorTables& tables);
  ~GlVectorUploadState();
  GlVectorUploadState(const GlVectorUploadState&) = delete;
  GlVectorUploadState& operator=(const GlVectorUploadState&) = delete;

 private:
  enum { NUM_PIXEL_STORES = 4 };

  GlVectorTables tables_;
  GLint texture_ = 0;
  GLint unpack_buffer_ = 0;
  GLint pixel_stores_[NUM_PIXEL_STORES] = {};
};

/// Keeps what drawing a frame changes, and switches off what would spoil its picture, such as
/// wireframe and alpha test.
class GlVectorFrameState {
 public:
  explicit GlVectorFrameState(const GlVectorTables& tables);
  ~GlVectorFrameState();
  GlVectorFrameState(const GlVectorFrameState&) = delete;
  GlVectorFrameState& operator=(const GlVectorFrameState&) = delete;

 private:
  enum { NUM_CAPABILITIES = 5, NUM_SPOILERS = 11, NUM_FIXED_SPOILERS = 2 };
  struct StencilSide {
    GLint function = 0, reference = 0, value_mask = 0, write_mask = 0;
    GLint fail = 0, depth_fail = 0, depth_pass = 0;
  };

  GLint integer(GLenum name) const;
  void read_stencil();
  void read_bindings();
  void put_back_stencil(GLenum face, const StencilSide& side) const;
  void put_back_bindings() const;
  void set(GLenum capability, bool enabled) const;

  GlVectorTables tables_;
  bool capabilities_[NUM_CAPABILITIES] = {};
  bool spoilers_[NUM_SPOILERS] = {};
  GLint cull_face_ = 0, front_face_ = 0;
  GLint polygon_mode_[2] = {};
  GLint blend_equation_[2] = {};
  GLint blend_function_[4] = {};
  GLboolean color_mask_[4] = {};
  StencilSide front_, back_;
  GLint program_ = 0, vertex_array_ = 0, array_buffer_ = 0;
  GLint uniform_buffer_ = 0, uniform_point_ = 0;
  GLint64 uniform_start_ = 0, uniform_size_ = 0;
  GLint unit_ = 0, texture_ = 0, sampler_ = 0;
};

}  // namespace orv
