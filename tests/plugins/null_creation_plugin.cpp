// A module that fails to make its plugin.

#include <orv/core/api.h>
#include <orv/core/plugin.h>

ORV_PLUGIN_EXPORT orv::Plugin* orv_plugin_create() { return nullptr; }
