#include <orv/geometry/mesh.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <sstream>
#include <string>

#include "geometry/mesh_support.h"
#include "support/held.h"
#include "support/log_capture.h"

namespace orv {
namespace {

using test::give_triangles;
using test::Held;

/// A path that no file has; the file made there is removed in the end.
class MeshExport : public testing::Test {
 protected:
  MeshExport() { std::remove(path.c_str()); }
  ~MeshExport() override { std::remove(path.c_str()); }
  std::string text() const {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream all;
    all << file.rdbuf();
    return all.str();
  }
  std::string path = testing::TempDir() + "orv_mesh_export_test.c";
  Held<Mesh> mesh;
};

const char* const HEAD =
    "\ntypedef struct MeshVertexStruct {\n\tfloat x, y, z; // Position"
    "\n\tfloat nx, ny, nz; // Normal\n\tfloat u, v; // UV Map\n} MeshVertex;"
    "\n\ntypedef struct MeshFaceStruct {\n\tlong a, b, c; // Vertices list indexes"
    "\n\tint material_index;\n} MeshFace;";

TEST_F(MeshExport, WritesStructuresVerticesAndFaces) {
  give_triangles(*mesh, {vec3(1, 2.5f, -3), vec3(0, 0, 0), vec3(0, 0, 1e20f)});
  mesh->set_vertex_normal(0, vec4(0, 1, 0, 0));
  mesh->set_vertex_uv(0, vec4(0.25f, 0.5f, 7, 7), 0);
  EXPECT_TRUE(mesh->export_to_c(path.c_str()));
  const std::string zeros = "0.000000f,0.000000f,0.000000f,0.000000f,0.000000f";
  EXPECT_EQ(text(), std::string(HEAD) +
                        "\n\nstatic MeshVertex vertices_list[] = {"
                        "\n\t{1.000000f,2.500000f,-3.000000f,0.000000f,1.000000f,0.000000f,"
                        "0.250000f,0.500000f},"
                        "\n\t{0.000000f,0.000000f,0.000000f," +
                        zeros +
                        "},"
                        "\n\t{0.000000f,0.000000f,100000002004087734272.000000f," +
                        zeros +
                        "},\n};"
                        "\n\nstatic MeshFace faces_list[] = {\n\t{0,1,2,0},\n};");
}

TEST_F(MeshExport, SecondExportIsAppended) {
  give_triangles(*mesh, {vec3(), vec3(), vec3()});
  EXPECT_TRUE(mesh->export_to_c(path.c_str()));
  const std::string once = text();
  EXPECT_TRUE(mesh->export_to_c(path.c_str()));
  EXPECT_EQ(text(), once + once);
}

TEST_F(MeshExport, EmptyMeshHasEmptyLists) {
  EXPECT_TRUE(mesh->export_to_c(path.c_str()));
  EXPECT_EQ(text(), std::string(HEAD) +
                        "\n\nstatic MeshVertex vertices_list[] = {\n};"
                        "\n\nstatic MeshFace faces_list[] = {\n};");
}

TEST_F(MeshExport, VerticesWithoutAttributesAreWrittenAsZeros) {
  mesh->get_data()->alloc_params.std_vertex_attribs = false;
  mesh->set_vertex_alloc_params_num_vertices(2);
  ASSERT_TRUE(mesh->alloc_vertex_data());
  EXPECT_TRUE(mesh->export_to_c(path.c_str()));
  const std::string line =
      "\n\t{0.000000f,0.000000f,0.000000f,0.000000f,0.000000f,0.000000f,0.000000f,0.000000f},";
  EXPECT_NE(text().find("vertices_list[] = {" + line + line + "\n};"), std::string::npos);
}

TEST_F(MeshExport, CountThatNoMemoryHoldsIsNotWritten) {
  const test::LogCapture log;
  mesh->set_vertex_alloc_params_num_vertices(0xFFFFFFFFu);
  ASSERT_FALSE(mesh->alloc_vertex_data());
  ASSERT_EQ(mesh->get_num_vertices(nullptr), 0xFFFFFFFFu);
  EXPECT_TRUE(mesh->export_to_c(path.c_str()));
  EXPECT_NE(text().find("vertices_list[] = {\n};"), std::string::npos);
}

TEST_F(MeshExport, WithoutDataNoFileIsMade) {
  mesh->cleanup_mesh_data(nullptr);
  EXPECT_FALSE(mesh->export_to_c(path.c_str()));
  EXPECT_FALSE(std::ifstream(path).is_open());
}

TEST_F(MeshExport, GenericIndicesAreWrittenAsZeros) {
  mesh->alloc_face_data_v2(2, MESH_FACE_TRIANGLE_STRIP);
  EXPECT_TRUE(mesh->export_to_c(path.c_str()));
  EXPECT_NE(text().find("= {\n\t{0,0,0,0},\n\t{0,0,0,0},\n};"), std::string::npos);
}

TEST_F(MeshExport, CountsComeThroughTheSlots) {
  class NoVertices : public Mesh {
   public:
    unsigned int get_num_vertices(Node*) override { return 0; }
    unsigned int get_num_faces(Node*) override { return 0; }
  };
  const Held<NoVertices> none;
  give_triangles(*none, {vec3(), vec3(), vec3()});
  EXPECT_TRUE(none->export_to_c(path.c_str()));
  EXPECT_NE(text().find("vertices_list[] = {\n};"), std::string::npos);
}

TEST_F(MeshExport, FailsWhereNoFileCanBe) {
  EXPECT_FALSE(mesh->export_to_c("/no/such/folder/mesh.c"));
  EXPECT_FALSE(mesh->export_to_c(nullptr));
}

}  // namespace
}  // namespace orv
