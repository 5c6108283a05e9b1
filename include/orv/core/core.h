/// @file
/// The front door: start, stop and the default log.
#pragma once

#include <orv/core/api.h>
#include <orv/core/log.h>
#include <orv/fwd.h>

/// The whole library.
namespace orv {

/// Start, stop and the default log.
namespace core {

/// Starts the log manager and the Kernel. The log is written to `log_filename`, or to no file when
/// that is null; `log_callback`, which may be null, receives each message with `log_user_data`. A
/// second call sets the callback and the enabled flag anew and keeps the log's file. Always true.
///
/// To run on one thread before any other touches the library.
ORV_API bool start(const char* log_filename, bool log_enabled, LogCallback log_callback,
                   void* log_user_data);
/// Stops the Kernel, traces `last_message` unless it is null, and closes all logs. Always true.
ORV_API bool stop(const char* last_message);

/// Code name of the version, never null.
ORV_API const char* get_engine_codename();
/// "" before the first start.
ORV_API const char* get_platform_name();
/// Bits of a pointer.
ORV_API int get_platform_bitness();

/// Starts the log manager alone; the log is disabled until log_enable(true).
ORV_API bool log_start(const char* filename);
/// Closes all logs and forgets the default one. True.
ORV_API bool log_stop();
/// Null while the log manager is stopped.
ORV_API Log* log_get_default();
/// Nothing while the log manager is stopped, as for all below.
ORV_API void log_enable(bool state);
/// Receives each message of the default log, with `user_data`; null takes the callback away.
ORV_API void log_set_callback(LogCallback callback, void* user_data);

/// @{
/// A line in the default log at info, warning, error or debug level; nothing for null.
ORV_API void log_trace(const char* text);
ORV_API void log_trace_warning(const char* text);
ORV_API void log_trace_error(const char* text);
ORV_API void log_trace_debug(const char* text);
/// @}

}  // namespace core

}  // namespace orv
