// One scene through each road to a picture: off screen and in an X11 window, without and with
// multisampling. Run once for each generation of OpenGL; all runs meet the same golden images.
#include <orv/orv.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "support/image_compare.h"
#include "support/x11_window.h"

namespace orv::test {
namespace {

constexpr int size = 192;

// The body of both languages' shaders: one light at the eye's upper right, colours by the vertex.
const char* const vertex_body =
    "uniform mat4 orvex_ModelViewMatrix;\n"
    "uniform mat4 orvex_ModelViewProjectionMatrix;\n"
    "void main() {\n"
    "  view_normal = mat3(orvex_ModelViewMatrix) * orvex_Normal.xyz;\n"
    "  uv = orvex_TexCoord0.xy;\n"
    "  gl_Position = orvex_ModelViewProjectionMatrix * vec4(orvex_Position.xyz, 1.0);\n"
    "}\n";
const char* const pixel_body =
    "uniform vec4 color;\n"
    "uniform sampler2D map;\n"
    "void main() {\n"
    "  float light = abs(dot(normalize(view_normal), normalize(vec3(0.4, 0.6, 0.8))));\n"
    "  vec3 shade = color.rgb * TEXTURE(map, uv).rgb * (0.25 + 0.75 * light);\n"
    "  OUTPUT = vec4(shade, 1.0);\n"
    "}\n";

std::string shader_file(bool modern) {
  const std::string in = modern ? "in " : "attribute ";
  const std::string to = modern ? "out " : "varying ";
  const std::string from = modern ? "in " : "varying ";
  const std::string version = modern ? "#version 150\n" : "#version 120\n";
  return "[Vertex_Shader]\n" + version + in + "vec4 orvex_Position;\n" + in +
         "vec4 orvex_TexCoord0;\n" + in + "vec4 orvex_Normal;\n" + to + "vec3 view_normal;\n" + to +
         "vec2 uv;\n" + vertex_body + "[Pixel_Shader]\n" + version +
         (modern ? "#define TEXTURE texture\n#define OUTPUT pixel\nout vec4 pixel;\n"
                 : "#define TEXTURE texture2D\n#define OUTPUT gl_FragColor\n") +
         from + "vec3 view_normal;\n" + from + "vec2 uv;\n" + pixel_body;
}

// A sphere, a torus, a box and a cylinder on a plane with a generated texture, and the grid.
class TestScene {
 public:
  explicit TestScene(Renderer* renderer) : renderer_(renderer) {
    const std::string text = shader_file(renderer->is_api_version_at_least(3, 2));
    program_ = GpuProgramMgr::get()->create_gpu_program_from_memory(
        renderer, text.c_str(), static_cast<unsigned int>(text.size()), "golden");
    EXPECT_TRUE(program_->is_valid()) << program_->get_shaders_info_log();
    texture_ = TextureMgr::get()->create_texture_2d(8, 8, PF_RGBA_U8, true);
    for (unsigned int i = 0; i < 64; ++i) {
      const float v = (i + i / 8) % 2 ? 255.0f : 150.0f;
      texture_->set_texel_2d(i % 8, i / 8, vec4(v, v, v, 255.0f));
    }
    material_ = MaterialMgr::get()->create_material("golden");
    material_->set_gpu_program(program_);
    material_->add_texture(texture_);
  }
  ~TestScene() {
    MaterialMgr::get()->release_resource(renderer_, material_, nullptr);
    TextureMgr::get()->release_texture(renderer_, texture_, nullptr);
    GpuProgramMgr::get()->release_resource(renderer_, program_, nullptr);
  }

  void draw() {
    Camera camera;
    camera.build_projection_persp(45.0f, 1.0f, 0.5f, 60.0f, true);
    camera.set_viewport(0, 0, size, size);
    camera.set_position(5.0f, 5.0f, 9.0f);
    camera.set_lookat(0.0f, 0.6f, 0.0f);
    camera.bind(renderer_, true, true, true, true, true);
    renderer_->clear_color_depth_buffers_rgba(0.1f, 0.12f, 0.2f, 1.0f, 1.0f);
    draw_shape<MeshPlane>(vec4(0, 0, 0, 1), vec4(0.7f, 0.7f, 0.7f, 1), 9.0f, 9.0f, 4, 4);
    draw_shape<MeshSphere>(vec4(-1.7f, 1.2f, 0.6f, 1), vec4(0.9f, 0.3f, 0.2f, 1), 1.2f, 24, 32);
    draw_shape<MeshTorus>(vec4(1.9f, 0.5f, 1.2f, 1), vec4(0.2f, 0.7f, 0.9f, 1), 1.3f, 0.4f, 32);
    draw_shape<MeshBox>(vec4(1.4f, 0.9f, -2.0f, 1), vec4(0.9f, 0.8f, 0.2f, 1), 1.6f, 1.8f, 1.6f, 2,
                        2, 2);
    draw_shape<MeshCylinder>(vec4(-2.2f, 1.2f, -2.4f, 1), vec4(0.4f, 0.9f, 0.4f, 1), 0.7f, 2.2f, 3,
                             32);
    Object axes;
    axes.set_tripod_size(3.0f, 3.0f, 3.0f, nullptr);
    axes.display_tripod(renderer_, nullptr);
  }

 private:
  template <class Shape, class... Parameters>
  void draw_shape(const vec4& position, const vec4& color, Parameters... parameters) {
    auto* shape = new Shape;
    shape->set_build_params(parameters...);
    EXPECT_TRUE(shape->build(nullptr));
    shape->set_position(position);
    shape->add_material(material_, nullptr);
    program_->set_uniform_4f(nullptr, "color", color);
    program_->set_uniform_1i(nullptr, "map", 0);
    shape->render(renderer_, nullptr);
    shape->release(renderer_, nullptr);
  }

  Renderer* renderer_;
  GpuProgram* program_;
  Texture* texture_;
  Material* material_;
};

RenderWindowData window_data(const char* msaa) {
  RenderWindowData data;
  data.gl_major = 3;
  const char* core = std::getenv("ORV_TEST_CORE_PROFILE");
  data.core_profile = core && *core == '1';
  data.width = size;
  data.height = size;
  std::snprintf(data.msaa, sizeof(data.msaa), "%s", msaa);
  return data;
}

Picture draw_picture(const RenderWindowData& data) {
  Picture picture;
  core::start(nullptr, false, nullptr, nullptr);
  Renderer* renderer = Kernel::get()->load_core_opengl_renderer_plugin(true);
  renderer->initialize();
  RenderWindow* window = renderer->render_window_alloc();
  if (renderer->render_window_create_context(window, &data, nullptr)) {
    renderer->start();
    {
      TestScene scene(renderer);
      scene.draw();
      picture.width = picture.height = size;
      picture.rgba.resize(std::size_t{size} * size * 4);
      renderer->read_back_buffer_rect_rgba(picture.rgba.data(), 0, 0, size, size);
    }
    EXPECT_EQ(renderer->check_gl_error(true, "first light"), 0u);
    renderer->stop();
  }
  renderer->render_window_free_all();
  core::stop(nullptr);
  return picture;
}

Picture draw_off_screen(const char* msaa) {
  OffscreenWindow surface(size, size, OffscreenWindow::SOFTWARE);
  RenderWindowData data = window_data(msaa);
  data.native_window = surface.native_handle();
  return draw_picture(data);
}

Picture draw_in_window(X11Display& display, const char* msaa) {
  X11Window window(display, size, size);
  display.sync();
  RenderWindowData data = window_data(msaa);
  data.app_instance = display.handle();
  data.native_window = window.handle();
  return draw_picture(data);
}

TEST(FirstLight, OffScreen) {
  const Picture picture = draw_off_screen("Off");
  ASSERT_FALSE(picture.rgba.empty()) << "no context off screen";
  EXPECT_EQ(compare_to_golden(picture, "first_light"), "");
}

TEST(FirstLight, OffScreenMultisampled) {
  const Picture picture = draw_off_screen("4X MSAA");
  ASSERT_FALSE(picture.rgba.empty()) << "no context off screen";
  EXPECT_EQ(compare_to_golden(picture, "first_light_4x"), "");
}

TEST(FirstLight, WindowEqualsOffScreenToTheBit) {
  X11Display display;
  if (!display.ok()) GTEST_SKIP() << "no X server";
  const Picture picture = draw_in_window(display, "Off");
  ASSERT_FALSE(picture.rgba.empty()) << "no context in the window";
  EXPECT_EQ(compare_to_golden(picture, "first_light"), "");
  EXPECT_EQ(compare_pictures(picture, draw_off_screen("Off"), {0, 1.0, 0}), "");
}

TEST(FirstLight, MultisampledWindowEqualsOffScreenToTheBit) {
  X11Display display;
  if (!display.ok()) GTEST_SKIP() << "no X server";
  const Picture picture = draw_in_window(display, "4X MSAA");
  ASSERT_FALSE(picture.rgba.empty()) << "no context in the window";
  EXPECT_EQ(compare_to_golden(picture, "first_light_4x"), "");
  EXPECT_EQ(compare_pictures(picture, draw_off_screen("4X MSAA"), {0, 1.0, 0}), "");
}

TEST(FirstLight, PicturesShowSomething) {
  const Picture picture = draw_off_screen("Off");
  ASSERT_FALSE(picture.rgba.empty());
  Picture plain = picture;
  for (std::size_t i = 0; i < plain.rgba.size(); ++i) plain.rgba[i] = picture.rgba[i % 4];
  EXPECT_NE(compare_pictures(picture, plain, {16, 0.6, 255}), "") << "a single colour";
}

}  // namespace
}  // namespace orv::test
