#include <orv/geometry/mesh.h>
#include <orv/gpu/gpu_buffer_data.h>
#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/gpu_render_target.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>
#include <orv/gpu/texture_mgr.h>
#include <orv/text/font_data.h>
#include <orv/text/nvg.h>

#include "support/gl_context.h"
#include "support/held.h"
#include "support/log_capture.h"
#include "support/temp_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace orv::test {
namespace {

/// A window of a renderer that is not started, and a context beside it.
struct Bench {
  TempFolder folder;
  GlContext context;
  RendererOpenGL idle;
  Held<GpuProgram> program;
  RenderWindowData data;

  Bench() { program->set_name("broken"); }
  ~Bench() {
    if (!context.ok()) return;
    context.renderer().render_window_make_current(context.window(), true);
    context.renderer().gpu_program_unload(program->get_data_ptr());
    context.take_errors();  // the driver tells of shaders, too
  }

  bool load(GPU_SHADER_TYPE type, const std::string& text) {
    return program->shader_load_from_memory(&context.renderer(), type, text.c_str(),
                                            static_cast<unsigned int>(text.size()));
  }
  /// Whether a window on this native handle gets no context.
  bool refuses(void* native_window) {
    data.native_window = native_window;
    RenderWindow* window = idle.render_window_alloc();
    return !idle.render_window_create_context(window, &data, nullptr);
  }
  RenderWindow* bare_window() { return idle.render_window_alloc(); }
  void unbind() { context.renderer().render_window_make_current(context.window(), false); }
  /// Whether a file of these bytes is no font for vector graphics.
  bool refuses_font(const char* name, const std::string& bytes) {
    const bool ready = nvg::init(&context.renderer(), true);
    const bool refused = !nvg::load_font(name, folder.write("font.ttf", bytes).c_str());
    nvg::terminate(&context.renderer());
    return ready && refused;
  }
};

struct Failure {
  const char* name;
  bool (*provoke)(Bench&);
  std::vector<const char*> words;  ///< the thing and the cause
  int major = 1, minor = 0;        ///< version of OpenGL that it takes
};

void PrintTo(const Failure& failure, std::ostream* out) { *out << failure.name; }

const Failure FAILURES[] = {
    // ---- windows and contexts ----
    {"HandleOfNoWindow",
     [](Bench& b) { return b.refuses(reinterpret_cast<void*>(0x7FFFFFF1)); },
     {"EGL", "no living offscreen window"}},
    {"NoNativeWindow",
     [](Bench& b) { return b.refuses(nullptr); },
     {"OpenGL renderer", "no window to make a context for"}},
    {"OwnFormatOfAFreshWindow",
     [](Bench& b) {
       OffscreenWindow window(16, 16, OffscreenWindow::SOFTWARE);
       b.data.use_existing_pixel_format = true;
       return b.refuses(window.native_handle());
     },
     {"EGL", "the window's own format"}},
    {"WindowTooLarge",
     [](Bench& b) {
       OffscreenWindow window(20000, 16, OffscreenWindow::SOFTWARE);
       return b.refuses(window.native_handle());
     },
     {"EGL", "20000x16", "too large"}},
    {"RendererWithoutContext",
     [](Bench& b) {
       b.unbind();
       return !b.idle.start();
     },
     {"OpenGL renderer", "no context is current"}},
    {"SwapIntervalOfAnIdleWindow",
     [](Bench& b) {
       b.unbind();
       return !b.context.renderer().render_window_set_swap_interval(b.context.window(), true);
     },
     {"EGL: swap interval", "not current"}},
    {"BareWindowMadeCurrent",
     [](Bench& b) { return !b.idle.render_window_make_current(b.bare_window(), true); },
     {"window ", "not made current: no context"}},
    {"BareWindowSwapped",
     [](Bench& b) { return !b.idle.render_window_swap_buffers(b.bare_window()); },
     {"window ", "buffers not swapped: no context"}},
    {"SwapIntervalSetForABareWindow",
     [](Bench& b) { return !b.idle.render_window_set_swap_interval(b.bare_window(), true); },
     {"window ", "swap interval not set: no context"}},
    {"SwapIntervalReadOfABareWindow",
     [](Bench& b) {
       int interval = 0;
       return !b.idle.render_window_get_swap_interval(b.bare_window(), &interval);
     },
     {"window ", "swap interval not read: no context"}},
    {"ListsSharedWithABareWindow",
     [](Bench& b) {
       return !b.context.renderer().render_window_share_lists(b.context.window(), b.bare_window());
     },
     {"window ", "lists not shared: no context"}},
    {"ListsSharedByABareWindow",
     [](Bench& b) { return !b.idle.render_window_share_lists(b.bare_window(), b.bare_window()); },
     {"window ", "lists not shared: no context"}},

    // ---- a renderer that is not started ----
    {"FunctionOfAnIdleRenderer",
     [](Bench& b) { return !b.idle.memory_barrier(1); },
     {"glMemoryBarrier", "not started"}},
    {"MeshOfAnIdleRenderer",
     [](Bench& b) {
       const Held<Mesh> mesh;
       return !b.idle.geometry_vbo_create(nullptr, mesh->get_data());
     },
     {"glGenBuffers", "not started"}},
    {"TextureOfAnIdleRenderer",
     [](Bench& b) {
       const Held<Texture> texture;
       texture->get_data_ptr()->type = TEXTURE_2D;
       texture->get_data_ptr()->set_image_size(4, 4, 1, PF_RGB_U8);
       return !texture->upload(&b.idle, 0, false);
     },
     {"glGenTextures", "not started"}},
    {"SizeOfTheBackBufferOfAnIdleRenderer",
     [](Bench& b) {
       unsigned int size = 0, width = 0, height = 0;
       return !b.idle.get_back_buffer_size(&size, &width, &height);
     },
     {"viewport", "not started"}},
    {"BackBufferOfAnIdleRenderer",
     [](Bench& b) {
       unsigned char pixels[4];
       return !b.idle.read_back_buffer_rgba(pixels);
     },
     {"viewport", "not started"}},
    {"ScreenshotOfAnIdleRenderer",
     [](Bench& b) {
       return !TextureMgr::get()->do_screenshot(&b.idle, b.folder.file("shot.jpg").c_str(), false);
     },
     {"shot.jpg", "back buffer", "not started"}},
    {"PartOfTheScreenOfAnIdleRenderer",
     [](Bench& b) {
       return !TextureMgr::get()->do_screenshot_v2(&b.idle, b.folder.file("part.jpg").c_str(), 0, 0,
                                                   4, 4, false);
     },
     {"part.jpg", "back buffer", "not started"}},
    {"PipelineOfAnIdleRenderer",
     [](Bench& b) { return !b.idle.apply_pipeline_state(); },
     {"glEnable", "not started"}},
    {"ExtensionsOfAnIdleRenderer",
     [](Bench& b) {
       b.unbind();
       return !b.idle.extensions_load(nullptr);
     },
     {"no extensions", "not started"}},
    {"QueryOfAnIdleRenderer",
     [](Bench& b) { return b.idle.query_create() == 0; },
     {"glGenQueries", "not started"}},
    {"BitmapFontOfAnIdleRenderer",
     [](Bench& b) {
       FontData font;
       return !b.idle.bitmap_font_create(&font);
     },
     {"bitmap fonts", "not started"}},

    // ---- fonts ----
    {"EmptyVectorFont",
     [](Bench& b) { return b.refuses_font("blank", ""); },
     {"font \"blank\"", "too short"},
     3,
     2},
    {"ShortVectorFont",
     [](Bench& b) { return b.refuses_font("stub", std::string("\0\1\0\0\0\0\0\0\0\0\0", 11)); },
     {"font \"stub\"", "too short"},
     3,
     2},
    {"VectorFontOfText",
     [](Bench& b) { return b.refuses_font("prose", std::string(200, 'x')); },
     {"font \"prose\"", "TrueType"},
     3,
     2},

    // ---- shaders ----
    {"ShaderDoesNotCompile",
     [](Bench& b) { return !b.load(GPU_SHADER_VERTEX, "void main() { no_such_thing(); }"); },
     {"GPU program broken", "Vertex shader info log", "no_such_thing"}},
    {"ProgramDoesNotLink",
     [](Bench& b) {
       b.load(GPU_SHADER_VERTEX,
              "#version 150\nvec4 elsewhere();\nvoid main() { gl_Position = elsewhere(); }");
       b.load(GPU_SHADER_PIXEL, "#version 150\nout vec4 color;\nvoid main() { color = vec4(1); }");
       return !b.context.renderer().gpu_program_link(b.program->get_data_ptr());
     },
     {"GPU program (broken)", "linking info log", "elsewhere"}},
    {"ReloadDoesNotCompile",
     [](Bench& b) {
       const std::string text = "void main() { no_such_thing(); }";
       return !b.context.renderer().gpu_shader_reload(b.program->get_data_ptr(), GPU_SHADER_VERTEX,
                                                      text.c_str(),
                                                      static_cast<unsigned int>(text.size()));
     },
     {"GPU program (broken)", "does not compile", "no_such_thing"}},

    // ---- textures, targets, buffers ----
    {"TextureTooLarge",
     [](Bench& b) {
       const Held<Texture> texture;
       texture->get_data_ptr()->type = TEXTURE_2D;
       texture->get_data_ptr()->set_image_size(1u << 20, 1, 1, PF_RGB_U8);
       return !texture->upload(&b.context.renderer(), 0, false);
     },
     {"2D texture loading failed", "texture size must be <="}},
    {"TextureWithoutFormat",
     [](Bench& b) {
       const Held<Texture> texture;
       texture->set_name("formless");
       texture->get_data_ptr()->type = TEXTURE_2D;
       texture->get_data_ptr()->set_image_size(4, 4, 1, PF_UNKNOWN);
       return !texture->upload(&b.context.renderer(), 0, false);
     },
     {"texture formless", "pixel format"}},
    {"TextureOfUnknownFormat",
     [](Bench& b) {
       unsigned int id = 0;
       return !b.context.renderer().texture_create_2d_by_id(
           &id, 4, 4, PF_UNKNOWN, nullptr, SAMPLER_FILTERING_LINEAR, SAMPLER_ADDRESSING_CLAMP);
     },
     {"texture of 4x4", "pixel format"}},
    {"TargetWithoutSize",
     [](Bench& b) {
       GpuRenderTarget target;
       return !b.context.renderer().gpu_render_target_init_2d(nullptr, &target, 0, 8, PF_RGBA_U8, 1,
                                                              false, true, true, 0);
     },
     {"GPU render target", "no size: 0x8"}},
    {"TargetTooLarge",
     [](Bench& b) {
       GpuRenderTarget target;
       return !b.context.renderer().gpu_render_target_resize(&target, 1 << 20, 8);
     },
     {"GPU render target", "1048576x8"}},
    {"BufferOfUnknownType",
     [](Bench& b) {
       GpuBufferData buffer;
       return !b.context.renderer().gpu_buffer_alloc(nullptr, &buffer,
                                                     static_cast<GPU_BUFFER_TYPE>(99),
                                                     BUFFER_USAGE_STATIC_DRAW, 64, nullptr);
     },
     {"GPU buffer of 64 bytes", "type 99"}},
};

bool holds_all(const std::string& line, const std::vector<const char*>& words) {
  return std::all_of(words.begin(), words.end(),
                     [&](const char* word) { return line.find(word) != std::string::npos; });
}

class FailureReasonsOfContexts : public testing::TestWithParam<Failure> {};

TEST_P(FailureReasonsOfContexts, OneLineNamesTheThingAndTheCause) {
  auto bench = std::make_unique<Bench>();
  if (!bench->context.ok()) GTEST_SKIP() << bench->context.reason();
  const Failure& row = GetParam();
  if (!bench->context.renderer().facts().is_version_at_least(row.major, row.minor)) {
    GTEST_SKIP() << "needs OpenGL " << row.major << "." << row.minor;
  }
  LogCapture log(LOG_LEVEL_DEBUG);
  EXPECT_TRUE(row.provoke(*bench));
  const auto told = std::count_if(log.lines().begin(), log.lines().end(),
                                  [&](const auto& line) { return holds_all(line, row.words); });
  EXPECT_EQ(told, 1) << log.text();
}

INSTANTIATE_TEST_SUITE_P(All, FailureReasonsOfContexts, testing::ValuesIn(FAILURES),
                         [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace orv::test
