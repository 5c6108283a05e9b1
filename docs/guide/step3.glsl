[Vertex_Shader]
#version 150
in vec4 orvex_Position;
in vec4 orvex_Normal;
uniform mat4 orvex_ModelMatrix;
uniform mat4 orvex_ModelViewProjectionMatrix;
out vec3 world_position;
out vec3 world_normal;

void main() {
  world_position = (orvex_ModelMatrix * vec4(orvex_Position.xyz, 1.0)).xyz;
  world_normal = mat3(orvex_ModelMatrix) * orvex_Normal.xyz;
  gl_Position = orvex_ModelViewProjectionMatrix * vec4(orvex_Position.xyz, 1.0);
}

[Pixel_Shader]
#version 150
in vec3 world_position;
in vec3 world_normal;
uniform vec4 orv_light_position_0;
uniform vec4 orv_light_diffuse_0;
uniform vec4 surface_color;
out vec4 pixel;

void main() {
  vec3 to_light = normalize(orv_light_position_0.xyz - world_position);
  float light = 0.25 + 0.75 * max(dot(normalize(world_normal), to_light), 0.0);
  pixel = vec4(surface_color.rgb * orv_light_diffuse_0.rgb * light, 1.0);
}
