#include <orv/geometry/instancing_init_params.h>

namespace orv {

void InstancingInitParams::disable_all() {
  use_position = use_rotation = use_scale = use_color = use_misc = false;
}

}  // namespace orv
