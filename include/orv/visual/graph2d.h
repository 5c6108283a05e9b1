/// @file
/// Plot of scrolling curves.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/scene/object.h>

namespace orv {

struct Graph2dData;

/// A plot of curves over two axes. Values are added to a curve one by one; when there are more of
/// them than the curve has vertices, the newest are shown, so that the plot scrolls.
///
/// Coordinates are pixels of a viewport that the graph stores: with the viewport enabled, all that
/// is drawn is moved by minus half its width and height. The graph sets neither the renderer's
/// viewport nor its matrices: draw it with a camera whose viewport is that rectangle and whose
/// orthographic projection goes from minus half to half its size. Set the viewport before the axes,
/// which are moved when they are set.
///
/// The graph owns its curves and draws them with its own transform and with whatever program is
/// current. Curves are told by their place in the order of creation.
class ORV_API Graph2d : public Object {
 public:
  /// Without curves, with white axes of 100 units and no range to plot over.
  Graph2d();
  /// Releases the curves without a renderer: their GPU objects are leaked unless _cleanup or kill
  /// ran before.
  ~Graph2d() override;
  Graph2d(const Graph2d&) = delete;
  Graph2d& operator=(const Graph2d&) = delete;

  /// Releases the curves and the line of the axes. True.
  bool _cleanup(Renderer* renderer) override;
  /// draw_axis, then draw_all_curves.
  void _render(Renderer* renderer) override;

  // ---- curves ----

  /// A new curve of that many vertices, black, owned by the graph. Null, with an error in the log,
  /// for 0 and for too little memory.
  Curve* create_curve(unsigned int num_vertices);
  /// Borrowed; null past the last curve.
  Curve* get_curve(unsigned int curve) const;
  unsigned int get_num_curves() const;  ///< curves created and not killed
  /// Takes a curve out and releases it; those behind it move up. False for a curve that is not of
  /// this graph.
  bool kill_curve(Renderer* renderer, Curve* curve);
  /// The same for all curves. True.
  bool kill_all_curves(Renderer* renderer);

  // ---- values ----

  /// Appends (0, value, 0, 1). 1, or 0 when there is no such curve.
  ///
  /// The newest 65,536 values of a curve are kept, or four times its vertices when that is more.
  unsigned int add_curve_scalar(unsigned int curve, float value);
  /// Appends a value with z and w of its own; x is not used. 1, or 0 when there is no such curve.
  unsigned int add_curve_position(unsigned int curve, const vec4& position);
  /// Puts the vertices of a curve to its newest values, as drawing does: from left to right over
  /// the plot range, the step being its width by the number of vertices; the range's start gives
  /// the height of value 0. Vertices beyond the values stay where they are: at the origin, or where
  /// set_curve_value put them. False when there is no such curve and when it has no values or no
  /// vertices.
  bool sync_curve_scalars(unsigned int curve);
  /// How many values are too old to be shown: those added less the vertices, 0 while all are shown
  /// and when there is no such curve.
  unsigned int curve_get_diff_points(unsigned int curve) const;
  /// Colour of all vertices, RGBA. False when there is no such curve.
  bool set_curve_color(unsigned int curve, float r, float g, float b, float a);

  /// @{
  /// Curve::set_value: places a vertex by hand. Drawing moves it when there is a value for it.
  /// False when there is no such curve or vertex.
  bool set_curve_value(unsigned int curve, unsigned int index, const vec4& value);
  bool set_curve_value(unsigned int curve, unsigned int index, float x, float y, float z, float w);
  /// @}

  // ---- drawing; false for a null renderer ----

  /// Draws the two axes. False after _cleanup.
  bool draw_axis(Renderer* renderer);
  /// sync_curve_scalars, then draws the curve. Nothing is drawn, and the result is false, when
  /// there is no such curve and when no values were added to it.
  bool draw_curve(Renderer* renderer, unsigned int curve);
  /// Draws all curves in the order of creation. True.
  bool draw_all_curves(Renderer* renderer);

  // ---- axes and plot range ----

  /// Ends of the horizontal axis, which also become the range that curves are plotted over: the
  /// range takes them as they are, the axis moved by half the viewport when that is enabled.
  void set_x_axis_positions(const vec4& start, const vec4& end);
  /// Ends of the vertical axis, moved likewise.
  void set_y_axis_positions(const vec4& start, const vec4& end);
  /// The range alone: curves go from the x of `start` to that of `end`, above the y of `start`.
  void set_plot_range(const vec4& start, const vec4& end);
  const vec4& get_plot_start() const;  ///< (0, 0, 0, 1) at first
  const vec4& get_plot_end() const;    ///< (0, 0, 0, 1) at first

  /// @{
  /// The two ends as stored, an array of two.
  const vec4* get_x_axis_positions() const;
  const vec4* get_y_axis_positions() const;
  /// @}

  /// @{
  /// Colours of the ends, RGBA, white at first.
  void set_x_axis_color(const vec4& start, const vec4& end);
  void set_y_axis_color(const vec4& start, const vec4& end);
  /// @}

  /// The line that both axes are drawn with, borrowed; null after _cleanup.
  Line* get_axis_line() const;

  // ---- viewport ----

  /// Stores the rectangle, in pixels. Axes set before stay where they are.
  void set_viewport(int x, int y, int width, int height);
  const Viewport& get_viewport() const;  ///< no size at first
  /// Whether drawing is moved by half the viewport; it is at first.
  void enable_viewport(bool state);
  bool is_viewport_enabled() const;  ///< see enable_viewport

 private:
  Graph2dData* data_;
};

}  // namespace orv
