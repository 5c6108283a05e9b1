#pragma once

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "render/opengl/renderer_opengl.h"
#include "support/fake_gl.h"

namespace orv::test {

using Calls = std::vector<std::string>;

/// A renderer on the fake OpenGL. Tests call one of the start functions first.
class FakeGlTest : public ::testing::Test {
 protected:
  /// OpenGL 4.5 with the fixed pipeline.
  void start() { start(4, 5, false); }
  void start_core() { start(4, 5, true); }
  void start(int major, int minor, bool core) {
    gl.set_version(major, minor, core);
    ASSERT_TRUE(gl.start(renderer));
  }
  /// Calls since the last time, and forgets them.
  Calls take() {
    Calls calls = gl.calls();
    gl.clear();
    return calls;
  }
  /// The same without questions.
  Calls take_changes() {
    Calls calls = gl.changes();
    gl.clear();
    return calls;
  }

  FakeGl gl;
  RendererOpenGL renderer;
};

}  // namespace orv::test
