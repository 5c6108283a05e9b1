#pragma once

#include <orv/geometry/mesh_data.h>

namespace orv::test {

/// How vertices are kept, for tests that must hold for all forms.
enum class VertexForm { SEPARATE, SEPARATE_ALIGNED, INTERLEAVED, INTERLEAVED_ALIGNED };

inline constexpr VertexForm ALL_FORMS[] = {VertexForm::SEPARATE, VertexForm::SEPARATE_ALIGNED,
                                           VertexForm::INTERLEAVED,
                                           VertexForm::INTERLEAVED_ALIGNED};

inline bool is_separate(VertexForm form) {
  return form == VertexForm::SEPARATE || form == VertexForm::SEPARATE_ALIGNED;
}

inline void use_form(GeometryCore& core, VertexForm form) {
  core.alloc_params.separate_vertex_arrays = is_separate(form);
  core.alloc_params.vertex_alignment =
      form == VertexForm::SEPARATE_ALIGNED || form == VertexForm::INTERLEAVED_ALIGNED ? 32 : 0;
}

inline bool alloc_vertices(GeometryCore& core, unsigned int n,
                           VertexForm form = VertexForm::SEPARATE) {
  use_form(core, form);
  core.alloc_params.num_vertices = n;
  return core.alloc_vertex_data();
}

/// Data of another type than MeshData, which has to be asked through its operations. It counts
/// the writes that reach it.
class CountingMeshData : public MeshData {
 public:
  using MeshData::set_color;
  using MeshData::set_normal;
  using MeshData::set_position;
  bool set_position(unsigned int i, const vec4& v) override {
    ++writes;
    return MeshData::set_position(i, v);
  }
  bool set_position(unsigned int i, const vec3& v) override {
    ++writes;
    return MeshData::set_position(i, v);
  }
  bool set_normal(unsigned int i, const vec3& v) override {
    ++writes;
    return MeshData::set_normal(i, v);
  }
  bool set_color(unsigned int i, const vec4& v) override {
    ++writes;
    return MeshData::set_color(i, v);
  }
  int writes = 0;
};

}  // namespace orv::test
