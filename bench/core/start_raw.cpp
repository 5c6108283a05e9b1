// The same as start_ours.cpp by EGL alone, with the same contexts: a default one, which the core
// profile replaces when it is asked for, as only that context tells the highest version.
#include <EGL/egl.h>
#include <EGL/eglext.h>
#include <GL/gl.h>

#include <cstdio>
#include <cstring>

#include "common/egl_format.h"
#include "first_frame.h"

namespace {

template <class Function>
Function find(const char* name) {
  return reinterpret_cast<Function>(eglGetProcAddress(name));
}

EGLDisplay open_software_display() {
  const auto query_devices = find<PFNEGLQUERYDEVICESEXTPROC>("eglQueryDevicesEXT");
  const auto query_string = find<PFNEGLQUERYDEVICESTRINGEXTPROC>("eglQueryDeviceStringEXT");
  const auto get_display = find<PFNEGLGETPLATFORMDISPLAYEXTPROC>("eglGetPlatformDisplayEXT");
  EGLDeviceEXT devices[16];
  EGLint count = 0;
  if (!query_devices || !query_string || !get_display) return EGL_NO_DISPLAY;
  query_devices(16, devices, &count);
  for (EGLint i = 0; i < count; ++i) {
    const char* names = query_string(devices[i], EGL_EXTENSIONS);
    if (!names || !std::strstr(names, "EGL_MESA_device_software")) continue;
    const EGLDisplay display = get_display(EGL_PLATFORM_DEVICE_EXT, devices[i], nullptr);
    if (eglInitialize(display, nullptr, nullptr)) return display;
  }
  return EGL_NO_DISPLAY;
}

EGLContext replace_by_core(EGLDisplay display, EGLConfig config, EGLSurface surface,
                           EGLContext context) {
  GLint version[2] = {};
  find<decltype(&glGetIntegerv)>("glGetIntegerv")(0x821B, &version[0]);  // GL_MAJOR_VERSION
  find<decltype(&glGetIntegerv)>("glGetIntegerv")(0x821C, &version[1]);  // GL_MINOR_VERSION
  eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
  eglDestroyContext(display, context);
  const EGLint wanted[] = {EGL_CONTEXT_MAJOR_VERSION,
                           version[0],
                           EGL_CONTEXT_MINOR_VERSION,
                           version[1],
                           EGL_CONTEXT_OPENGL_PROFILE_MASK,
                           EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                           EGL_NONE};
  context = eglCreateContext(display, config, EGL_NO_CONTEXT, wanted);
  eglMakeCurrent(display, surface, surface, context);
  return context;
}

}  // namespace

int main(int argc, char** argv) {
  const EGLDisplay display = open_software_display();
  eglBindAPI(EGL_OPENGL_API);
  EGLConfig config = nullptr;
  EGLint count = 0;
  if (!eglChooseConfig(display, bench::OFFSCREEN_FORMAT, &config, 1, &count) || count < 1) return 1;
  const EGLint size[] = {EGL_WIDTH, 640, EGL_HEIGHT, 480, EGL_NONE};
  const EGLSurface surface = eglCreatePbufferSurface(display, config, size);
  EGLContext context = eglCreateContext(display, config, EGL_NO_CONTEXT, nullptr);
  if (!eglMakeCurrent(display, surface, surface, context)) return 1;
  if (argc > 1 && std::strcmp(argv[1], "core") == 0) {
    context = replace_by_core(display, config, surface, context);
  }
  find<decltype(&glClearColor)>("glClearColor")(0.2f, 0.4f, 0.6f, 1.0f);
  find<decltype(&glClear)>("glClear")(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  find<decltype(&glFinish)>("glFinish")();
  unsigned char pixel[4] = {};
  find<decltype(&glReadPixels)>("glReadPixels")(320, 240, 1, 1, GL_RGBA, GL_UNSIGNED_BYTE, pixel);
  if (pixel[0] != 51 || pixel[2] != 153) return 1;
  bench::report_first_frame();
  eglMakeCurrent(display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT);
  eglDestroyContext(display, context);
  eglDestroySurface(display, surface);
  return 0;
}
