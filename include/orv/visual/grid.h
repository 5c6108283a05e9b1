/// @file
/// Ground grid.
#pragma once

#include <orv/core/api.h>
#include <orv/scene/object.h>

namespace orv {

struct GridData;

/// A grid in the XZ plane around the origin of the object: 10 x 10 units in 10 x 10 cells at first.
/// Drawn with whatever program is current.
///
/// Lines stand at -size/2 + i * cell for i from 0 to the number of cells, along both sides. The
/// outer ones and those through the middle are the main lines; the axes through the origin are
/// drawn in colours of their own, also where no line of the cells meets it. All others are the
/// lines of the subdivisions.
class ORV_API Grid : public Object {
 public:
  /// With both kinds of lines shown.
  Grid();
  /// Releases the lines without a renderer: their GPU objects are leaked unless _cleanup or kill
  /// ran before.
  ~Grid() override;
  Grid(const Grid&) = delete;
  Grid& operator=(const Grid&) = delete;

  /// Releases the lines; drawing makes new ones. True.
  bool _cleanup(Renderer* renderer) override;
  /// Draws the main lines and those of the subdivisions, made anew when something was set.
  void _render(Renderer* renderer) override;

  /// Sizes along X and Z in scene units.
  void set_size(float width, float depth);
  /// Numbers of cells along X and Z, of which 4096 are drawn at most. 0 and less gives a side no
  /// lines but its axis.
  void set_num_subdiv(int num_x, int num_z);
  /// Which lines are shown.
  void set_display_lines_options(bool main_lines, bool subdiv_lines);

  /// @{
  /// Colours, RGBA: light grey lines, yellow main lines, red X axis and blue Z axis at first.
  void set_lines_color(float r, float g, float b, float a);
  void set_main_lines_color(float r, float g, float b, float a);
  void set_main_x_axis_color(float r, float g, float b, float a);
  void set_main_z_axis_color(float r, float g, float b, float a);
  /// @}

 private:
  GridData* data_;
};

}  // namespace orv
