#pragma once

#include <orv/fwd.h>

namespace orv {

/// Registers a function that is called with each plugin that goes away, for holders of borrowed
/// pointers. Only the address may be used: the plugin may be half destroyed. Registering a function
/// twice keeps it once.
void add_plugin_destroyed_hook(void (*hook)(Plugin*));

/// Calls all of them.
void run_plugin_destroyed_hooks(Plugin* plugin);

}  // namespace orv
