/// @file
/// The mesh that a queue of texts becomes.
#pragma once

#include <orv/fwd.h>

namespace orv::detail {

/// One mesh with room for some characters, six interleaved vertices each, drawn by one call.
class TextMesh {
 public:
  TextMesh() = default;
  ~TextMesh();
  TextMesh(const TextMesh&) = delete;
  TextMesh& operator=(const TextMesh&) = delete;

  Mesh* mesh() const { return mesh_; }
  /// Characters that there is room for.
  unsigned int capacity() const { return capacity_; }

  /// Makes room for `num_chars` characters and `slack` more, but at least `slack`. The mesh loses
  /// what it holds on the CPU and the GPU, and is made when there is none. False when it does not
  /// fit in memory; there is no room at all then.
  bool reserve(Renderer* renderer, unsigned int num_chars, unsigned int slack);
  /// Ends the mesh, its buffers with it.
  void free(Renderer* renderer);

  enum Mapping { OFF, WHERE_POSSIBLE, REQUIRED };

  /// Has `write(float* rows)` write `num_chars` characters and sets the range that is drawn to
  /// them: to the mapped buffer where that is wanted, else to the mesh, which is then marked. False
  /// without a mesh, without room and without the mapping that is required.
  template <class Write>
  bool update(Renderer* renderer, unsigned int num_chars, Mapping mapping, Write write) {
    float* const own = block_for(num_chars);
    if (!own) return false;
    float* const mapped = mapping == OFF ? nullptr : map(renderer, num_chars);
    if (!mapped && mapping == REQUIRED) return false;
    // What is still to be sent would take the place of what is written to the buffer.
    const bool into_own = !mapped || is_marked();
    write(into_own ? own : mapped);
    end_update(renderer, num_chars, mapped, into_own);
    return true;
  }

  /// Draws with this matrix. False without a mesh.
  bool render(Renderer* renderer, const mat4& transform);

 private:
  float* block_for(unsigned int num_chars) const;
  float* map(Renderer* renderer, unsigned int num_chars);
  bool is_marked() const;
  void end_update(Renderer* renderer, unsigned int num_chars, float* mapped, bool into_own);

  Mesh* mesh_ = nullptr;
  unsigned int capacity_ = 0;
};

}  // namespace orv::detail
