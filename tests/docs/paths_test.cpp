// Files that the papers name are there.
#include <gtest/gtest.h>

#include <filesystem>
#include <regex>
#include <string>

#include "docs/read_text.h"

namespace orv::test {
namespace {

namespace fs = std::filesystem;

class Papers : public testing::TestWithParam<const char*> {};

bool exists_somewhere(const std::string& path) {
  const fs::path root = ORV_SOURCE_DIR;
  for (const char* folder : {"", "docs", "src", "include/orv", "src/render/opengl", "tests",
                             "src/geometry/primitives", "tests/support"}) {
    if (fs::exists(root / folder / path)) return true;
  }
  return false;
}

// Words in capitals stand for names of the reader's own, and my_class for a class.
bool is_placeholder(const std::string& path) {
  static const std::regex capitals("(^|/)(FOLDER|FAMILY|NAME|KIND|XML)|my_class|[*]");
  return std::regex_search(path, capitals);
}

TEST_P(Papers, NameFilesThatExist) {
  const std::string text = read_text(GetParam());
  ASSERT_FALSE(text.empty());
  static const std::regex file("`([A-Za-z0-9_./*]+(\\.(cpp|h|inc|md|py|cmake|txt|glsl)|/))`");
  for (std::sregex_iterator i(text.begin(), text.end(), file), end; i != end; ++i) {
    const std::string path = (*i)[1];
    if (!is_placeholder(path)) {
      EXPECT_TRUE(exists_somewhere(path)) << path;
    }
  }
}

TEST_P(Papers, LinkToFilesThatExist) {
  const std::string text = read_text(GetParam());
  const fs::path folder = (fs::path(ORV_SOURCE_DIR) / GetParam()).parent_path();
  static const std::regex link("\\]\\(([^)#:]+)\\)");
  for (std::sregex_iterator i(text.begin(), text.end(), link), end; i != end; ++i) {
    EXPECT_TRUE(fs::exists(folder / (*i)[1].str())) << (*i)[1];
  }
}

INSTANTIATE_TEST_SUITE_P(All, Papers,
                         testing::Values("README.md", "CONTRIBUTING.md", "docs/architecture.md",
                                         "docs/renderer.md", "docs/guide.md", "docs/gallery.md",
                                         "docs/performance.md"),
                         [](const auto& paper) { return fs::path(paper.param).stem().string(); });

}  // namespace
}  // namespace orv::test
