#include <orv/services/audio.h>
#include <orv/services/freetype_gl_plugin_interface.h>
#include <orv/services/gpu_monitor.h>
#include <orv/services/opencl_plugin.h>
#include <orv/services/physx.h>
#include <orv/services/simple_video.h>

// The destructors give the tables and type information of the interfaces one home, so that a host
// and a module that were built apart agree on what they are.

namespace orv {

Audio::~Audio() = default;

FreeTypeGLPluginInterface::~FreeTypeGLPluginInterface() = default;

OpenCLPlugin::~OpenCLPlugin() = default;

SimpleVideo::~SimpleVideo() = default;

PhysX::~PhysX() = default;

GpuMonitor::~GpuMonitor() = default;

}  // namespace orv
