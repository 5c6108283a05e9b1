#include "loaders/tds_reader.h"

#include <gtest/gtest.h>
#include <lib3ds/camera.h>
#include <lib3ds/file.h>
#include <lib3ds/material.h>
#include <lib3ds/mesh.h>
#include <lib3ds/node.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "loaders/tds_builder.h"
#include "loaders/tds_normals.h"
#include "support/temp_folder.h"

namespace orv {
namespace {

using namespace test::tds;

bool clean(const std::string& bytes, TdsFile& out) {
  // A block of its own, so that the address sanitizer sees reads behind the end.
  const std::vector<unsigned char> copy(bytes.begin(), bytes.end());
  return tds_clean(copy.data(), copy.size(), out);
}

bool is_accepted(const std::string& bytes) {
  TdsFile out;
  return clean(bytes, out);
}

/// Null when the file is refused.
TdsPtr parse(const std::string& bytes) {
  TdsFile out;
  return clean(bytes, out) ? tds_parse(out) : nullptr;
}

template <class T>
std::vector<std::string> names(const T* list) {
  std::vector<std::string> result;
  for (; list; list = list->next) result.push_back(list->name);
  return result;
}

using Names = std::vector<std::string>;

// ---- what is kept ----------------------------------------------------------------------------

TEST(TdsReader, KeepsMaterialsMeshesCamerasAndNodes) {
  const TdsPtr file = parse(sample());
  ASSERT_TRUE(file);
  EXPECT_EQ(names(file->materials), (Names{"other", "wood"}));
  EXPECT_EQ(names(file->meshes), Names{"box"});
  EXPECT_EQ(names(file->cameras), Names{"eye"});

  const Lib3dsMaterial& wood = *file->materials->next;
  EXPECT_EQ(wood.diffuse[2], 0.75f);
  EXPECT_EQ(wood.shininess, 0.5f);
  EXPECT_EQ(wood.transparency, 0.25f);
  EXPECT_STREQ(wood.texture1_map.name, "wood.png");

  const Lib3dsMesh& mesh = *file->meshes;
  ASSERT_EQ(mesh.points, 3u);
  EXPECT_EQ(mesh.pointL[2].pos[2], 10.0f);
  ASSERT_EQ(mesh.texels, 3u);
  EXPECT_EQ(mesh.texelL[2][1], 1.0f);
  ASSERT_EQ(mesh.faces, 1u);
  EXPECT_STREQ(mesh.faceL[0].material, "wood");
  EXPECT_EQ(mesh.faceL[0].smoothing, 1u);

  EXPECT_EQ(file->cameras->fov, 50.0f);
  EXPECT_EQ(file->cameras->far_range, 50.0f);

  ASSERT_TRUE(file->nodes);
  EXPECT_EQ(file->nodes->type, LIB3DS_OBJECT_NODE);
  EXPECT_STREQ(file->nodes->data.object.instance, "one");
  EXPECT_EQ(file->nodes->data.object.pivot[2], 1.0f);
  ASSERT_TRUE(file->nodes->childs);
  lib3ds_file_eval(file.get(), 0.0f);
  EXPECT_EQ(file->nodes->childs->matrix[3][2], 3.0f);
}

TEST(TdsReader, LeavesOutWhatIsNotUsed) {
  const std::string light = object("lamp", chunk(LIB3DS_N_DIRECT_LIGHT, floats({1, 2, 3})));
  const std::string unknown = chunk(0x1234, "anything");
  TdsFile plain;
  TdsFile extended;
  ASSERT_TRUE(clean(file(material("m") + triangle("t")), plain));
  ASSERT_TRUE(clean(
      file(unknown + light + material("m", unknown) + triangle("t", unknown, unknown)), extended));
  EXPECT_EQ(plain.bytes, extended.bytes);
}

TEST(TdsReader, TakesTheOtherKindsOfMainChunk) {
  for (const unsigned id : {LIB3DS_M3DMAGIC, LIB3DS_MLIBMAGIC, LIB3DS_CMAGIC}) {
    const TdsPtr file = parse(chunk(id, chunk(LIB3DS_MDATA, triangle("t"))));
    ASSERT_TRUE(file) << id;
    EXPECT_EQ(names(file->meshes), Names{"t"}) << id;
  }
  const TdsPtr data_alone = parse(chunk(LIB3DS_MDATA, triangle("t")));
  ASSERT_TRUE(data_alone);
  EXPECT_EQ(names(data_alone->meshes), Names{"t"});
}

TEST(TdsReader, BytesBehindTheMainChunkAreIgnored) {
  TdsFile plain;
  TdsFile padded;
  ASSERT_TRUE(clean(sample(), plain));
  ASSERT_TRUE(clean(sample() + "padding behind", padded));
  EXPECT_EQ(plain.bytes, padded.bytes);
}

TEST(TdsReader, FewerBytesThanAHeaderAtTheEndOfAChunkArePadding) {
  const TdsPtr read = parse(file(material("m") + triangle("t") + "12345"));
  ASSERT_TRUE(read);
  EXPECT_EQ(names(read->meshes), Names{"t"});
}

// ---- what is refused -------------------------------------------------------------------------

TEST(TdsReader, ForeignFilesAreRefused) {
  EXPECT_FALSE(tds_clean(nullptr, 0, *std::make_unique<TdsFile>()));
  EXPECT_FALSE(tds_clean(nullptr, 100, *std::make_unique<TdsFile>()));
  EXPECT_FALSE(is_accepted(""));
  EXPECT_FALSE(is_accepted("MM"));
  EXPECT_FALSE(is_accepted("solid name, or any other text that is long enough"));
  EXPECT_FALSE(is_accepted(chunk(LIB3DS_KFDATA, node(0, "n"))));
  EXPECT_TRUE(is_accepted(chunk(LIB3DS_M3DMAGIC, "")));
}

TEST(TdsReader, DamagedChunksAreRefused) {
  const std::string long_name(64, 'n');
  const struct {
    const char* what;
    std::string bytes;
  } rows[] = {
      {"length below a header", file(u16(0x1234) + u32(5))},
      {"length 0", file(u16(0x1234) + u32(0))},
      {"length beyond the parent", file(u16(0x1234) + u32(7))},
      {"length of 4 GB", file(u16(0x1234) + u32(0xFFFFFFFF))},
      {"length beyond the file", u16(LIB3DS_M3DMAGIC) + u32(7)},
      {"material without text", file(chunk(LIB3DS_MAT_ENTRY, chunk(LIB3DS_MAT_NAME, "")))},
      {"material name without end", file(chunk(LIB3DS_MAT_ENTRY, chunk(LIB3DS_MAT_NAME, "abc")))},
      {"material name too long", file(material(long_name))},
      {"short colour",
       file(material("m", chunk(LIB3DS_MAT_AMBIENT, chunk(LIB3DS_COLOR_F, floats({1, 2})))))},
      {"short byte colour",
       file(material("m", chunk(LIB3DS_MAT_AMBIENT, chunk(LIB3DS_LIN_COLOR_24, "ab"))))},
      {"short percentage",
       file(material("m", chunk(LIB3DS_MAT_SHININESS, chunk(LIB3DS_INT_PERCENTAGE, "a"))))},
      {"texture name too long",
       file(material("m", chunk(LIB3DS_MAT_TEXMAP, chunk(LIB3DS_MAT_MAPNAME, text(long_name)))))},
      {"object without name", file(chunk(LIB3DS_NAMED_OBJECT, ""))},
      {"object name too long", file(object(long_name, ""))},
      {"points without count", file(mesh("m", chunk(LIB3DS_POINT_ARRAY, "a")))},
      {"too few points", file(mesh("m", chunk(LIB3DS_POINT_ARRAY, u16(2) + floats({1, 2, 3}))))},
      {"too few texels", file(mesh("m", chunk(LIB3DS_TEX_VERTS, u16(65535) + floats({1, 2}))))},
      {"too few faces", file(mesh("m", chunk(LIB3DS_FACE_ARRAY, u16(1) + u16(0) + u16(0))))},
      {"short matrix", file(mesh("m", matrix({1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0})))},
      {"short smoothing", file(triangle("m", chunk(LIB3DS_SMOOTH_GROUP, "abc")))},
      {"face material without count", file(triangle("m", chunk(LIB3DS_MSH_MAT_GROUP, text("a"))))},
      {"too few material faces",
       file(triangle("m", chunk(LIB3DS_MSH_MAT_GROUP, text("a") + u16(2) + u16(0))))},
      {"face material too long", file(triangle("m", face_material(long_name, {0})))},
      {"short camera", file(camera("c", {1, 2, 3, 4, 5, 6, 7}))},
      {"short ranges",
       file(camera("c", {1, 2, 3, 4, 5, 6, 7, 8}, chunk(LIB3DS_CAM_RANGES, floats({1}))))},
      {"node without header text",
       file("", chunk(LIB3DS_OBJECT_NODE_TAG, chunk(LIB3DS_NODE_HDR, "abc")))},
      {"short node header", file("", chunk(LIB3DS_OBJECT_NODE_TAG,
                                           chunk(LIB3DS_NODE_HDR, text("n") + u16(0) + u16(0))))},
      {"short node id", file("", chunk(LIB3DS_OBJECT_NODE_TAG, chunk(LIB3DS_NODE_ID, "a")))},
      {"node name too long", file("", node(0, long_name))},
      {"short pivot", file("", node(0, "n", NO_PARENT, chunk(LIB3DS_PIVOT, floats({1, 2}))))},
      {"instance too long", file("", node(0, "n", NO_PARENT, instance(long_name)))},
      {"short track", file("", node(0, "n", NO_PARENT, chunk(LIB3DS_POS_TRACK_TAG, "abc")))},
      {"too few keys",
       file("", node(0, "n", NO_PARENT,
                     track(LIB3DS_POS_TRACK_TAG, 0, 2, u32(0) + u16(0) + floats({1, 2, 3}))))},
      {"keys without end",
       file("", node(0, "n", NO_PARENT, track(LIB3DS_POS_TRACK_TAG, 0, 0xFFFFFFFF, "")))},
      {"key without its parameters",
       file("", node(0, "n", NO_PARENT,
                     track(LIB3DS_POS_TRACK_TAG, 0, 1, u32(0) + u16(0x1F) + floats({1, 2, 3}))))},
  };
  for (const auto& row : rows) EXPECT_FALSE(is_accepted(row.bytes)) << row.what;
}

TEST(TdsReader, NamesOf63CharactersAreTaken) {
  const std::string name(63, 'n');
  const TdsPtr read = parse(file(material(name) + triangle(name, face_material(name, {0})),
                                 node(0, name, NO_PARENT, instance(name))));
  ASSERT_TRUE(read);
  EXPECT_EQ(names(read->materials), Names{name});
  EXPECT_EQ(read->meshes->faceL[0].material, name);
  EXPECT_EQ(read->nodes->data.object.instance, name);
}

TEST(TdsReader, EveryTruncationIsRefused) {
  const std::string whole = sample();
  for (std::size_t size = 0; size < whole.size(); ++size) {
    TdsFile out;
    EXPECT_FALSE(clean(whole.substr(0, size), out)) << size;
    EXPECT_TRUE(out.bytes.empty()) << size;
  }
  EXPECT_TRUE(is_accepted(whole));
}

// ---- meshes ----------------------------------------------------------------------------------

TEST(TdsReader, FacesWithWrongCornersAreLeftOut) {
  const std::vector<unsigned> corners = {0, 1, 3, 0, 1, 2, 65535, 0, 1, 2, 1, 0};
  const std::string parts =
      smoothing({1, 2, 3, 4}) + face_material("a", {0, 1, 2, 77}) + face_material("b", {3, 65535});
  TdsFile out;
  ASSERT_TRUE(
      clean(file(mesh("m", faces(corners, parts) + points({1, 2, 3, 4, 5, 6, 7, 8, 9}))), out));
  EXPECT_EQ(out.dropped_faces, 2u);
  const TdsPtr read = tds_parse(out);
  ASSERT_TRUE(read);
  ASSERT_EQ(read->meshes->faces, 2u);
  const Lib3dsFace* kept = read->meshes->faceL;
  EXPECT_EQ(kept[0].points[2], 2u);
  EXPECT_EQ(kept[0].smoothing, 2u);
  EXPECT_STREQ(kept[0].material, "a");
  EXPECT_EQ(kept[1].points[0], 2u);
  EXPECT_EQ(kept[1].smoothing, 4u);
  EXPECT_STREQ(kept[1].material, "b");
}

TEST(TdsReader, FacesWithoutPointsAreLeftOut) {
  const TdsPtr read = parse(file(mesh("m", faces({0, 0, 0}))));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->meshes->faces, 0u);
}

TEST(TdsReader, TexelsBeyondThePointsAreLeftOut) {
  const TdsPtr read =
      parse(file(mesh("m", texels({1, 2, 3, 4, 5, 6, 7, 8}) + points({1, 2, 3, 4, 5, 6}))));
  ASSERT_TRUE(read);
  EXPECT_EQ(read->meshes->texels, 2u);
}

TEST(TdsReader, OfAPartThatStandsTwiceTheLastOneCounts) {
  const TdsPtr read = parse(file(mesh("m", points({1, 1, 1, 1, 1, 1}) + points({2, 3, 4}))));
  ASSERT_TRUE(read);
  ASSERT_EQ(read->meshes->points, 1u);
  EXPECT_EQ(read->meshes->pointL[0].pos[1], 3.0f);
}

TEST(TdsReader, ObjectsBeyondTheLimitAreLeftOut) {
  std::string data;
  for (std::size_t i = 0; i < TDS_MAX_OBJECTS + 3; ++i)
    data += camera("c", {0, 0, 0, 1, 1, 1, 0, 1});
  TdsFile out;
  ASSERT_TRUE(clean(file(data), out));
  EXPECT_EQ(out.dropped_objects, 3u);
}

// ---- nodes -----------------------------------------------------------------------------------

TEST(TdsReader, NodesFindParentsThatComeLater) {
  const TdsPtr read = parse(file("", node(7, "child", 9) + node(9, "parent")));
  ASSERT_TRUE(read);
  EXPECT_EQ(names(read->nodes), Names{"parent"});
  EXPECT_EQ(names(read->nodes->childs), Names{"child"});
}

TEST(TdsReader, NodesOfAMissingParentAreRoots) {
  const TdsPtr read = parse(file("", node(0, "a", 55) + node(1, "b", 0)));
  ASSERT_TRUE(read);
  EXPECT_EQ(names(read->nodes), Names{"a"});
  EXPECT_EQ(names(read->nodes->childs), Names{"b"});
}

TEST(TdsReader, NodesWithoutIdsAreNumberedInOrder) {
  const std::string header = chunk(LIB3DS_NODE_HDR, text("a") + u16(0) + u16(0) + u16(NO_PARENT));
  const TdsPtr read =
      parse(file("", chunk(LIB3DS_OBJECT_NODE_TAG, header) + chunk(LIB3DS_OBJECT_NODE_TAG, header) +
                         node(2, "below second", 1)));
  ASSERT_TRUE(read);
  EXPECT_EQ(names(read->nodes), (Names{"a", "a"}));
  EXPECT_FALSE(read->nodes->childs);
  EXPECT_EQ(names(read->nodes->next->childs), Names{"below second"});
}

TEST(TdsReader, NodesThatAreTheirOwnAncestorsAreLeftOut) {
  TdsFile out;
  ASSERT_TRUE(clean(file("", node(0, "self", 0) + node(1, "a", 2) + node(2, "b", 1) +
                                 node(3, "below", 2) + node(4, "whole")),
                    out));
  EXPECT_EQ(out.dropped_objects, 4u);
  const TdsPtr read = tds_parse(out);
  ASSERT_TRUE(read);
  EXPECT_EQ(names(read->nodes), Names{"whole"});
}

TEST(TdsReader, DeepTreesAreCutAtTheLimit) {
  std::string nodes;
  for (unsigned i = 0; i < 1000; ++i) nodes += node(i, "n", i == 0 ? NO_PARENT : i - 1);
  const TdsPtr read = parse(file("", nodes));
  ASSERT_TRUE(read);
  int depth = 0;
  for (const Lib3dsNode* n = read->nodes; n; n = n->childs) ++depth;
  EXPECT_EQ(depth, TDS_MAX_DEPTH);
}

TEST(TdsReader, NodesBelowOtherTypesAreLeftOut) {
  TdsFile out;
  ASSERT_TRUE(clean(file("", node_of_type(LIB3DS_CAMERA_NODE_TAG, 0, "camera", NO_PARENT) +
                                 node(1, "below", 0) + node(2, "lower", 1) + node(3, "free")),
                    out));
  EXPECT_TRUE(out.has_nodes);
  const TdsPtr read = tds_parse(out);
  ASSERT_TRUE(read);
  EXPECT_EQ(names(read->nodes), Names{"free"});
}

TEST(TdsReader, TellsOfNodesOfOtherTypes) {
  TdsFile out;
  ASSERT_TRUE(clean(file("", node_of_type(LIB3DS_AMBIENT_NODE_TAG, 0, "ambient", NO_PARENT)), out));
  EXPECT_TRUE(out.has_nodes);
  ASSERT_TRUE(clean(file(triangle("t")), out));
  EXPECT_FALSE(out.has_nodes);
}

TEST(TdsReader, RepeatedTracksAwayFromFrame0AreSafe) {
  const std::string keys =
      u32(5) + u16(0) + floats({1, 2, 3}) + u32(9) + u16(0) + floats({4, 5, 6});
  const TdsPtr read =
      parse(file("", node(0, "n", NO_PARENT, track(LIB3DS_POS_TRACK_TAG, LIB3DS_REPEAT, 2, keys))));
  ASSERT_TRUE(read);
  lib3ds_file_eval(read.get(), 0.0f);
  EXPECT_EQ(read->nodes->matrix[3][0], 4.0f);
}

TEST(TdsReader, KeysBehindTheLimitAreLeftOut) {
  std::string keys;
  for (std::size_t i = 0; i < TDS_MAX_KEYS + 10; ++i) keys += u32(i) + u16(0) + floats({1, 2, 3});
  const TdsPtr read = parse(
      file("", node(0, "n", NO_PARENT, track(LIB3DS_POS_TRACK_TAG, 0, TDS_MAX_KEYS + 10, keys))));
  ASSERT_TRUE(read);
  std::size_t count = 0;
  for (const Lib3dsLin3Key* k = read->nodes->data.object.pos_track.keyL; k; k = k->next) ++count;
  EXPECT_EQ(count, TDS_MAX_KEYS);
}

// ---- real files ------------------------------------------------------------------------------

std::vector<std::string> files_below(const std::string& folder) {
  std::vector<std::string> paths;
  if (!std::filesystem::is_directory(folder)) return paths;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    paths.push_back(entry.path().string());
  }
  return paths;
}

void expect_equal_nodes(const Lib3dsNode* ours, const Lib3dsNode* theirs) {
  for (;; ours = ours->next, theirs = theirs->next) {
    while (theirs && theirs->type != LIB3DS_OBJECT_NODE) theirs = theirs->next;
    ASSERT_EQ(ours != nullptr, theirs != nullptr);
    if (!ours) return;
    EXPECT_STREQ(ours->name, theirs->name);
    EXPECT_STREQ(ours->data.object.instance, theirs->data.object.instance);
    EXPECT_EQ(std::memcmp(ours->matrix, theirs->matrix, sizeof(Lib3dsMatrix)), 0) << ours->name;
    EXPECT_EQ(std::memcmp(ours->data.object.pivot, theirs->data.object.pivot, 12), 0);
    expect_equal_nodes(ours->childs, theirs->childs);
  }
}

void expect_equal_meshes(const Lib3dsMesh* ours, const Lib3dsMesh* theirs) {
  for (; ours && theirs; ours = ours->next, theirs = theirs->next) {
    EXPECT_STREQ(ours->name, theirs->name);
    EXPECT_EQ(std::memcmp(ours->matrix, theirs->matrix, sizeof(Lib3dsMatrix)), 0);
    ASSERT_EQ(ours->points, theirs->points);
    EXPECT_EQ(std::memcmp(ours->pointL, theirs->pointL, ours->points * sizeof(Lib3dsPoint)), 0);
    ASSERT_EQ(ours->texels, theirs->texels);
    if (ours->texels > 0) {
      EXPECT_EQ(std::memcmp(ours->texelL, theirs->texelL, ours->texels * 8), 0);
    }
    ASSERT_EQ(ours->faces, theirs->faces);
    for (unsigned i = 0; i < ours->faces; ++i) {
      const Lib3dsFace& a = ours->faceL[i];
      const Lib3dsFace& b = theirs->faceL[i];
      EXPECT_STREQ(a.material, b.material);
      EXPECT_EQ(std::memcmp(a.points, b.points, sizeof(a.points)), 0);
      EXPECT_EQ(a.smoothing, b.smoothing);
      EXPECT_EQ(std::memcmp(a.normal, b.normal, sizeof(a.normal)), 0);
    }
  }
  EXPECT_FALSE(ours || theirs);
}

void expect_equal_materials(const Lib3dsMaterial* ours, const Lib3dsMaterial* theirs) {
  for (; ours && theirs; ours = ours->next, theirs = theirs->next) {
    EXPECT_STREQ(ours->name, theirs->name);
    EXPECT_EQ(std::memcmp(ours->ambient, theirs->ambient, sizeof(Lib3dsRgba)), 0);
    EXPECT_EQ(std::memcmp(ours->diffuse, theirs->diffuse, sizeof(Lib3dsRgba)), 0);
    EXPECT_EQ(std::memcmp(ours->specular, theirs->specular, sizeof(Lib3dsRgba)), 0);
    EXPECT_EQ(ours->shininess, theirs->shininess);
    EXPECT_EQ(ours->transparency, theirs->transparency);
    EXPECT_STREQ(ours->texture1_map.name, theirs->texture1_map.name);
  }
  EXPECT_FALSE(ours || theirs);
}

/// The clean form of a good file says to lib3ds what the file itself says.
void expect_same_as_original(const std::string& path) {
  SCOPED_TRACE(path);
  const TdsPtr ours = parse(test::TempFolder::read_file(path));
  const TdsPtr theirs(lib3ds_file_load(path.c_str()));
  ASSERT_TRUE(ours);
  ASSERT_TRUE(theirs);
  lib3ds_file_eval(ours.get(), 0.0f);
  lib3ds_file_eval(theirs.get(), 0.0f);
  expect_equal_materials(ours->materials, theirs->materials);
  expect_equal_meshes(ours->meshes, theirs->meshes);
  expect_equal_nodes(ours->nodes, theirs->nodes);
  const Lib3dsCamera* a = ours->cameras;
  const Lib3dsCamera* b = theirs->cameras;
  for (; a && b; a = a->next, b = b->next) {
    EXPECT_STREQ(a->name, b->name);
    EXPECT_EQ(std::memcmp(a->position, b->position, 12), 0);
    EXPECT_EQ(std::memcmp(a->target, b->target, 12), 0);
    EXPECT_EQ(a->fov, b->fov);
    EXPECT_EQ(a->near_range, b->near_range);
    EXPECT_EQ(a->far_range, b->far_range);
  }
  EXPECT_FALSE(a || b);
}

TEST(TdsReader, RealFilesReadAsLib3dsReadsThem) {
  const std::vector<std::string> paths = files_below(ORV_TEST_DATA_DIR "/3ds");
  EXPECT_EQ(paths.size(), 8u);
  for (const std::string& path : paths) expect_same_as_original(path);
}

// ---- spoiled files ---------------------------------------------------------------------------

/// What a loader does with bytes. False when clean bytes are refused by lib3ds.
bool run_through(const std::string& bytes) {
  TdsFile out;
  if (!clean(bytes, out)) return true;
  const TdsPtr file = tds_parse(out);
  if (!file) return false;
  lib3ds_file_eval(file.get(), 0.0f);
  std::vector<vec3> normals;
  for (Lib3dsMesh* m = file->meshes; m; m = m->next) tds_vertex_normals(*m, normals);
  return true;
}

/// Runs the work in a process of its own, which ends when it hangs. True when all went well.
template <class Work>
bool survives(Work work) {
  const pid_t child = fork();
  if (child == 0) {
    alarm(120);
    _exit(work() ? 0 : 1);
  }
  int status = 0;
  waitpid(child, &status, 0);
  return WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

std::string spoil(std::string bytes, std::mt19937& random) {
  for (unsigned i = 0, count = 1 + random() % 4; i < count; ++i) {
    char& byte = bytes[random() % bytes.size()];
    const char values[] = {0, 1, 7, 127, -128, -1, static_cast<char>(random())};
    byte = values[random() % sizeof(values)];
  }
  return bytes;
}

void expect_spoils_are_harmless(const std::string& whole, int rounds) {
  EXPECT_TRUE(survives([&] {
    std::mt19937 random(1);
    for (int i = 0; i < rounds; ++i) {
      if (!run_through(spoil(whole, random))) return false;
    }
    return true;
  }));
}

TEST(TdsReader, SpoiledBytesAreHarmless) { expect_spoils_are_harmless(sample(), 8000); }

TEST(TdsReader, SpoiledRealFilesAreHarmless) {
  for (const std::string& path : files_below(ORV_TEST_DATA_DIR "/3ds")) {
    SCOPED_TRACE(path);
    expect_spoils_are_harmless(test::TempFolder::read_file(path), 1500);
  }
}

TEST(TdsReader, EachByteSpoiledInTurnIsHarmless) {
  const std::string whole = sample();
  EXPECT_TRUE(survives([&] {
    for (std::size_t i = 0; i < whole.size(); ++i) {
      for (const int value : {0, 1, 127, 255}) {
        std::string bytes = whole;
        bytes[i] = static_cast<char>(value);
        if (!run_through(bytes)) return false;
      }
    }
    return true;
  }));
}

TEST(TdsReader, TruncatedRealFilesAreRefused) {
  for (const std::string& path : files_below(ORV_TEST_DATA_DIR "/3ds")) {
    const std::string whole = test::TempFolder::read_file(path);
    for (std::size_t size = 0; size < whole.size(); ++size) {
      EXPECT_FALSE(is_accepted(whole.substr(0, size))) << path << " " << size;
    }
  }
}

}  // namespace
}  // namespace orv
