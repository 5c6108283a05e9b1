// A renderer without an API that says it is of the type ORV_TEST_API_TYPE.

#include <orv/core/api.h>
#include <orv/render/renderer_null.h>

#include <cstdlib>

namespace {

class TestRenderer : public orv::RendererNull {
 public:
  TestRenderer() {
    set_name("test renderer");
    set_type(orv::PLUGIN_TYPE_RENDERER);
    set_api_type(static_cast<orv::ORV_API3D>(ORV_TEST_API_TYPE));
  }

  /// Refuses while the environment says so.
  bool initialize() override {
    return std::getenv("ORV_TEST_REFUSE") == nullptr && RendererNull::initialize();
  }
};

}  // namespace

ORV_PLUGIN_EXPORT orv::Plugin* orv_plugin_create() { return new TestRenderer; }

ORV_PLUGIN_EXPORT void orv_plugin_destroy(orv::Plugin* plugin) {
  delete static_cast<TestRenderer*>(plugin);
}
