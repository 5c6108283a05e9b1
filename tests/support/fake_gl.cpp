#include "support/fake_gl.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>
#include <tuple>
#include <type_traits>
#include <utility>

#include "render/opengl/renderer_opengl.h"
#include "support/fake_gl_answers.h"
#include "support/fake_gl_printer.h"

namespace orv::test {
namespace {

FakeGl* current_fake = nullptr;

// ---- functions -------------------------------------------------------------------------------

struct Function {
  std::string name;  ///< in the lists
  GlProc proc;
};

template <class Result, class Tag, class... Args>
Result run(const char* name, const std::vector<Parameter>& parameters,
           std::map<std::string, int>& counts, std::vector<std::string>& calls, Args... arguments) {
  ++counts[name];
  if constexpr (!std::is_same_v<Tag, tag::glGetError>) {
    Printer printer(name, parameters);
    (printer.add(arguments), ...);
    calls.push_back(printer.text());
  }
  FakeGlAnswers answers{*current_fake};
  if constexpr (requires { answers.answer(Tag(), arguments...); }) {
    return answers.answer(Tag(), arguments...);
  } else if constexpr (!std::is_void_v<Result>) {
    return Result();
  }
}

}  // namespace

/// The functions as OpenGL has them.
struct FakeGlFunctions {
  static std::map<std::string, int>& counts();
  static std::vector<std::string>& calls();

  template <class Result, class Tag, class... Args>
  static Result call(const char* name, const char* declared, std::tuple<Args...> arguments) {
    static const std::vector<Parameter> parameters = parse_parameters(declared);
    return std::apply(
        [&](Args... values) -> Result {
          return run<Result, Tag>(name, parameters, counts(), calls(), values...);
        },
        arguments);
  }

#define ORV_GL(result, name, parameters, arguments, grants)                        \
  static result APIENTRY name parameters {                                         \
    return call<result, tag::name>(#name, #parameters, std::make_tuple arguments); \
  }
#include "render/opengl/gl_core_functions.inc"
#define ORV_GL(result, name, parameters, arguments, grants)                        \
  static result APIENTRY name parameters {                                         \
    return call<result, tag::name>(#name, #parameters, std::make_tuple arguments); \
  }
#include "render/opengl/gl_entry_points.inc"
};

std::map<std::string, int>& FakeGlFunctions::counts() {
  static std::map<std::string, int> all;
  return all;
}

std::vector<std::string>& FakeGlFunctions::calls() {
  static std::vector<std::string> all;
  return all;
}

namespace {

// The names of a grants text: functions behind "=", extensions before.
void split_grants(const char* grants, const std::string& name, std::set<std::string>* functions,
                  std::set<std::string>* extensions) {
  std::stringstream stream(grants);
  std::string word;
  while (stream >> word) {
    if (word.rfind("fixed:", 0) == 0) word = word.substr(6);
    const std::size_t equals = word.find('=');
    functions->insert(equals == std::string::npos ? name : word.substr(equals + 1));
    const std::string condition = word.substr(0, equals);
    if (condition.rfind("GL_", 0) == 0) extensions->insert(condition);
  }
}

struct Directory {
  std::map<std::string, Function> functions;  ///< by every name that a grant has
  std::set<std::string> extensions;

  void add(const char* name, const char* grants, GlProc proc) {
    std::set<std::string> names = {name};
    split_grants(grants, name, &names, &extensions);
    for (const std::string& alias : names) functions[alias] = {name, proc};
  }
};

const Directory& directory() {
  static const Directory all = [] {
    Directory made;
#define ORV_GL(result, name, parameters, arguments, grants) \
  made.add(#name, grants, reinterpret_cast<GlProc>(&FakeGlFunctions::name));
#include "render/opengl/gl_core_functions.inc"
#define ORV_GL(result, name, parameters, arguments, grants) \
  made.add(#name, grants, reinterpret_cast<GlProc>(&FakeGlFunctions::name));
#include "render/opengl/gl_entry_points.inc"
    return made;
  }();
  return all;
}

}  // namespace

// ---- the fake --------------------------------------------------------------------------------

FakeGl::FakeGl() {
  EXPECT_EQ(current_fake, nullptr) << "one fake OpenGL at a time";
  current_fake = this;
  clear();
  set_version(4, 5);
  strings_[GL_VENDOR] = "Fake vendor";
  strings_[GL_RENDERER] = "Fake renderer";
  strings_[GL_SHADING_LANGUAGE_VERSION] = "4.50";
  extensions_.assign(directory().extensions.begin(), directory().extensions.end());
  extensions_.push_back("GL_EXT_texture_filter_anisotropic");
  const std::pair<GLenum, int> limits[] = {{GL_MAX_TEXTURE_SIZE, 4096},
                                           {GL_MAX_TEXTURE_IMAGE_UNITS, 16},
                                           {GL_MAX_VERTEX_ATTRIBS, 16},
                                           {GL_MAX_PATCH_VERTICES, 32},
                                           {GL_MAX_COLOR_ATTACHMENTS, 8},
                                           {GL_MAX_DRAW_BUFFERS, 8},
                                           {GL_MAX_SAMPLES, 8},
                                           {GL_MAX_INTEGER_SAMPLES, 4},
                                           {GL_MAX_IMAGE_UNITS, 8},
                                           {GL_MAX_TEXTURE_UNITS, 8},
                                           {GL_MAX_ARRAY_TEXTURE_LAYERS, 256},
                                           {GL_ACTIVE_TEXTURE, GL_TEXTURE0},
                                           {GL_DRAW_BUFFER, GL_BACK},
                                           {GL_MAX_COMBINED_TEXTURE_IMAGE_UNITS, 32}};
  for (const auto& [name, value] : limits) set_integer(name, value);
  set_integers(GL_VIEWPORT, {0, 0, 640, 480});
  set_float(GL_MAX_TEXTURE_MAX_ANISOTROPY_EXT, 16.0f);
}

FakeGl::~FakeGl() { current_fake = nullptr; }

FakeGl* FakeGl::current() { return current_fake; }

void FakeGl::set_version(int major, int minor, bool core_profile) {
  strings_[GL_VERSION] = std::to_string(major) + "." + std::to_string(minor) +
                         (core_profile ? " (Core Profile) Fake" : " (Compatibility Profile) Fake");
  // Drivers below 3.0 do not know these names.
  if (major >= 3) {
    set_integer(GL_MAJOR_VERSION, major);
    set_integer(GL_MINOR_VERSION, minor);
    rejected_.erase(GL_MAJOR_VERSION);
    rejected_.erase(GL_MINOR_VERSION);
  } else {
    reject_integer(GL_MAJOR_VERSION);
    reject_integer(GL_MINOR_VERSION);
  }
  set_integer(GL_CONTEXT_PROFILE_MASK,
              core_profile ? GL_CONTEXT_CORE_PROFILE_BIT : GL_CONTEXT_COMPATIBILITY_PROFILE_BIT);
}

void FakeGl::set_extensions(std::vector<std::string> names) { extensions_ = std::move(names); }

void FakeGl::remove_extension(const std::string& name) {
  extensions_.erase(std::remove(extensions_.begin(), extensions_.end(), name), extensions_.end());
}

GlProc FakeGl::proc_address(const char* name) const {
  const auto found = directory().functions.find(name);
  if (found == directory().functions.end() || removed_.count(found->second.name)) return nullptr;
  return found->second.proc;
}

void FakeGl::attach(RendererOpenGL& renderer) {
  renderer.use_proc_address([this](const char* name) { return proc_address(name); });
}

bool FakeGl::start(RendererOpenGL& renderer) {
  attach(renderer);
  const bool started = renderer.start();
  clear();
  return started;
}

const std::vector<std::string>& FakeGl::calls() const { return FakeGlFunctions::calls(); }

std::vector<std::string> FakeGl::calls_of(std::initializer_list<const char*> prefixes) const {
  std::vector<std::string> found;
  for (const std::string& call : calls()) {
    for (const char* prefix : prefixes) {
      if (call.rfind(prefix, 0) != 0) continue;
      found.push_back(call);
      break;
    }
  }
  return found;
}

std::vector<std::string> FakeGl::changes() const {
  std::vector<std::string> found;
  for (const std::string& call : calls()) {
    if (call.rfind("glGet", 0) != 0 && call.rfind("glIs", 0) != 0) found.push_back(call);
  }
  return found;
}

int FakeGl::count(const std::string& name) const {
  const auto& counts = FakeGlFunctions::counts();
  const auto found = counts.find(name);
  return found == counts.end() ? 0 : found->second;
}

bool FakeGl::called(const std::string& call) const {
  return std::find(calls().begin(), calls().end(), call) != calls().end();
}

void FakeGl::clear() {
  FakeGlFunctions::calls().clear();
  FakeGlFunctions::counts().clear();
}

const std::vector<unsigned char>& FakeGl::buffer_bytes(unsigned int id) const {
  static const std::vector<unsigned char> none;
  const auto found = buffers_.find(id);
  return found == buffers_.end() ? none : found->second;
}

}  // namespace orv::test
