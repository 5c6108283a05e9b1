#include "text/charset.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>

#include "image/test_files.h"

namespace orv {
namespace {

using detail::Charset;
using detail::CharsetChar;

std::unique_ptr<Charset> read(const std::string& xml) {
  const char* fault = nullptr;
  std::unique_ptr<Charset> charset = detail::read_charset(xml.c_str(), &fault);
  EXPECT_EQ(charset == nullptr, fault != nullptr);
  return charset;
}

std::string text_of(const std::string& path) {
  const test::Bytes bytes = test::read_bytes(path);
  return {bytes.begin(), bytes.end()};
}

int count_chars(const Charset& charset) {
  int count = 0;
  for (const CharsetChar& row : charset.chars) count += row.xadvance != 0;
  return count;
}

/// What is known of a real file.
struct Facts {
  const char* name;
  int chars;  ///< with an advance
  int negative_offsets;
  const char* page;
  int line_height, base, scale_w, scale_h;
  int padding, spacing;
  CharsetChar upper_a;
};
constexpr unsigned short MINUS_ONE = 65535;
constexpr Facts FACTS[] = {
    {"font.fnt", 5, 0, "font.png", 27, 18, 64, 64, 2, 0, {2, 2, 19, 20, 0, 0, 16, 0}},
    {"medium.xml",
     191,
     30,
     "sheet_0.png",
     32,
     26,
     256,
     256,
     0,
     1,
     {230, 74, 19, 20, MINUS_ONE, 6, 18, 0}},
    {"desyrel.xml",
     95,
     7 /* and one of -0 */,
     "desyrel.png",
     87,
     61,
     512,
     512,
     0,
     1,
     {403, 76, 54, 58, 1, 13, 48, 0}},
};

void expect_facts(const std::string& path, const Facts& facts) {
  const std::unique_ptr<Charset> charset = read(text_of(path));
  ASSERT_NE(charset, nullptr) << path;
  EXPECT_EQ(count_chars(*charset), facts.chars) << path;
  int negative = 0;
  for (const CharsetChar& row : charset->chars) {
    negative += row.xoffset >= 32768;
    negative += row.yoffset >= 32768;
  }
  EXPECT_EQ(negative, facts.negative_offsets) << path;
  EXPECT_STREQ(charset->image_filename, facts.page);
  EXPECT_EQ(charset->line_height, facts.line_height);
  EXPECT_EQ(charset->base, facts.base);
  EXPECT_EQ(charset->scale_w, facts.scale_w);
  EXPECT_EQ(charset->scale_h, facts.scale_h);
  for (const int value : charset->padding) EXPECT_EQ(value, facts.padding);
  for (const int value : charset->spacing) EXPECT_EQ(value, facts.spacing);
  EXPECT_EQ(std::memcmp(&charset->chars[std::size_t{'A'}], &facts.upper_a, sizeof(CharsetChar)), 0)
      << path;
}

constexpr const char* SMALL =
    "<?xml version=\"1.0\"?><font><info padding=\"1,2,3,4\" spacing=\"5,6\"/>"
    "<common lineHeight=\"20\" base=\"15\" scaleW=\"64\" scaleH=\"32\"/>"
    "<pages><page id=\"0\" file=\"page.png\"/></pages>"
    "<chars><char id=\"65\" x=\"1\" y=\"2\" width=\"3\" height=\"4\" xoffset=\"-1\" yoffset=\"-2\""
    " xadvance=\"7\" page=\"3\"/></chars></font>";

TEST(Charset, SmallRealFilesReadAsTheyShould) {
  expect_facts(test::data_path("bmfont/font.fnt"), FACTS[0]);
  expect_facts(test::data_path("bmfont/medium.xml"), FACTS[1]);
}

TEST(Charset, AllRealFilesReadAsTheyShould) {
  if (test::extra_path("").empty()) GTEST_SKIP() << "no folder of real files";
  for (const Facts& facts : FACTS) {
    expect_facts(test::extra_path(std::string("bmfont/") + facts.name), facts);
  }
}

TEST(Charset, AllFieldsAreRead) {
  const std::unique_ptr<Charset> charset = read(SMALL);
  ASSERT_NE(charset, nullptr);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(charset->padding[i], i + 1);
  EXPECT_EQ(charset->spacing[0], 5);
  EXPECT_EQ(charset->spacing[1], 6);
  EXPECT_EQ(charset->line_height, 20);
  EXPECT_EQ(charset->base, 15);
  EXPECT_EQ(charset->scale_w, 64);
  EXPECT_EQ(charset->scale_h, 32);
  EXPECT_STREQ(charset->image_filename, "page.png");
  const CharsetChar& row = charset->chars[65];
  EXPECT_EQ(row.x, 1);
  EXPECT_EQ(row.y, 2);
  EXPECT_EQ(row.width, 3);
  EXPECT_EQ(row.height, 4);
  EXPECT_EQ(row.xoffset, 65535) << "negative offsets do not survive";
  EXPECT_EQ(row.yoffset, 65534);
  EXPECT_EQ(row.xadvance, 7);
  EXPECT_EQ(row.page, 3);
}

TEST(Charset, IdsBeyondTheTableAreSkipped) {
  for (const char* id : {"256", "300", "-1", "-256", "99999999999999999999", "4294967361"}) {
    const std::unique_ptr<Charset> charset = read("<font><chars><char id=\"" + std::string(id) +
                                                  "\" x=\"9\" xadvance=\"9\"/></chars></font>");
    ASSERT_NE(charset, nullptr);
    EXPECT_EQ(count_chars(*charset), 0) << id;
  }
}

TEST(Charset, MissingIdWritesTheFirstRow) {
  const std::unique_ptr<Charset> charset =
      read("<font><chars><char xadvance=\"9\"/><other xadvance=\"5\"/></chars></font>");
  ASSERT_NE(charset, nullptr);
  EXPECT_EQ(charset->chars[0].xadvance, 9);
}

TEST(Charset, MissingAttributesLeaveTheRow) {
  const std::unique_ptr<Charset> charset = read(
      "<font><chars><char id=\"1\" x=\"4\" y=\"5\"/><char id=\"1\" x=\"6\" y=\"none\"/></chars>"
      "</font>");
  ASSERT_NE(charset, nullptr);
  EXPECT_EQ(charset->chars[1].x, 6);
  EXPECT_EQ(charset->chars[1].y, 5) << "no number";
}

TEST(Charset, ListsMayBeCutShort) {
  const auto padding = [](const char* text) {
    const auto charset = read("<font><info padding=\"" + std::string(text) + "\"/></font>");
    std::string all;
    for (const int value : charset->padding) all += std::to_string(value) + " ";
    return all;
  };
  EXPECT_EQ(padding("1,2,3,4"), "1 2 3 4 ");
  EXPECT_EQ(padding("1, 2, -3, 4"), "1 2 -3 4 ");
  EXPECT_EQ(padding("1,2"), "1 2 0 0 ");
  EXPECT_EQ(padding("1 ,2"), "1 0 0 0 ");
  EXPECT_EQ(padding("1,,3"), "1 0 0 0 ");
  EXPECT_EQ(padding("x"), "0 0 0 0 ");
  EXPECT_EQ(padding(""), "0 0 0 0 ");
}

TEST(Charset, OnlyTheFirstPageCounts) {
  EXPECT_STREQ(read("<font><pages><page id=\"0\" file=\"a\"/><page id=\"1\" file=\"b\"/></pages>"
                    "<pages><page id=\"2\" file=\"c\"/></pages></font>")
                   ->image_filename,
               "a");
  EXPECT_STREQ(read("<font><pages><leaf/><page file=\"b\"/></pages></font>")->image_filename, "");
  EXPECT_STREQ(
      read("<font><pages><page/></pages><pages><page file=\"b\"/></pages></font>")->image_filename,
      "b");
}

TEST(Charset, LongNamesAreCut) {
  const std::string name(5000, 'n');
  const auto charset = read("<font><pages><page file=\"" + name + "\"/></pages></font>");
  EXPECT_EQ(std::strlen(charset->image_filename), 1023u);
}

TEST(Charset, AllTopLevelElementsAreVisited) {
  const auto charset =
      read("<!-- two --><a><common base=\"1\"/></a><b><common lineHeight=\"2\"/></b>");
  ASSERT_NE(charset, nullptr);
  EXPECT_EQ(charset->base, 1);
  EXPECT_EQ(charset->line_height, 2);
}

TEST(Charset, WhatIsNoXmlIsRefused) {
  for (const char* text : {"", "   ", "info face=\"Arial\" size=32", "<font", "<font></other>",
                           "<!-- nothing -->", "<font><chars></font>"}) {
    EXPECT_EQ(read(text), nullptr) << text;
  }
}

TEST(Charset, DeepNestingEnds) {
  std::string text;
  for (int i = 0; i < 100000; ++i) text += "<a>";
  EXPECT_EQ(read(text), nullptr);
}

TEST(Charset, EveryTruncationIsRefusedOrSane) {
  const std::string good = text_of(test::data_path("bmfont/font.fnt"));
  ASSERT_NE(read(good), nullptr);
  // Ends with "</font>".
  for (std::size_t size = 0; size + 7 < good.size(); ++size) {
    EXPECT_EQ(read(good.substr(0, size)), nullptr) << size;
  }
}

}  // namespace
}  // namespace orv
