#include "loaders/obj_parser.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <climits>
#include <map>
#include <string>
#include <utility>

namespace orv::detail {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class ObjParserTest : public testing::Test {
 protected:
  void parse(std::string_view text) {
    parse_obj(
        text,
        [this](const std::string& name, std::vector<unsigned char>& out) {
          asked.push_back(name);
          const auto found = libraries.find(name);
          if (found == libraries.end()) return false;
          out.assign(found->second.begin(), found->second.end());
          return true;
        },
        document);
  }
  /// The corners of all polygons as "p/t/n", polygons set apart by " | ".
  std::string corners() const {
    std::string text;
    std::size_t next = 0;
    for (std::uint32_t end : document.polygon_ends) {
      if (next > 0) text += " |";
      for (; next < end; ++next) {
        const ObjCorner& corner = document.corners[next];
        text += (text.empty() ? "" : " ") + std::to_string(corner.position) + "/" +
                std::to_string(corner.texcoord) + "/" + std::to_string(corner.normal);
      }
    }
    return text;
  }
  std::vector<std::pair<std::string, std::uint64_t>> groups() {
    std::vector<std::pair<std::string, std::uint64_t>> list;
    for (const ObjGroup& group : document.groups)
      list.emplace_back(group.name, group.num_triangles);
    return list;
  }
  std::vector<std::pair<std::string, unsigned int>> materials() {
    std::vector<std::pair<std::string, unsigned int>> list;
    for (const ObjMaterial& m : document.materials) list.emplace_back(m.name, m.num_faces);
    return list;
  }

  std::map<std::string, std::string> libraries;
  std::vector<std::string> asked;
  ObjDocument document;
};

using Count = std::pair<std::string, std::uint64_t>;

TEST_F(ObjParserTest, ReadsVertices) {
  parse("v 1 -2.5 3e1\nvn 0 1 0\nvt 0.5 0.25 9\nv +1 .5 5.\n");
  EXPECT_THAT(document.positions, ElementsAre(vec3(1, -2.5f, 30), vec3(1, 0.5f, 5)));
  EXPECT_THAT(document.normals, ElementsAre(vec3(0, 1, 0)));
  EXPECT_THAT(document.texcoords, ElementsAre(vec2(0.5f, 0.25f)));
}

TEST_F(ObjParserTest, MissingNumbersOfAVertexAreZero) {
  parse("v 1 2\nv 3\nvn\nvt x\n");
  EXPECT_THAT(document.positions, ElementsAre(vec3(1, 2, 0), vec3(3, 0, 0)));
  EXPECT_THAT(document.normals, ElementsAre(vec3()));
  EXPECT_THAT(document.texcoords, ElementsAre(vec2()));
}

TEST_F(ObjParserTest, NumbersMayStandOnOtherLines) {
  parse("v 1\n2\n\n3 v 4 5 6");
  EXPECT_THAT(document.positions, ElementsAre(vec3(1, 2, 3), vec3(4, 5, 6)));
}

TEST_F(ObjParserTest, OtherVWordsReadNothing) {
  // "0.5" begins with no known letter, so that the rest of its line goes.
  parse("vp 0.5 v 9 9 9\nvp v 1 2 3\n");
  EXPECT_THAT(document.positions, ElementsAre(vec3(1, 2, 3)));
}

TEST_F(ObjParserTest, LayoutsOfCorners) {
  parse("f 1 2 3\nf 1/2 3/4 5/6\nf 1//2 3//4 5//6\nf 1/2/3 4/5/6 7/8/9\n");
  EXPECT_EQ(corners(),
            "1/0/0 2/0/0 3/0/0 | 1/2/0 3/4/0 5/6/0 | 1/0/2 3/0/4 5/0/6 | 1/2/3 4/5/6 7/8/9");
}

TEST_F(ObjParserTest, PolygonsAreOfAnySize) {
  parse("f 1 2 3 4 5 6\n");
  EXPECT_EQ(corners(), "1/0/0 2/0/0 3/0/0 4/0/0 5/0/0 6/0/0");
  EXPECT_THAT(groups(), ElementsAre(Count("obj_default_group", 4)));
}

TEST_F(ObjParserTest, LineEndsMeanNothingToAFan) {
  parse("f 1 2\n3\n4\nf 5 6 7");
  EXPECT_EQ(corners(), "1/0/0 2/0/0 3/0/0 4/0/0 | 5/0/0 6/0/0 7/0/0");
}

TEST_F(ObjParserTest, SlashesDecideBeforeNumbers) {
  // The double slash makes this position and normal, and the scan stops behind the first slash.
  parse("f 1/2//3 4//5 6//7\n");
  EXPECT_EQ(corners(), "1/0/0 4/0/5 6/0/7");
}

TEST_F(ObjParserTest, LooseFirstCornersTakeTheLayoutThatMatches) {
  parse("f 1/2/ 3/4 5/6\nf 7x 8 9\nf 1/ 2 3\n");
  EXPECT_EQ(corners(), "1/2/0 3/4/0 5/6/0 | 7/0/0 8/0/0 9/0/0 | 1/0/0 2/0/0 3/0/0");
}

TEST_F(ObjParserTest, LaterCornersKeepWhatTheirScanLeaves) {
  // The normal is missing: the one before stays.
  parse("f 1/2/3 4/5 6/7/8\nv 1 2 3\n");
  EXPECT_EQ(corners(), "1/2/3 4/5/3 6/7/8");
  EXPECT_EQ(document.positions.size(), 1u);
}

TEST_F(ObjParserTest, ShortFacesRepeatTheLastCorner) {
  parse("f 1 2\nv 1 2 3\nf 4\n");
  EXPECT_EQ(corners(), "1/0/0 2/0/0 2/0/0 | 4/0/0 4/0/0 4/0/0");
  EXPECT_EQ(document.positions.size(), 1u);
}

TEST_F(ObjParserTest, AFanLosesWhatMatchedOfACorner) {
  // "5/" is used up by the scan for a further corner; "x" begins a line that is passed over.
  parse("f 1/1 2/2 3/3 5/x v 9 9 9\nv 1 2 3\n");
  EXPECT_EQ(corners(), "1/1/0 2/2/0 3/3/0");
  EXPECT_THAT(document.positions, ElementsAre(vec3(1, 2, 3)));
  parse("f 1 2 3\n-v 7 8 9\n");
  EXPECT_EQ(document.positions.back(), vec3(7, 8, 9));
}

TEST_F(ObjParserTest, AFaceWithoutNumbersCountsAllTheSame) {
  parse("f x v 1 2 3\nf");
  EXPECT_EQ(corners(), "");
  EXPECT_THAT(groups(), ElementsAre(Count("obj_default_group", 0)));
  EXPECT_THAT(materials(), ElementsAre(std::pair("ORV_obj_default_material", 2u)));
  EXPECT_EQ(document.positions.size(), 1u);
}

TEST_F(ObjParserTest, AnyWordThatBeginsWithFIsAFace) {
  parse("face 1 2 3\n");
  EXPECT_EQ(corners(), "1/0/0 2/0/0 3/0/0");
}

TEST_F(ObjParserTest, HugeIndicesAreClamped) {
  parse("f 99999999999 -99999999999 4294967297\n");
  EXPECT_EQ(document.corners[0].position, INT_MAX);
  EXPECT_EQ(document.corners[1].position, INT_MIN);
  EXPECT_EQ(document.corners[2].position, INT_MAX);
}

TEST_F(ObjParserTest, CountsAFaceStatementOnceOnItsMaterial) {
  parse("usemtl red\nf 1 2 3 4 5\nf 1 2 3\n");
  EXPECT_THAT(materials(),
              ElementsAre(std::pair("ORV_obj_default_material", 0u), std::pair("red", 2u)));
}

TEST_F(ObjParserTest, GroupNamesKeepBlanksInside) {
  parse("g  left hand \t x \r\nf 1 2 3\n");
  EXPECT_THAT(groups(), ElementsAre(Count("left hand \t x ", 1)));
}

TEST_F(ObjParserTest, NamelessGroupsAreNumbered) {
  parse("g\nf 1 2 3\ng a\nf 1 2 3\ng \r\nf 1 2 3\n");
  EXPECT_THAT(groups(),
              ElementsAre(Count("obj_group_0", 1), Count("a", 1), Count("obj_group_2", 1)));
}

TEST_F(ObjParserTest, AGroupOfAKnownNameGoesOn) {
  parse("g a\nf 1 2 3\ng b\nf 1 2 3\ng a\nf 1 2 3 4\n");
  EXPECT_THAT(groups(), ElementsAre(Count("a", 3), Count("b", 1)));
  EXPECT_EQ(document.groups[0].runs.size(), 2u);
}

TEST_F(ObjParserTest, EachUsemtlOpensAGroup) {
  parse("g a\nf 1 2 3\nusemtl red\nf 1 2 3\nf 1 2 3\nusemtl red\nf 1 2 3\n");
  EXPECT_THAT(groups(),
              ElementsAre(Count("a", 1), Count("obj_group_red_1", 2), Count("obj_group_red_2", 1)));
  EXPECT_THAT(document.groups[1].materials, ElementsAre(1u));
}

TEST_F(ObjParserTest, AGroupStatementKeepsTheMaterial) {
  parse("usemtl red\ng a\nf 1 2 3\n");
  EXPECT_THAT(materials(),
              ElementsAre(std::pair("ORV_obj_default_material", 0u), std::pair("red", 1u)));
  EXPECT_THAT(document.groups[1].materials, IsEmpty());
}

TEST_F(ObjParserTest, UsemtlIsKnownByItsSecondToSixthLetter) {
  parse("usemtlish red\nusemt blue\nuse green\nu\n");
  EXPECT_THAT(materials(),
              ElementsAre(std::pair("ORV_obj_default_material", 0u), std::pair("red", 0u)));
}

TEST_F(ObjParserTest, OtherUWordsReadNothingMore) {
  parse("usemap v 1 2 3\n");
  EXPECT_THAT(document.positions, ElementsAre(vec3(1, 2, 3)));
}

TEST_F(ObjParserTest, UsemtlWithoutANameDoesNothing) {
  parse("usemtl \r\nusemtl\nusemtl");
  EXPECT_THAT(groups(), IsEmpty());
  parse("g\n");
  EXPECT_THAT(groups(), ElementsAre(Count("obj_group_0", 0)));
}

TEST_F(ObjParserTest, UndefinedMaterialsHaveTheirDefaults) {
  parse("usemtl red\n");
  for (const ObjMaterial& material : document.materials) {
    EXPECT_EQ(material.ambient, vec4(0.6f, 0.6f, 0.6f, 1.0f));
    EXPECT_EQ(material.diffuse, vec4(0.8f, 0.8f, 0.8f, 1.0f));
    EXPECT_EQ(material.specular, vec4(0.6f, 0.6f, 0.6f, 1.0f));
    EXPECT_EQ(material.exponent, 24.0f);
    EXPECT_EQ(material.opacity, 1.0f);
  }
}

TEST_F(ObjParserTest, AnyWordThatBeginsWithMNamesALibrary) {
  libraries["1"] = "newmtl blue\n";
  parse("mg 1 2\nmtllib  a.mtl b.mtl\nm\nv 1 2 3\n");
  EXPECT_THAT(asked, ElementsAre("1", "a.mtl"));
  EXPECT_EQ(document.materials[1].name, "blue");
  EXPECT_EQ(document.positions.size(), 1u);
}

TEST_F(ObjParserTest, LibraryNamesAreCutAt259Characters) {
  parse("mtllib " + std::string(300, 'n') + "\n");
  EXPECT_THAT(asked, ElementsAre(std::string(259, 'n')));
}

TEST_F(ObjParserTest, OtherStatementsArePassedOver) {
  parse("# v 1 1 1\no f 1 2 3\ns 1\n1 f 1 2 3\n#\nv 1 2 3");
  EXPECT_EQ(corners(), "");
  EXPECT_THAT(document.positions, ElementsAre(vec3(1, 2, 3)));
}

TEST_F(ObjParserTest, NamesAreCutAndComparedOver127Characters) {
  const std::string name(127, 'x');
  parse("g " + name + "a\nf 1 2 3\ng " + name + "b\nf 1 2 3\nusemtl " + name + "c\n");
  EXPECT_THAT(groups(),
              ElementsAre(Count(name, 2), Count("obj_group_" + std::string(117, 'x'), 0)));
  EXPECT_EQ(document.materials[1].name, name);
}

TEST_F(ObjParserTest, AGroupNameEndsWith511Characters) {
  parse("g " + std::string(510, ' ') + "v 1 2 3\n");
  EXPECT_THAT(groups(), ElementsAre(Count("obj_group_0", 0)));
  EXPECT_THAT(document.positions, ElementsAre(vec3(1, 2, 3)));
}

TEST_F(ObjParserTest, ZeroBytesEndNames) {
  using namespace std::string_literals;
  parse("g a\0b\nf 1\0//2 3 4\nv\0x 1 2 3\n"s);
  EXPECT_THAT(groups(), ElementsAre(Count("a", 1)));
  EXPECT_EQ(corners(), "1/0/0 3/0/0 4/0/0");
  EXPECT_EQ(document.positions.size(), 1u);
}

TEST_F(ObjParserTest, RepeatedLibrariesComeToAnEnd) {
  libraries["a"] = std::string(1 << 20, '#') + "\n";
  std::string text;
  for (int i = 0; i < 1000; ++i) text += "m a\n";
  parse(text);
  EXPECT_LT(asked.size(), 100u);
  EXPECT_GE(asked.size(), 60u);
}

TEST_F(ObjParserTest, EveryTruncationIsRead) {
  const std::string text =
      "mtllib a.mtl\nv 1 2 3\nv 4.5e-1 5 6\nvt 0 1\nvn 0 0 1\ng group one\nusemtl red\n"
      "f 1/1/1 2/1/1 3/1/1 1/1/1\nf 1//1 2//1 3//1\n# end\n";
  libraries["a.mtl"] = "newmtl red\nKd 1 1 1\n";
  for (std::size_t size = 0; size <= text.size(); ++size) {
    const std::vector<char> part(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(size));
    document = ObjDocument();
    parse({part.data(), part.size()});
    EXPECT_LE(document.corners.size(), 7u);
    EXPECT_GE(document.materials.size(), 1u);
  }
}

}  // namespace
}  // namespace orv::detail
