// A module that keeps its plugin to itself: it has no function that destroys it. The plugin goes
// away with the module's static objects.

#include <orv/core/api.h>
#include <orv/core/plugin.h>

namespace {

class KeptPlugin : public orv::Plugin {
 public:
  KeptPlugin() {
    set_name("kept");
    set_description("Plugin without a destroy function.");
  }
};

}  // namespace

ORV_PLUGIN_EXPORT orv::Plugin* orv_plugin_create() {
  static KeptPlugin plugin;
  return &plugin;
}
