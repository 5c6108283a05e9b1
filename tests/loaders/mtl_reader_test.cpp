#include "loaders/mtl_reader.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace orv::detail {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class MtlReaderTest : public testing::Test {
 protected:
  ObjMaterial& read(std::string_view text) {
    read_mtl(text, materials);
    EXPECT_GT(materials.size(), 0u);
    return materials[0];
  }
  NamedList<ObjMaterial> materials;
};

TEST_F(MtlReaderTest, NewMaterialHasItsDefaults) {
  const ObjMaterial& material = read("newmtl red\n");
  EXPECT_EQ(material.name, "red");
  EXPECT_EQ(material.ambient, vec4(0.4f, 0.4f, 0.4f, 1.0f));
  EXPECT_EQ(material.diffuse, vec4(0.7f, 0.7f, 0.8f, 1.0f));
  EXPECT_EQ(material.specular, vec4(0.2f, 0.2f, 0.2f, 1.0f));
  EXPECT_EQ(material.exponent, 24.0f);
  EXPECT_EQ(material.opacity, 1.0f);
}

TEST_F(MtlReaderTest, ReadsAllValues) {
  const ObjMaterial& material = read(
      "# a comment\n\r\nnewmtl red\nillum 2\nKa 0.1 0.2 0.3\n\tKd 0.4 0.5 0.6\nKs 0.7 0.8 0.9\n"
      "Ns 96\nd 0.5\nmap_Kd a b.png\r\n");
  EXPECT_EQ(material.ambient, vec4(0.1f, 0.2f, 0.3f, 1.0f));
  EXPECT_EQ(material.diffuse, vec4(0.4f, 0.5f, 0.6f, 1.0f));
  EXPECT_EQ(material.specular, vec4(0.7f, 0.8f, 0.9f, 1.0f));
  EXPECT_EQ(material.exponent, 96.0f);
  EXPECT_EQ(material.opacity, 0.5f);
  EXPECT_THAT(material.maps, ElementsAre("a b.png"));
}

TEST_F(MtlReaderTest, HighlightsCountOnlyBehindIllum2) {
  EXPECT_EQ(read("newmtl a\nKs 1 1 1\nillum 2\n").specular, vec4(0.2f, 0.2f, 0.2f, 1.0f));
  EXPECT_EQ(read("newmtl a\nillum 1\nKs 1 1 1\n").specular, vec4(0.2f, 0.2f, 0.2f, 1.0f));
  EXPECT_EQ(read("newmtl a\nillum 3\nKs 1 1 1\n").specular, vec4(0.2f, 0.2f, 0.2f, 1.0f));
  EXPECT_EQ(read("newmtl a\nillum 2\nKs 1 1 1\n").specular, vec4(1.0f, 1.0f, 1.0f, 1.0f));
  EXPECT_EQ(read("newmtl b\nillum 2\nnewmtl a\nKs 1 1 1\n").specular, vec4(0.2f, 0.2f, 0.2f));
}

TEST_F(MtlReaderTest, TrIsTheOpacityAsItStands) {
  EXPECT_EQ(read("newmtl a\nTr 0.25\n").opacity, 0.25f);
  EXPECT_EQ(read("newmtl a\nd 0.75\nTr 0.25\n").opacity, 0.25f);
}

TEST_F(MtlReaderTest, KeywordsAreFoundAnywhereInTheirLine) {
  EXPECT_EQ(read("newmtl a\nmap_Ka 1 2 3\n").ambient, vec4(1.0f, 2.0f, 3.0f, 1.0f));
  EXPECT_EQ(read("newmtl a\nmap_Ka lenna.png\n").ambient, vec4(0.4f, 0.4f, 0.4f, 1.0f));
  EXPECT_EQ(read("newmtl a\nmap_d 0.5\n").opacity, 0.5f);
  EXPECT_EQ(read("newmtl a\nmap_d alpha.png\n").opacity, 1.0f);
  EXPECT_EQ(read("newmtl a\nmap_Ns 5\n").exponent, 5.0f);
  EXPECT_EQ(read("newmtl a\nsharpened 0.5\n").opacity, 0.5f);
}

TEST_F(MtlReaderTest, EarlierKeywordsOfTheOrderWin) {
  // "Kd" is looked for before "Ka".
  const ObjMaterial& material = read("newmtl a\nKa 1 1 Kd\n");
  EXPECT_EQ(material.ambient, vec4(0.4f, 0.4f, 0.4f, 1.0f));
  EXPECT_EQ(material.diffuse, vec4(1.0f, 1.0f, 0.8f, 1.0f));
}

TEST_F(MtlReaderTest, MissingNumbersLeaveTheirValues) {
  EXPECT_EQ(read("newmtl a\nKd 0.5\n").diffuse, vec4(0.5f, 0.7f, 0.8f, 1.0f));
  EXPECT_EQ(read("newmtl a\nNs\nd \n").exponent, 24.0f);
}

TEST_F(MtlReaderTest, MapOnTheLastLineWithoutLineEndIsEmpty) {
  EXPECT_THAT(read("newmtl a\nmap_Kd a.png").maps, IsEmpty());
  EXPECT_THAT(read("newmtl a\nmap_Kd a.png\n").maps, ElementsAre("a.png"));
  EXPECT_THAT(read("newmtl a\nmap_Kd a.png\r").maps, IsEmpty());
}

TEST_F(MtlReaderTest, KeepsFourMaps) {
  EXPECT_THAT(read("newmtl a\nmap_Kd 1\nmap_Kd 2\nmap_Kd 3\nmap_Kd 4\nmap_Kd 5\nmap_Kd 6\n").maps,
              ElementsAre("1", "2", "3", "4"));
}

TEST_F(MtlReaderTest, NewmtlOfAKnownNameResetsIt) {
  const ObjMaterial& material =
      read("newmtl a\nKd 1 1 1\nmap_Kd 1\nnewmtl b\nnewmtl a\nmap_Kd 2\n");
  EXPECT_EQ(materials.size(), 2u);
  EXPECT_EQ(material.diffuse, vec4(0.7f, 0.7f, 0.8f, 1.0f));
  EXPECT_THAT(material.maps, ElementsAre("2"));
}

TEST_F(MtlReaderTest, ValuesBeforeTheFirstMaterialAreIgnored) {
  read_mtl("Kd 1 1 1\nmap_Kd a.png\n", materials);
  EXPECT_EQ(materials.size(), 0u);
}

TEST_F(MtlReaderTest, NamesKeepBlanksAndAreCut) {
  EXPECT_EQ(read("newmtl a b \r\n").name, "a b ");
  read_mtl("newmtl " + std::string(200, 'x') + "\n", materials);
  EXPECT_EQ(materials[1].name, std::string(127, 'x'));
}

TEST_F(MtlReaderTest, NameBehindTheEndOfTheLineIsEmpty) {
  for (const char* text : {"newmtl", "newmtl\n", "newmtl \n"}) {
    NamedList<ObjMaterial> list;
    read_mtl(text, list);
    ASSERT_EQ(list.size(), 1u) << text;
    EXPECT_EQ(list[0].name, "");
  }
}

TEST_F(MtlReaderTest, LongLinesAreCutAndTheRestIsANewLine) {
  // 255 characters of a comment; what follows counts.
  const std::string comment = "#" + std::string(254, '-');
  EXPECT_EQ(read("newmtl a\n" + comment + "Kd 1 1 1\n").diffuse, vec4(1.0f, 1.0f, 1.0f, 1.0f));
  EXPECT_EQ(read("newmtl a\n" + comment.substr(1) + "Kd 1 1 1\n").diffuse,
            vec4(0.7f, 0.7f, 0.8f, 1.0f));
}

TEST_F(MtlReaderTest, MapNamesEndWithTheirCutLine) {
  const std::string name(400, 'x');
  const ObjMaterial& material = read("newmtl a\nmap_Kd " + name + "\n");
  EXPECT_THAT(material.maps, ElementsAre(std::string(255 - 7, 'x')));
}

TEST_F(MtlReaderTest, EveryTruncationIsRead) {
  const std::string text =
      "newmtl a\nillum 2\nKd 0.1 0.2 0.3\nKs 1 1 1\nNs 1e2\nd 0.5\nmap_Kd a.png\nnewmtl b\n";
  for (std::size_t size = 0; size <= text.size(); ++size) {
    // A copy of its own size, so that a read behind it is found.
    const std::vector<char> part(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(size));
    NamedList<ObjMaterial> list;
    read_mtl({part.data(), part.size()}, list);
    EXPECT_LE(list.size(), 2u);
  }
}

}  // namespace
}  // namespace orv::detail
