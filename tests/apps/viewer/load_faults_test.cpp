#include "viewer/load_faults.h"

#include <gtest/gtest.h>

#include "support/temp_folder.h"

namespace viewer {
namespace {

TEST(FindFault, ReadsTheMessagesOfAnObjFileWithoutTheLineWhereItEnds) {
  EXPECT_EQ(find_fault({"[L] error: material [ 'a' ] not found in .mtl\n"
                        "Vertex indices out of bounds (line 4.)\n"},
                       "./a.obj"),
            "Vertex indices out of bounds");
  EXPECT_EQ(find_fault({"[L] error: Degenerated face found\n.Vertex texcoord indices out of bounds "
                        "(line 9.)\n\n"},
                       "./a.obj"),
            "Degenerated face found");
}

TEST(FindFault, MaterialsAndOtherFilesAreNoMatter) {
  EXPECT_EQ(find_fault({"[L] error: material [ 'Vertex indices out of bounds' ] not found in .mtl\n"
                        "Material file [ a.mtl ] not found in a path : ./\n",
                        "Vertex indices out of bounds", "./b.3ds: left out 1 damaged faces"},
                       "./a.obj"),
            "");
  EXPECT_EQ(find_fault({}, "./a.obj"), "");
}

TEST(FindFault, ReadsWhatOtherLoadersSayBehindTheName) {
  EXPECT_EQ(find_fault({"[X] ./a.3ds: left out 2 damaged faces and 1 damaged objects"}, "./a.3ds"),
            "left out 2 damaged faces and 1 damaged objects");
  EXPECT_EQ(
      find_fault({"[STL] ./a.stl: no mesh from 0 triangles: shorter than its header"}, "./a.stl"),
      "shorter than its header");
  EXPECT_EQ(find_fault({"[STL] ./a.stl: no mesh from 0 triangles"}, "./a.stl"), "");
}

TEST(FindMissingRecords, ComparesTheCountWithTheSize) {
  orv::test::TempFolder folder;
  const std::string head = std::string(80, ' ') + std::string("\3\0\0\0", 4);
  const auto missing = [&](std::size_t size) {
    return find_missing_records(folder.write("a.stl", head + std::string(size, '\0')));
  };
  EXPECT_EQ(missing(150), "");
  EXPECT_EQ(missing(151), "");
  EXPECT_EQ(missing(149), "it ends after 2 of its 3 triangles");
  EXPECT_EQ(missing(0), "it ends after 0 of its 3 triangles");
  EXPECT_EQ(find_missing_records(folder.write("b.stl", "short")), "");
  EXPECT_EQ(find_missing_records(folder.file("none.stl")), "");
}

TEST(ReportTextures, CountsThemAndNamesTheFirstMissingOneWithItsReason) {
  const TextureReport report =
      report_textures({"Material a: texture 0 (dir/good.png) loaded ok.",
                       "image dir/sub/x (1).png: cannot be decoded: damaged",
                       "Material b (2): texture 0 (dir/sub/x (1).png) loading FAILED.",
                       "Material b (2): let's do a second attempt...",
                       "image dir/x (1).png: cannot be read: No such file or directory",
                       "Material b (2): texture 0 (dir/x (1).png) loading FAILED, no hope!",
                       "Material b (2): texture 1 (dir/y.png) loading FAILED.",
                       "Material b (2): texture 1 (dir/y.png) loading FAILED, no hope!"},
                      "dir/");
  EXPECT_EQ(report.num_wanted, 3u);
  EXPECT_EQ(report.num_missing, 2u);
  EXPECT_EQ(report.first_missing, "sub/x (1).png: cannot be decoded: damaged");
}

TEST(ReportTextures, SecondAttemptThatSucceedsCountsOnce) {
  const TextureReport report =
      report_textures({"image ./a/x.png: cannot be read: No such file or directory",
                       "Material m: texture 0 (./a/x.png) loading FAILED.",
                       "Material m: texture 0 (./x.png) loaded ok."},
                      "./");
  EXPECT_EQ(report.num_wanted, 1u);
  EXPECT_EQ(report.num_missing, 0u);
  EXPECT_EQ(report.first_missing, "");
}

}  // namespace
}  // namespace viewer
