#include "common/shaders.h"

namespace examples {

const char* const surface_vertex = R"(
ATTRIBUTE vec4 orvex_Position;
ATTRIBUTE vec4 orvex_TexCoord0;
ATTRIBUTE vec4 orvex_Normal;
ATTRIBUTE vec4 orvex_Color;
uniform mat4 orvex_ModelMatrix;
uniform mat4 orvex_ModelViewMatrix;
uniform mat4 orvex_ModelViewProjectionMatrix;
VARYING vec3 world_normal;
VARYING vec3 view_normal;
VARYING vec3 view_position;
VARYING vec4 color;
VARYING vec2 uv;

void main() {
  vec4 position = vec4(orvex_Position.xyz, 1.0);
  world_normal = mat3(orvex_ModelMatrix) * orvex_Normal.xyz;
  view_normal = mat3(orvex_ModelViewMatrix) * orvex_Normal.xyz;
  view_position = (orvex_ModelViewMatrix * position).xyz;
  color = orvex_Color;
  uv = orvex_TexCoord0.xy;
  gl_Position = orvex_ModelViewProjectionMatrix * position;
}
)";

// Light is added up in linear space; colours come in and go out as seen on a screen.
const char* const lit_pixel = R"(
VARYING vec3 world_normal;
VARYING vec3 view_normal;
VARYING vec3 view_position;
VARYING vec4 color;

void main() {
  vec3 to_eye = normalize(-view_position);
  vec3 normal = normalize(view_normal);
  float up = normalize(world_normal).y;
  // Samples at an edge may look a little past it; only what is clearly a back face is turned.
  if (dot(normal, to_eye) < -0.2) {
    normal = -normal;
    up = -up;
  }
  vec3 to_light = normalize(vec3(-0.45, 0.75, 0.6));
  float light = max(dot(normal, to_light), 0.0);
  float shine = pow(max(dot(normal, normalize(to_light + to_eye)), 0.0), 48.0);
  vec3 around = mix(vec3(0.16, 0.13, 0.11), vec3(0.36, 0.42, 0.52), 0.5 + 0.5 * up);
  vec3 shade = pow(color.rgb, vec3(2.2)) * (around + vec3(1.0, 0.96, 0.88) * light) + 0.22 * shine;
  PIXEL = vec4(pow(min(shade, vec3(1.0)), vec3(1.0 / 2.2)), color.a);
}
)";

const char* const textured_pixel = R"(
VARYING vec3 view_normal;
VARYING vec2 uv;
uniform sampler2D color_map;

void main() {
  float light = max(dot(normalize(view_normal), normalize(vec3(-0.45, 0.75, 0.6))), 0.0);
  PIXEL = vec4(SAMPLE(color_map, uv).rgb * (0.5 + 0.6 * light), 1.0);
}
)";

const char* const flat_pixel = R"(
VARYING vec4 color;

void main() { PIXEL = color; }
)";

const char* const background_vertex = R"(
ATTRIBUTE vec4 orvex_Position;
VARYING float share;

void main() {
  share = orvex_Position.y;
  gl_Position = vec4(orvex_Position.xy * 2.0 - 1.0, 0.0, 1.0);
}
)";

const char* const background_pixel = R"(
VARYING float share;
uniform vec4 bottom;
uniform vec4 top;

void main() { PIXEL = mix(bottom, top, share); }
)";

std::string sectioned_shader(const char* vertex, const char* pixel, bool modern) {
  const std::string vertex_head =
      modern ? "#version 150\n#define ATTRIBUTE in\n#define VARYING out\n"
             : "#version 120\n#define ATTRIBUTE attribute\n#define VARYING varying\n";
  const std::string pixel_head =
      modern ? "#version 150\nout vec4 pixel;\n#define VARYING in\n#define PIXEL pixel\n"
               "#define SAMPLE texture\n#define SAMPLE_CUBE texture\n"
             : "#version 120\n#define VARYING varying\n#define PIXEL gl_FragColor\n"
               "#define SAMPLE texture2D\n#define SAMPLE_CUBE textureCube\n";
  return "[Vertex_Shader]\n" + vertex_head + vertex + "\n[Pixel_Shader]\n" + pixel_head + pixel;
}

}  // namespace examples
