// The live picture of a camera on a screen. Without a camera a test card says so.
// EXAMPLE_CAMERA in the environment tells which one: 1 is the second, "none" is no camera.
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "common/example.h"
#include "common/shaders.h"

using namespace examples;
using orv::vec4;

namespace {

// A screen shines by itself: no light falls on it.
const char* const pixel = R"(
VARYING vec2 uv;
uniform sampler2D color_map;

void main() { PIXEL = vec4(SAMPLE(color_map, uv).rgb, 1.0); }
)";

const char* const words[] = {
    "#   #  ###     ###   ###  #   # ##### ####   ### ",
    "#   # #   #   #   # #   # ## ## #     #   # #   #",
    "##  # #   #   #     #   # # # # #     #   # #   #",
    "# # # #   #   #     ##### # # # ####  ####  #####",
    "#  ## #   #   #     #   # #   # #     # #   #   #",
    "#   # #   #   #   # #   # #   # #     #  #  #   #",
    "#   #  ###     ###  #   # #   # ##### #   # #   #",
};

}  // namespace

class LivePicture : public Example {
 public:
  bool create() override {
    look(vec4(1.4f, 0.6f, 6.2f), vec4(0.0f, 0.0f, 0.0f), 26.0f);
    texture_ = orv::TextureMgr::get()->create_texture();
    texture_->set_addressing_mode(nullptr, orv::SAMPLER_ADDRESSING_CLAMP);
    orv::GpuProgram* program = make_program("screen", surface_vertex, pixel);
    if (!program) return false;
    orv::Material* material = make_material("screen", program);
    material->add_texture(texture_);
    screen_ = keep(new orv::MeshQuad);
    screen_->set_build_params(1.0f, 1.0f);
    screen_->build(nullptr);
    screen_->add_material(material, nullptr);
    frame_ = keep(new orv::MeshBox);
    frame_->set_build_params(1.0f, 1.0f, 1.0f, 1, 1, 1);
    frame_->build(nullptr);
    frame_->set_vertices_color(vec4(0.13f, 0.14f, 0.16f, 1.0f), nullptr);
    frame_->add_material(lit_material(), nullptr);

    webcam_ = keep(new orv::WebcamWin32);
    live_ = start_camera();
    if (live_) return true;
    std::printf("no camera: a test card is shown\n");
    return show_test_card();
  }

  void draw(float time) override {
    if (live_ && webcam_->grab_frame()) {
      show(webcam_->get_frame(), webcam_->get_frame_width(), webcam_->get_frame_height());
    }
    const float turn = 0.25f * std::sin(time * 0.8f);
    screen_->set_orientation_euler_xyz(0.0f, turn * 57.29578f, 0.0f);
    frame_->set_orientation_euler_xyz(0.0f, turn * 57.29578f, 0.0f);
    frame_->set_position(-0.06f * std::sin(turn), 0.0f, -0.06f * std::cos(turn));  // behind it
    frame_->render(renderer, nullptr);
    if (texture_->get_width() > 0) screen_->render(renderer, nullptr);
  }

 private:
  // True when a camera delivers.
  bool start_camera() {
    const char* wanted = std::getenv("EXAMPLE_CAMERA");
    if (wanted && std::strcmp(wanted, "none") == 0) return false;
    if (webcam_->get_num_webcams() == 0 || !webcam_->start(wanted ? std::atoi(wanted) : 0)) {
      return false;
    }
    // A grab does not wait, and cameras take their time for the first frame.
    for (int i = 0; i < 200 && !webcam_->grab_frame(); ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    return webcam_->get_frame() != nullptr;
  }

  // Rows bottom-up, a pixel is blue, green, red: as the camera has it, and OpenGL too.
  bool show(const unsigned char* bgr, int w, int h) {
    const auto columns = static_cast<unsigned int>(w), rows = static_cast<unsigned int>(h);
    if (texture_->get_width() != columns || texture_->get_height() != rows) {
      texture_->unload(renderer);
      if (!texture_->create_2d(columns, rows, orv::PF_BGR_U8, false)) {
        return fail("no memory for the picture");
      }
      const float aspect = static_cast<float>(w) / static_cast<float>(h);
      screen_->set_scale(2.0f * aspect, 2.0f, 1.0f);
      frame_->set_scale(2.0f * aspect + 0.2f, 2.2f, 0.1f);
    }
    return texture_->update_pixmap_rgb_u8(bgr);
  }

  static constexpr int card_width = 320;
  static constexpr int card_height = 240;

  static bool is_on_letter(int x, int y) {
    constexpr int size = 5;  // of a dot
    const int left = (card_width - 49 * size) / 2, top = card_height / 2 + 7 * size / 2 + 10;
    if (x < left || y > top) return false;
    const int column = (x - left) / size, row = (top - y) / size;
    return column < 49 && row < 7 && words[row][column] == '#';
  }

  // Of a pixel, y upwards: bars, the words on a dark band, and steps of grey below.
  static vec4 card_color(int x, int y) {
    const vec4 bars[] = {WHITE, YELLOW, TEAL, GREEN, VIOLET, RED, BLUE};
    if (is_on_letter(x, y)) return WHITE;
    if (y >= 100 && y < 160) return vec4(0.07f, 0.08f, 0.10f, 1.0f);
    if (y < 40) return WHITE * (static_cast<float>(x * 10 / card_width) / 9.0f);
    return bars[x * 7 / card_width];
  }

  bool show_test_card() {
    std::vector<unsigned char> card;
    for (int i = 0; i < card_width * card_height; ++i) {
      const vec4 color = card_color(i % card_width, i / card_width);
      for (const float part : {color.z, color.y, color.x}) {
        card.push_back(static_cast<unsigned char>(part * 255.0f + 0.5f));
      }
    }
    return show(card.data(), card_width, card_height);
  }

  orv::WebcamWin32* webcam_ = nullptr;
  orv::Texture* texture_ = nullptr;
  orv::MeshQuad* screen_ = nullptr;
  orv::MeshBox* frame_ = nullptr;
  bool live_ = false;
};

int main(int argc, char** argv) { return run<LivePicture>(argc, argv, "Camera"); }
