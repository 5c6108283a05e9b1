// A plugin module made outside the library's tree, with the public headers alone.
#include <orv/core/api.h>
#include <orv/core/plugin.h>

namespace {

class OutsidePlugin : public orv::Plugin {
 public:
  OutsidePlugin() {
    set_name("outside");
    set_version(1, 0, 0);
  }
};

}  // namespace

ORV_PLUGIN_EXPORT orv::Plugin* orv_plugin_create() { return new OutsidePlugin; }
ORV_PLUGIN_EXPORT void orv_plugin_destroy(orv::Plugin* plugin) { delete plugin; }
