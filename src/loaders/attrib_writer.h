#pragma once

#include <orv/geometry/mesh_data.h>

#include <cstddef>

namespace orv::detail {

/// Writes one standard attribute of all vertices of freshly allocated geometry, whichever form it
/// has, and marks it for upload at the end. Ignores vertices that the attribute has no room for.
///
/// For data that is exactly a MeshData, as a Model's new meshes have it.
class AttribWriter {
 public:
  AttribWriter(MeshData& data, VERTEX_ATTRIB_TYPE attrib) : data_(data) {
    static constexpr vec4 Vertex::*FIELDS[4] = {&Vertex::position, &Vertex::uv0, &Vertex::normal,
                                                &Vertex::color};
    if (!data.separate_vertex_arrays) {
      if (!data.vertices) return;
      base_ = (data.vertices->*FIELDS[attrib]).ptr();
      stride_ = sizeof(Vertex) / sizeof(float);
      dim_ = 4;
      count_ = data.num_vertices;
      return;
    }
    array_ = data.get_vertex_attrib_array(static_cast<unsigned int>(attrib));
    if (!array_ || !array_->data || array_->num_elements <= 0) return;
    base_ = static_cast<float*>(array_->data);
    dim_ = array_->element_dim;
    stride_ = static_cast<std::size_t>(dim_);
    count_ = static_cast<std::size_t>(array_->num_elements);
  }
  ~AttribWriter() {
    if (!base_) return;
    if (array_) {
      array_->update_needed(true);
    } else {
      data_.mark_interleaved(0, data_.num_vertices);
    }
  }
  AttribWriter(const AttribWriter&) = delete;
  AttribWriter& operator=(const AttribWriter&) = delete;

  void set(std::size_t i, const vec4& v) {
    if (i >= count_) return;
    float* p = base_ + i * stride_;
    if (dim_ == 4) {
      p[0] = v.x;
      p[1] = v.y;
      p[2] = v.z;
      p[3] = v.w;
      return;
    }
    p[0] = v.x;
    if (dim_ > 1) p[1] = v.y;
    if (dim_ > 2) p[2] = v.z;
  }

  /// The same value for all vertices.
  void fill(const vec4& v) {
    for (std::size_t i = 0; i < count_; ++i) set(i, v);
  }

 private:
  MeshData& data_;
  VertexAttribArray* array_ = nullptr;
  float* base_ = nullptr;
  std::size_t stride_ = 0;
  std::size_t count_ = 0;
  int dim_ = 0;
};

}  // namespace orv::detail
