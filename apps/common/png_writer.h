#pragma once

namespace orv_app {

/// Writes RGBA bytes, bottom row first as a renderer reads them back, as an opaque PNG file.
/// False when the file cannot be written whole; errno tells why then.
bool write_png(const char* path, const unsigned char* rgba, int width, int height);

}  // namespace orv_app
