// Any bytes as a font of the vector graphics: what is accepted can be measured and drawn.
#include <orv/orv.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "text/nvg_globals.h"

namespace {

constexpr int SIDE = 64;

/// OpenGL in software without a window, kept for all inputs.
class Page {
 public:
  Page() : surface_(SIDE, SIDE, orv::OffscreenWindow::SOFTWARE) {
    orv::core::start(nullptr, false, nullptr, nullptr);
    renderer_ = orv::Kernel::get()->load_core_opengl_renderer_plugin(true);
    renderer_->initialize();
    orv::RenderWindowData data;
    data.native_window = surface_.native_handle();
    orv::RenderWindow* window = renderer_->render_window_alloc();
    if (!renderer_->render_window_create_context(window, &data, nullptr) || !renderer_->start()) {
      std::fputs("no OpenGL in software\n", stderr);
      std::exit(1);
    }
  }

  /// A name that no font has yet. Fonts go with their context, so that is made anew at times.
  std::string new_font_name() {
    constexpr unsigned int FONTS_PER_CONTEXT = 32;
    if (num_fonts_++ % FONTS_PER_CONTEXT == 0) {
      orv::nvg::terminate(renderer_);
      if (!orv::nvg::init(renderer_, true)) std::abort();
    }
    return "font " + std::to_string(num_fonts_);
  }

 private:
  orv::OffscreenWindow surface_;
  orv::Renderer* renderer_ = nullptr;
  unsigned int num_fonts_ = 0;
};

}  // namespace

// The first three bytes are the height of the text, its blur and its alignment.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  namespace nvg = orv::nvg;
  if (size < 3 || size > (1u << 20)) return 0;
  static Page page;
  const std::string name = page.new_font_name();
  const std::vector<unsigned char> file(data + 3, data + size);
  if (!orv::detail::add_vector_font(nvg::current(), name.c_str(), file)) return 0;
  constexpr char TEXT[] = "A g\xC3\xA9\xE2\x82\xAC";
  nvg::begin_frame(SIDE, SIDE, 1.0f);
  nvg::font_params(static_cast<float>(data[0]), name.c_str(), static_cast<float>(data[1]) / 8.0f);
  nvg::text_params(data[2], 0.0f, 1.0f);
  float bounds[4];
  const float advance = nvg::text_bounds(0.0f, 0.0f, bounds, TEXT);
  nvg::text(4.0f, 40.0f, TEXT);
  nvg::end_frame();
  for (const float value : {advance, bounds[0], bounds[1], bounds[2], bounds[3]}) {
    if (!std::isfinite(value)) std::abort();
  }
  return 0;
}
