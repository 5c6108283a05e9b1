[Vertex_Shader]
#version 150
void main() {}
[Pixel_Shader]
void main() {}
