#pragma once

namespace orv {

/// Sources of the sky's programs. The rectangle lies in clip space; the direction of a pixel is its
/// place taken back through the matrices, the view's without its translation.

inline constexpr char SKYBOX_GL2_VERTEX[] =
    "#version 120\n"
    "uniform mat4 ORV_ModelViewMatrix;\n"
    "uniform mat4 ORV_ProjectionMatrix;\n"
    "void main() \n"
    "{\n"
    "  mat4 r = ORV_ModelViewMatrix;\n"
    "  r[3][0] = 0.0;\n"
    "  r[3][1] = 0.0;\n"
    "  r[3][2] = 0.0;\n"
    "  vec4 v = inverse(r) * inverse(ORV_ProjectionMatrix) * gl_Vertex;\n"
    "  gl_TexCoord[0] = v;\n"
    "  gl_Position = gl_Vertex;\n"
    "}";

/// The same for compilers that hold to GLSL 1.20, which has no inverse: by cofactors, from the
/// determinants of the 2 x 2 blocks of the first and of the last two columns.
inline constexpr char SKYBOX_GL2_VERTEX_WITH_INVERSE[] =
    "#version 120\n"
    "uniform mat4 ORV_ModelViewMatrix;\n"
    "uniform mat4 ORV_ProjectionMatrix;\n"
    "mat4 orv_inv(mat4 m)\n"
    "{\n"
    "  float a0 = m[0][0] * m[1][1] - m[0][1] * m[1][0];\n"
    "  float a1 = m[0][0] * m[1][2] - m[0][2] * m[1][0];\n"
    "  float a2 = m[0][0] * m[1][3] - m[0][3] * m[1][0];\n"
    "  float a3 = m[0][1] * m[1][2] - m[0][2] * m[1][1];\n"
    "  float a4 = m[0][1] * m[1][3] - m[0][3] * m[1][1];\n"
    "  float a5 = m[0][2] * m[1][3] - m[0][3] * m[1][2];\n"
    "  float b0 = m[2][0] * m[3][1] - m[2][1] * m[3][0];\n"
    "  float b1 = m[2][0] * m[3][2] - m[2][2] * m[3][0];\n"
    "  float b2 = m[2][0] * m[3][3] - m[2][3] * m[3][0];\n"
    "  float b3 = m[2][1] * m[3][2] - m[2][2] * m[3][1];\n"
    "  float b4 = m[2][1] * m[3][3] - m[2][3] * m[3][1];\n"
    "  float b5 = m[2][2] * m[3][3] - m[2][3] * m[3][2];\n"
    "  float d = a0 * b5 - a1 * b4 + a2 * b3 + a3 * b2 - a4 * b1 + a5 * b0;\n"
    "  return mat4(\n"
    "      m[1][1] * b5 - m[1][2] * b4 + m[1][3] * b3,\n"
    "      m[0][2] * b4 - m[0][1] * b5 - m[0][3] * b3,\n"
    "      m[3][1] * a5 - m[3][2] * a4 + m[3][3] * a3,\n"
    "      m[2][2] * a4 - m[2][1] * a5 - m[2][3] * a3,\n"
    "      m[1][2] * b2 - m[1][0] * b5 - m[1][3] * b1,\n"
    "      m[0][0] * b5 - m[0][2] * b2 + m[0][3] * b1,\n"
    "      m[3][2] * a2 - m[3][0] * a5 - m[3][3] * a1,\n"
    "      m[2][0] * a5 - m[2][2] * a2 + m[2][3] * a1,\n"
    "      m[1][0] * b4 - m[1][1] * b2 + m[1][3] * b0,\n"
    "      m[0][1] * b2 - m[0][0] * b4 - m[0][3] * b0,\n"
    "      m[3][0] * a4 - m[3][1] * a2 + m[3][3] * a0,\n"
    "      m[2][1] * a2 - m[2][0] * a4 - m[2][3] * a0,\n"
    "      m[1][1] * b1 - m[1][0] * b3 - m[1][2] * b0,\n"
    "      m[0][0] * b3 - m[0][1] * b1 + m[0][2] * b0,\n"
    "      m[3][1] * a1 - m[3][0] * a3 - m[3][2] * a0,\n"
    "      m[2][0] * a3 - m[2][1] * a1 + m[2][2] * a0) / d;\n"
    "}\n"
    "void main() \n"
    "{\n"
    "  mat4 r = ORV_ModelViewMatrix;\n"
    "  r[3][0] = 0.0;\n"
    "  r[3][1] = 0.0;\n"
    "  r[3][2] = 0.0;\n"
    "  vec4 v = orv_inv(r) * orv_inv(ORV_ProjectionMatrix) * gl_Vertex;\n"
    "  gl_TexCoord[0] = v;\n"
    "  gl_Position = gl_Vertex;\n"
    "}";

inline constexpr char SKYBOX_GL2_PIXEL[] =
    "#version 120\n"
    "uniform samplerCube cubemap;\n"
    "void main() \n"
    "{\n"
    "vec3 uv = gl_TexCoord[0].xyz;\n"
    "uv.x *= -1.0;\n"
    "  gl_FragColor = textureCube(cubemap, normalize(uv.xyz)); \n"
    "}";

inline constexpr char SKYBOX_GL3_VERTEX[] =
    "#version 150\n"
    "in vec4 ORV_Position;\n"
    "out vec4 Vertex_UV;\n"
    "uniform mat4 ORV_ModelViewMatrix;\n"
    "uniform mat4 ORV_ProjectionMatrix;\n"
    "void main() \n"
    "{\n"
    "  mat4 r = ORV_ModelViewMatrix;\n"
    "  r[3][0] = 0.0;\n"
    "  r[3][1] = 0.0;\n"
    "  r[3][2] = 0.0;\n"
    "  vec4 v = inverse(r) * inverse(ORV_ProjectionMatrix) * ORV_Position;\n"
    "  Vertex_UV = v;\n"
    "  gl_Position = ORV_Position;\n"
    "}";

inline constexpr char SKYBOX_GL3_PIXEL[] =
    "#version 150\n"
    "in vec4 Vertex_UV;\n"
    "out vec4 Out_Color;\n"
    "uniform samplerCube cubemap;\n"
    "void main() \n"
    "{\n"
    "vec3 uv = Vertex_UV.xyz;\n"
    "uv.x *= -1.0;\n"
    "  Out_Color = texture(cubemap, normalize(uv.xyz)); \n"
    "}";

}  // namespace orv
