/// @file
/// Vector graphics: 2D paths, gradients, text and simple widgets, drawn by NanoVG through the
/// OpenGL context that is current.
///
///     nvg::init(renderer, true);
///     nvg::load_font("sans", "/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf");
///     ...
///     renderer->clear_color_depth_stencil_buffers(0, 0, 0, 1, 1, 0);
///     nvg::begin_frame(width, height, 1.0f);
///     nvg::circle_draw_fill_color(100, 100, 40, 1.0f, 0.5f, 0.0f, 1.0f);
///     nvg::text_draw(20, "sans", nvg::ALIGN_LEFT | nvg::ALIGN_TOP, 10, 10, 1, 1, 1, 1, "Hello");
///     nvg::end_frame();
///
/// There is one current context, which all functions draw with, and a list of contexts. Everything
/// belongs to the thread of the renderer.
///
/// **Coordinates** are in units of the frame from its upper left corner, x to the right and y
/// downwards; angles are in radians. Coordinates and sizes that are no finite numbers, or beyond
/// ten million, make a call do nothing.
///
/// **Colours** are red, green, blue and alpha from 0 to 1, as four arguments or as a pointer to
/// four floats. A null pointer stands for opaque white.
///
/// **State.** Nothing reaches OpenGL before end_frame(), apart from glyphs on their way into a
/// texture, and both leave all of its state as it was. Concave shapes and strokes are drawn with
/// the stencil buffer: the target needs 8 stencil bits, and they must be zero. So they are
/// afterwards.
///
/// **Without a context**, before init() and after terminate(), every function but those two returns
/// at once. A context draws only while the OpenGL context that it was made on is current.
///
/// **Fonts.** The widgets and the demo page take the fonts "sans", "sans-bold" and "icons"; what
/// lacks its font is drawn without the text. Free fonts that fit stand in the Debian packages
/// fonts-dejavu-core (`DejaVuSans.ttf`, `DejaVuSans-Bold.ttf`) and fonts-entypo (`entypo.ttf`).
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {
namespace nvg {

/// Where text stands to the point it is drawn at. One horizontal and one vertical value are added
/// up.
enum ALIGN : int {
  ALIGN_LEFT = 1,       ///< the text begins at x
  ALIGN_CENTER = 2,     ///< the middle of the text is at x
  ALIGN_RIGHT = 4,      ///< the text ends at x
  ALIGN_TOP = 8,        ///< the top of the line is at y
  ALIGN_MIDDLE = 16,    ///< the middle of the line is at y
  ALIGN_BOTTOM = 32,    ///< the bottom of the line is at y
  ALIGN_BASELINE = 64,  ///< the letters stand on y
};

/// What a path encloses.
enum WINDING : int {
  WINDING_SOLID = 1,  ///< counterclockwise: filled
  WINDING_HOLE = 2,   ///< clockwise: left out of the shape around it
};

/// Code points of the widgets' icons, as the font "icons" of fonts-entypo has them.
enum ICON : int {
  ICON_NONE = 0,
  ICON_SEARCH = 0x1F50D,
  ICON_CHECK = 0x2713,
  ICON_CANCEL = 0x2716,
  ICON_TRASH = 0xE729,
  ICON_LOGIN = 0xE740,
  ICON_CHEVRON_RIGHT = 0xE75E,
};

// ---- start and end ----

/// Makes the first context, on the OpenGL context that is current, and makes it the current one.
/// True at once when there is one already. With `antialias` the edges are smoothed by geometry;
/// without it they are as smooth as the multisampling of the target. False with an error line when
/// the renderer is null, no OpenGL renderer or not started, and below OpenGL 3.2.
ORV_API bool init(Renderer* renderer, bool antialias);

/// Adds a context to the list and gives its id; the current context stays what it was. 0 before
/// init(), and with an error line where init() would fail.
ORV_API int create_context(Renderer* renderer, bool antialias);

/// How many contexts there are.
ORV_API unsigned int get_num_contexts();

/// Id of a context in the order of creation, 0 past the end.
ORV_API int get_context_id(unsigned int index);

/// Ends all contexts; init() works again afterwards. What they have on the GPU is deleted where the
/// OpenGL context is current that they were made on, and else goes with that one. The renderer is
/// not looked at and may be null.
ORV_API void terminate(Renderer* renderer);

// ---- frames and their coordinates ----

/// Begins a frame over the whole viewport, which is `width` by `height` units wide. `pixel_ratio`
/// is the number of pixels in a unit, for screens of high density: 1 for most, limited to 0.1
/// to 16. Transform, scissor and text settings are reset.
ORV_API void begin_frame(int width, int height, float pixel_ratio);

/// Draws what was recorded since begin_frame() to the current target. More than a million shapes
/// and texts, or 268 million points, in one frame are left out.
ORV_API void end_frame();

/// Resets all settings of the frame: transform, paint and text.
ORV_API void reset();

/// Pushes all settings on a stack of 24 entries; a full stack stays as it is.
ORV_API void save();

/// Takes back the settings of the last save().
ORV_API void restore();

/// Back to the coordinates of the frame.
ORV_API void reset_transform();

/// @{
/// Changes the coordinates of what follows. A change that would leave the range of coordinates is
/// left out.
ORV_API void translate(float x, float y);
ORV_API void rotate(float angle);
ORV_API void scale(float x, float y);
/// @}

// ---- paths ----

/// Begins a new path; the one before is forgotten.
ORV_API void begin_path();

/// Closes the last part of the path with a line to its start.
ORV_API void close_path();

/// Makes the last part of the path solid or a hole: see WINDING.
ORV_API void path_winding(int direction);

/// Begins a part of the path at a point.
ORV_API void move_to(float x, float y);

/// Adds a line from the last point.
ORV_API void line_to(float x, float y);

/// Adds a cubic Bezier curve from the last point, with two control points, to (x, y).
ORV_API void bezier_to(float c1x, float c1y, float c2x, float c2y, float x, float y);

/// Adds a rectangle.
ORV_API void rect(float x, float y, float w, float h);

/// Adds a rectangle with corners of radius `r`.
ORV_API void rounded_rect(float x, float y, float w, float h, float r);

/// Adds a circle around a point.
ORV_API void circle(float x, float y, float r);

/// Adds an ellipse around a point.
ORV_API void ellipse(float x, float y, float rx, float ry);

// ---- paint ----

/// Fills the path with a colour, which is also that of following text().
ORV_API void fill_color(float r, float g, float b, float a);

/// Draws the outline of the path with a colour and a width of at most 200 pixels.
ORV_API void stroke(float r, float g, float b, float a, float width);

/// Fills the path with a colour that goes from `c0` at (sx, sy) to `c1` at (ex, ey).
ORV_API void fill_paint_linear_gradient(float sx, float sy, float ex, float ey, const float* c0,
                                        const float* c1);

/// Fills the path with `c0` inside of a rounded rectangle of corner radius `r` and `c1` outside of
/// it, softened over `f` units at its border. Good for shadows.
ORV_API void fill_paint_box_gradient(float x, float y, float w, float h, float r, float f,
                                     const float* c0, const float* c1);

/// Fills the path with a colour that goes from `c0` at radius `inr` to `c1` at radius `outr`.
ORV_API void fill_paint_radial_gradient(float cx, float cy, float inr, float outr, const float* c0,
                                        const float* c1);

// ---- shapes in one call ----

/// @{
/// A circle of radius `radius`: filled with a colour, filled from `c0` in the middle to `c1` at the
/// border, or its outline.
ORV_API void circle_draw_fill_color(float x, float y, float radius, float r, float g, float b,
                                    float a);
ORV_API void circle_draw_fill_gradient(float x, float y, float radius, const float* c0,
                                       const float* c1);
ORV_API void circle_draw_stroke(float x, float y, float radius, float r, float g, float b, float a,
                                float width);
/// @}

/// @{
/// An ellipse: filled with a colour, filled from `c0` in the middle to `c1` at the border, or its
/// outline.
ORV_API void ellipse_draw_fill_color(float x, float y, float rx, float ry, float r, float g,
                                     float b, float a);
ORV_API void ellipse_draw_fill_gradient(float x, float y, float rx, float ry, const float* c0,
                                        const float* c1);
ORV_API void ellipse_draw_stroke(float x, float y, float rx, float ry, float r, float g, float b,
                                 float a, float width);
/// @}

/// @{
/// A rectangle with corners of radius `radius`: filled with a colour, filled from `c0` at the top
/// to `c1` at the bottom, or its outline.
ORV_API void rounded_rect_draw_fill_color(float x, float y, float w, float h, float radius, float r,
                                          float g, float b, float a);
ORV_API void rounded_rect_draw_fill_gradient(float x, float y, float w, float h, float radius,
                                             const float* c0, const float* c1);
ORV_API void rounded_rect_draw_stroke(float x, float y, float w, float h, float radius, float r,
                                      float g, float b, float a, float width);
/// @}

// ---- text ----

/// Reads a TrueType file into the current context, under a name of at most 63 characters; of a
/// collection the first face. Kerning is that of the table "kern". A name that is taken keeps its
/// font. False for null and empty names, and for a file that is missing or not sound in all its
/// glyphs.
ORV_API bool load_font(char const* name, char const* filename);

/// Sets size in units, font and blur (0 to 20 units) of what follows. An unknown or null name makes
/// text invisible. Text of more than 1000 or less than 1 pixel is not drawn.
ORV_API void font_params(float size, char const* name, float blur);

/// Sets the alignment, see ALIGN, the space between letters in units, and the height of lines as a
/// multiple of the font's.
ORV_API void text_params(int align, float letter_spacing, float line_height);

/// Draws a line of UTF-8 text, of which at most a million bytes count, in the colour of the last
/// fill_color().
ORV_API void text(float x, float y, char const* text);

/// Measures a line of text drawn at (x, y) with the present settings. `bounds` is null or takes
/// left, top, right and bottom; the height is that of the line. Gives how far the pen moves.
/// Without a font all is zero.
ORV_API float text_bounds(float x, float y, float* bounds, char const* text);

/// Sets size, font and alignment of what follows.
ORV_API void text_prepare(float size, char const* name, int align);

/// Draws a line of text in a colour, with the present settings.
ORV_API void text_render(float x, float y, float r, float g, float b, float a, char const* text);

/// text_prepare() and text_render() in one.
ORV_API void text_draw(float size, char const* name, int align, float x, float y, float r, float g,
                       float b, float a, char const* text);

/// Draws the background that a text at (x, y) would cover with the present settings, `margin` units
/// larger on all sides, in a colour. The text itself is not drawn.
ORV_API void text_color_background(float x, float y, float r, float g, float b, float a,
                                   float margin, char const* text);

// ---- widgets: only pictures, they react to nothing ----

/// A window with a shadow and a header of 30 units: body from `c0`, header from `c1`. The title is
/// in "sans-bold", and may be null.
ORV_API void window_draw(char const* title, float x, float y, float w, float h, const float* c0,
                         const float* c1);

/// A button of a colour with a text in "sans-bold", and left of it an icon of the font "icons" by
/// its code point, 0 for none. An alpha of 0 gives a plain dark button.
ORV_API void button_draw(int icon, char const* text, float x, float y, float w, float h,
                         const float* color);

/// A box, filled with `c0`, with a tick in `c1` when checked, and a text in `c1` right of it.
ORV_API void check_box_draw(float x, float y, float w, float h, bool checked, char const* text,
                            const float* c0, const float* c1);

/// A slider with its knob at `pos` from 0 to 1, the knob and the part left of it tinted.
ORV_API void slider_draw(float pos, float x, float y, float w, float h, const float* color);

/// A text in "sans", at the left and in the middle of the height of a rectangle.
ORV_API void label_draw(char const* text, float x, float y, float w, float h, const float* color);

// ---- demonstrations ----

/// Two eyes in a rectangle that look at the point (mx, my) and blink as `t` seconds go by.
ORV_API void demo_eyes_draw(float x, float y, float w, float h, float mx, float my, float t);

/// A graph of a few values in a rectangle, which moves as `t` seconds go by.
ORV_API void demo_graph_draw(float x, float y, float w, float h, float t);

/// Draws the demo page, which shows all of the above, into a rectangle as it looks after `time`
/// seconds. It was laid out for 800 by 600 units and is scaled to fit. Outside of a frame it makes
/// one of its own, one unit for each pixel of the viewport. False without a context and for a
/// rectangle without an area.
ORV_API bool render_demo(int x, int y, int w, int h, float time);

}  // namespace nvg
}  // namespace orv
