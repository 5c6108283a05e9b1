#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orv/core/core.h>
#include <orv/geometry/geometry_core.h>
#include <orv/gpu/gpu_buffer_data.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/text/font.h>
#include <orv/text/font_data.h>

#include <vector>

#include "image/test_files.h"
#include "support/held.h"
#include "support/recording_renderer.h"

namespace orv::test {

/// Writes operations down, holds the last geometry's vertex buffer, and remembers what was drawn.
class FontRenderer : public RecordingRenderer {
 public:
  static constexpr unsigned int BUFFER = 7;

  explicit FontRenderer(ORV_API3D type = ORV_API3D_OPENGL) : RecordingRenderer(type) {}

  bool geometry_vbo_create(RendererGpu* gpu, GeometryCore* geometry) override {
    RecordingRenderer::geometry_vbo_create(gpu, geometry);
    geometry_ = geometry;
    if (geometry->is_vb_uploaded()) return true;
    buffer_.assign(geometry->get_total_vertex_buffer_size(), 0xCC);
    geometry->vb()->size = geometry->get_total_vertex_buffer_size();
    geometry->vertex_buffer_id = BUFFER;
    geometry->vb_uploaded_set_state(true);
    return true;
  }
  bool geometry_vbo_update(GeometryCore* geometry) override {
    RecordingRenderer::geometry_vbo_update(geometry);
    uploaded_ = geometry->is_update_vertex_buffer_needed();
    if (uploaded_) geometry->vertex_arrays_to_memory(buffer_.data());
    geometry->update_interleaved_vertex_array_set_state(false);
    return true;
  }
  bool geometry_vbo_destroy(GeometryCore* geometry) override {
    RecordingRenderer::geometry_vbo_destroy(geometry);
    if (keeps_buffers) return false;
    geometry->vb()->size = 0;
    geometry->vertex_buffer_id = 0;
    geometry->vb_uploaded_set_state(false);
    return true;
  }
  bool geometry_vbo_draw(GeometryCore* geometry) override {
    RecordingRenderer::geometry_vbo_draw(geometry);
    drawn_start = geometry->get_draw_start();
    drawn_count = geometry->get_draw_count();
    return true;
  }
  void* vertex_buffer_map(unsigned int id) override {
    RecordingRenderer::vertex_buffer_map(id);
    return maps ? buffer_.data() : nullptr;
  }

  void load_fixed_matrices(const mat4* projection, const mat4* view, const mat4* model,
                           const mat4* texture) override {
    RecordingRenderer::load_fixed_matrices(projection, view, model, texture);
    if (view) drawn_with = *view;
  }

  /// Floats of the vertex buffer as it would be drawn.
  const float* drawn() const { return reinterpret_cast<const float*>(buffer_.data()); }
  GeometryCore* geometry() const { return geometry_; }
  bool uploaded() const { return uploaded_; }

  bool maps = true;
  bool keeps_buffers = false;
  int drawn_start = -1;
  int drawn_count = -1;
  mat4 drawn_with;

 private:
  std::vector<unsigned char> buffer_;
  GeometryCore* geometry_ = nullptr;
  bool uploaded_ = false;
};

/// A started library, a renderer that writes down, and a font.
class FontTest : public ::testing::Test {
 protected:
  FontTest() { core::start(nullptr, false, nullptr, nullptr); }
  ~FontTest() override { core::stop(nullptr); }

  static constexpr const char* XML =
      "<font><info padding=\"0,0,0,0\" spacing=\"3,0\"/>"
      "<common lineHeight=\"20\" base=\"15\" scaleW=\"64\" scaleH=\"32\"/>"
      "<pages><page id=\"0\" file=\"page.png\"/></pages><chars>"
      "<char id=\"65\" x=\"16\" y=\"8\" width=\"4\" height=\"8\" xoffset=\"1\" yoffset=\"2\""
      " xadvance=\"6\"/>"
      "<char id=\"32\" xadvance=\"5\"/></chars></font>";

  bool load_bitmap_font() {
    return font.bm_load_charset_from_memory(XML) &&
           font.bm_load_charset_texture(nullptr, data_path("bmfont/font.png").c_str());
  }
  bool load_truetype_font(int width = 256, int height = 256) {
    return font.stbttf_load_font_texture(nullptr, data_path("ttf/DejaVuSansMono.ttf").c_str(), 16,
                                         width, height);
  }
  bool draw_white(const char* text) { return font.bm_draw_text_2d(0, 0, 1, 1, 1, 1, text); }

  FontRenderer renderer;
  Held<Font> held;
  Font& font = *held;
};

}  // namespace orv::test
