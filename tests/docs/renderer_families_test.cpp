// docs/renderer.md names every operation once, under the file that implements it.
#include <gtest/gtest.h>

#include <map>
#include <regex>
#include <string>
#include <vector>

#include "docs/read_text.h"

namespace orv::test {
namespace {

struct Row {
  std::string name;
  bool reserved;
};

const std::vector<Row>& rows() {
  static const std::vector<Row> list = {
#define ORV_OP(result, name, parameters, arguments, null_result) {#name, false},
#define ORV_RESERVED_OP(result, name, arity, null_result) {#name, true},
#include <orv/render/renderer_ops.inc>
  };
  return list;
}

// Operation to file, as the paper has them. A range "`reserved_op_07` to `reserved_op_88`" counts
// for all between.
std::multimap<std::string, std::string> read_paper() {
  std::multimap<std::string, std::string> found;
  std::string text = read_text("docs/renderer.md");
  text = std::regex_replace(text, std::regex("\n  "), " ");
  const std::regex item("\n- `(src/render/[a-z_./0-9]+)`: ([^\n]*)");
  const std::regex name("`([a-zA-Z0-9_]+)`( to `reserved_op_([0-9]+)`)?");
  for (std::sregex_iterator i(text.begin(), text.end(), item), end; i != end; ++i) {
    const std::string file = (*i)[1];
    const std::string names = (*i)[2];
    for (std::sregex_iterator n(names.begin(), names.end(), name); n != end; ++n) {
      const std::string first = (*n)[1];
      found.emplace(first, file);
      if (!(*n)[3].matched) continue;
      const int last = std::stoi((*n)[3]);
      for (int k = std::stoi(first.substr(first.size() - 2)) + 1; k <= last; ++k) {
        found.emplace("reserved_op_" + std::string(k < 10 ? "0" : "") + std::to_string(k), file);
      }
    }
  }
  return found;
}

// Setters of uniforms are made by macros from the end of their name.
bool implements(const std::string& source, const std::string& name) {
  if (source.find("::" + name + "(") != std::string::npos) return true;
  for (const char* prefix : {"gpu_program_set_uniform_location_", "gpu_program_set_uniform_"}) {
    if (name.rfind(prefix, 0) != 0) continue;
    const std::string suffix = name.substr(std::string(prefix).size());
    for (const char* macro : {"ORV_UNIFORM(", "ORV_UNIFORM_ARRAY(", "ORV_UNIFORM_AT("}) {
      if (source.find(macro + suffix + ",") != std::string::npos) return true;
    }
  }
  return false;
}

TEST(RendererPaper, NamesEveryOperationOnce) {
  const auto found = read_paper();
  for (const Row& row : rows()) EXPECT_EQ(found.count(row.name), 1u) << row.name;
  EXPECT_EQ(found.size(), rows().size()) << "a name that is no operation";
}

TEST(RendererPaper, NamesFilesThatImplementTheOperations) {
  std::map<std::string, std::string> sources;
  const auto found = read_paper();
  for (const Row& row : rows()) {
    const auto entry = found.find(row.name);
    if (entry == found.end()) continue;  // told by the test above
    std::string& source = sources[entry->second];
    if (source.empty()) source = read_text(entry->second);
    ASSERT_FALSE(source.empty()) << entry->second << " does not exist";
    if (!row.reserved) {
      EXPECT_TRUE(implements(source, row.name)) << row.name << " in " << entry->second;
    }
  }
}

TEST(RendererPaper, HasTheFamiliesOfTheListInOrder) {
  const std::regex heading("\n// ---- ([^\n]*) ----");
  const std::string list = read_text("include/orv/render/renderer_ops.inc");
  const std::string paper = read_text("docs/renderer.md");
  std::size_t place = 0;
  int count = 0;
  for (std::sregex_iterator i(list.begin(), list.end(), heading), end; i != end; ++i, ++count) {
    std::string family = (*i)[1];
    family[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(family[0])));
    place = paper.find("\n## " + family + "\n", place);
    ASSERT_NE(place, std::string::npos) << family;
  }
  EXPECT_GT(count, 30);
}

TEST(RendererPaper, TellsTheNumberOfOperations) {
  const std::string paper = read_text("docs/renderer.md");
  EXPECT_NE(paper.find(std::to_string(rows().size()) + " operations in"), std::string::npos);
}

}  // namespace
}  // namespace orv::test
