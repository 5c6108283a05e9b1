// The functions by which the library makes and destroys the plugin. Nothing else leaves the module.
#include <orv/core/api.h>

#include "off_loader.h"

ORV_PLUGIN_EXPORT orv::Plugin* orv_plugin_create() { return new OffLoader; }

ORV_PLUGIN_EXPORT void orv_plugin_destroy(orv::Plugin* plugin) {
  delete static_cast<OffLoader*>(plugin);
}
