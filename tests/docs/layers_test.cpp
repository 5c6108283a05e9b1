// The layers of docs/architecture.md: a file includes its own layer and those below it.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <set>
#include <string>
#include <utility>

#include "docs/read_text.h"

namespace orv::test {
namespace {

namespace fs = std::filesystem;

struct Layer {
  const char* prefix;
  int height;
};

// The longest prefix that fits counts, so longer ones stand first.
constexpr Layer layers[] = {
    {"render/opengl/", 9},
    {"render/window/", 9},
    {"scene/node", 1},
    {"text/font_data", 1},
    {"text/stb_truetype", 1},
    {"text/truetype_check", 1},
    {"core/", 0},
    {"math/", 0},
    {"image/", 1},
    {"render/", 2},
    {"gpu/", 3},
    {"geometry/", 4},
    {"scene/", 4},
    {"loaders/", 5},
    {"text/", 5},
    {"visual/", 5},
    {"services/", 5},
};

// -1 for what stands in no layer, such as fwd.h.
int height_of(const std::string& path) {
  for (const Layer& layer : layers) {
    if (path.rfind(layer.prefix, 0) == 0) return layer.height;
  }
  return -1;
}

// Those that know everyone, and the few steps up that the paper names.
bool may_look_up(const std::string& file, const std::string& included) {
  static const std::set<std::string> roots = {"core/kernel.cpp", "core/kernel_data.h",
                                              "core/kernel_models.cpp", "core/core_plugins.cpp",
                                              "core/aux_functions.cpp"};
  static const std::set<std::pair<std::string, std::string>> steps = {
      {"core/aligned_array.cpp", "geometry/vertex.h"},
      {"core/utils.cpp", "gpu/gpu_enums.h"},
      {"core/utils.cpp", "image/pixel_format.h"},
      {"render/offscreen_window.cpp", "render/window/offscreen_registry.h"},
      {"render/render_window.cpp", "render/window/context.h"},
      {"render/renderer.cpp", "gpu/gpu_render_target.h"},
      {"render/window.cpp", "scene/camera.h"},
      {"render/window.cpp", "scene/scene_renderer.h"},
      {"render/window.cpp", "scene/viewport.h"},
  };
  return roots.count(file) || steps.count({file, included});
}

TEST(Layers, FilesIncludeNothingAboveThem) {
  static const std::regex include("#include (?:<orv/([^>]+)>|\"([^\"]+)\")");
  int seen = 0;
  for (const char* root : {"src", "include/orv"}) {
    for (const auto& entry :
         fs::recursive_directory_iterator(ORV_SOURCE_DIR "/" + std::string(root))) {
      const std::string extension = entry.path().extension();
      if (extension != ".cpp" && extension != ".h") continue;
      const std::string file = fs::relative(entry.path(), fs::path(ORV_SOURCE_DIR) / root);
      const int height = height_of(file);
      if (height < 0) continue;
      const std::string text = read_text(std::string(root) + "/" + file);
      for (std::sregex_iterator i(text.begin(), text.end(), include), end; i != end; ++i, ++seen) {
        const std::string included = (*i)[1].matched ? (*i)[1] : (*i)[2];
        EXPECT_TRUE(height_of(included) <= height || may_look_up(file, included))
            << file << " includes " << included;
      }
    }
  }
  EXPECT_GT(seen, 500);
}

// System headers stand where docs/architecture.md says.
TEST(Layers, SystemHeadersStandInTheirFolders) {
  static const std::regex system(
      "#include "
      "<((?:X11|GL|EGL|sys|linux|fontconfig)/[^>]+|unistd\\.h|dlfcn\\.h|fcntl\\.h|pthread\\.h)>");
  static const std::regex allowed(
      "(?:core|services)/platform/.*|render/window/.*|render/opengl/.*");
  for (const char* root : {"src", "include/orv"}) {
    for (const auto& entry :
         fs::recursive_directory_iterator(ORV_SOURCE_DIR "/" + std::string(root))) {
      if (!entry.is_regular_file()) continue;
      const std::string file = fs::relative(entry.path(), fs::path(ORV_SOURCE_DIR) / root);
      if (std::string(root) == "src" && std::regex_match(file, allowed)) continue;
      const std::string text = read_text(std::string(root) + "/" + file);
      std::smatch found;
      EXPECT_FALSE(std::regex_search(text, found, system)) << file << " includes " << found[1];
    }
  }
}

}  // namespace
}  // namespace orv::test
