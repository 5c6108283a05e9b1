// docs/guide.md quotes the programs in docs/guide as they are, and all that is new in each.
#include <gtest/gtest.h>

#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "docs/read_text.h"

namespace orv::test {
namespace {

constexpr int num_steps = 6;

std::string program(int step) {
  return read_text("docs/guide/step" + std::to_string(step) + ".cpp");
}

// The text of the guide from the heading of a step to the next heading.
std::string section(int step) {
  const std::string guide = "\n" + read_text("docs/guide.md");
  const std::size_t begin = guide.find("\n## Step " + std::to_string(step) + ":");
  if (begin == std::string::npos) return "";
  return guide.substr(begin, guide.find("\n## ", begin + 1) - begin);
}

// The fenced blocks of a language, without their fences.
std::vector<std::string> blocks(const std::string& text, const std::string& language) {
  std::vector<std::string> found;
  const std::string fence = "\n```" + language + "\n";
  for (std::size_t at = text.find(fence); at != std::string::npos; at = text.find(fence, at)) {
    at += fence.size();
    const std::size_t end = text.find("\n```", at);
    if (end == std::string::npos) break;
    found.push_back(text.substr(at, end + 1 - at));
    at = end;
  }
  return found;
}

std::vector<std::string> lines(const std::string& text) {
  std::vector<std::string> all;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) all.push_back(line);
  return all;
}

class GuideText : public testing::TestWithParam<int> {};

TEST_P(GuideText, QuotesTheProgramAsItIs) {
  const std::vector<std::string> quotes = blocks(section(GetParam()), "cpp");
  ASSERT_FALSE(quotes.empty());
  const std::string source = "\n" + program(GetParam());
  for (const std::string& quote : quotes) {
    EXPECT_NE(source.find("\n" + quote), std::string::npos) << "not in the program:\n" << quote;
  }
}

TEST_P(GuideText, QuotesAllThatIsNew) {
  std::set<std::string> known;
  for (const std::string& line : lines(program(GetParam() - 1))) known.insert(line);
  for (const std::string& quote : blocks(section(GetParam()), "cpp")) {
    for (const std::string& line : lines(quote)) known.insert(line);
  }
  for (const std::string& line : lines(program(GetParam()))) {
    EXPECT_TRUE(known.count(line)) << "new and not quoted: " << line;
  }
}

TEST_P(GuideText, QuotesShadersAsTheyAre) {
  for (const std::string& quote : blocks(section(GetParam()), "glsl")) {
    const std::string name = "docs/guide/step" + std::to_string(GetParam()) + ".glsl";
    EXPECT_NE(("\n" + read_text(name)).find("\n" + quote), std::string::npos) << name;
  }
}

INSTANTIATE_TEST_SUITE_P(Steps, GuideText, testing::Range(1, num_steps + 1),
                         [](const auto& step) { return std::to_string(step.param); });

// Hosts see the public headers alone, and the guide teaches nothing else.
TEST(GuidePrograms, IncludePublicHeadersOnly) {
  for (int step = 1; step <= num_steps; ++step) {
    ASSERT_FALSE(program(step).empty()) << step;
    for (const std::string& line : lines(program(step))) {
      if (line.rfind("#include", 0) != 0) continue;
      EXPECT_EQ(line.find('"'), std::string::npos) << line;
      if (line.find("orv/") != std::string::npos) {
        EXPECT_EQ(line, "#include <orv/orv.h>");
      }
    }
  }
}

}  // namespace
}  // namespace orv::test
