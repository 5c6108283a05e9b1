#include "support/fake_gl_printer.h"

#include <cstdio>
#include <iterator>
#include <sstream>
#include <unordered_map>

namespace orv::test {
namespace {

const std::unordered_map<GLenum, const char*>& enum_names() {
  static const std::unordered_map<GLenum, const char*> names = {
#define ORV_GL_ENUM(name) {name, #name},
#include "support/gl_enum_names.inc"
  };
  return names;
}

struct NamedBit {
  GLbitfield bit;
  const char* name;
};

std::string print_bits(GLbitfield value, const std::vector<NamedBit>& names) {
  std::string text;
  for (const NamedBit& named : names) {
    if (!(value & named.bit)) continue;
    text += (text.empty() ? "" : "|") + std::string(named.name);
    value &= ~named.bit;
  }
  if (value == 0 && !text.empty()) return text;
  char rest[16];
  std::snprintf(rest, sizeof(rest), "0x%X", value);
  return text.empty() ? rest : text + "|" + rest;
}

std::string print_numbered(const char* name, GLenum base, GLenum value) {
  return name + std::to_string(value - base);
}

}  // namespace

// ---- values ----------------------------------------------------------------------------------

std::string print_bitfield(const std::string& function, GLbitfield value) {
  if (function == "glClear" || function == "glBlitFramebuffer") {
    return print_bits(value, {{GL_COLOR_BUFFER_BIT, "GL_COLOR_BUFFER_BIT"},
                              {GL_DEPTH_BUFFER_BIT, "GL_DEPTH_BUFFER_BIT"},
                              {GL_STENCIL_BUFFER_BIT, "GL_STENCIL_BUFFER_BIT"}});
  }
  return print_bits(value, {});
}

std::string print_enum(const std::string& function, const std::string& parameter, GLenum value) {
  static const char* const PRIMITIVES[] = {"GL_POINTS",
                                           "GL_LINES",
                                           "GL_LINE_LOOP",
                                           "GL_LINE_STRIP",
                                           "GL_TRIANGLES",
                                           "GL_TRIANGLE_STRIP",
                                           "GL_TRIANGLE_FAN",
                                           "GL_QUADS",
                                           "GL_QUAD_STRIP",
                                           "GL_POLYGON",
                                           "GL_LINES_ADJACENCY",
                                           "GL_LINE_STRIP_ADJACENCY",
                                           "GL_TRIANGLES_ADJACENCY",
                                           "GL_TRIANGLE_STRIP_ADJACENCY",
                                           "GL_PATCHES"};
  const bool draws =
      (function.rfind("glDraw", 0) == 0 && function != "glDrawBuffer") || function == "glBegin";
  if (draws && parameter == "mode" && value < std::size(PRIMITIVES)) return PRIMITIVES[value];
  if (function == "glBlendFunc" && value < 2) return value == 0 ? "GL_ZERO" : "GL_ONE";
  if (value == 0) return "GL_NONE";
  if (value >= GL_TEXTURE0 && value < GL_TEXTURE0 + 32) {
    return print_numbered("GL_TEXTURE", GL_TEXTURE0, value);
  }
  if (value >= GL_COLOR_ATTACHMENT0 && value < GL_COLOR_ATTACHMENT0 + 32) {
    return print_numbered("GL_COLOR_ATTACHMENT", GL_COLOR_ATTACHMENT0, value);
  }
  if (value >= GL_LIGHT0 && value < GL_LIGHT0 + 8) {
    return print_numbered("GL_LIGHT", GL_LIGHT0, value);
  }
  const auto found = enum_names().find(value);
  if (found != enum_names().end()) return found->second;
  char text[16];
  std::snprintf(text, sizeof(text), "0x%04X", value);
  return text;
}

std::string print_number(double value) {
  std::ostringstream out;
  out << value;
  return out.str();
}

// ---- parameters ------------------------------------------------------------------------------

std::vector<Parameter> parse_parameters(const char* text) {
  std::vector<Parameter> parameters;
  std::string body(text);
  body = body.substr(1, body.size() - 2);
  std::stringstream stream(body);
  std::string part;
  while (std::getline(stream, part, ',')) {
    const std::size_t space = part.find_last_of(" *");
    if (space == std::string::npos) continue;
    std::string type = part.substr(0, space + 1);
    const std::size_t begin = type.find_first_not_of(' ');
    const std::size_t end = type.find_last_not_of(' ');
    parameters.push_back({type.substr(begin, end - begin + 1), part.substr(space + 1)});
  }
  return parameters;
}

int count_values(const std::string& function, const std::vector<std::string>& printed) {
  if (function.find("Matrix4fv") != std::string::npos) return 16 * std::stoi(printed[1]);
  if (function.find("Matrix3fv") != std::string::npos) return 9 * std::stoi(printed[1]);
  if (function == "glLoadMatrixf" || function == "glMultMatrixf") return 16;
  if (function.rfind("glUniform", 0) == 0 && function.back() == 'v') {
    const char digit = function[9];
    if (digit >= '1' && digit <= '4') return (digit - '0') * std::stoi(printed[1]);
    return function.rfind("glUniformSubroutines", 0) == 0 ? std::stoi(printed[1]) : 0;
  }
  if (function.rfind("glVertexAttrib", 0) == 0 && function.back() == 'v') {
    return function[14] >= '1' && function[14] <= '4' ? function[14] - '0' : 0;
  }
  if (function == "glVertex4fv" || function == "glColor4fv") return 4;
  if (function == "glVertex3fv") return 3;
  if (function == "glLightfv") {
    if (printed[1] == "GL_SPOT_DIRECTION") return 3;
    return printed[1] == "GL_SPOT_EXPONENT" || printed[1] == "GL_SPOT_CUTOFF" ? 1 : 4;
  }
  if (function == "glMaterialfv" || function == "glLightModelfv") return 4;
  if (function.rfind("glClearBuffer", 0) == 0 && function.back() == 'v') {
    return printed[0] == "GL_COLOR" ? 4 : 1;
  }
  if (function.rfind("glDelete", 0) == 0 || function == "glDrawBuffers") {
    return std::stoi(printed[0]);
  }
  return 0;
}

}  // namespace orv::test
