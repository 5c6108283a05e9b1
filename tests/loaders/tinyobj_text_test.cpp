#include "loaders/tinyobj_text.h"

#include <gtest/gtest.h>

#include <iterator>
#include <string>
#include <string_view>

namespace orv::detail {
namespace {

std::string polygon(int num_corners, const std::string& first = "1") {
  std::string text = "f " + first;
  for (int i = 2; i <= num_corners; ++i) text += " " + std::to_string(i);
  return text;
}

std::size_t count(std::string_view text, std::string_view part) {
  std::size_t found = 0;
  for (std::size_t at = text.find(part); at != text.npos; at = text.find(part, at + 1)) ++found;
  return found;
}

TEST(TinyobjText, OrdinaryFilesStayAsTheyAre) {
  using namespace std::string_literals;
  for (const std::string& text :
       {""s, "\n"s, "f"s, "f "s, "t"s, "v 1 2 3\r\nf 1 2 3\r\n\r\nusemtl t x\ntx 1\ng t 1"s,
        "f 1 2\0 3\n"s, polygon(2000) + "\n" + polygon(16)}) {
    EXPECT_EQ(bound_obj_text(text), text);
  }
}

TEST(TinyobjText, TagsAndWeightsBecomeComments) {
  EXPECT_EQ(bound_obj_text("t x 9/0/0 1\n\t t\ty\rv 1 2 3\nt z"),
            "# x 9/0/0 1\n\t #\ty\rv 1 2 3\n# z");
  EXPECT_EQ(bound_obj_text("vw 1 2e40\n vw 1\nvwx 1\nvw"), "#w 1 2e40\n #w 1\nvwx 1\nvw");
}

TEST(TinyobjText, TooLargePolygonsBecomeFans) {
  const std::string text =
      bound_obj_text("v 1 2 3\r\n  " + polygon(2100, "1/2/3") + " \r\nf 1 2 3\n");
  EXPECT_EQ(text.rfind("v 1 2 3\r\n  f 1/2/3 2 3\nf 1/2/3 3 4\nf 1/2/3 4 5\n", 0), 0u);
  const std::string_view end = "\nf 1/2/3 2099 2100\n\r\nf 1 2 3\n";
  EXPECT_EQ(text.substr(text.size() - end.size()), end);
  EXPECT_EQ(count(text, "f 1/2/3 "), 2098u);
}

TEST(TinyobjText, AllPolygonsShareTheEffort) {
  std::string text;
  for (int i = 0; i < 20; ++i) text += polygon(1000) + "\n" + polygon(16) + "\n";
  const std::string bound = bound_obj_text(text);
  // Eight are left; the small ones are never counted.
  EXPECT_EQ(count(bound, polygon(1000)), 8u);
  EXPECT_EQ(count(bound, polygon(16) + "\n"), 20u);
  EXPECT_EQ(count(bound, "\nf 1 999 1000\n"), 12u);
}

TEST(TinyobjText, PolygonsWithoutEndBecomeFans) {
  // The cube of the number of corners is beyond 64 bits.
  std::string text = "f 1";
  for (int i = 0; i < 3 << 20; ++i) text += " 2";
  EXPECT_EQ(count(bound_obj_text(text), "f 1 2 2\n"), (3u << 20) - 1);
}

TEST(TinyobjText, FansOfNoIndexAreLeftOut) {
  const std::string zeros(65, '0');
  EXPECT_EQ(bound_obj_text("v 1 2 3\n" + polygon(2100, zeros) + "\nv 4 5 6"), "v 1 2 3\n\nv 4 5 6");
}

TEST(TinyobjText, ZeroBytesEndTheStatement) {
  std::string text = polygon(2100) + " 2101";
  text[text.find(" 2100")] = '\0';
  const std::string bound = bound_obj_text(text);
  EXPECT_EQ(count(bound, "f 1 "), 2097u);
  EXPECT_EQ(count(bound, "2100"), 0u);
}

TEST(TinyobjText, BufferGivesTheSameTextPartByPart) {
  std::string text = "\r\n";
  for (int i = 0; i < 30; ++i) {
    text += polygon(900 + i) + (i % 3 == 0 ? "\r\n" : "\n") + "t x 1\rvw 1\n";
    for (int k = 0; k < 900; ++k) text += "v 1 2 " + std::to_string(k) + (k % 7 == 0 ? "\r" : "\n");
  }
  text += polygon(2100, std::string(65, '0'));  // becomes no text
  for (const std::string& whole :
       {text, text + "\n" + polygon(30000), polygon(20), std::string()}) {
    BoundObjBuffer buffer(whole);
    const std::string given{std::istreambuf_iterator<char>(&buffer), {}};
    EXPECT_TRUE(given == bound_obj_text(whole));
  }
}

TEST(TinyobjText, LongLinesOfLibrariesBecomeComments) {
  const std::string usual = "newmtl " + std::string(1017, 'x') + "\n";
  const std::string longer = "newmtl " + std::string(1018, 'x');
  std::string text = usual + longer + "\r\n" + longer;
  bound_mtl_text(text);
  std::string comment = longer;
  comment[0] = '#';
  EXPECT_EQ(text, usual + comment + "\r\n" + comment);
}

}  // namespace
}  // namespace orv::detail
