#include <orv/geometry/mesh.h>

#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/material.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

#include "support/held.h"
#include "support/recording_renderer.h"

namespace orv {
namespace {

using test::Held;
using test::RecordingRenderer;

/// A mesh of some faces with two materials.
class MeshSubsets : public testing::Test {
 protected:
  MeshSubsets() {
    mesh->add_material(first, nullptr);
    mesh->add_material(second, nullptr);
  }
  void give_faces(const std::vector<Material*>& materials) {
    mesh->set_vertex_alloc_params_num_vertices(3);
    mesh->alloc_vertex_data();
    mesh->alloc_face_data(static_cast<unsigned int>(materials.size()), false);
    for (unsigned int i = 0; i < materials.size(); ++i) {
      if (!materials[i]) continue;
      EXPECT_TRUE(mesh->set_face_material(materials[i], i));
    }
  }
  const MaterialSubset& subset(unsigned int i) { return mesh->get_data()->subsets[i]; }

  Held<Mesh> mesh;
  Material* first = new Material;
  Material* second = new Material;
};

TEST_F(MeshSubsets, SpanTheFacesOfTheirMaterials) {
  give_faces({first, first, second, second, second});
  EXPECT_TRUE(mesh->init_subsets());
  ASSERT_EQ(mesh->get_num_subsets(), 2u);
  EXPECT_EQ(subset(0).material_id, first->get_id());
  EXPECT_EQ(subset(0).start_face, 0u);
  EXPECT_EQ(subset(0).end_face, 1);
  EXPECT_EQ(subset(1).material_id, second->get_id());
  EXPECT_EQ(subset(1).start_face, 2u);
  EXPECT_EQ(subset(1).end_face, 4);
}

TEST_F(MeshSubsets, SpanForeignFacesInBetween) {
  give_faces({first, second, nullptr, second, first});
  mesh->init_subsets();
  EXPECT_EQ(subset(0).start_face, 0u);
  EXPECT_EQ(subset(0).end_face, 4);
  EXPECT_EQ(subset(1).start_face, 1u);
  EXPECT_EQ(subset(1).end_face, 3);
}

TEST_F(MeshSubsets, MaterialOnOneFaceGetsAnEmptyOne) {
  give_faces({first, first, second});
  mesh->init_subsets();
  EXPECT_EQ(subset(1).start_face, 0u);
  EXPECT_EQ(subset(1).end_face, -1);
  EXPECT_EQ(subset(1).material_id, second->get_id());
}

TEST_F(MeshSubsets, UnusedMaterialGetsAnEmptyOne) {
  give_faces({first, first});
  mesh->init_subsets();
  EXPECT_EQ(subset(1).end_face, -1);
}

TEST_F(MeshSubsets, AreMadeAnewAndEmptyWithoutFaces) {
  EXPECT_TRUE(mesh->init_subsets());
  EXPECT_EQ(mesh->get_num_subsets(), 2u);
  mesh->remove_all_materials(nullptr, nullptr);
  EXPECT_TRUE(mesh->init_subsets());
  EXPECT_EQ(mesh->get_num_subsets(), 0u);
}

TEST_F(MeshSubsets, FaceIndexOfTheCountIsOutOfRange) {
  give_faces({first, first});
  EXPECT_FALSE(mesh->set_face_material(second, 2));
  EXPECT_FALSE(mesh->set_face_material(nullptr, 0));
  EXPECT_TRUE(mesh->set_face_material(second, 1));
}

TEST_F(MeshSubsets, OneMaterialForAllFaces) {
  give_faces({nullptr, nullptr, nullptr});
  EXPECT_TRUE(mesh->set_material_to_all_faces(second));
  for (unsigned int i = 0; i < 3; ++i) {
    EXPECT_EQ(mesh->get_data()->face_materials[i], static_cast<unsigned int>(second->get_id()));
  }
  EXPECT_FALSE(mesh->set_material_to_all_faces(nullptr));
}

/// Notes which subset is current during each step.
class Watched : public Mesh {
 public:
  void _render(Renderer*) override { note("render"); }
  void render_geometry(Renderer*) override { note("geometry"); }
  void render_geometry_draw(Renderer*) override { note("draw"); }
  std::vector<std::string> steps;

 private:
  void note(const std::string& step) {
    const MaterialSubset* current = get_data()->get_current_subset();
    const auto index = current ? current - get_data()->get_subsets_ptr() : -1;
    steps.push_back(step + std::to_string(index));
  }
};

TEST(MeshSubsetDrawing, RunsItsStepWithTheSubsetCurrent) {
  RecordingRenderer renderer;
  const Held<Watched> mesh;
  mesh->add_material(new Material, nullptr);
  mesh->add_material(new Material, nullptr);
  mesh->init_subsets();
  EXPECT_TRUE(mesh->render_subset(&renderer, 1));
  EXPECT_TRUE(mesh->render_subset_geometry(&renderer, 0));
  EXPECT_TRUE(mesh->render_subset_geometry_draw(&renderer, 1));
  EXPECT_THAT(mesh->steps, testing::ElementsAre("render1", "geometry0", "draw1"));
  EXPECT_EQ(mesh->get_data()->get_current_subset(), nullptr);
  EXPECT_FALSE(mesh->render_subset(&renderer, 2));
  EXPECT_FALSE(mesh->render_subset_geometry(&renderer, 2));
  EXPECT_FALSE(mesh->render_subset_geometry_draw(&renderer, 2));
  EXPECT_EQ(mesh->steps.size(), 3u);
}

TEST_F(MeshSubsets, AreDrawnWithTheirOwnMaterial) {
  RecordingRenderer renderer;
  const Held<GpuProgram> program;
  second->set_gpu_program(program);
  renderer.label(program->get_data_ptr(), "program");
  mesh->init_subsets();
  mesh->render_subset(&renderer, 0);
  EXPECT_EQ(renderer.count("gpu_program_bind"), 0);
  mesh->render_subset(&renderer, 1);
  EXPECT_THAT(renderer.calls(), testing::Contains("gpu_program_bind(program)"));
}

}  // namespace
}  // namespace orv
