/// @file
/// What is asked of a context before the renderer has started on it.
#pragma once

#include "render/opengl/gl_loader.h"

namespace orv::detail {

/// The few functions that answer questions; null where OpenGL is not there.
struct GlQuestions {
  decltype(GlCoreTable::glGetIntegerv) glGetIntegerv = nullptr;
  decltype(GlCoreTable::glGetString) glGetString = nullptr;
  decltype(GlCoreTable::glGetError) glGetError = nullptr;
  decltype(GlTable::glGetStringi) glGetStringi = nullptr;  ///< answers from OpenGL 3.0 on
};

GlQuestions fetch_questions(const GlProcAddress& source);

struct GlVersion {
  int major = 0;  ///< 0 when no context tells
  int minor = 0;
  const char* text = nullptr;  ///< of the driver; set when the numbers were read from it
};

GlVersion read_gl_version(const GlQuestions& questions);

/// Appends the extensions of the current context. False when it tells none.
bool read_gl_extensions(const GlQuestions& questions, GlExtensionList* list);

/// Appends the names of a blank separated text.
void split_extensions(const char* names, GlExtensionList* list);

/// Takes pending errors away. A lost context reports errors for ever: gives up after some.
void swallow_gl_errors(const GlQuestions& questions);

}  // namespace orv::detail
