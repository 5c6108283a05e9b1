// docs/gallery.md has an entry for each example: its picture and a link to its source.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <set>
#include <sstream>
#include <string>

#include "docs/read_text.h"

namespace orv::test {
namespace {

std::set<std::string> example_names() {
  std::set<std::string> names;
  for (const auto& entry : std::filesystem::directory_iterator(ORV_SOURCE_DIR "/examples")) {
    if (entry.path().extension() == ".cpp") names.insert(entry.path().stem());
  }
  return names;
}

TEST(Gallery, ShowsEachExampleInOrder) {
  const std::string gallery = read_text("docs/gallery.md");
  std::size_t last = 0;
  for (const std::string& name : example_names()) {
    const std::string picture = "tests/golden/images/example_" + name + ".png";
    const std::size_t at = gallery.find("](../" + picture + ")");
    ASSERT_NE(at, std::string::npos) << name;
    EXPECT_GT(at, last) << name;
    last = at;
    EXPECT_NE(gallery.find("](../examples/" + name + ".cpp)"), std::string::npos) << name;
    EXPECT_TRUE(std::filesystem::exists(ORV_SOURCE_DIR "/" + picture)) << name;
  }
  EXPECT_GT(last, 0u);
}

TEST(Gallery, ShowsNoPictureThatIsGone) {
  const std::string gallery = read_text("docs/gallery.md");
  const std::set<std::string> names = example_names();
  const std::string mark = "/images/example_";
  for (std::size_t at = gallery.find(mark); at != std::string::npos;
       at = gallery.find(mark, at + 1)) {
    const std::size_t begin = at + mark.size();
    const std::string name = gallery.substr(begin, gallery.find(".png", begin) - begin);
    EXPECT_TRUE(names.count(name)) << name;
  }
}

// Examples are read in five minutes, and teach the public interface alone.
TEST(ExampleSources, AreShortAndUsePublicHeadersAlone) {
  for (const std::string& name : example_names()) {
    const std::string text = read_text("examples/" + name + ".cpp");
    EXPECT_LE(std::count(text.begin(), text.end(), '\n'), 170) << name;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
      if (line.rfind("#include \"", 0) == 0) {
        EXPECT_EQ(line.rfind("#include \"common/", 0), 0u) << name << ": " << line;
      }
      if (line.rfind("#include <orv/", 0) == 0) {
        EXPECT_EQ(line, "#include <orv/orv.h>") << name;
      }
    }
  }
}

}  // namespace
}  // namespace orv::test
