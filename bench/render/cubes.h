/// @file
/// A field of cubes, and who can draw it.
#pragma once

#include <orv/math/mat4.h>
#include <orv/math/vec4.h>

#include <memory>
#include <vector>

#include "raw_gl.h"

namespace bench {

/// What each side draws: one mesh a cube, all of the same shape but each with buffers of its own.
struct CubeField {
  static constexpr int WIDTH = 512;
  static constexpr int HEIGHT = 512;
  static constexpr int NUM_CUBES = 10000;

  orv::mat4 projection;
  orv::mat4 view;
  std::vector<orv::mat4> transforms;
  std::vector<orv::vec4> colors;
  RawMesh cube;
};

class CubeSide {
 public:
  virtual ~CubeSide() = default;
  /// Before a run of frames.
  virtual void make_current() = 0;
  /// One frame, up to the flush.
  virtual void draw() = 0;
};

/// @{
/// The sides. Ours also fills in the field that the others draw. The raw one makes the calls that
/// ours makes, or, when it is `lean`, leaves program and vertex arrays bound between cubes.
std::unique_ptr<CubeSide> make_our_cubes(CubeField* field);
std::unique_ptr<CubeSide> make_raw_cubes(const CubeField& field, bool lean);
std::unique_ptr<CubeSide> make_osg_cubes(const CubeField& field);
/// @}

/// @{
/// The program of the field, for core profile contexts.
inline constexpr const char* CUBE_VERTEX_TEXT = R"(#version 150
in vec4 orvex_Position;
in vec4 orvex_Normal;
uniform mat4 orvex_ModelViewProjectionMatrix;
out float light;
void main() {
  light = 0.6 + 0.4 * dot(orvex_Normal.xyz, vec3(0.48, 0.64, 0.6));
  gl_Position = orvex_ModelViewProjectionMatrix * vec4(orvex_Position.xyz, 1.0);
}
)";
inline constexpr const char* CUBE_PIXEL_TEXT = R"(#version 150
in float light;
uniform vec4 surface_color;
out vec4 pixel;
void main() { pixel = vec4(surface_color.rgb * light, 1.0); }
)";
/// @}

}  // namespace bench
