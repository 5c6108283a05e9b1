#include <orv/core/aligned_array.h>
#include <orv/core/log_mgr.h>
#include <orv/geometry/geometry_core.h>

#include <exception>

#include "core/large_array.h"
#include "geometry/limits.h"

namespace orv {

// ---- vertices ----

bool GeometryCore::alloc_vertex_data() {
  if (alloc_params.num_vertices == 0) {
    LogMgr::get().trace_error("Geometry core data allocation failed - num_vertices is 0");
    return false;
  }
  begin_layout_change();
  free_interleaved_and_particles();
  std_vertex_attribs = alloc_params.std_vertex_attribs;
  separate_vertex_arrays = alloc_params.separate_vertex_arrays;
  vertex_alignment = alloc_params.vertex_alignment;
  num_vertices = alloc_params.num_vertices;
  draw_start = 0;
  draw_count = static_cast<int>(num_vertices);
  try {
    if (std_vertex_attribs) {
      check_standard_size();
      if (separate_vertex_arrays) {
        if (!init_standard_vertex_attrib_arrays(num_vertices)) return false;
      } else {
        vertices = vertex_alignment > 0
                       ? AlignedNew_Vertex(num_vertices, vertex_alignment, &vertices_raw)
                       : detail::new_large_array<Vertex>(num_vertices);
      }
    }
    init_user_vertex_attribs_arrays(num_vertices);
    if (alloc_params.alloc_vertex_particles) {
      check_geometry_bytes(num_vertices, sizeof(vec4));
      vertex_particles = detail::new_large_array<vec4>(num_vertices);
    }
    return true;
  } catch (const std::exception& e) {
    LogMgr::get().tracef_error(
        "Geometry core allocation failed - %zu vertices required - error: %s",
        static_cast<std::size_t>(num_vertices), e.what());
  } catch (...) {
    LogMgr::get().tracef_error(
        "Geometry core allocation failed - %zu vertices required - unknown error.",
        static_cast<std::size_t>(num_vertices));
  }
  return false;
}

void GeometryCore::check_standard_size() const {
  if (!separate_vertex_arrays) {
    // User arrays from before stay behind the vertices.
    check_geometry_bytes(num_vertices, sizeof(Vertex));
    check_geometry_bytes(
        get_separate_vertex_arrays_size() + std::uint64_t{num_vertices} * sizeof(Vertex), 1);
    return;
  }
  std::uint64_t floats = 0;
  for (int i = 0; i < 4; ++i) {
    const int dim = alloc_params.vertex_attrib_dim[i];
    if (dim >= 1 && dim <= 4) floats += static_cast<std::uint64_t>(dim);
  }
  check_geometry_bytes(num_vertices, floats * sizeof(float));
}

bool GeometryCore::free_vertex_data() {
  gpu_state.cpu_released = false;
  if (num_vertices == 0) return true;
  begin_layout_change();
  free_interleaved_and_particles();
  free_vertex_attrib_arrays();
  num_vertices = 0;
  return true;
}

void GeometryCore::free_interleaved_and_particles() {
  if (vertices_raw) {
    AlignedDelete_Vertex(&vertices, num_vertices, &vertices_raw);
  } else {
    delete[] vertices;
  }
  vertices = nullptr;
  vertices_raw = nullptr;
  interleaved_raw_shared = false;
  interleaved_whole_dirty = true;
  interleaved_dirty_begin = 0;
  interleaved_dirty_end = 0;
  delete[] vertex_particles;
  vertex_particles = nullptr;
}

// ---- faces ----

template <class Make>
bool GeometryCore::alloc_faces_guarded(unsigned int count, Make make) {
  begin_layout_change();
  free_face_arrays();
  num_faces = count;
  if (count == 0) return true;
  try {
    check_geometry_bytes(count, sizeof(vec4));
    make();
    face_normals = detail::new_large_array<vec4>(count);
    face_materials = detail::new_large_array<unsigned int>(count);
    return true;
  } catch (const std::exception& e) {
    LogMgr::get().tracef_error("Geometry core - faces memory allocation failed: %s", e.what());
  } catch (...) {
    LogMgr::get().tracef_error("Geometry core - faces memory allocation failed: %s",
                               "unknown error");
  }
  // Half a set of arrays is of no use, and nothing may draw as many faces as were asked for.
  free_face_arrays();
  num_faces = 0;
  return false;
}

bool GeometryCore::alloc_face_data(unsigned int count, bool force_32) {
  return alloc_faces_guarded(count, [&] {
    if (!force_32 && num_vertices < 65536) {
      index_bits = 16;
      faces_u16 = new FaceU16[count];
    } else {
      index_bits = 32;
      faces_u32 = detail::new_large_array<FaceU32>(count);
    }
  });
}

bool GeometryCore::alloc_face_data_v2(unsigned int count, MESH_FACE_TRIANGLE_TYPE type) {
  return alloc_face_data_v3(
      count, type == MESH_FACE_TRIANGLE_STRIP ? PRIMITIVE_TRIANGLE_STRIP : PRIMITIVE_TRIANGLES);
}

bool GeometryCore::alloc_face_data_v3(unsigned int count, PRIMITIVE_TYPE primitive) {
  return alloc_faces_guarded(count, [&] {
    indices = new unsigned int[count]();
    primitive_type = primitive;
    index_bits = 32;
  });
}

bool GeometryCore::free_face_data() {
  gpu_state.cpu_released = false;
  if (num_faces == 0) return true;
  begin_layout_change();
  free_face_arrays();
  num_faces = 0;
  return true;
}

void GeometryCore::free_face_arrays() {
  faces_raw_shared = false;
  ++faces_serial;
  delete[] indices;
  delete[] faces_u16;
  delete[] faces_u32;
  delete[] face_normals;
  delete[] face_materials;
  indices = nullptr;
  faces_u16 = nullptr;
  faces_u32 = nullptr;
  face_normals = nullptr;
  face_materials = nullptr;
}

// ---- quad edges ----

bool GeometryCore::alloc_quad_edge_data(unsigned int count) {
  GeometryCore::free_quad_edge_data();
  if (count == 0) return true;
  try {
    check_geometry_bytes(count, sizeof(unsigned int));
    quad_edges = new unsigned int[count]();
    num_quad_edges = count;
    return true;
  } catch (const std::bad_alloc&) {
    LogMgr::get().tracef_debug("Geometry core - %u quad edge indices don't fit in memory", count);
    return false;
  }
}

bool GeometryCore::free_quad_edge_data() {
  delete[] quad_edges;
  quad_edges = nullptr;
  num_quad_edges = 0;
  return true;
}

// ---- subsets ----

bool GeometryCore::alloc_subsets(unsigned int count) {
  free_subsets();
  if (count == 0) return true;
  try {
    check_geometry_bytes(count, sizeof(MaterialSubset));
    subsets = new MaterialSubset[count];
    num_subsets = count;
    return true;
  } catch (const std::bad_alloc&) {
    LogMgr::get().tracef_debug("Geometry core - %u material subsets don't fit in memory", count);
    return false;
  }
}

void GeometryCore::free_subsets() {
  delete[] subsets;
  subsets = nullptr;
  num_subsets = 0;
  current_subset = nullptr;
}

// ---- all at once ----

bool GeometryCore::free_data() {
  free_vertex_data();
  free_face_data();
  free_quad_edge_data();
  free_subsets();
  return true;
}

void GeometryCore::release_cpu_data() {
  // A renderer that notes its uploads may be behind the arrays; any other is taken to be level.
  if (gpu_state.uploaded_serial == 0) get_gpu_layout(&gpu_state.released);
  const bool keep = vb_uploaded;
  free_data();
  gpu_state.cpu_released = keep;
}

}  // namespace orv
