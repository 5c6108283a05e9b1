#pragma once

#include <GL/gl.h>
#include <GL/glext.h>

#include <cstdint>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

namespace orv::test {

/// Declared type and name of a parameter, as the lists of functions spell them.
struct Parameter {
  std::string type;
  std::string name;
};

/// The parameters of a declaration such as "(GLenum mode, GLint first)".
std::vector<Parameter> parse_parameters(const char* text);

/// Name of a value of a parameter; some names depend on the function.
std::string print_enum(const std::string& function, const std::string& parameter, GLenum value);
std::string print_bitfield(const std::string& function, GLbitfield value);
std::string print_number(double value);

/// How many values a pointer to numbers leads to, as far as the function and the arguments before
/// it tell; 0 when they do not.
int count_values(const std::string& function, const std::vector<std::string>& printed);

/// Writes one call down, argument by argument.
class Printer {
 public:
  Printer(const char* function, const std::vector<Parameter>& parameters)
      : function_(function), parameters_(parameters) {}

  template <class T>
  void add(const T& value) {
    const Parameter& parameter = parameters_[printed_.size()];
    printed_.push_back(print(parameter, value));
  }

  std::string text() const {
    std::string all = function_ + "(";
    for (std::size_t i = 0; i < printed_.size(); ++i) all += (i > 0 ? ", " : "") + printed_[i];
    return all + ")";
  }

 private:
  template <class T>
  std::string print(const Parameter& parameter, const T& value) {
    if constexpr (std::is_pointer_v<T>) {
      return print_pointer(parameter, value);
    } else if constexpr (std::is_floating_point_v<T>) {
      return print_number(static_cast<double>(value));
    } else {
      if (parameter.type == "GLenum") {
        return print_enum(function_, parameter.name, static_cast<GLenum>(value));
      }
      if (parameter.type == "GLboolean") return value ? "GL_TRUE" : "GL_FALSE";
      if (parameter.type == "GLbitfield") {
        return print_bitfield(function_, static_cast<GLbitfield>(value));
      }
      if (is_enum_in_disguise(parameter)) {
        return print_enum(function_, parameter.name, static_cast<GLenum>(value));
      }
      return std::to_string(value);
    }
  }

  // Parameters of textures and the like are declared as plain integers.
  bool is_enum_in_disguise(const Parameter& parameter) const {
    if (parameter.name == "internalFormat" || parameter.name == "internalformat") return true;
    if (parameter.name != "param" || printed_.size() < 2) return false;
    static const std::set<std::string> ENUM_PARAMETERS = {
        "GL_TEXTURE_MIN_FILTER",   "GL_TEXTURE_MAG_FILTER", "GL_TEXTURE_WRAP_S",
        "GL_TEXTURE_WRAP_T",       "GL_TEXTURE_WRAP_R",     "GL_TEXTURE_COMPARE_MODE",
        "GL_TEXTURE_COMPARE_FUNC", "GL_DEPTH_TEXTURE_MODE", "GL_TEXTURE_ENV_MODE"};
    return ENUM_PARAMETERS.count(printed_[1]) != 0;
  }

  template <class T>
  std::string print_pointer(const Parameter& parameter, T value) {
    using Pointee = std::remove_cv_t<std::remove_pointer_t<T>>;
    if constexpr (std::is_same_v<Pointee, char>) {
      if (parameter.type == "const GLchar*" && value) return "\"" + std::string(value) + "\"";
    }
    if constexpr (std::is_void_v<Pointee>) {
      // Offsets into buffers are handed over as pointers.
      const bool offset =
          parameter.name == "pointer" || parameter.name == "indices" || parameter.name == "ptr";
      if (offset && reinterpret_cast<std::uintptr_t>(value) < 0x1000000) {
        return std::to_string(reinterpret_cast<std::uintptr_t>(value));
      }
    }
    if (!value) return "null";
    if constexpr (std::is_arithmetic_v<Pointee>) {
      if (parameter.type.rfind("const", 0) == 0) {
        const int count = count_values(function_, printed_);
        if (count > 0) return print_values(parameter, value, count);
      }
    }
    return "ptr";
  }

  template <class T>
  std::string print_values(const Parameter& parameter, const T* values, int count) {
    std::string text = "[";
    for (int i = 0; i < count; ++i) {
      if (i > 0) text += " ";
      text += parameter.type == "const GLenum*"
                  ? print_enum(function_, parameter.name, static_cast<GLenum>(values[i]))
                  : print_number(static_cast<double>(values[i]));
    }
    return text + "]";
  }

  std::string function_;
  const std::vector<Parameter>& parameters_;
  std::vector<std::string> printed_;
};

}  // namespace orv::test
