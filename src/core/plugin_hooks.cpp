#include "core/plugin_hooks.h"

#include <algorithm>
#include <vector>

namespace orv {

namespace {

using Hook = void (*)(Plugin*);

/// Never destroyed: plugins may outlive every static object.
std::vector<Hook>& hooks() {
  static auto* const list = new std::vector<Hook>;
  return *list;
}

}  // namespace

void add_plugin_destroyed_hook(Hook hook) {
  std::vector<Hook>& list = hooks();
  if (hook && std::find(list.begin(), list.end(), hook) == list.end()) list.push_back(hook);
}

void run_plugin_destroyed_hooks(Plugin* plugin) {
  for (const Hook hook : hooks()) hook(plugin);
}

}  // namespace orv
