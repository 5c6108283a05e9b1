/// @file
/// Plugins that compute with OpenCL.
#pragma once

#include <orv/core/api.h>
#include <orv/core/plugin.h>
#include <orv/fwd.h>

namespace orv {

/// What an OpenCL device is.
enum OPENCL_DEVICE_TYPE : int {
  OPENCL_DEVICE_OTHER = 0,       ///< none of these
  OPENCL_DEVICE_CPU = 1,         ///< the processor
  OPENCL_DEVICE_GPU = 2,         ///< a graphics processor
  OPENCL_DEVICE_ACCELERATOR = 3  ///< a device for computing alone
};

/// What OpenCLPlugin::share_gl_object() takes.
enum OPENCL_GL_OBJECT : int {
  OPENCL_GL_BUFFER = 1,       ///< a buffer object
  OPENCL_GL_TEXTURE_2D = 2,   ///< level 0 of a plain texture
  OPENCL_GL_RENDERBUFFER = 3  ///< a renderbuffer
};

/// What an OpenCL device tells of itself.
class ORV_API OpenCLDeviceInfo {
 public:
  char platform_name[128] = {};                   ///< who made the driver
  char device_name[128] = {};                     ///< for the user
  char version[64] = {};                          ///< such as "OpenCL 3.0"
  OPENCL_DEVICE_TYPE type = OPENCL_DEVICE_OTHER;  ///< kind of device
  unsigned int num_compute_units = 0;             ///< work groups that run at once
  unsigned int max_work_group_size = 0;           ///< work items of a group
  unsigned int max_clock = 0;                     ///< MHz, 0 when it is not told
  bool shares_with_opengl = false;                ///< a context may share with a renderer
  unsigned long long memory_size = 0;             ///< bytes that all buffers may take
  unsigned long long max_buffer_size = 0;         ///< bytes that one buffer may take
};

/// A plugin that computes with OpenCL. The library has none itself; a module fills every operation.
///
/// A host looks at platforms and their devices, both counted from 0, makes a context on a device,
/// and buffers, programs and kernels in it. Contexts, buffers, programs and kernels are named by
/// numbers above 0 that are not given twice; 0 is none. release_object() ends each of them;
/// terminate() ends all.
///
/// A context does its work in order: what is called later sees what was called before. Writing and
/// enqueueing may return before the work is done; reading waits for it.
///
/// What a plugin cannot do, unknown numbers, objects of different contexts, null where something is
/// needed, and ranges past the end give false or 0 and change nothing. The host calls from one
/// thread, with a shared renderer from the renderer's.
///
/// The order of the operations is a contract with modules built apart.
class ORV_API OpenCLPlugin : public Plugin {
 public:
  /// A plugin of unknown type, for a module's class to name.
  OpenCLPlugin() = default;
  ~OpenCLPlugin() override;
  OpenCLPlugin(const OpenCLPlugin&) = delete;
  OpenCLPlugin& operator=(const OpenCLPlugin&) = delete;

  // ---- devices ----

  /// Drivers of this machine, found by initialize().
  virtual unsigned int get_num_platforms() = 0;
  /// Devices of a platform, 0 past the last.
  virtual unsigned int get_num_devices(unsigned int platform) = 0;
  /// What a device tells of itself.
  virtual bool get_device_info(unsigned int platform, unsigned int device,
                               OpenCLDeviceInfo* info) = 0;

  // ---- objects ----

  /// Makes a context on a device.
  /// @param share  a renderer whose current context's objects may be used in this one, or null
  /// @return the context; 0 also when the device cannot share with that renderer
  virtual int create_context(unsigned int platform, unsigned int device, Renderer* share) = 0;
  /// Makes a buffer of `size` bytes, above 0.
  /// @param access   what kernels do with it
  /// @param initial  `size` bytes that it begins with, copied; null for zeros
  virtual int create_buffer(int context, unsigned long long size, DATA_ACCESS_TYPE access,
                            const void* initial) = 0;
  /// Makes a buffer or an image of an object of the renderer that the context shares with. It has
  /// to be released before that object ends. Each kernel that uses it waits for OpenGL, and OpenGL
  /// may use the object again once enqueue_kernel() has returned with `wait`.
  /// @param gl_object  name of the object in OpenGL
  virtual int share_gl_object(int context, OPENCL_GL_OBJECT kind, unsigned int gl_object,
                              DATA_ACCESS_TYPE access) = 0;
  /// Ends a buffer, program or kernel, or a context with all that was made in it, after the work
  /// that uses it is done. A kernel outlives its program.
  virtual bool release_object(int object) = 0;

  // ---- data ----

  /// Copies `size` bytes to a buffer, from its byte `offset` on; `data` may change afterwards.
  virtual bool write_buffer(int buffer, unsigned long long offset, unsigned long long size,
                            const void* data) = 0;
  /// Waits for the work of the context and copies `size` bytes of a buffer, from its byte `offset`
  /// on, to `data`.
  virtual bool read_buffer(int buffer, unsigned long long offset, unsigned long long size,
                           void* data) = 0;

  // ---- kernels ----

  /// Compiles OpenCL C for the context's device.
  /// @param options  of the compiler, null for none
  /// @return the program; 0 when it does not compile, with the compiler's text in the log as an
  ///         error
  virtual int build_program(int context, const char* source, const char* options) = 0;
  /// Makes the kernel of that name, without arguments yet.
  virtual int create_kernel(int program, const char* name) = 0;
  /// Sets an argument of a kernel, which keeps it until it is set again.
  /// @param buffer  a buffer or shared object, or 0 for a plain value
  /// @param size    bytes of the plain value, or of local memory when `value` is null
  /// @param value   the plain value, copied; not read with a buffer
  virtual bool set_kernel_argument(int kernel, unsigned int index, int buffer, unsigned int size,
                                   const void* value) = 0;
  /// Runs a kernel for each point of a grid. False while an argument is missing.
  /// @param num_dimensions  1 to 3: how many numbers the two arrays have
  /// @param global_size     points of the grid, each above 0
  /// @param local_size      points of a work group, which divide those of the grid; null leaves it
  ///                        to the driver
  /// @param wait            return when this work and all before it is done
  virtual bool enqueue_kernel(int kernel, unsigned int num_dimensions,
                              const unsigned long long* global_size,
                              const unsigned long long* local_size, bool wait) = 0;
};

}  // namespace orv
