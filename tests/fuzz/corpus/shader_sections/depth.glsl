[Vertex_Shader]
#version 150
in vec4 orvex_Position;
uniform mat4 orvex_ModelViewProjectionMatrix;

void main() { gl_Position = orvex_ModelViewProjectionMatrix * vec4(orvex_Position.xyz, 1.0); }

[Pixel_Shader]
#version 150
out vec4 pixel;

void main() { pixel = vec4(1.0); }
