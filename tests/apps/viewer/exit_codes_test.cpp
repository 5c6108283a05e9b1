// The program as users and scripts meet it when something is wrong: one line, one exit code.
#include <gtest/gtest.h>
#include <sys/stat.h>

#include "apps/viewer/viewer_run.h"

namespace orv::test {
namespace {

struct Failure {
  const char* name;
  std::string arguments;
  int code;
  const char* said;  ///< part of the one line
};

class ViewerExitCode : public testing::TestWithParam<Failure> {};

TEST_P(ViewerExitCode, FailureIsOneLineThatSaysWhatAndWhy) {
  TempFolder folder;
  folder.write("junk.obj", "this is no model\n");
  folder.write("empty.obj", "");
  folder.write("bad_index.obj", "v 0 0 0\nv 1 0 0\nf 0 1\n");
  folder.write("far_index.obj", "v 0 0 0\nv 1 0 0\nv 0 1 0\nf 1 2 9\n");
  folder.write("two\nlines\x1b.obj", "");
  folder.write("short.3ds", std::string("MM\x10\x00\x00\x00", 6));
  folder.write("short.stl", "short");
  folder.write("empty.stl", std::string(84, '\0'));
  folder.write("model.fbx", "x");
  folder.write("junk.png", "this is no picture");
  mkdir(folder.file("folder.obj").c_str(), 0700);
  const ViewerRun run = run_viewer(folder, GetParam().arguments);
  EXPECT_EQ(run.code, GetParam().code);
  EXPECT_EQ(run.count_error_lines(), 1) << run.err;
  EXPECT_EQ(run.err.rfind("orv-viewer: ", 0), 0u) << run.err;
  EXPECT_NE(run.err.find(GetParam().said), std::string::npos) << run.err;
  EXPECT_EQ(run.out, "");
}

INSTANTIATE_TEST_SUITE_P(
    Table, ViewerExitCode,
    testing::Values(
        Failure{"MissingFile", "nope.obj", 1, "nope.obj: No such file"},
        Failure{"MissingFileHeadless", "nope.3ds --output x.png", 1, "nope.3ds: No such file"},
        Failure{"Folder", "folder.obj", 1, "folder.obj: this is a folder"},
        Failure{"UnknownKind", "model.fbx", 1, "model.fbx: unsupported kind of file"},
        Failure{"TextStl", viewer_data("stl/cube_meshlab_ascii.stl"), 1, "STL in text form"},
        Failure{"StlWithoutTriangles", "empty.stl", 1, "no triangles"},
        Failure{"JunkObj", "junk.obj --output x.png", 1, "junk.obj: broken or empty"},
        Failure{"EmptyObj", "empty.obj", 1, "no triangles"},
        Failure{"ObjOfBadIndices", "bad_index.obj", 1,
                "bad_index.obj: broken file: all its vertices"},
        Failure{"ObjOfIndicesOutOfBounds", "far_index.obj --output x.png", 1,
                "far_index.obj: broken file: none of its triangles has an area: Vertex indices out "
                "of bounds"},
        Failure{"NameOfTwoLines", "'two\nlines\x1b.obj'", 1, "two?lines?.obj: broken or empty"},
        Failure{"ShortStl", "short.stl", 1, "no triangles in it: shorter than its header"},
        Failure{"Cut3ds", "short.3ds", 1, "short.3ds: broken file: not a whole 3DS file"},
        Failure{"MissingTexture", viewer_data("obj/box.obj") + " --texture no.png --output x.png",
                1, "no.png: No such file"},
        Failure{"BrokenTexture", viewer_data("obj/box.obj") + " --texture junk.png --output x.png",
                1, "junk.png: broken file"},
        Failure{"NoDisplay", viewer_data("obj/box.obj"), 1, "no display"},
        Failure{"NoDisplayForWindow", viewer_data("obj/box.obj") + " --window --output x.png", 1,
                "no display"},
        Failure{"NoFile", "", 2, "FILE is required"},
        Failure{"UnknownOption", "a.obj --nonsense", 2, "--nonsense"},
        Failure{"BadSize", "a.obj --size 12", 2, "'12' is no size"},
        Failure{"BadOutput", "a.obj --output a.gif", 2, "a.gif"},
        Failure{"BadFrames", "a.obj --frames 0", 2, "--frames"},
        Failure{"BadProfile", "a.obj --profile es", 2, "--profile"},
        Failure{"BadMsaa", "a.obj --msaa 3", 2, "--msaa"}),
    [](const auto& failure) { return failure.param.name; });

TEST(ViewerProgram, HelpListsOptionsAndKeys) {
  TempFolder folder;
  const ViewerRun run = run_viewer(folder, "--help");
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.err, "");
  for (const char* word : {"--output",  "--size",      "--frames",  "--profile",
                           "--msaa",    "--wireframe", "--grid",    "--stats",
                           "--verbose", "--version",   "--texture", "--headless",
                           "--window",  "drag",        "wheel",     "wireframe on and off",
                           "grid on",   "axes on",     "PNG",       "again",
                           "next file", "quit"}) {
    EXPECT_NE(run.out.find(word), std::string::npos) << word;
  }
}

TEST(ViewerProgram, VersionIsTheLibrarys) {
  TempFolder folder;
  const ViewerRun run = run_viewer(folder, "--version");
  EXPECT_EQ(run.code, 0);
  EXPECT_EQ(run.out, "orv-viewer 0.26.1\n");
  EXPECT_EQ(run.err, "");
}

TEST(ViewerProgram, VerboseTellsTheReasonOfALoaderToo) {
  TempFolder folder;
  folder.write("short.3ds", std::string("MM\x10\x00\x00\x00", 6));
  const ViewerRun run = run_viewer(folder, "short.3ds --verbose");
  EXPECT_EQ(run.code, 1);
  EXPECT_GT(run.count_error_lines(), 5);
  EXPECT_NE(run.err.find("short.3ds: not a whole 3DS file"), std::string::npos) << run.err;
}

}  // namespace
}  // namespace orv::test
