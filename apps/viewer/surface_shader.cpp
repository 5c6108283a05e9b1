#include "viewer/surface_shader.h"

namespace viewer {

namespace {

constexpr const char* vertex_body = R"(
ATTRIBUTE vec4 orvex_Position;
ATTRIBUTE vec4 orvex_Normal;
ATTRIBUTE vec4 orvex_TexCoord0;
uniform mat4 orvex_ModelMatrix;
uniform mat4 orvex_ModelViewProjectionMatrix;
VARYING vec3 world_position;
VARYING vec3 world_normal;
VARYING vec2 uv;

void main() {
  world_position = (orvex_ModelMatrix * vec4(orvex_Position.xyz, 1.0)).xyz;
  world_normal = mat3(orvex_ModelMatrix[0].xyz, orvex_ModelMatrix[1].xyz,
                      orvex_ModelMatrix[2].xyz) * orvex_Normal.xyz;
  uv = orvex_TexCoord0.xy;
  gl_Position = orvex_ModelViewProjectionMatrix * vec4(orvex_Position.xyz, 1.0);
}
)";

// Colours of files are as seen on a screen; light is added up in linear space.
constexpr const char* pixel_body = R"(
VARYING vec3 world_position;
VARYING vec3 world_normal;
VARYING vec2 uv;
uniform sampler2D color_map;
uniform vec4 camera_position;
uniform vec4 surface_color;      // w: share of the texture
uniform vec4 surface_highlight;  // w: exponent
uniform vec4 orv_light_position_0;
uniform vec4 orv_light_diffuse_0;

vec3 to_linear(vec3 color) { return pow(max(color, vec3(0.0)), vec3(2.2)); }

void main() {
  vec3 normal = world_normal;
  float size = dot(normal, normal);
  if (!(size > 1e-30 && size < 1e30)) normal = cross(dFdx(world_position), dFdy(world_position));
  normal = normalize(normal);
  vec3 to_eye = normalize(camera_position.xyz - world_position);
  if (dot(normal, to_eye) < 0.0) normal = -normal;

  vec3 texel = SAMPLE(color_map, uv).rgb;
  vec3 albedo = to_linear(surface_color.rgb * mix(vec3(1.0), texel, surface_color.w));
  vec3 to_light = normalize(orv_light_position_0.xyz - world_position);
  vec3 around = mix(vec3(0.13, 0.12, 0.11), vec3(0.30, 0.33, 0.38), 0.5 + 0.5 * normal.y);
  vec3 light = orv_light_diffuse_0.rgb * max(dot(normal, to_light), 0.0);
  light += vec3(0.12) * max(dot(normal, to_eye), 0.0);
  float highlight = pow(max(dot(normal, normalize(to_light + to_eye)), 0.0), surface_highlight.w);
  vec3 color = albedo * (around + light) + to_linear(surface_highlight.rgb) * highlight * 0.3;
  PIXEL = vec4(pow(clamp(color, 0.0, 1.0), vec3(1.0 / 2.2)), 1.0);
}
)";

}  // namespace

std::string surface_vertex_shader(bool core) {
  const char* head = core ? "#version 150\n#define ATTRIBUTE in\n#define VARYING out\n"
                          : "#version 120\n#define ATTRIBUTE attribute\n#define VARYING varying\n";
  return std::string(head) + vertex_body;
}

std::string surface_pixel_shader(bool core) {
  const char* head = core ? "#version 150\nout vec4 pixel;\n#define VARYING in\n"
                            "#define SAMPLE texture\n#define PIXEL pixel\n"
                          : "#version 120\n#define VARYING varying\n"
                            "#define SAMPLE texture2D\n#define PIXEL gl_FragColor\n";
  return std::string(head) + pixel_body;
}

}  // namespace viewer
