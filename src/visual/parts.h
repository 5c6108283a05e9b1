#pragma once

#include <orv/fwd.h>
#include <orv/scene/node.h>

namespace orv {

/// An object that a helper draws for itself: held by a reference of its own and placed by the
/// helper's transform, without standing in its list of children, so that walks and releases of the
/// tree pass it by.
template <class Part>
Part* make_part(Node& owner) {
  auto* part = new Part;
  part->add_ref();
  part->set_parent(&owner);
  return part;
}

/// Ends make_part. Null is ignored.
template <class Part>
void release_part(Renderer* renderer, Part*& part) {
  if (!part) return;
  Part* node = part;
  part = nullptr;
  node->set_parent(nullptr);
  node->release(renderer, nullptr);
}

/// How a program that a helper makes for itself is named and spoken of.
struct OwnProgram {
  const char* name;    ///< in the manager
  const char* wanted;  ///< behind "unable to create the GPU program"
  const char* label;   ///< before "GPU program error"
  const char* vertex;  ///< source texts
  const char* pixel;
};

/// Makes and links a program through GpuProgramMgr, with a reference for the helper besides the
/// manager's. Null, with errors in the log, when it doesn't compile or link.
GpuProgram* make_own_program(Renderer& renderer, const OwnProgram& wanted);

/// Whether GLSL 1.50 is there, which came with OpenGL 3.2.
bool has_glsl_150(Renderer& renderer);

/// @{
/// Give up the helper's reference and, with `from_manager`, the manager's entry. Where there is no
/// renderer to delete the API object, the entry had better wait for the manager's end. The pixels
/// of a texture that nobody else holds go with the entry. Null is ignored.
void release_own_program(Renderer* renderer, GpuProgram*& program, bool from_manager);
void release_own_texture(Renderer* renderer, Texture*& texture, bool from_manager);
/// @}

}  // namespace orv
