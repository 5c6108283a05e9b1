#include "viewer/options.h"

#include <gtest/gtest.h>

#include <initializer_list>

namespace viewer {
namespace {

ParsedOptions parse(std::initializer_list<const char*> words) {
  std::vector<const char*> argv = {"orv-viewer"};
  argv.insert(argv.end(), words);
  return parse_options(static_cast<int>(argv.size()), argv.data());
}

TEST(ViewerOptions, DefaultsAreAWindowOf1280x720InACompatibilityProfile) {
  const ParsedOptions parsed = parse({"a.obj"});
  ASSERT_TRUE(parsed.run) << parsed.text;
  const Options& o = parsed.options;
  EXPECT_EQ(o.files, std::vector<std::string>{"a.obj"});
  EXPECT_EQ(o.width, 1280);
  EXPECT_EQ(o.height, 720);
  EXPECT_EQ(o.frames, 0);
  EXPECT_EQ(o.msaa, 4);
  EXPECT_FALSE(o.core || o.wireframe || o.grid || o.stats || o.verbose || o.headless);
  EXPECT_EQ(o.output + o.texture, "");
}

TEST(ViewerOptions, AllAreRead) {
  const ParsedOptions parsed = parse(
      {"a.obj", "b.stl", "--texture", "t.png", "--output", "o.jpg", "--size", "1x16384", "--frames",
       "7", "--profile", "core", "--msaa", "0", "--wireframe", "--grid", "--stats", "--verbose"});
  ASSERT_TRUE(parsed.run) << parsed.text;
  const Options& o = parsed.options;
  EXPECT_EQ(o.files, (std::vector<std::string>{"a.obj", "b.stl"}));
  EXPECT_EQ(o.texture, "t.png");
  EXPECT_EQ(o.output, "o.jpg");
  EXPECT_EQ(o.width, 1);
  EXPECT_EQ(o.height, 16384);
  EXPECT_EQ(o.frames, 7);
  EXPECT_EQ(o.msaa, 0);
  EXPECT_TRUE(o.core && o.wireframe && o.grid && o.stats && o.verbose);
}

TEST(ViewerOptions, OutputImpliesHeadlessUnlessAWindowIsAskedFor) {
  EXPECT_TRUE(parse({"a.obj", "--output", "o.PNG"}).options.headless);
  EXPECT_FALSE(parse({"a.obj", "--output", "o.png", "--window"}).options.headless);
  EXPECT_TRUE(parse({"a.obj", "--headless"}).options.headless);
}

TEST(ViewerOptions, WrongOnesAreRefusedInOneLine) {
  const std::initializer_list<const char*> wrong[] = {
      {},
      {"a.obj", "--size", "0x10"},
      {"a.obj", "--size", "10x16385"},
      {"a.obj", "--size", "10x10x10"},
      {"a.obj", "--size", "-10x10"},
      {"a.obj", "--size", "99999999999x10"},
      {"a.obj", "--size"},
      {"a.obj", "--output", "o"},
      {"a.obj", "--output", "o.bmp"},
      {"a.obj", "--frames", "-1"},
      {"a.obj", "--frames", "many"},
      {"a.obj", "--msaa", "16"},
      {"a.obj", "--profile", "Core"},
      {"a.obj", "--headless", "--window"},
      {"a.obj", "--unknown"},
  };
  for (const auto& words : wrong) {
    const ParsedOptions parsed = parse(words);
    EXPECT_FALSE(parsed.run);
    EXPECT_EQ(parsed.exit_code, EXIT_WRONG_USAGE);
    EXPECT_NE(parsed.text, "");
    EXPECT_EQ(parsed.text.find('\n'), std::string::npos) << parsed.text;
  }
}

TEST(ViewerOptions, HelpAndVersionEndWithoutAFile) {
  for (const char* flag : {"--help", "-h", "--version"}) {
    const ParsedOptions parsed = parse({flag});
    EXPECT_FALSE(parsed.run);
    EXPECT_EQ(parsed.exit_code, EXIT_DONE);
    EXPECT_EQ(parsed.text.back(), '\n');
  }
}

TEST(HasExtension, ComparesInAnyCase) {
  EXPECT_TRUE(has_extension("a.PNG", ".png"));
  EXPECT_TRUE(has_extension(".png", ".png"));
  EXPECT_FALSE(has_extension("png", ".png"));
  EXPECT_FALSE(has_extension("a.png.txt", ".png"));
  EXPECT_FALSE(has_extension("", ".png"));
}

}  // namespace
}  // namespace viewer
