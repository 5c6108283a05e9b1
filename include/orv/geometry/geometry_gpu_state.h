/// @file
/// What renderers note about the GPU copy of a geometry.
#pragma once

#include <orv/core/api.h>

namespace orv {

/// Placement of one attribute array in a vertex buffer.
struct ORV_API GeometryGpuAttrib {
  int location = -1;              ///< in GPU programs, -1 for none
  int divisor = 0;                ///< instances per element, 0 for an attribute per vertex
  int element_dim = 0;            ///< components of an element
  int element_size = 0;           ///< bytes
  unsigned int num_elements = 0;  ///< the array takes `element_size` * `num_elements` bytes
  bool copied_from_own = false;   ///< passed over where a lower array has its location
};

/// All that is needed to bind and draw a geometry from its buffers.
struct ORV_API GeometryGpuLayout {
  unsigned int num_vertices = 0;      ///< vertices in the buffer
  unsigned int num_faces = 0;         ///< number of indices in the generic form
  int index_bits = 32;                ///< 16 or 32
  bool generic_indices = false;       ///< indices one by one, not faces of three
  unsigned int interleaved_size = 0;  ///< bytes of the interleaved block in front; 0 without one
  int std_locations[4] = {-1, -1, -1, -1};  ///< of the attributes of the interleaved block
  unsigned int num_attribs = 0;             ///< entries of `attribs` in use
  GeometryGpuAttrib attribs[16];            ///< in the order of the buffer
};

/// Bookkeeping of the renderer that uploaded a geometry. The geometry only keeps it, apart from
/// `cpu_released` and `released`.
struct ORV_API GeometryGpuState {
  unsigned int vao_id = 0;                ///< vertex array object, 0 for none
  unsigned int vao_source_id = 0;         ///< vertex buffer the object was recorded with
  unsigned int vao_serial = 0;            ///< layout serial it was recorded for
  unsigned int vao_context_id = 0;        ///< number of the context that the object belongs to
  unsigned int uploaded_vertex_size = 0;  ///< bytes the vertex buffer was specified with
  unsigned int uploaded_index_size = 0;   ///< bytes the index buffer was specified with
  unsigned int uploaded_serial = 0;       ///< layout serial the buffers were specified for
  unsigned int uploaded_num_faces = 0;    ///< faces (or generic indices) in the index buffer

  /// The CPU arrays were given up while the buffers stayed: drawing goes on from `released`, and
  /// updates send nothing. Any later allocation or freeing ends this.
  bool cpu_released = false;
  GeometryGpuLayout released;  ///< what the buffers hold, as noted when they were filled
};

}  // namespace orv
