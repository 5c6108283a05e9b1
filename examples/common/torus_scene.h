#pragma once

#include <orv/fwd.h>

/// What the hosts with a window of their own draw; their sources show the window alone.
namespace examples {

struct Size {
  int width = 480;
  int height = 360;
};

/// The options --output FILE.png and --profile core|compat.
struct HostOptions {
  const char* picture = nullptr;
  bool core = true;

  HostOptions(int argc, char** argv);
};

/// A lit torus; the caller releases it.
orv::Mesh* create_torus(orv::Renderer* renderer, const orv::vec4& color);

/// A frame of the torus, turned by an angle in degrees.
void draw_torus(orv::Renderer* renderer, orv::Mesh* torus, Size size, float angle);

/// Writes what was drawn as a PNG file.
bool write_picture(orv::Renderer* renderer, const char* path, Size size);

}  // namespace examples
