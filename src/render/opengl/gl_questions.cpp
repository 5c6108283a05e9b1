#include "render/opengl/gl_questions.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <type_traits>

namespace orv::detail {
namespace {

constexpr std::size_t MAX_EXTENSION_NAME = 127;
constexpr int MAX_EXTENSIONS = 65536;
constexpr int MAX_PENDING_ERRORS = 64;

int digit(char c) { return c >= '0' && c <= '9' ? c - '0' : 0; }

// One digit each: this is the form of all versions there are.
void read_version_text(const char* text, int* major, int* minor) {
  if (std::strstr(text, "OpenGL ES 2")) {
    *major = 2;
    *minor = 0;
  }
  if (*major == 0 && std::strstr(text, "OpenGL ES 3")) {
    *major = 3;
    *minor = 0;
  }
  if (*major != 0 || std::strlen(text) < 3) return;
  *major = digit(text[0]);
  *minor = digit(text[2]);
}

void append_name(const char* name, std::size_t length, GlExtensionList* list) {
  if (length > 0) list->append(std::string(name, std::min(length, MAX_EXTENSION_NAME)));
}

}  // namespace

GlQuestions fetch_questions(const GlProcAddress& source) {
  GlQuestions questions;
  if (!source) return questions;
  const auto fetch = [&](auto& pointer, const char* name) {
    pointer = reinterpret_cast<std::remove_reference_t<decltype(pointer)>>(source(name));
  };
  fetch(questions.glGetIntegerv, "glGetIntegerv");
  fetch(questions.glGetString, "glGetString");
  fetch(questions.glGetError, "glGetError");
  fetch(questions.glGetStringi, "glGetStringi");
  return questions;
}

GlVersion read_gl_version(const GlQuestions& questions) {
  GlVersion version;
  // No text is the sign that no context is current.
  const char* text = questions.glGetString
                         ? reinterpret_cast<const char*>(questions.glGetString(GL_VERSION))
                         : nullptr;
  if (questions.glGetIntegerv && text) {
    questions.glGetIntegerv(GL_MAJOR_VERSION, &version.major);
    questions.glGetIntegerv(GL_MINOR_VERSION, &version.minor);
    // Drivers below 3.0 do not know these names.
    swallow_gl_errors(questions);
  }
  if (version.major >= 2) return version;
  version.minor = 0;
  version.text = text;
  if (text) read_version_text(text, &version.major, &version.minor);
  return version;
}

void split_extensions(const char* names, GlExtensionList* list) {
  if (!names) return;
  while (*names) {
    const std::size_t length = std::strcspn(names, " ");
    append_name(names, length, list);
    names += length;
    names += std::strspn(names, " ");
  }
}

bool read_gl_extensions(const GlQuestions& questions, GlExtensionList* list) {
  if (read_gl_version(questions).major >= 3 && questions.glGetStringi) {
    int count = 0;
    questions.glGetIntegerv(GL_NUM_EXTENSIONS, &count);
    count = std::min(count, MAX_EXTENSIONS);
    for (int i = 0; i < count; ++i) {
      const auto* name = reinterpret_cast<const char*>(
          questions.glGetStringi(GL_EXTENSIONS, static_cast<GLuint>(i)));
      if (name) append_name(name, std::strlen(name), list);
    }
    return true;
  }
  const char* names = questions.glGetString
                          ? reinterpret_cast<const char*>(questions.glGetString(GL_EXTENSIONS))
                          : nullptr;
  split_extensions(names, list);
  return names != nullptr;
}

void swallow_gl_errors(const GlQuestions& questions) {
  if (!questions.glGetError) return;
  for (int i = 0; i < MAX_PENDING_ERRORS && questions.glGetError() != GL_NO_ERROR; ++i) {
  }
}

}  // namespace orv::detail
