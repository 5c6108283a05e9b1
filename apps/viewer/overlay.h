#pragma once

#include <orv/fwd.h>
#include <orv/text/font_data.h>

#include <string>
#include <vector>

namespace viewer {

/// Lines of text over the picture, with a font of the system. Only contexts with the fixed pipeline
/// can draw it.
class Overlay {
 public:
  /// False when this context cannot draw text.
  bool create(orv::Renderer* renderer, float scale);
  void destroy(orv::Renderer* renderer);
  bool is_usable() const { return font_.list_base != 0; }

  /// Draws the lines from the upper left corner down, in a frame of this size.
  void draw(orv::Renderer* renderer, const std::vector<std::string>& lines, int width, int height);

 private:
  void draw_line(orv::Renderer* renderer, const std::string& line, int x, int y);

  orv::FontData font_;
};

}  // namespace viewer
