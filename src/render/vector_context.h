/// @file
/// Contexts of NanoVG that draw through a renderer. All calls belong to the renderer's thread.
#pragma once

#include <orv/fwd.h>

#include <vector>

struct NVGcontext;

namespace orv::detail {

/// Text above this height is not drawn: glyphs would not fit into NanoVG's largest atlas.
inline constexpr float MAX_VECTOR_TEXT_PIXELS = 1000.0f;

/// Makes a context on the OpenGL context that is current. `flags` are NanoVG's creation flags.
/// Null, with a debug line that names the cause, when the renderer is null, no OpenGL renderer or
/// not started, and when its OpenGL is older than 3.2.
///
/// The context draws only while its OpenGL context is current; otherwise frames are dropped. Each
/// frame leaves the state of OpenGL, and so the records of the renderer, as they were. It may
/// outlive the renderer, and then draws nothing.
NVGcontext* create_vector_context(Renderer* renderer, int flags);

/// Frees a context. What it has on the GPU goes too while its OpenGL context is current. Null is
/// allowed.
void destroy_vector_context(NVGcontext* context);

/// Deletes what all contexts of a renderer have on the GPU, and parts them from it. For the
/// renderer, before it stops.
void release_vector_contexts(const Renderer* renderer);

/// Adds a font under a name of at most 63 characters, read from a whole TrueType file. False when
/// the file is not sound, and nothing is kept then.
bool add_vector_font(NVGcontext* context, const char* name, const std::vector<unsigned char>& file);

/// Whether the frame has room for more: its counts are signed 32-bit numbers.
bool has_vector_room(const NVGcontext* context);

/// Height in pixels that text would have with the present settings, 0 without a font.
float vector_text_pixels(const NVGcontext* context);

/// Makes NanoVG's atlas of glyphs large enough for the present text size: NanoVG itself takes one
/// step at a call, and leaves the text out when that is not enough.
void grow_vector_atlas(NVGcontext* context);

/// How many settings are saved, the present ones included.
int vector_state_depth(const NVGcontext* context);

/// Size of OpenGL's viewport. False when the context cannot draw now.
bool read_vector_viewport(const NVGcontext* context, int* width, int* height);

}  // namespace orv::detail
