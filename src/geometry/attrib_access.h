#pragma once

#include <orv/geometry/mesh_data.h>

#include <algorithm>
#include <typeinfo>

#include "geometry/std_fields.h"

namespace orv {

/// Reads and writes one standard attribute of all vertices.
///
/// Data that is exactly a MeshData is reached through a pointer and a stride. A class derived from
/// it may keep its attributes elsewhere, so that it is asked through its virtual operations; both
/// ways give the same results. Writes are marked for upload when the access ends.
class AttribAccess {
 public:
  AttribAccess(MeshData& data, VERTEX_ATTRIB_TYPE attrib) : data_(&data), attrib_(attrib) {
    by_operation_ = typeid(data) != typeid(MeshData);
    if (!by_operation_) find_storage();
  }
  ~AttribAccess() {
    if (dirty_end_ == 0) return;
    if (array_) {
      array_->mark_elements(dirty_begin_, dirty_end_);
    } else {
      data_->mark_interleaved(dirty_begin_, dirty_end_);
    }
  }
  AttribAccess(const AttribAccess&) = delete;
  AttribAccess& operator=(const AttribAccess&) = delete;

  /// How many of `n` vertices can hold a value; the others read as (0, 0, 0, 1).
  unsigned int usable(unsigned int n) const { return by_operation_ ? n : std::min(n, count_); }

  /// First component and distance in floats where elements have all of x, y, z, w in place; null
  /// otherwise.
  const float* four_floats(std::size_t* stride) const {
    *stride = stride_;
    return dim_ == 4 ? base_ : nullptr;
  }

  vec4 get(unsigned int i) const {
    if (by_operation_) return get_by_operation(i);
    if (i >= count_) return vec4();
    const float* p = base_ + i * stride_;
    switch (dim_) {
      case 4:
        return vec4(p[0], p[1], p[2], p[3]);
      case 3:
        return vec4(p[0], p[1], p[2], 1.0f);
      case 2:
        return vec4(p[0], p[1], 0.0f, 1.0f);
      default:
        return vec4(p[0], 0.0f, 0.0f, 1.0f);
    }
  }
  vec3 get_vec3(unsigned int i) const { return get(i).get_vec3(); }

  void set(unsigned int i, const vec4& v) {
    if (by_operation_) return set_by_operation(i, v);
    store(i, v);
  }
  /// Stores w 1.
  void set(unsigned int i, const vec3& v) {
    if (by_operation_) return set_by_operation(i, v);
    store(i, vec4(v));
  }

 private:
  void find_storage() {
    if (data_->separate_vertex_arrays) {
      array_ = data_->get_vertex_attrib_array(static_cast<unsigned int>(attrib_));
      if (!array_ || !array_->data) return;
      base_ = static_cast<float*>(array_->data);
      dim_ = array_->element_dim;
      stride_ = static_cast<std::size_t>(dim_);
      count_ = static_cast<unsigned int>(array_->num_elements);
    } else if (data_->vertices) {
      base_ = (data_->vertices->*STD_FIELDS[attrib_]).ptr();
      dim_ = 4;
      stride_ = sizeof(Vertex) / sizeof(float);
      count_ = data_->num_vertices;
    }
  }

  void store(unsigned int i, const vec4& v) {
    if (i >= count_) return;
    float* p = base_ + i * stride_;
    switch (dim_) {
      case 4:
        p[3] = v.w;
        [[fallthrough]];
      case 3:
        p[2] = v.z;
        [[fallthrough]];
      case 2:
        p[1] = v.y;
        [[fallthrough]];
      default:
        p[0] = v.x;
    }
    dirty_begin_ = dirty_end_ == 0 ? i : std::min(dirty_begin_, i);
    dirty_end_ = std::max(dirty_end_, i + 1);
  }

  vec4 get_by_operation(unsigned int i) const {
    switch (attrib_) {
      case VERTEX_ATTRIB_POSITION:
        return vec4(data_->get_position(i));
      case VERTEX_ATTRIB_UV0:
        return data_->get_uv0(i);
      case VERTEX_ATTRIB_NORMAL:
        return data_->get_normal(i);
      default:
        return data_->get_color(i);
    }
  }
  // Position and normal have operations for three components too.
  template <class Value>
  void set_by_operation(unsigned int i, const Value& v) {
    switch (attrib_) {
      case VERTEX_ATTRIB_POSITION:
        data_->set_position(i, v);
        break;
      case VERTEX_ATTRIB_UV0:
        data_->set_uv0(i, vec4(v));
        break;
      case VERTEX_ATTRIB_NORMAL:
        data_->set_normal(i, v);
        break;
      default:
        data_->set_color(i, vec4(v));
    }
  }

  MeshData* data_;
  VERTEX_ATTRIB_TYPE attrib_;
  bool by_operation_;
  VertexAttribArray* array_ = nullptr;
  float* base_ = nullptr;
  std::size_t stride_ = 0;
  int dim_ = 0;
  unsigned int count_ = 0;
  unsigned int dirty_begin_ = 0;
  unsigned int dirty_end_ = 0;
};

}  // namespace orv
