#include <orv/loaders/loader3d_lib3ds.h>

#include <gtest/gtest.h>
#include <malloc.h>
#include <orv/math/mat4.h>
#include <orv/scene/camera.h>
#include <orv/scene/scene.h>
#include <orv/scene/tripod.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <string>
#include <vector>

#include "loaders/loader_support.h"
#include "loaders/tds_builder.h"
#include "support/log_capture.h"
#include "support/near.h"

namespace orv::test {
namespace {

using namespace tds;

using Names = std::vector<std::string>;

/// With a model and a scene that holds `file` as "m.3ds" once written.
class Loader3D_Lib3dsTest : public LoaderTest<Loader3D_Lib3ds> {
 protected:
  ~Loader3D_Lib3dsTest() override {
    scene.model_kill_all(nullptr);
    scene.camera_kill_all(nullptr);
    scene.get_root()->release(nullptr, nullptr);
  }

  bool load(const std::string& bytes) { return LoaderTest::load(*model, "m.3ds", bytes); }

  bool load_scene(const std::string& bytes, const char* what) {
    folder.write("m.3ds", bytes);
    return loader.load_scene(&scene, "m.3ds", what);
  }

  MeshData* data(unsigned int i) { return mesh_of(*model, i)->get_data(); }
  Material* face_material_of(unsigned int mesh, unsigned int face) {
    const unsigned int id = data(mesh)->get_face_materials_ptr()[face];
    return static_cast<Material*>(MaterialMgr::get()->get_resource(static_cast<int>(id)));
  }

  Held<Model> model;
  Scene scene;
};

bool is(const vec4& v, float x, float y, float z, float w) {
  return v.x == x && v.y == y && v.z == z && v.w == w;
}

// ---- names and files -------------------------------------------------------------------------

TEST_F(Loader3D_Lib3dsTest, TellsWhatItIs) {
  EXPECT_STREQ(loader.get_name(), "ORV_plugin_core_lib3ds");
  EXPECT_STREQ(loader.get_description(), "Lib3ds loader (core plugin).");
  EXPECT_EQ(loader.get_type(), PLUGIN_TYPE_LOADER3D);
  EXPECT_STRNE(loader.get_author(), "");
  const std::string build = loader.get_build_info();
  EXPECT_EQ(build.find("BUILD_DATE: ["), 0u);
  EXPECT_NE(build.find("] - BUILD_TIME: ["), std::string::npos);
}

TEST_F(Loader3D_Lib3dsTest, GoesByTheEndOfTheName) {
  const struct {
    const char* name;
    bool taken;
  } rows[] = {{"m.3ds", true},   {"m.3DS", true}, {"m.3Ds", true},     {"ab3ds", true},
              {"a.x3", false},   {".3ds", false}, {"m.3dsx", false},   {"m.obj", false},
              {"3ds.3d", false}, {"", false},     {"m.3ds.txt", false}};
  for (const auto& row : rows) {
    if (*row.name) folder.write(row.name, sample());
    EXPECT_EQ(loader.load_model(model, row.name), row.taken) << row.name;
    EXPECT_EQ(loader.load_scene(&scene, row.name, "mesh"), row.taken) << row.name;
  }
}

TEST_F(Loader3D_Lib3dsTest, NullArgumentsAreRefused) {
  folder.write("m.3ds", sample());
  EXPECT_FALSE(loader.load_model(nullptr, "m.3ds"));
  EXPECT_FALSE(loader.load_model(model, nullptr));
  EXPECT_FALSE(loader.load_scene(nullptr, "m.3ds", "mesh"));
  EXPECT_FALSE(loader.load_scene(&scene, nullptr, "mesh"));
}

TEST_F(Loader3D_Lib3dsTest, DirectoryAndNameAreJoinedAsTheyStand) {
  folder.write("sub_m.3ds", sample());
  loader.set_model_dir((folder.path() + "/sub_").c_str());
  EXPECT_TRUE(loader.load_model(model, "m.3ds"));
  loader.set_model_dir(nullptr);
  loader.set_resource_dir("/nowhere/");
  EXPECT_TRUE(loader.load_model(model, "m.3ds"));
  loader.set_model_dir(folder.path().c_str());
  EXPECT_FALSE(loader.load_model(model, "sub_m.3ds"));
}

TEST_F(Loader3D_Lib3dsTest, UnreadableFilesAreRefusedWithALineAtDebugLevelAlone) {
  folder.write("bad.3ds", "this is not a 3DS file");
  LogCapture log(LOG_LEVEL_INFO);
  EXPECT_FALSE(loader.load_model(model, "missing.3ds"));
  EXPECT_FALSE(loader.load_model(model, "bad.3ds"));
  EXPECT_FALSE(loader.load_scene(&scene, "missing.3ds", nullptr));
  EXPECT_FALSE(loader.load_scene(&scene, "bad.3ds", "material + mesh + camera"));
  EXPECT_EQ(model->get_num_children(), 0u);
  EXPECT_EQ(scene.model_get_num(), 0u);
}

// ---- meshes ----------------------------------------------------------------------------------

TEST_F(Loader3D_Lib3dsTest, UpAxisBecomesY) {
  ASSERT_TRUE(load(file(triangle("t"))));
  ASSERT_EQ(model->get_num_children(), 1u);
  EXPECT_EQ(mesh_of(*model, 0)->get_parent(), model.get());
  EXPECT_EQ(mesh_of(*model, 0)->get_ref(), 1);
  EXPECT_EQ(mesh_names(*model), Names{"t"});
  EXPECT_TRUE(is(data(0)->get_position_4f(0), 1, 3, -2, 1));
  EXPECT_TRUE(is(data(0)->get_position_4f(2), 7, 10, -8, 1));
  EXPECT_TRUE(is(data(0)->get_color(2), 1, 1, 1, 1));
}

TEST_F(Loader3D_Lib3dsTest, UsesTheModelsVertexLayout) {
  for (const bool separate : {false, true}) {
    Held<Model> other;
    MeshDataVertexAttribsAllocParams params;
    params.separate_vertex_arrays = separate;
    other->set_mesh_vertex_alloc_params(params);
    ASSERT_TRUE(LoaderTest::load(*other, "m.3ds", file(triangle("t"))));
    MeshData* made = mesh_of(*other, 0)->get_data();
    EXPECT_EQ(made->has_separate_vertex_arrays(), separate);
    EXPECT_TRUE(is(made->get_position_4f(0), 1, 3, -2, 1));
  }
}

TEST_F(Loader3D_Lib3dsTest, TextureCoordinatesGoAsFarAsThereAreAny) {
  ASSERT_TRUE(load(file(triangle("t", "", texels({0.25f, 0.5f, 0.75f, 1})))));
  EXPECT_TRUE(is(data(0)->get_uv0(0), 0.25f, 0.5f, 0, 1));
  EXPECT_TRUE(is(data(0)->get_uv0(1), 0.75f, 1, 0, 1));
  EXPECT_EQ(data(0)->get_uv0(2).x, 0.0f);
}

// Four points in the plane y = 0 of the file and one face; its normal is (0, -1, 0) there.
std::string upright_face(const std::string& name) {
  return mesh(name, points({0, 0, 0, 1, 0, 0, 1, 0, 1, 9, 9, 9}) + faces({0, 1, 2}));
}

TEST_F(Loader3D_Lib3dsTest, NormalsTurnWithThePositions) {
  ASSERT_TRUE(load(file(upright_face("f"))));
  for (unsigned int i = 0; i < 3; ++i) {
    EXPECT_TRUE(near(data(0)->get_normal_vec3(i), vec3(0, 0, 1), 1e-6f)) << i;
  }
  EXPECT_TRUE(near(data(0)->get_normal_vec3(3), vec3(0, 0, 0), 0.0f));
}

TEST_F(Loader3D_Lib3dsTest, AVertexTakesTheNormalOfItsLastCorner) {
  // Without smoothing each face has a normal of its own: the first lies flat, the second stands.
  ASSERT_TRUE(load(
      file(mesh("m", points({0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0, 1}) + faces({0, 1, 2, 0, 1, 3})))));
  EXPECT_TRUE(near(data(0)->get_normal_vec3(0), vec3(0, 0, 1), 1e-6f));
  EXPECT_TRUE(near(data(0)->get_normal_vec3(1), vec3(0, 0, 1), 1e-6f));
  EXPECT_TRUE(near(data(0)->get_normal_vec3(2), vec3(0, 1, 0), 1e-6f));
  EXPECT_TRUE(near(data(0)->get_normal_vec3(3), vec3(0, 0, 1), 1e-6f));
}

TEST_F(Loader3D_Lib3dsTest, FaceNormalsAreVertexNormalsAsStored) {
  // Face 0 stands upright, face 1 lies flat on points of its own.
  const std::string two =
      mesh("two", points({0, 0, 0, 1, 0, 0, 1, 0, 1, 0, 0, 5, 1, 0, 5, 1, 1, 5}) +
                      faces({3, 4, 5, 0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2, 0, 1, 2}));
  ASSERT_TRUE(load(file(two)));
  ASSERT_EQ(data(0)->get_num_faces(), 7u);
  const vec4* normals = data(0)->get_face_normals_ptr();
  // Element i is the normal of vertex i, not that of face i, and keeps the file's axes.
  EXPECT_TRUE(near(normals[0].get_vec3(), vec3(0, -1, 0), 1e-6f));
  EXPECT_TRUE(near(normals[3].get_vec3(), vec3(0, 0, 1), 1e-6f));
  // There are more faces than vertices.
  EXPECT_TRUE(near(normals[6].get_vec3(), vec3(0, 0, 0), 0.0f));
}

TEST_F(Loader3D_Lib3dsTest, TooSmallMeshesAreLeftOutWithoutFailure) {
  EXPECT_TRUE(load(file(mesh("two points", points({1, 2, 3, 4, 5, 6}) + faces({0, 1, 0})))));
  EXPECT_TRUE(load(file(mesh("no faces", points({1, 2, 3, 4, 5, 6, 7, 8, 9})))));
  EXPECT_TRUE(load(file(mesh("no points", faces({0, 1, 2})))));
  EXPECT_TRUE(load(file("")));
  EXPECT_EQ(model->get_num_children(), 0u);
  EXPECT_EQ(MaterialMgr::get()->get_num_resources(), 0u);
}

TEST_F(Loader3D_Lib3dsTest, FacesWithWrongCornersAreLeftOut) {
  ASSERT_TRUE(load(file(
      mesh("m", points({0, 0, 0, 1, 0, 0, 1, 1, 0}) + faces({0, 1, 65535, 2, 1, 0, 3, 0, 1})))));
  ASSERT_EQ(data(0)->get_num_faces(), 1u);
  unsigned int a = 9, b = 9, c = 9;
  mesh_of(*model, 0)->get_face_indexes(0, &a, &b, &c);
  EXPECT_EQ(a * 100 + b * 10 + c, 210u);
}

// ---- nodes -----------------------------------------------------------------------------------

TEST_F(Loader3D_Lib3dsTest, MeshesWithoutNodesLoseTheirMatrix) {
  ASSERT_TRUE(load(
      file(triangle("a", "", matrix({1, 0, 0, 0, 1, 0, 0, 0, 1, 10, 20, 30})) + triangle("b"))));
  EXPECT_EQ(mesh_names(*model), (Names{"a", "b"}));
  EXPECT_TRUE(is(data(0)->get_position_4f(0), -9, -27, 18, 1));
  EXPECT_TRUE(is(data(1)->get_position_4f(0), 1, 3, -2, 1));
}

TEST_F(Loader3D_Lib3dsTest, NodesPlaceTheirMesh) {
  const std::string nodes = node(0, "t", NO_PARENT, position(10, 20, 30) + scale(2, 2, 2));
  ASSERT_TRUE(load(file(triangle("t"), nodes)));
  EXPECT_TRUE(is(data(0)->get_position_4f(0), 12, 36, -24, 1));
}

TEST_F(Loader3D_Lib3dsTest, PivotsAreTakenOffFirst) {
  const std::string nodes =
      node(0, "t", NO_PARENT, pivot(1, 2, 3) + position(10, 20, 30) + scale(2, 2, 2));
  ASSERT_TRUE(load(file(triangle("t"), nodes)));
  EXPECT_TRUE(is(data(0)->get_position_4f(0), 10, 30, -20, 1));
}

TEST_F(Loader3D_Lib3dsTest, SingularMeshMatricesCountAsIdentity) {
  ASSERT_TRUE(load(file(triangle("t", "", matrix({0, 0, 0, 0, 0, 0, 0, 0, 0, 5, 5, 5})))));
  EXPECT_TRUE(is(data(0)->get_position_4f(0), 1, 3, -2, 1));
}

TEST_F(Loader3D_Lib3dsTest, InstanceNamesComeBeforeNodeNames) {
  ASSERT_TRUE(load(file(triangle("t") + triangle("u"),
                        node(0, "t", NO_PARENT, instance("first")) + node(1, "u"))));
  EXPECT_EQ(mesh_names(*model), (Names{"first", "u"}));
}

TEST_F(Loader3D_Lib3dsTest, TwoNodesOnOneMeshMoveItTwice) {
  ASSERT_TRUE(load(file(triangle("t"), node(0, "t", NO_PARENT, position(100, 0, 0)) +
                                           node(1, "t", NO_PARENT, position(10, 0, 0)))));
  ASSERT_EQ(model->get_num_children(), 2u);
  EXPECT_EQ(data(0)->get_position_4f(0).x, 101.0f);
  EXPECT_EQ(data(1)->get_position_4f(0).x, 111.0f);
}

TEST_F(Loader3D_Lib3dsTest, NodesAreWalkedDepthFirst) {
  const std::string meshes = triangle("a") + triangle("b") + triangle("c") + triangle("d");
  ASSERT_TRUE(load(file(meshes, node(0, "a") + node(1, "d") + node(2, "c", 0) + node(3, "b", 2))));
  EXPECT_EQ(mesh_names(*model), (Names{"a", "c", "b", "d"}));
}

TEST_F(Loader3D_Lib3dsTest, NodesWithoutMeshStillCarryTheirChildren) {
  const std::string nodes = node(0, "$$$DUMMY", NO_PARENT, position(5, 0, 0)) + node(1, "t", 0);
  ASSERT_TRUE(load(file(triangle("t"), nodes)));
  ASSERT_EQ(model->get_num_children(), 1u);
  EXPECT_EQ(data(0)->get_position_4f(0).x, 6.0f);
}

TEST_F(Loader3D_Lib3dsTest, OtherNodesAreSkippedWithTheirChildren) {
  const std::string nodes =
      node_of_type(LIB3DS_CAMERA_NODE_TAG, 0, "eye", NO_PARENT) + node(1, "t", 0);
  ASSERT_TRUE(load(file(triangle("t"), nodes)));
  EXPECT_EQ(model->get_num_children(), 0u);
  // A tree of other nodes alone is a tree: none are made.
  ASSERT_TRUE(load(file(triangle("t"), node_of_type(LIB3DS_AMBIENT_NODE_TAG, 0, "x", NO_PARENT))));
  EXPECT_EQ(model->get_num_children(), 0u);
}

TEST_F(Loader3D_Lib3dsTest, ShortFilesCannotMakeVerticesWithoutEnd) {
  const std::string coordinates(65535 * 12, '\0');
  const std::string big =
      mesh("m", chunk(LIB3DS_POINT_ARRAY, u16(65535) + coordinates) + faces({0, 1, 2}));
  std::string nodes;
  for (unsigned i = 0; i < 70; ++i) nodes += node(i, "m");
  ASSERT_TRUE(load(file(big, nodes)));
  EXPECT_EQ(model->get_num_children(), 65u);
}

// ---- materials -------------------------------------------------------------------------------

TEST_F(Loader3D_Lib3dsTest, MaterialsTakeTheValuesOfTheFile) {
  const std::string parts =
      color(LIB3DS_MAT_AMBIENT, 0.125f, 0.25f, 0.375f) +
      color(LIB3DS_MAT_DIFFUSE, 0.5f, 0.625f, 0.75f) + color(LIB3DS_MAT_SPECULAR, 0.875f, 1, 0) +
      percentage(LIB3DS_MAT_SHININESS, 20) + percentage(LIB3DS_MAT_TRANSPARENCY, 75) +
      chunk(LIB3DS_MAT_TEXMAP, chunk(LIB3DS_MAT_MAPNAME, text("wood.png")));
  ASSERT_TRUE(load(file(material("m", parts))));
  Material* made = find_material("m");
  ASSERT_TRUE(made);
  EXPECT_TRUE(is(made->get_ambient(), 0.125f, 0.25f, 0.375f, 1));
  EXPECT_TRUE(is(made->get_diffuse(), 0.5f, 0.625f, 0.75f, 1));
  EXPECT_TRUE(is(made->get_specular(), 0.875f, 1, 0, 1));
  EXPECT_NEAR(made->get_shininess(), 8.0f, 1e-5f);
  EXPECT_EQ(made->get_opacity(), 0.25f);
  ASSERT_EQ(made->async_loading_get_num_texture_filenames(), 1u);
  EXPECT_STREQ(made->async_loading_get_texture_filename(0), "wood.png");
  EXPECT_EQ(made->get_num_textures(), 0u);
  EXPECT_EQ(material_names(*model), Names{"m"});
  EXPECT_EQ(made->get_ref(), 2);
}

TEST_F(Loader3D_Lib3dsTest, MaterialsWithoutATextureNameNone) {
  ASSERT_TRUE(load(file(material("m"))));
  EXPECT_EQ(find_material("m")->async_loading_get_num_texture_filenames(), 0u);
}

TEST_F(Loader3D_Lib3dsTest, ShininessOf0Becomes1) {
  // The smallest shininess a file can hold gives an exponent that is 0 in single precision.
  ASSERT_TRUE(load(file(material("m", percentage(LIB3DS_MAT_SHININESS, 0x8000)))));
  EXPECT_EQ(find_material("m")->get_shininess(), 1.0f);
}

TEST_F(Loader3D_Lib3dsTest, FacesTakeTheirMaterialsOrTheDefault) {
  const std::string parts = face_material("red", {0}) + face_material("nowhere", {1});
  ASSERT_TRUE(load(file(
      material("red") + material("unused") +
      mesh("m", points({0, 0, 0, 1, 0, 0, 1, 1, 0}) + faces({0, 1, 2, 0, 2, 1, 1, 2, 0}, parts)))));
  Material* red = find_material("red");
  EXPECT_EQ(face_material_of(0, 0), red);
  Material* standard = face_material_of(0, 1);
  ASSERT_TRUE(standard);
  EXPECT_NE(standard, red);
  EXPECT_EQ(face_material_of(0, 2), standard);
  EXPECT_EQ(mesh_of(*model, 0)->get_num_materials(), 2u);
  EXPECT_EQ(mesh_of(*model, 0)->get_material_by_index(0), red);
  EXPECT_EQ(mesh_of(*model, 0)->get_material_by_index(1), standard);
}

TEST_F(Loader3D_Lib3dsTest, AMeshHasEachMaterialOnceInTheOrderOfFirstUse) {
  const std::string parts =
      face_material("b", {1, 4}) + face_material("a", {2, 5}) + face_material("c", {3});
  std::vector<unsigned> corners;
  for (int i = 0; i < 7; ++i) corners.insert(corners.end(), {0, 1, 2});
  ASSERT_TRUE(load(file(material("a") + material("b") + material("c") +
                        mesh("m", points({0, 0, 0, 1, 0, 0, 1, 1, 0}) + faces(corners, parts)))));
  const Mesh& made = *mesh_of(*model, 0);
  ASSERT_EQ(made.get_num_materials(), 4u);
  EXPECT_EQ(made.get_material_by_index(0), face_material_of(0, 0));
  EXPECT_STREQ(made.get_material_by_index(1)->get_name(), "b");
  EXPECT_STREQ(made.get_material_by_index(2)->get_name(), "a");
  EXPECT_STREQ(made.get_material_by_index(3)->get_name(), "c");
  EXPECT_EQ(face_material_of(0, 5), find_material("a"));
  EXPECT_EQ(face_material_of(0, 6), made.get_material_by_index(0));
}

TEST_F(Loader3D_Lib3dsTest, EachMeshRegistersADefaultMaterial) {
  ASSERT_TRUE(load(file(material("red") + triangle("a", face_material("red", {0})) +
                        triangle("b", face_material("red", {0})))));
  EXPECT_EQ(MaterialMgr::get()->get_num_resources(), 3u);
  EXPECT_EQ(material_names(*mesh_of(*model, 0)), Names{"red"});
  EXPECT_EQ(material_names(*model), Names{"red"});
}

TEST_F(Loader3D_Lib3dsTest, TwoMaterialsOfOneNameRenameAll) {
  const std::string materials = material("same", color(LIB3DS_MAT_DIFFUSE, 1, 0, 0)) +
                                material("other") +
                                material("same", color(LIB3DS_MAT_DIFFUSE, 0, 1, 0));
  ASSERT_TRUE(load(
      file(materials + mesh("m", points({0, 0, 0, 1, 0, 0, 1, 1, 0}) +
                                     faces({0, 1, 2, 0, 2, 1}, face_material("other", {0}) +
                                                                   face_material("same", {1}))))));
  Names made = material_names(*model);
  std::sort(made.begin(), made.end());
  EXPECT_EQ(made, (Names{"ORV_mat_0", "ORV_mat_1", "ORV_mat_2"}));
  EXPECT_FALSE(find_material("same"));
  // Faces keep theirs: the first of the name.
  EXPECT_TRUE(is(face_material_of(0, 1)->get_diffuse(), 1, 0, 0, 1));
  EXPECT_STREQ(face_material_of(0, 0)->get_name(), "ORV_mat_0");
}

TEST_F(Loader3D_Lib3dsTest, TwoMaterialsOfOneNameAreNumbered) {
  ASSERT_TRUE(load(file(material("same") + material("same"))));
  EXPECT_EQ(material_names(*model), (Names{"ORV_mat_0", "ORV_mat_1"}));
}

TEST_F(Loader3D_Lib3dsTest, KnownMaterialsKeepTheirValuesAndLeaveFacesToTheDefault) {
  const std::string first = file(material("red", color(LIB3DS_MAT_DIFFUSE, 1, 0, 0)));
  const std::string second = file(material("red", color(LIB3DS_MAT_DIFFUSE, 0, 1, 0)) +
                                  triangle("t", face_material("red", {0})));
  Held<Model> other;
  ASSERT_TRUE(LoaderTest::load(*other, "m.3ds", first));
  ASSERT_TRUE(load(second));
  Material* red = find_material("red");
  EXPECT_TRUE(is(red->get_diffuse(), 1, 0, 0, 1));
  EXPECT_EQ(model->get_material(red->get_id()), red);
  EXPECT_NE(face_material_of(0, 0), red);
  EXPECT_FALSE(mesh_of(*model, 0)->get_material(red->get_id()));
}

// ---- scenes ----------------------------------------------------------------------------------

TEST_F(Loader3D_Lib3dsTest, NullWhatTakesNothing) {
  EXPECT_TRUE(load_scene(sample(), nullptr));
  EXPECT_TRUE(load_scene(sample(), ""));
  EXPECT_TRUE(load_scene(sample(), "Mesh + light"));
  EXPECT_EQ(scene.model_get_num(), 0u);
  EXPECT_EQ(scene.camera_get_num(), 0u);
  EXPECT_EQ(MaterialMgr::get()->get_num_resources(), 0u);
}

TEST_F(Loader3D_Lib3dsTest, EachWordTakesItsPart) {
  EXPECT_TRUE(load_scene(sample(), "camera"));
  EXPECT_EQ(scene.camera_get_num(), 1u);
  EXPECT_EQ(scene.model_get_num(), 0u);
  EXPECT_EQ(MaterialMgr::get()->get_num_resources(), 0u);

  EXPECT_TRUE(load_scene(sample(), "materials"));
  EXPECT_EQ(MaterialMgr::get()->get_num_resources(), 2u);
  EXPECT_EQ(scene.model_get_num(), 0u);

  clear_materials();
  EXPECT_TRUE(load_scene(sample(), "mesh"));
  ASSERT_EQ(scene.model_get_num(), 1u);
  Model* made = scene.model_get_by_index(0);
  ASSERT_EQ(made->get_num_children(), 2u);
  EXPECT_EQ(made->get_num_materials(), 0u);
  EXPECT_FALSE(find_material("wood"));
  EXPECT_EQ(mesh_of(*made, 0)->get_num_materials(), 1u);
}

TEST_F(Loader3D_Lib3dsTest, AllWordsTakeAll) {
  EXPECT_TRUE(load_scene(sample(), "material + mesh + camera"));
  ASSERT_EQ(scene.model_get_num(), 1u);
  Model* made = scene.model_get_by_index(0);
  EXPECT_EQ(material_names(*made), (Names{"other", "wood"}));
  EXPECT_EQ(material_names(*mesh_of(*made, 0)), Names{"wood"});
  EXPECT_EQ(scene.camera_get_num(), 1u);
}

TEST_F(Loader3D_Lib3dsTest, MeshMakesAModelEvenWithoutMeshes) {
  EXPECT_TRUE(load_scene(file(material("m")), "mesh + material"));
  ASSERT_EQ(scene.model_get_num(), 1u);
  EXPECT_EQ(scene.model_get_by_index(0)->get_num_children(), 0u);
}

TEST_F(Loader3D_Lib3dsTest, CamerasTakePlaceTargetAndProjection) {
  ASSERT_TRUE(load_scene(file(camera("c", {1, 2, 3, 1, 12, 3, 0, 48}, ranges(2, 50))), "camera"));
  Camera& made = *scene.camera_get_by_index(0);
  EXPECT_TRUE(is(made.get_position(), 1, 3, -2, 1));
  EXPECT_TRUE(is(made.get_tripod()->get_position(), 1, 3, -2, 1));
  EXPECT_TRUE(is(made.get_lookat(), 1, 3, -12, 1));
  EXPECT_TRUE(near(made.get_view_vector().get_vec3(), vec3(0, 0, -1), 1e-5f));
  EXPECT_EQ(made.get_fov(), 50.0f);
  EXPECT_EQ(made.get_aspect(), 1.333f);
  EXPECT_EQ(made.get_znear(), 2.0f);
  EXPECT_EQ(made.get_zfar(), 50.0f);
  mat4 expected;
  expected.buildRHPerspectiveProjectionMatrix_v2(50.0f, true, 1.333f, 2.0f, 50.0f);
  // The getter rebuilds a matrix that is due: the one from the file must stand.
  EXPECT_TRUE(near(*made.get_projection_matrix_ptr(), expected, 0.0f));
  EXPECT_TRUE(near(made.get_projection_matrix(), expected, 0.0f));
}

TEST_F(Loader3D_Lib3dsTest, CamerasWithoutPlanesHaveAProjection) {
  const struct {
    float znear;
    float zfar;
  } rows[] = {{0, 0}, {-1, 10}, {5, 5}, {7, 3}, {NAN, 1}};
  for (const auto& row : rows) {
    scene.camera_kill_all(nullptr);
    ASSERT_TRUE(load_scene(
        file(camera("c", {0, 0, 0, 0, 1, 0, 0, 48}, ranges(row.znear, row.zfar))), "camera"));
    Camera& made = *scene.camera_get_by_index(0);
    mat4 expected;
    expected.buildRHPerspectiveProjectionMatrix_v2(50.0f, true, 1.333f, 1.0f, 1000.0f);
    EXPECT_TRUE(near(made.get_projection_matrix(), expected, 0.0f)) << row.znear;
    EXPECT_EQ(made.get_zfar(), row.zfar);
    if (!std::isnan(row.znear)) {
      EXPECT_EQ(made.get_znear(), row.znear);
    }

    made.set_fov(90.0f);
    expected.buildRHPerspectiveProjectionMatrix_v2(90.0f, true, 1.333f, 1.0f, 1000.0f);
    EXPECT_TRUE(near(made.get_projection_matrix(), expected, 0.0f)) << row.znear;
    EXPECT_EQ(made.get_zfar(), row.zfar);
  }
}

TEST_F(Loader3D_Lib3dsTest, CamerasGetUsablePlanesFromTheHost) {
  ASSERT_TRUE(load_scene(file(camera("c", {0, 0, 0, 0, 1, 0, 0, 48})), "camera"));
  Camera& made = *scene.camera_get_by_index(0);
  made.set_znear(0.5f);
  made.set_zfar(20.0f);
  mat4 expected;
  expected.buildRHPerspectiveProjectionMatrix_v2(50.0f, true, 1.333f, 0.5f, 20.0f);
  EXPECT_TRUE(near(made.get_projection_matrix(), expected, 0.0f));
}

// ---- spoiled files ---------------------------------------------------------------------------

TEST_F(Loader3D_Lib3dsTest, TruncatedFilesAreRefused) {
  const std::string whole = sample();
  for (std::size_t size = 0; size < whole.size(); ++size) {
    ASSERT_FALSE(load(whole.substr(0, size))) << size;
  }
  EXPECT_EQ(model->get_num_children(), 0u);
  EXPECT_EQ(MaterialMgr::get()->get_num_resources(), 0u);
}

TEST_F(Loader3D_Lib3dsTest, SpoiledFilesLeaveNothingBehind) {
  const std::string whole = sample();
  std::minstd_rand random(3);
  std::size_t used_before = 0;
  for (int round = 0; round < 2000; ++round) {
    // The first rounds fill what the library keeps for good.
    if (round == 500) used_before = mallinfo2().uordblks;
    std::string bytes = whole;
    for (int i = 0; i < 3; ++i) {
      bytes[random() % bytes.size()] = static_cast<char>(random() >> 8 & 0xFF);
    }
    folder.write("m.3ds", bytes);
    {
      Held<Model> own;
      loader.load_model(own, "m.3ds");
    }
    loader.load_scene(&scene, "m.3ds", "material + mesh + camera");
    scene.model_kill_all(nullptr);
    scene.camera_kill_all(nullptr);
    clear_materials();
  }
  EXPECT_LT(mallinfo2().uordblks, used_before + 256 * 1024);
}

// ---- real files ------------------------------------------------------------------------------

struct RealFile {
  const char* name;
  unsigned int meshes;
  unsigned int vertices;
  unsigned int faces;
  unsigned int materials;
  unsigned int cameras;
};

// Four nodes stand on one mesh, eight in the hierarchy besides two without a mesh.
constexpr RealFile REAL_FILES[] = {
    {"test1.3ds", 9, 288, 108, 3, 0},
    {"fels.3ds", 1, 386, 768, 1, 0},
    {"RotatingCube.3DS", 1, 26, 12, 0, 0},
    {"cube_with_diffuse_texture.3DS", 1, 32, 12, 1, 0},
    {"CameraRollAnim.3ds", 1, 26, 12, 0, 1},
    {"cube_with_materials.3ds", 1, 8, 12, 5, 0},
    {"cube_four_instances.3ds", 4, 32, 48, 5, 0},
    {"cube_hierarchy.3ds", 8, 64, 96, 3, 0},
};

class RealTdsFiles : public Loader3D_Lib3dsTest {
 protected:
  RealTdsFiles() { loader.set_model_dir(ORV_TEST_DATA_DIR "/3ds/"); }

  void expect_facts(const RealFile& row) {
    SCOPED_TRACE(row.name);
    clear_materials();
    scene.model_kill_all(nullptr);
    scene.camera_kill_all(nullptr);
    ASSERT_TRUE(loader.load_scene(&scene, row.name, "material + mesh + camera"));
    Model& made = *scene.model_get_by_index(0);
    EXPECT_EQ(made.get_num_children(), row.meshes);
    EXPECT_EQ(made.get_num_materials(), row.materials);
    EXPECT_EQ(scene.camera_get_num(), row.cameras);
    unsigned int vertices = 0;
    unsigned int faces = 0;
    for (unsigned int i = 0; i < made.get_num_children(); ++i) {
      vertices += mesh_of(made, i)->get_num_vertices(nullptr);
      faces += mesh_of(made, i)->get_num_faces(nullptr);
      for (const vec4& p : mesh_positions(*mesh_of(made, i))) {
        EXPECT_TRUE(std::isfinite(p.x + p.y + p.z));
      }
    }
    EXPECT_EQ(vertices, row.vertices);
    EXPECT_EQ(faces, row.faces);
  }
};

TEST_F(RealTdsFiles, HoldWhatTheyShould) {
  for (const RealFile& row : REAL_FILES) expect_facts(row);
}

TEST_F(RealTdsFiles, TexturesKeepTheirFileNames) {
  ASSERT_TRUE(loader.load_model(model, "cube_with_diffuse_texture.3DS"));
  EXPECT_EQ(material_names(*model), Names{"01 - Default"});
  EXPECT_EQ(mesh_names(*model), Names{"Quader01"});
  Material* textured = model->get_material_by_index(0);
  ASSERT_EQ(textured->async_loading_get_num_texture_filenames(), 1u);
  EXPECT_STREQ(textured->async_loading_get_texture_filename(0), "TEST.PNG");
  EXPECT_EQ(face_material_of(0, 0), textured);
}

}  // namespace
}  // namespace orv::test
