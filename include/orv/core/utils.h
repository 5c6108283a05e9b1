/// @file
/// Identifiers, sleeping, clocks, the platform, and helpers for texts and paths.
#pragma once

#include <orv/core/api.h>
#include <orv/core/platform_types.h>
#include <orv/fwd.h>

namespace orv {

/// Identifiers, sleeping, clocks and the platform.
namespace utils {

// ---- identifiers ----

/// A number that this process has not handed out before; the first is 2. Every node and plugin
/// takes one, so none of them is to be made by the initialiser of a global object.
ORV_API int gen_id();
/// The same from a counter of its own, for indices; the first is 1.
ORV_API unsigned int gen_index();

// ---- threads and clocks ----

/// Suspends the calling thread for `ms` milliseconds.
ORV_API void thread_sleep(unsigned int ms);
/// Returns at once. Kept for hosts that call it.
ORV_API void thread_sleep_micro(unsigned int us);
/// Returns at once. Kept for hosts that call it.
ORV_API void thread_sleep_nano(unsigned int ns);
/// Ends the calling thread.
[[noreturn]] ORV_API void thread_exit();

/// Processor time of the process in seconds.
ORV_API float cpu_clock_get_sec();
/// Processor time of the process in milliseconds.
ORV_API float cpu_clock_get_msec();

// ---- platform ----

/// Gathers what the operations below return; runs once. Always true.
ORV_API bool init_platform_information();
/// "Linux"; "" before init_platform_information().
ORV_API const char* get_platform_name();
/// Bits of a pointer.
ORV_API int get_platform_bitness();
/// Whether pointers have 64 bits.
ORV_API bool is_64_bit_app();
/// The operating system; ORV_PLATFORM_TYPE_LINUX here.
ORV_API ORV_PLATFORM_TYPE get_platform_type();

/// @{
/// Name of the operating system, such as that of the distribution. Gathers the information first,
/// as the three version numbers do; those are the kernel release's.
ORV_API const char* get_os_name();
ORV_API int get_os_version_major();
ORV_API int get_os_version_minor();
ORV_API int get_os_version_build();
/// @}

/// "" on this platform.
ORV_API const char* get_osx_codename();
/// "" on this platform.
ORV_API const char* get_osx_kern_osrelease();

/// @{
/// The texts of the system's uname record; "" before init_platform_information().
ORV_API const char* get_linux_sysname();
ORV_API const char* get_linux_release();
ORV_API const char* get_linux_version();
ORV_API const char* get_linux_machine();
/// @}

/// Directory of the running program with its trailing separator; "" when it cannot be found.
ORV_API const char* get_app_directory();

/// Whether an OpenCL library can be loaded.
ORV_API bool check_opencl_dylib();
/// Whether the module "plugin_orv_vulkan" can be loaded through the plugin search path; it is
/// unloaded again.
ORV_API bool check_vulkan_support();
/// Whether the module "plugin_orv_d3d12" can be loaded through the plugin search path; it is
/// unloaded again.
ORV_API bool check_d3d12_support();

/// Asks the desktop to open a URL. False for null or empty text, true otherwise, whatever comes of
/// it. The text is handed over as one argument and never meets a shell.
ORV_API bool open_url(const char* url);

// ---- plugins ----

/// Loads the module `name` + "_x64.so" through the plugin search path, even if it is loaded
/// already. The result is a Plugin*, null for a null name or when no directory has it.
ORV_API void* load_plugin(const char* name);
/// Kernel::unload_plugin of a Plugin*; 0 for null.
ORV_API int unload_plugin(void* plugin);

// ---- texts ----

/// Turns carriage returns into blanks, in place and keeping the length. A carriage return behind a
/// backslash becomes a backslash, and that backslash a blank. Null is ignored.
ORV_API void cleanup_crlf(char* text);
/// The same for line feeds.
ORV_API void cleanup_lf(char* text);

}  // namespace utils

/// Older name of utils::gen_id().
ORV_API int GenId();
/// Older name of utils::thread_sleep().
ORV_API void ThreadSleep(unsigned int ms);
/// Older name of utils::thread_sleep_micro(): returns at once.
ORV_API void ThreadSleep_micro(unsigned int us);
/// Older name of utils::thread_sleep_nano(): returns at once.
ORV_API void ThreadSleep_nano(unsigned int ns);
/// Older name of utils::is_64_bit_app().
ORV_API bool Is64BitApp();

/// Splits a path behind its last "/" or "\\".
///
/// `name`, when not null, receives what follows, padded with zeros up to `name_size`; a longer name
/// is cut and then has no terminator. `dir`, when not null and only when it would leave room for
/// one more byte, receives what stands up to and including the separator, without a terminator:
/// give it zeroed. False for an empty path and for one without a separator; a null path gives true
/// and writes nothing.
ORV_API bool ExtractFilenameFromPath(const char* path, char* dir, unsigned int dir_size, char* name,
                                     unsigned int name_size);

/// The pixel format of a number from 1 to 12, PF_UNKNOWN for any other.
ORV_API PIXEL_FORMAT ConvertInt2Pf(int value);

/// Name of a shader stage in lower case or with a capital first letter; "" for any other value.
ORV_API const char* Shader_Type_To_String(GPU_SHADER_TYPE type, bool capital);

/// Reads one entry of a ZIP archive, stored or deflated, into a new block, which ZipFree() frees,
/// and stores its size in bytes when `size` is not null. The name is the whole path in the archive;
/// an entry that differs in case alone is taken when there is no exact one. Null, and `size` as
/// before, for null names, what is no archive, a missing entry, one of 2 GiB or more and one whose
/// checksum is wrong.
ORV_API unsigned char* ZipExtractFile(const char* zip_filename, const char* entry_name,
                                      unsigned int* size);
/// Frees a block of ZipExtractFile(). False for null.
ORV_API bool ZipFree(unsigned char* data);

}  // namespace orv
