#pragma once

#include <orv/geometry/geometry_core.h>

#include <vector>

#include "support/recording_renderer.h"

namespace orv::test {

/// Notes the vertices of all that is drawn, as they are at that moment.
class DrawWatcher : public RecordingRenderer {
 public:
  struct Draw {
    PRIMITIVE_TYPE primitive;
    int start, count;
    std::vector<vec4> positions;
    std::vector<vec4> colors;
  };

  bool geometry_vbo_draw(GeometryCore* geometry) override {
    Draw draw{geometry->primitive_type, geometry->draw_start, geometry->draw_count, {}, {}};
    for (unsigned int i = 0; i < geometry->get_num_vertices(); ++i) {
      draw.positions.push_back(geometry->get_position_4f(i));
      draw.colors.push_back(geometry->get_color(i));
    }
    draws.push_back(draw);
    return RecordingRenderer::geometry_vbo_draw(geometry);
  }

  std::vector<Draw> draws;
};

}  // namespace orv::test
