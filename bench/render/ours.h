/// @file
/// The library's side of the frames: a started renderer on an offscreen window, in software.
#pragma once

#include <orv/orv.h>

#include <cstdio>
#include <cstdlib>

#include "raw_gl.h"

namespace bench {

inline orv::Renderer* started_opengl() {
  orv::core::start(nullptr, true, nullptr, nullptr);
  orv::Renderer* renderer = orv::Kernel::get()->load_core_opengl_renderer_plugin(true);
  renderer->initialize();
  return renderer;
}

/// One context of the library. Ends the program where there is none.
class OurContext {
 public:
  OurContext(orv::Renderer* renderer, int width, int height)
      : renderer_(renderer), surface_(width, height, orv::OffscreenWindow::SOFTWARE) {
    orv::RenderWindowData data;
    data.native_window = surface_.native_handle();
    data.gl_major = 3;
    data.core_profile = true;
    window_ = renderer->render_window_alloc();
    if (!renderer->render_window_create_context(window_, &data, nullptr) || !renderer->start()) {
      std::fprintf(stderr, "no OpenGL context\n");
      std::exit(1);
    }
  }

  void make_current() { renderer_->render_window_make_current(window_, true); }

 private:
  orv::Renderer* renderer_;
  orv::OffscreenWindow surface_;
  orv::RenderWindow* window_ = nullptr;
};

/// A program of the library out of two texts. Ends the program when it does not compile.
inline orv::GpuProgram* load_program(orv::Renderer* renderer, const char* vertex_text,
                                     const char* pixel_text) {
  orv::GpuProgram* program = orv::GpuProgramMgr::get()->create_gpu_program_from_shaders(
      renderer, vertex_text, pixel_text, nullptr, nullptr, nullptr, nullptr, "bench");
  if (!program->is_valid()) {
    std::fprintf(stderr, "the program does not compile\n");
    std::exit(1);
  }
  return program;
}

/// What the library uploads for a mesh.
inline RawMesh raw_copy(const orv::Mesh& mesh) {
  orv::MeshData& data = *mesh.get_mesh_data();
  RawMesh copy;
  copy.vertices.resize(data.get_total_vertex_buffer_size());
  data.vertex_arrays_to_memory(copy.vertices.data());
  const auto* indices = static_cast<const unsigned char*>(data.get_index_buffer_data_ptr());
  copy.indices.assign(indices, indices + data.get_total_index_buffer_size());
  orv::GeometryGpuLayout layout;
  data.get_gpu_layout(&layout);
  // A generic list holds the indices of a strip.
  const bool strip = layout.generic_indices;
  copy.num_vertices = layout.num_vertices;
  copy.mode = strip ? GL_TRIANGLE_STRIP : GL_TRIANGLES;
  copy.num_indices = static_cast<GLsizei>((strip ? 1 : 3) * layout.num_faces);
  copy.index_type = !strip && layout.index_bits == 16 ? GL_UNSIGNED_SHORT : GL_UNSIGNED_INT;
  if (layout.interleaved_size != 0) {
    for (int i = 0; i < 4; ++i) {
      copy.attribs.push_back(
          {static_cast<GLuint>(layout.std_locations[i]), 4, 64, static_cast<std::size_t>(i) * 16});
    }
  }
  std::size_t offset = layout.interleaved_size;
  for (unsigned int i = 0; i < layout.num_attribs; ++i) {
    const orv::GeometryGpuAttrib& array = layout.attribs[i];
    copy.attribs.push_back({static_cast<GLuint>(array.location), array.element_dim, 0, offset,
                            static_cast<GLuint>(array.divisor)});
    offset += std::size_t{array.num_elements} * static_cast<std::size_t>(array.element_size);
  }
  return copy;
}

}  // namespace bench
