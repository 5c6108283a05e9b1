#include "loaders/tinyobj_file.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "support/temp_folder.h"

namespace orv::detail {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

class TinyobjFileTest : public testing::Test {
 protected:
  bool read(const std::string& text) {
    return file.read(folder.write("a.obj", text), folder.path());
  }

  test::TempFolder folder;
  TinyobjFile file;
};

TEST_F(TinyobjFileTest, ReadsShapesAndMaterials) {
  folder.write("a.mtl", "newmtl red\nKd 1 0 0\n");
  ASSERT_TRUE(read("mtllib a.mtl\nv 0 0 0\nv 1 0 0\nv 0 1 0\nusemtl red\nf 1 2 3\n"));
  ASSERT_EQ(file.shapes.size(), 1u);
  ASSERT_EQ(file.materials.size(), 1u);
  EXPECT_EQ(file.materials[0].diffuse[0], 1.0f);
  EXPECT_THAT(file.shapes[0].mesh.material_ids, testing::ElementsAre(0));
  EXPECT_THAT(file.messages, IsEmpty());
}

TEST_F(TinyobjFileTest, SaysWhatIsMissing) {
  EXPECT_FALSE(file.read(folder.file("none.obj"), folder.path()));
  EXPECT_EQ(file.messages, "Cannot open file [" + folder.file("none.obj") + "]\n");
  file = TinyobjFile();
  EXPECT_TRUE(read("mtllib none.mtl\n"));
  EXPECT_THAT(
      file.messages,
      HasSubstr("Material file [ none.mtl ] not found in a path : " + folder.path() + "/\n"));
}

// A spiral is the worst of polygons: its triangles take time by the cube of its corners, and few
// are found.
TEST_F(TinyobjFileTest, VeryLargePolygonsBecomeFans) {
  constexpr int COUNT = 20000;
  std::string text;
  for (int i = 0; i < COUNT; ++i) {
    const int turn = i < COUNT / 2 ? i : COUNT - 1 - i;
    const double radius = 1.0 + turn + (i < COUNT / 2 ? 0.0 : 0.3);
    text += "v " + std::to_string(radius * std::cos(turn * 0.5)) + " " +
            std::to_string(radius * std::sin(turn * 0.5)) + " 0\n";
  }
  text += "f";
  for (int i = 1; i <= COUNT; ++i) text += " " + std::to_string(i);
  ASSERT_TRUE(read(text));
  ASSERT_EQ(file.shapes.size(), 1u);
  EXPECT_EQ(file.shapes[0].mesh.indices.size(), (COUNT - 2) * 3u);
  EXPECT_EQ(file.shapes[0].mesh.indices.back().vertex_index, COUNT - 1);
}

TEST_F(TinyobjFileTest, TagsTakeNoRoom) {
  ASSERT_TRUE(read("v 0 0 0\nv 1 0 0\nv 0 1 0\nt crease 8000/8000/8000 1\nf 1 2 3\nt x 1/0/0 1\n"));
  ASSERT_EQ(file.shapes.size(), 1u);
  EXPECT_THAT(file.shapes[0].mesh.tags, IsEmpty());
}

TEST_F(TinyobjFileTest, WarningsStayInProportion) {
  std::string library = "newmtl " + std::string(20000, 'x') + "\n";
  for (int i = 0; i < 2000; ++i) library += "d 1\nTr 1\n";
  folder.write("a.mtl", library);
  ASSERT_TRUE(read("mtllib a.mtl\n"));
  EXPECT_LT(file.messages.size(), 1u << 20);
}

TEST_F(TinyobjFileTest, ALibraryOfManyNamesIsReadOnce) {
  folder.write("a.mtl", "newmtl one\n");
  folder.write("b.mtl", "newmtl two\n");
  ASSERT_TRUE(read("mtllib a.mtl\nmtllib ./a.mtl\nmtllib .//a.mtl\nmtllib b.mtl\nmtllib a.mtl\n"));
  ASSERT_EQ(file.materials.size(), 2u);
  EXPECT_EQ(file.materials[1].name, "two");
  EXPECT_THAT(file.messages, IsEmpty());
}

}  // namespace
}  // namespace orv::detail
