/// @file
/// Writing of JPEG files.
#pragma once

namespace orv::detail {

/// Writes pixels as a baseline JPEG of quality 90, three components without subsampling.
/// `components` are the bytes of a pixel: 1 (grey), 3, or 4 (the fourth byte is skipped). Rows come
/// top first without padding. False for other counts, null arguments, an empty picture, a side
/// above 65535, and when the file cannot be opened or written; `fault`, when not null, then tells
/// the cause by a text that is never freed.
bool write_jpeg(const char* filename, unsigned int width, unsigned int height, int components,
                const unsigned char* pixels, const char** fault = nullptr);

}  // namespace orv::detail
