// The viewer as a program off screen: what is in its pictures.
#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>

#include "apps/viewer/picture_shape.h"
#include "apps/viewer/viewer_run.h"
#include "support/read_picture.h"

namespace orv::test {
namespace {

Picture draw(const TempFolder& folder, const std::string& arguments,
             const std::string& name = "out.png") {
  const ViewerRun run = run_viewer(folder, arguments + " --output " + name);
  EXPECT_EQ(run.code, 0) << run.err;
  EXPECT_EQ(run.err, "");
  return read_picture(folder.file(name));
}

void expect_framed(const PictureShape& shape) {
  EXPECT_GT(shape.left, 0.02f);
  EXPECT_LT(shape.right, 0.98f);
  EXPECT_GT(shape.bottom, 0.02f);
  EXPECT_LT(shape.top, 0.98f);
  EXPECT_GT(std::max(shape.width(), shape.height()), 0.5f);
  EXPECT_GT(shape.covered, 0.02f);
}

class ViewerPicture : public testing::TestWithParam<const char*> {};

TEST_P(ViewerPicture, ShowsTheModelWholeAndLarge) {
  TempFolder folder;
  for (const char* size : {"320x180", "150x250"}) {
    const std::string arguments = viewer_data(GetParam()) + " --size " + size;
    const ViewerRun run = run_viewer(folder, arguments + " --output out.png");
    ASSERT_EQ(run.code, 0) << run.err;
    EXPECT_LE(run.count_error_lines(), 1) << "a line about missing textures at most";
    SCOPED_TRACE(size);
    expect_framed(shape_of(read_picture(folder.file("out.png"))));
  }
}

INSTANTIATE_TEST_SUITE_P(Models, ViewerPicture,
                         testing::Values("obj/box.obj", "obj/spider.obj", "obj/cornell_box.obj",
                                         "obj/hundred_cubes.obj", "obj/wallhole.obj",
                                         "obj/negative_indices.obj", "stl/20mm-xyz-cube.stl",
                                         "stl/cube_meshlab_binary.stl", "3ds/fels.3ds",
                                         "3ds/cube_with_materials.3ds",
                                         "3ds/cube_four_instances.3ds"),
                         [](const auto& model) {
                           std::string name = model.param;
                           for (char& c : name)
                             c = std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
                           return name;
                         });

TEST(ViewerPictures, BothProfilesShowTheSame) {
  TempFolder folder;
  const std::string arguments = viewer_data("obj/box.obj") + " --size 160x120 --grid --msaa 0";
  const Picture compat = draw(folder, arguments + " --profile compat");
  const Picture core = draw(folder, arguments + " --profile core");
  EXPECT_EQ(compare_pictures(core, compat, {4, 0.99, 255}), "");
}

TEST(ViewerPictures, ScalesOfOneOneAndAQuarterAndTwoFrameAlike) {
  TempFolder folder;
  const std::string arguments = viewer_data("obj/spider.obj") + " --size ";
  const ViewerRun first = run_viewer(folder, arguments + "240x160 --output a.png");
  const ViewerRun second = run_viewer(folder, arguments + "300x200 --output b.png");
  const ViewerRun third = run_viewer(folder, arguments + "480x320 --output c.png");
  ASSERT_EQ(first.code + second.code + third.code, 0);
  const PictureShape a = shape_of(read_picture(folder.file("a.png")));
  for (const char* name : {"b.png", "c.png"}) {
    const PictureShape other = shape_of(read_picture(folder.file(name)));
    EXPECT_NEAR(other.left, a.left, 0.012f);
    EXPECT_NEAR(other.right, a.right, 0.012f);
    EXPECT_NEAR(other.bottom, a.bottom, 0.012f);
    EXPECT_NEAR(other.top, a.top, 0.012f);
    EXPECT_NEAR(other.covered, a.covered, 0.012f);
  }
}

TEST(ViewerPictures, WireframeCoversLessAndTheGridMore) {
  TempFolder folder;
  const std::string arguments = viewer_data("obj/box.obj") + " --size 240x160 ";
  const PictureShape solid = shape_of(draw(folder, arguments));
  const PictureShape wire = shape_of(draw(folder, arguments + "--wireframe"));
  const PictureShape grid = shape_of(draw(folder, arguments + "--grid"));
  EXPECT_LT(wire.covered, solid.covered * 0.5f);
  EXPECT_NEAR(wire.width(), solid.width(), 0.02f);
  EXPECT_GT(grid.width(), solid.width() * 1.1f);
}

TEST(ViewerPictures, LightsFacesDifferently) {
  TempFolder folder;
  const Picture picture = draw(folder, viewer_data("obj/box.obj") + " --size 200x200");
  const auto red = [&](int x, int y) {
    return int{picture.rgba[(static_cast<std::size_t>(y) * 200 + static_cast<std::size_t>(x)) * 4]};
  };
  // The top, the left and the right face of a cube.
  EXPECT_GT(std::abs(red(80, 80) - red(140, 80)), 10);
  EXPECT_GT(std::abs(red(100, 150) - red(140, 80)), 10);
}

// A quad whose texture is green in its upper half and red below.
class ViewerTexture : public testing::Test {
 protected:
  ViewerTexture() {
    std::string ppm_like_tga("\0\0\2\0\0\0\0\0\0\0\0\0\2\0\2\0\x18\x20", 18);  // top row first
    ppm_like_tga += std::string("\0\xff\0\0\xff\0\0\0\xff\0\0\xff", 12);
    folder_.write("two colors.tga", ppm_like_tga);
  }
  void write_quad(const std::string& head) {
    folder_.write("quad.obj", head +
                                  "v -1 -1 0\nv 1 -1 0\nv 1 1 0\nv -1 1 0\n"
                                  "vt 0 0\nvt 1 0\nvt 1 1\nvt 0 1\nf 1/1 2/2 3/3 4/4\n");
  }
  void expect_green_over_red(const Picture& picture) {
    ASSERT_EQ(picture.width, 200);
    const PictureShape shape = shape_of(picture);
    expect_framed(shape);
    const auto pixel = [&](float y) {
      return &picture.rgba[(static_cast<std::size_t>(y * 200.0f) * 200 + 100) * 4];
    };
    const unsigned char* high = pixel(shape.bottom + shape.height() * 0.75f);
    const unsigned char* low = pixel(shape.bottom + shape.height() * 0.25f);
    EXPECT_GT(high[1], high[0] + 60);
    EXPECT_GT(low[0], low[1] + 60);
  }

  TempFolder folder_;
};

TEST_F(ViewerTexture, OfTheMaterialIsLoadedAndStandsUpright) {
  folder_.write("quad.mtl", "newmtl m\nKd 1 1 1\nmap_Kd two colors.tga\n");
  write_quad("mtllib quad.mtl\nusemtl m\n");
  expect_green_over_red(draw(folder_, "quad.obj --size 200x200"));
}

TEST_F(ViewerTexture, OfTheCommandLineIsForModelsWithoutOne) {
  write_quad("");
  expect_green_over_red(draw(folder_, "quad.obj --size 200x200 --texture 'two colors.tga'"));
}

TEST_F(ViewerTexture, OfTheMaterialIsFoundByItsBaseNameToo) {
  folder_.write("quad.mtl", "newmtl m\nKd 0 0 0\nmap_Kd C:\\art\\two colors.tga\n");
  write_quad("mtllib quad.mtl\nusemtl m\n");
  expect_green_over_red(draw(folder_, "quad.obj --size 200x200"));
}

TEST(ViewerPictures, JpegShowsTheSameAsPng) {
  TempFolder folder;
  const std::string arguments = viewer_data("obj/box.obj") + " --size 160x120";
  const Picture png = draw(folder, arguments, "a.png");
  const Picture jpg = draw(folder, arguments, "a.JPG");
  EXPECT_EQ(folder.read("a.JPG").substr(0, 2), "\xff\xd8");
  EXPECT_EQ(compare_pictures(jpg, png, {12, 0.97, 90}), "");
}

TEST(ViewerPictures, PictureThatCannotBeWrittenIsSaidInOneLine) {
  TempFolder folder;
  const ViewerRun run =
      run_viewer(folder, viewer_data("obj/box.obj") + " --size 16x16 --output no/folder.png");
  EXPECT_EQ(run.code, 1);
  EXPECT_EQ(run.err, "orv-viewer: no/folder.png: No such file or directory\n");
}

TEST(ViewerPictures, FullDiskIsSaidInOneLine) {
  TempFolder folder;
  for (const char* name : {"full.png", "full.jpg"}) {
    ASSERT_EQ(symlink("/dev/full", folder.file(name).c_str()), 0);
    const ViewerRun run =
        run_viewer(folder, viewer_data("obj/box.obj") + " --size 64x64 --output " + name);
    EXPECT_EQ(run.code, 1);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, std::string("orv-viewer: ") + name +
                           ": cannot write the picture: No space left on device\n");
  }
}

TEST(ViewerPictures, StatsTellCountsTimesAndTheDriver) {
  TempFolder folder;
  const ViewerRun run = run_viewer(
      folder, viewer_data("obj/box.obj") + " --headless --size 64x64 --frames 5 --stats");
  EXPECT_EQ(run.code, 0) << run.err;
  for (const char* word : {"triangles  12\n", "vertices   8\n", "load ", "frame ", "median of 4",
                           "OpenGL ", "renderer ", "vendor "}) {
    EXPECT_NE(run.out.find(word), std::string::npos) << word << "\n" << run.out;
  }
}

TEST(ViewerPictures, VerboseShowsTheLogOnStderrAndQuietNothing) {
  TempFolder folder;
  const std::string arguments = viewer_data("obj/box.obj") + " --headless --size 16x16";
  EXPECT_EQ(run_viewer(folder, arguments).err, "");
  const ViewerRun verbose = run_viewer(folder, arguments + " --verbose");
  EXPECT_EQ(verbose.code, 0);
  EXPECT_GT(verbose.count_error_lines(), 10);
  EXPECT_NE(verbose.err.find("OpenGL"), std::string::npos);
}

TEST(ViewerPictures, RealModelsAreShownWholeAndLarge) {
  const std::string extra = ORV_EXTRA_TEST_DATA;
  if (extra.empty()) GTEST_SKIP() << "ORV_EXTRA_TEST_DATA names no folder";
  TempFolder folder;
  for (const char* kind : {"/obj", "/stl", "/3ds"}) {
    for (const auto& entry : std::filesystem::directory_iterator(extra + kind)) {
      const std::string path = entry.path().string();
      const ViewerRun run =
          run_viewer(folder, "'" + path + "' --size 160x120 --msaa 0 --output out.png");
      SCOPED_TRACE(path + ": " + run.err);
      EXPECT_LE(run.count_error_lines(), 1);
      if (run.code == 0) {
        expect_framed(shape_of(read_picture(folder.file("out.png"))));
      } else {
        EXPECT_EQ(run.code, 1);
        EXPECT_EQ(run.count_error_lines(), 1);
      }
    }
  }
}

}  // namespace
}  // namespace orv::test
