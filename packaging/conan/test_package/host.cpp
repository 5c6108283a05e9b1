// Starts the library and builds a mesh; needs no screen and no OpenGL.
#include <orv/orv.h>

#include <cstdio>

int main() {
  orv::core::start(nullptr, true, nullptr, nullptr);
  orv::MeshTorus* torus = new orv::MeshTorus;
  torus->build(nullptr);
  const unsigned int faces = torus->get_num_faces(nullptr);
  std::printf("orv %d.%d.%d, a torus of %u triangles\n", orv::Kernel::get()->get_version_major(),
              orv::Kernel::get()->get_version_minor(), orv::Kernel::get()->get_version_patch(),
              faces);
  torus->release(nullptr, nullptr);
  orv::core::stop(nullptr);
  return faces > 0 ? 0 : 1;
}
