#pragma once

#include <orv/math/mat4.h>
#include <orv/math/vec4.h>
#include <orv/render/renderer_null.h>

#include <map>
#include <string>
#include <tuple>
#include <type_traits>
#include <vector>

namespace orv::test {

/// A renderer without an API that writes down each operation with its arguments, such as
/// "set_viewport(0, 1, 2, 30, 40)". Pointers print as the label given to them, as "null" or "ptr";
/// matrices as "mat4", vectors as "(x, y, z, w)", texts in quotes.
///
/// It remembers what the road of a mesh reads back: the two matrices, the viewport and the current
/// program. Any other answer can be set by the operation's name.
class RecordingRenderer : public RendererNull {
 public:
  explicit RecordingRenderer(ORV_API3D api_type = ORV_API3D_OPENGL);
  ~RecordingRenderer() override;

  /// All operations so far, in order, with arguments.
  const std::vector<std::string>& calls() const { return calls_; }
  /// Their names alone.
  std::vector<std::string> names() const;
  /// How often an operation was called.
  int count(const std::string& name) const;
  void clear() { calls_.clear(); }

  void label(const void* pointer, const std::string& text) { labels_[pointer] = text; }
  /// Answer of an operation with a number or bool as result.
  void answer(const std::string& name, double value) { numbers_[name] = value; }
  /// Answer of an operation with a pointer as result.
  void answer_pointer(const std::string& name, const void* value) { pointers_[name] = value; }
  void use_api_type(ORV_API3D type) { set_api_type(type); }
  void set_current_program(GpuProgramData* program) { current_program_ = program; }
  /// Matrix of the last call of an operation that takes matrices (its first one).
  const mat4& last_matrix(const std::string& name) { return matrices_[name]; }

#define ORV_OP(type, name, parameters, arguments, null_result)            \
  type name parameters override {                                         \
    record(#name, std::forward_as_tuple arguments);                       \
    return answer_to<type>(#name, [&]() -> type { return null_result; }); \
  }
#define ORV_BASE_OP(type, name, parameters, arguments, null_result)
#define ORV_NULL_MATRIX matrices_["identity"]
#include <orv/render/renderer_ops.inc>
#undef ORV_NULL_MATRIX

 private:
  template <class... Args>
  void record(const char* name, std::tuple<Args...> arguments) {
    std::string text = std::string(name) + "(";
    bool first = true;
    std::apply(
        [&](const auto&... values) {
          ((text += (first ? "" : ", ") + print(values), first = false), ...);
        },
        arguments);
    calls_.push_back(text + ")");
    if constexpr (sizeof...(Args) > 0) {
      using First =
          std::remove_cv_t<std::remove_reference_t<std::tuple_element_t<0, std::tuple<Args...>>>>;
      if constexpr (std::is_same_v<First, mat4>) matrices_[name] = std::get<0>(arguments);
      if constexpr (std::is_same_v<First, const mat4*>) {
        if (std::get<0>(arguments)) matrices_[name] = *std::get<0>(arguments);
      }
      if constexpr (std::is_same_v<First, GpuProgramData*> && sizeof...(Args) == 1) {
        remember_program(name, std::get<0>(arguments));
      }
      if constexpr (sizeof...(Args) == 5 && std::is_same_v<First, unsigned int>) {
        remember_viewport(name, arguments);
      }
    }
  }

  template <class Tuple>
  void remember_viewport(const std::string& name, const Tuple& arguments) {
    if constexpr (std::is_convertible_v<std::tuple_element_t<1, Tuple>, int>) {
      if (name != "set_viewport") return;
      viewport_[0] = static_cast<int>(std::get<1>(arguments));
      viewport_[1] = static_cast<int>(std::get<2>(arguments));
      viewport_[2] = static_cast<int>(std::get<3>(arguments));
      viewport_[3] = static_cast<int>(std::get<4>(arguments));
    }
  }

  template <class Type, class Default>
  Type answer_to(const std::string& name, Default fallback) {
    if constexpr (std::is_same_v<Type, const mat4&>) {
      return matrices_[name == "get_projection_matrix" ? "set_projection_matrix"
                                                       : "set_modelview_matrix"];
    } else if constexpr (std::is_arithmetic_v<Type>) {
      const auto found = numbers_.find(name);
      return found == numbers_.end() ? fallback() : static_cast<Type>(found->second);
    } else if constexpr (std::is_pointer_v<Type>) {
      if constexpr (std::is_same_v<Type, GpuProgramData*>) return current_program_;
      if constexpr (std::is_same_v<Type, int*>) return viewport_;
      const auto found = pointers_.find(name);
      return found == pointers_.end() ? fallback()
                                      : static_cast<Type>(const_cast<void*>(found->second));
    } else {
      fallback();
    }
  }

  void remember_program(const std::string& name, GpuProgramData* program);

  static std::string print(bool value) { return value ? "true" : "false"; }
  static std::string print(int value) { return std::to_string(value); }
  static std::string print(unsigned int value) { return std::to_string(value); }
  static std::string print(unsigned short value) { return std::to_string(value); }
  static std::string print(unsigned long long value) { return std::to_string(value); }
  static std::string print(double value);
  static std::string print(float value) { return print(static_cast<double>(value)); }
  static std::string print(const mat4&) { return "mat4"; }
  static std::string print(const vec4& value);
  std::string print(const char* value) const;
  std::string print(const void* value) const;
  template <class Enum, class = std::enable_if_t<std::is_enum_v<Enum>>>
  static std::string print(Enum value) {
    return std::to_string(static_cast<int>(value));
  }

  std::vector<std::string> calls_;
  std::map<const void*, std::string> labels_;
  std::map<std::string, double> numbers_;
  std::map<std::string, const void*> pointers_;
  std::map<std::string, mat4> matrices_;
  GpuProgramData* current_program_ = nullptr;
  int viewport_[4] = {};
};

}  // namespace orv::test
