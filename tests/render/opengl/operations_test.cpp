// Every operation with nothing in its arguments, in every state of the renderer.
#include <gtest/gtest.h>

#include <orv/gpu/gpu_buffer_data.h>
#include <orv/image/pixel_format.h>
#include <orv/math/mat4.h>
#include <orv/math/vec4.h>
#include <orv/render/renderer_gpu.h>

#include <string>
#include <tuple>
#include <type_traits>

#include "render/opengl/renderer_opengl.h"
#include "support/fake_gl.h"

namespace orv::test {
namespace {

template <class Class, class Result, class... Args>
void call(Class& renderer, Result (Class::*operation)(Args...)) {
  std::tuple<std::decay_t<Args>...> values{};
  std::apply([&](auto&... each) { (void)(renderer.*operation)(static_cast<Args>(each)...); },
             values);
}

// The start is what the other operations are told apart by.
bool is_start(const std::string& name) { return name == "start_v2"; }

void call_all(RendererOpenGL& renderer) {
#define ORV_OP(type, operation, parameters, arguments, null_result) \
  if (!is_start(#operation)) call(renderer, &RendererOpenGL::operation);
#define ORV_BASE_OP(type, operation, parameters, arguments, null_result) \
  call<Renderer>(renderer, &Renderer::operation);
#include <orv/render/renderer_ops.inc>
  renderer.get_texture_2d_binding_current(0);
}

TEST(RendererOperations, NullArgumentsBeforeTheStart) {
  RendererOpenGL renderer;
  renderer.use_proc_address([](const char*) -> GlProc { return nullptr; });
  call_all(renderer);
}

TEST(RendererOperations, NullArgumentsAfterAStartWithoutAContext) {
  RendererOpenGL renderer;
  renderer.use_proc_address([](const char*) -> GlProc { return nullptr; });
  EXPECT_FALSE(renderer.start());
  call_all(renderer);
}

TEST(RendererOperations, NullArgumentsAfterTheStop) {
  FakeGl gl;
  RendererOpenGL renderer;
  ASSERT_TRUE(gl.start(renderer));
  renderer.stop();
  gl.clear();
  renderer.use_proc_address([](const char*) -> GlProc { return nullptr; });
  call_all(renderer);
  EXPECT_TRUE(gl.calls().empty()) << gl.calls()[0];
}

struct Version {
  const char* name;
  int major;
  int minor;
  bool core;
};

class RendererOperationsStarted : public testing::TestWithParam<Version> {};

TEST_P(RendererOperationsStarted, NullArguments) {
  FakeGl gl;
  gl.set_version(GetParam().major, GetParam().minor, GetParam().core);
  RendererOpenGL renderer;
  ASSERT_TRUE(gl.start(renderer));
  call_all(renderer);
}

TEST_P(RendererOperationsStarted, NullArgumentsWithTheFewestFunctions) {
  FakeGl gl;
  gl.set_version(GetParam().major, GetParam().minor, GetParam().core);
  gl.set_extensions({});
#define ORV_GL(result, name, parameters, arguments, grants) gl.remove_function(#name);
#include "render/opengl/gl_entry_points.inc"
  RendererOpenGL renderer;
  ASSERT_TRUE(gl.start(renderer));
  call_all(renderer);
}

INSTANTIATE_TEST_SUITE_P(Versions, RendererOperationsStarted,
                         testing::Values(Version{"v21", 2, 1, false}, Version{"v33", 3, 3, false},
                                         Version{"v33core", 3, 3, true},
                                         Version{"v45", 4, 5, false},
                                         Version{"v45core", 4, 5, true}),
                         [](const auto& one) { return std::string(one.param.name); });

}  // namespace
}  // namespace orv::test
