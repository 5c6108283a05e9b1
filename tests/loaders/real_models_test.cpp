#include <orv/loaders/loader3d_obj.h>
#include <orv/loaders/loader3d_obj_v2.h>
#include <orv/loaders/loader3d_stl.h>

#include "loaders/loader_support.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <string>

namespace orv::test {
namespace {

/// What a real OBJ file holds, found by a plain line reader and by tinyobjloader.
struct RealObj {
  const char* file;
  unsigned int num_triangles;
  unsigned int num_meshes;
  const char* first_mesh;
  const char* last_mesh;
  const char* materials;  ///< names with '|' between
  float bounds[6];        ///< of the positions that faces use
  bool tinyobj_reads_it;
  unsigned int num_shapes;
  unsigned int num_tinyobj_triangles;
  unsigned int num_tinyobj_materials;
};

const RealObj REAL_OBJ[] = {
#include "loaders/real_obj.inc"
};

/// What a real STL file holds; no triangles for the text form.
struct RealStl {
  const char* file;
  unsigned int num_triangles;
  float bounds[6];
  float first_normal[3];
  float first_vertex[3];
};

const RealStl REAL_STL[] = {
#include "loaders/real_stl.inc"
};

/// Facts are given of more files than stand in tests/data: the others are looked for in a folder of
/// the machine's.
template <class Loader>
class RealModelsTest : public LoaderTest<Loader> {
 protected:
  void find_files(const std::string& root, const char* kind) {
    directory = root.empty() ? "" : root + "/" + kind + "/";
    this->loader.set_model_dir(directory.c_str());
  }
  /// "" without such a folder.
  static std::string extra_root() {
    std::string root = ORV_EXTRA_TEST_DATA;
    if (root.empty()) {
      if (const char* value = std::getenv("ORV_EXTRA_TEST_DATA")) root = value;
    }
    return root;
  }
  bool has_files() const { return !directory.empty() && std::filesystem::is_directory(directory); }
  /// Checks those of the table's files that the folder has, and tells how many there are.
  template <class Row, std::size_t N, class Check>
  std::size_t check_files(const Row (&rows)[N], Check check) const {
    std::size_t num_checked = 0;
    for (const Row& row : rows) {
      if (!std::filesystem::exists(directory + row.file)) continue;
      check(row);
      ++num_checked;
    }
    return num_checked;
  }

  std::string directory;
};

/// The facts are given in six digits.
void expect_near(const vec4& a, float x, float y, float z) {
  const auto near = [](float one, float other) {
    return std::fabs(one - other) <= 1e-5f * std::max(1.0f, std::fabs(other));
  };
  EXPECT_TRUE(near(a.x, x) && near(a.y, y) && near(a.z, z))
      << a.x << " " << a.y << " " << a.z << " for " << x << " " << y << " " << z;
}

unsigned int count_faces(const Model& model) {
  unsigned int count = 0;
  for (unsigned int i = 0; i < model.get_num_children(); ++i) {
    count += mesh_of(model, i)->get_data()->get_num_faces();
  }
  return count;
}

std::string join(const std::vector<std::string>& names) {
  std::string text;
  for (const std::string& name : names) text += (text.empty() ? "" : "|") + name;
  return text;
}

constexpr const char* NO_FOLDER = "no folder of real files: ORV_EXTRA_TEST_DATA";

// ---- OBJ, the library's own loader ----

class RealObjV1 : public RealModelsTest<Loader3D_OBJ> {
 protected:
  void expect_facts(const RealObj& real) {
    SCOPED_TRACE(real.file);
    Held<Model> model;
    ASSERT_TRUE(loader.load_model(model, real.file));
    EXPECT_EQ(count_faces(*model), real.num_triangles);
    ASSERT_EQ(model->get_num_children(), real.num_meshes);
    EXPECT_EQ(join(material_names(*model)), real.materials);
    clear_materials();
    if (real.num_meshes == 0) return;
    EXPECT_EQ(mesh_names(*model).front(), real.first_mesh);
    EXPECT_EQ(mesh_names(*model).back(), real.last_mesh);
    for (unsigned int i = 0; i < model->get_num_children(); ++i) {
      const MeshData& data = *mesh_of(*model, i)->get_data();
      EXPECT_EQ(data.get_num_vertices(), data.get_num_faces() * 3);
      EXPECT_EQ(mesh_of(*model, i)->get_num_materials(), 1u);
    }
    const Bounds bounds(*model);
    expect_near(bounds.min, real.bounds[0], real.bounds[1], real.bounds[2]);
    expect_near(bounds.max, real.bounds[3], real.bounds[4], real.bounds[5]);
  }
};

TEST_F(RealObjV1, SmallFilesLoadAsTheirFactsSay) {
  find_files(ORV_TEST_DATA_DIR, "obj");
  EXPECT_EQ(check_files(REAL_OBJ, [this](const RealObj& real) { expect_facts(real); }), 26u);
}

TEST_F(RealObjV1, AllFilesLoadAsTheirFactsSay) {
  find_files(extra_root(), "obj");
  if (!has_files()) GTEST_SKIP() << NO_FOLDER;
  EXPECT_EQ(check_files(REAL_OBJ, [this](const RealObj& real) { expect_facts(real); }),
            std::size(REAL_OBJ));
}

// ---- OBJ through tinyobjloader ----

class RealObjV2 : public RealModelsTest<Loader3D_OBJ_V2> {
 protected:
  void expect_facts(const RealObj& real) {
    SCOPED_TRACE(real.file);
    Held<Model> model;
    ASSERT_EQ(loader.load_model(model, real.file), real.tinyobj_reads_it);
    EXPECT_EQ(model->get_num_children(), real.num_shapes);
    EXPECT_EQ(count_faces(*model), real.num_tinyobj_triangles);
    EXPECT_EQ(model->get_num_materials(), real.num_tinyobj_materials);
    clear_materials();
    for (unsigned int i = 0; i < model->get_num_children(); ++i) {
      const MeshData& data = *mesh_of(*model, i)->get_data();
      for (unsigned int face = 0; face < data.get_num_faces(); ++face) {
        unsigned int a = 0, b = 0, c = 0;
        mesh_of(*model, i)->get_face_indexes(face, &a, &b, &c);
        ASSERT_LT(std::max({a, b, c}), data.get_num_vertices());
      }
    }
  }
};

TEST_F(RealObjV2, SmallFilesLoadAsTheirFactsSay) {
  find_files(ORV_TEST_DATA_DIR, "obj");
  EXPECT_EQ(check_files(REAL_OBJ, [this](const RealObj& real) { expect_facts(real); }), 26u);
}

TEST_F(RealObjV2, AllFilesLoadAsTheirFactsSay) {
  find_files(extra_root(), "obj");
  if (!has_files()) GTEST_SKIP() << NO_FOLDER;
  EXPECT_EQ(check_files(REAL_OBJ, [this](const RealObj& real) { expect_facts(real); }),
            std::size(REAL_OBJ));
}

// ---- STL ----

class RealStlFiles : public RealModelsTest<Loader3D_STL> {
 protected:
  void expect_facts(const RealStl& real) {
    SCOPED_TRACE(real.file);
    Held<Model> model;
    ASSERT_TRUE(loader.load_model(model, real.file));
    ASSERT_EQ(model->get_num_children(), real.num_triangles > 0 ? 1u : 0u);
    if (real.num_triangles == 0) return;
    MeshData& data = *mesh_of(*model, 0)->get_mesh_data();
    EXPECT_EQ(data.get_num_vertices(), real.num_triangles * 3);
    const float* b = real.bounds;
    const Bounds bounds(*model);
    expect_near(bounds.min, b[0], -b[5], b[1]);
    expect_near(bounds.max, b[3], -b[2], b[4]);
    const float* n = real.first_normal;
    expect_near(data.get_normal(0), n[0], -n[2], n[1]);
    EXPECT_EQ(data.get_normal(0).w, 0.0f);
    const float* p = real.first_vertex;
    expect_near(data.get_position_4f(0), p[0], -p[2], p[1]);
  }
};

TEST_F(RealStlFiles, SmallFilesLoadAsTheirFactsSay) {
  find_files(ORV_TEST_DATA_DIR, "stl");
  EXPECT_EQ(check_files(REAL_STL, [this](const RealStl& real) { expect_facts(real); }), 5u);
}

TEST_F(RealStlFiles, AllFilesLoadAsTheirFactsSay) {
  find_files(extra_root(), "stl");
  if (!has_files()) GTEST_SKIP() << NO_FOLDER;
  EXPECT_EQ(check_files(REAL_STL, [this](const RealStl& real) { expect_facts(real); }),
            std::size(REAL_STL));
}

}  // namespace
}  // namespace orv::test
