#include <orv/visual/tripod_visualizer_object.h>

#include <orv/scene/object.h>

namespace orv {
namespace aux {

TripodVisualizerObject::TripodVisualizerObject() = default;

TripodVisualizerObject::~TripodVisualizerObject() = default;

bool TripodVisualizerObject::render(Renderer* renderer, Object* object) {
  if (!renderer || !object) return false;
  return draw_axes(*renderer, object->get_absolute_transform());
}

}  // namespace aux
}  // namespace orv
