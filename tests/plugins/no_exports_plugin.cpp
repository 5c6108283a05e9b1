// A library without the exports of a plugin.

#include <orv/core/api.h>

ORV_PLUGIN_EXPORT int orv_test_answer() { return 42; }
