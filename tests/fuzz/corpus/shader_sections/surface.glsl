[Vertex_Shader]
#version 150
in vec4 orvex_Position;
in vec4 orvex_TexCoord0;
in vec4 orvex_Normal;
uniform mat4 orvex_ModelMatrix;
uniform mat4 orvex_ModelViewProjectionMatrix;
uniform mat4 shadow_matrix;
out vec3 world_position;
out vec3 world_normal;
out vec2 texture_position;
out vec4 shadow_position;

void main() {
  vec4 world = orvex_ModelMatrix * vec4(orvex_Position.xyz, 1.0);
  world_position = world.xyz;
  world_normal = mat3(orvex_ModelMatrix) * orvex_Normal.xyz;
  texture_position = orvex_TexCoord0.xy;
  shadow_position = shadow_matrix * world;
  gl_Position = orvex_ModelViewProjectionMatrix * vec4(orvex_Position.xyz, 1.0);
}

[Pixel_Shader]
#version 150
in vec3 world_position;
in vec3 world_normal;
in vec2 texture_position;
in vec4 shadow_position;
uniform sampler2D color_map;
uniform sampler2D shadow_map;
uniform vec4 camera_position;
uniform vec4 surface_color;    // linear RGB
uniform vec4 surface_options;  // texture, checker, unlit, gloss from 0 to 1
uniform vec4 orv_light_position_0;
uniform float orv_light_radius_0;
uniform vec4 orv_light_diffuse_0;
uniform vec4 orv_light_ambient_0;  // a Light sends its specular colour under this name
out vec4 pixel;

const vec3 horizon = vec3(0.50, 0.60, 0.72);
const vec3 zenith = vec3(0.05, 0.13, 0.34);

vec3 sky(vec3 direction) {
  return mix(horizon, zenith, pow(clamp(direction.y, 0.0, 1.0), 0.42));
}

// Share of the light that arrives: 7 x 7 samples around the point in the shadow map.
float visibility(float slope) {
  vec3 p = shadow_position.xyz / shadow_position.w * 0.5 + 0.5;
  if (p.z > 1.0 || any(lessThan(p.xy, vec2(0.0))) || any(greaterThan(p.xy, vec2(1.0)))) return 1.0;
  vec2 texel = 1.3 / vec2(textureSize(shadow_map, 0));
  float bias = mix(0.0022, 0.0006, slope);
  float lit = 0.0;
  for (int y = -3; y <= 3; ++y) {
    for (int x = -3; x <= 3; ++x) {
      lit += step(p.z - bias, texture(shadow_map, p.xy + vec2(x, y) * texel).r);
    }
  }
  return lit / 49.0;
}

// A checker board whose squares fade into their mean where they become smaller than a pixel.
float checker(vec2 p) {
  vec2 width = max(fwidth(p), vec2(1e-4));
  vec2 i = 2.0 * (abs(fract((p - 0.5 * width) * 0.5) - 0.5) -
                  abs(fract((p + 0.5 * width) * 0.5) - 0.5)) / width;
  return 0.5 - 0.5 * i.x * i.y;
}

vec3 film(vec3 color) {
  color = (color * (2.51 * color + 0.03)) / (color * (2.43 * color + 0.59) + 0.14);
  return pow(clamp(color, 0.0, 1.0), vec3(1.0 / 2.2));
}

void main() {
  vec3 to_eye = normalize(camera_position.xyz - world_position);
  vec3 albedo = surface_color.rgb;
  if (surface_options.x > 0.5) albedo *= pow(texture(color_map, texture_position).rgb, vec3(2.2));
  if (surface_options.y > 0.5) albedo *= mix(0.55, 1.0, checker(world_position.xz));
  if (surface_options.z > 1.5) {
    pixel = vec4(film(sky(-to_eye)), 1.0);
    return;
  }
  if (surface_options.z > 0.5) {
    pixel = vec4(pow(albedo, vec3(1.0 / 2.2)), 1.0);
    return;
  }

  vec3 normal = normalize(world_normal);
  if (dot(normal, to_eye) < 0.0) normal = -normal;
  vec3 to_light = orv_light_position_0.xyz - world_position;
  float reach = clamp(1.0 - length(to_light) / orv_light_radius_0, 0.0, 1.0);
  to_light = normalize(to_light);
  float slope = max(dot(normal, to_light), 0.0);
  float light = reach * visibility(slope);
  float gloss = surface_options.w;
  vec3 half_way = normalize(to_light + to_eye);
  float power = exp2(2.0 + 8.0 * gloss);
  float highlight = pow(max(dot(normal, half_way), 0.0), power) * (power + 8.0) / 40.0 * gloss;
  float rim = pow(1.0 - max(dot(normal, to_eye), 0.0), 5.0);

  vec3 around = mix(vec3(0.20, 0.18, 0.16), sky(vec3(0.0, 0.6, 0.0)) * 0.8 + 0.12,
                    0.5 + 0.5 * normal.y);
  vec3 color = albedo * (around * 0.55 + orv_light_diffuse_0.rgb * slope * light * 1.15);
  color += orv_light_ambient_0.rgb * highlight * light;
  color += sky(reflect(-to_eye, normal)) * (0.04 + 0.5 * rim) * gloss;
  float distance = length(camera_position.xyz - world_position);
  color = mix(color, horizon, 1.0 - exp(-pow(distance / 34.0, 3.0)));
  pixel = vec4(film(color), 1.0);
}
