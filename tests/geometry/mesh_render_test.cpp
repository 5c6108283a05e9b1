#include <orv/geometry/mesh.h>

#include <orv/gpu/gpu_buffer_data.h>
#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/material.h>
#include <orv/gpu/texture.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/held.h"
#include "support/recording_renderer.h"

namespace orv {
namespace {

using test::Held;
using test::RecordingRenderer;
using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::Not;

/// A mesh, a renderer that knows the names of its parts, and a material with a program.
class MeshRender : public testing::Test {
 protected:
  MeshRender() {
    renderer.label(mesh->get_data(), "data");
    renderer.label(mesh->get_data()->vb(), "vb");
    renderer.label(program->get_data_ptr(), "program");
  }

  Material* add_material(bool with_program) {
    auto* material = new Material;
    if (with_program) material->set_gpu_program(program);
    mesh->add_material(material, nullptr);
    return material;
  }

  RecordingRenderer renderer;
  Held<GpuProgram> program;
  Held<Mesh> mesh;
};

const char* const GEOMETRY_CALLS[] = {"geometry_vbo_create(null, data)",
                                      "geometry_vbo_update(data)", "geometry_vbo_bind(data)",
                                      "geometry_vbo_draw(data)", "geometry_vbo_unbind(data)"};

TEST_F(MeshRender, GeometryGoesThroughFiveCallsInOrder) {
  mesh->render_geometry(&renderer);
  EXPECT_THAT(renderer.names(),
              ElementsAre("get_current_gpu_program", "geometry_vbo_create", "geometry_vbo_update",
                          "geometry_vbo_bind", "geometry_vbo_draw", "geometry_vbo_unbind"));
  for (const char* call : GEOMETRY_CALLS) EXPECT_THAT(renderer.calls(), Contains(call));
}

TEST_F(MeshRender, NullRendererDoesNothing) {
  mesh->_render(nullptr);
  mesh->render(nullptr, nullptr);
  mesh->render_geometry(nullptr);
  mesh->render_geometry_prepare(nullptr);
  mesh->render_geometry_draw(nullptr);
  mesh->render_geometry_finish(nullptr);
  EXPECT_EQ(mesh->map_vertex_buffer(nullptr), nullptr);
  EXPECT_FALSE(mesh->unmap_vertex_buffer(nullptr));
}

TEST_F(MeshRender, StepsGoThroughTheirSlots) {
  class Steps : public Mesh {
   public:
    void render_geometry_prepare(Renderer*) override { order += "p"; }
    void render_geometry_draw(Renderer*) override { order += "d"; }
    void render_geometry_finish(Renderer*) override { order += "f"; }
    std::string order;
  };
  const Held<Steps> steps;
  steps->_render(&renderer);
  EXPECT_EQ(steps->order, "pdf");
}

TEST_F(MeshRender, GenericAttributesFollowTheBoundProgram) {
  MeshData& data = *mesh->get_data();
  mesh->render_geometry_prepare(&renderer);
  EXPECT_FALSE(data.get_use_generic_vertex_attribs_state()) << "no program";
  EXPECT_TRUE(data.use_gl2_built_in_vertex_attribs_get_state());

  renderer.set_current_program(program->get_data_ptr());
  program->get_data_ptr()->use_generic_vertex_attribs = true;
  mesh->render_geometry_prepare(&renderer);
  EXPECT_TRUE(data.get_use_generic_vertex_attribs_state());
  EXPECT_FALSE(data.use_gl2_built_in_vertex_attribs_get_state());

  program->get_data_ptr()->use_generic_vertex_attribs = false;
  mesh->render_geometry_prepare(&renderer);
  EXPECT_FALSE(data.get_use_generic_vertex_attribs_state());
}

TEST_F(MeshRender, OtherApisLeaveTheAttributeFlagsAlone) {
  renderer.use_api_type(ORV_API3D_VULKAN);
  mesh->render_geometry_prepare(&renderer);
  EXPECT_TRUE(mesh->get_data()->get_use_generic_vertex_attribs_state());
  EXPECT_EQ(renderer.count("get_current_gpu_program"), 0);
  EXPECT_EQ(renderer.count("geometry_vbo_bind"), 1);
}

TEST_F(MeshRender, FirstMaterialIsBoundAroundTheGeometry) {
  add_material(true);
  add_material(false);
  mesh->_render(&renderer);
  const std::vector<std::string> names = renderer.names();
  ASSERT_FALSE(names.empty());
  EXPECT_EQ(renderer.calls().front(), "gpu_program_bind(program)");
  EXPECT_EQ(renderer.calls().back(), "gpu_program_bind(null)");
  EXPECT_EQ(renderer.count("gpu_program_bind"), 2);
  EXPECT_EQ(renderer.count("material_set_all"), 0);
}

TEST_F(MeshRender, FixedColorsAreSetWhenTheMaterialAsksForThem) {
  add_material(false)->set_use_fixed_material_colors_state(true);
  mesh->_render(&renderer);
  EXPECT_EQ(renderer.names().front(), "material_set_all");
  EXPECT_EQ(renderer.count("gpu_program_bind"), 0);
}

TEST_F(MeshRender, StepsOfADrawFollowInTheirOrder) {
  class Steps : public Mesh {
   public:
    explicit Steps(RecordingRenderer& recorder) : recorder_(recorder) {}
    void set_opengl_2_3_rendering_states(bool, Node*) override { note(1); }
    void bind_gpu_program_uniforms(Renderer*, GpuProgramData*, bool) override { note(2); }
    void render_geometry(Renderer*) override { note(3); }

   private:
    // A call that drawing never makes marks the place.
    void note(unsigned int step) { recorder_.set_viewport(step, 0, 0, 0, 0); }
    RecordingRenderer& recorder_;
  };
  const Held<Steps> steps(renderer);
  auto* material = new Material;
  material->add_texture(new Texture);
  material->set_use_fixed_material_colors_state(true);
  steps->add_material(material, nullptr);
  const auto order = [&] {
    renderer.clear();
    steps->_render(&renderer);
    std::vector<std::string> seen;
    for (const std::string& call : renderer.calls()) {
      const std::string name = call.substr(0, call.find('('));
      const bool texture = name == "texture_bind" || name == "texture_unbind";
      if (name == "texture_update_2d") continue;  // pixels that go along with the first binding
      seen.push_back(texture ? name : call);
    }
    return seen;
  };
  EXPECT_THAT(order(), ElementsAre("texture_bind", testing::StartsWith("material_set_all"),
                                   "get_current_gpu_program()", "enable_texture_2d(true)",
                                   "set_viewport(2, 0, 0, 0, 0)", "set_viewport(3, 0, 0, 0, 0)",
                                   "texture_unbind", "enable_texture_2d(false)"));
  material->set_gpu_program(program);
  EXPECT_THAT(order(), ElementsAre("gpu_program_bind(program)", "texture_bind",
                                   testing::StartsWith("material_set_all"),
                                   "get_current_gpu_program()", "set_viewport(1, 0, 0, 0, 0)",
                                   "set_viewport(2, 0, 0, 0, 0)", "set_viewport(3, 0, 0, 0, 0)",
                                   "gpu_program_bind(null)", "texture_unbind"));
}

TEST_F(MeshRender, ProgramDecidesAboutTheRenderingStates) {
  add_material(true);
  program->get_data_ptr()->use_generic_vertex_attribs = false;
  mesh->_render(&renderer);
  EXPECT_FALSE(mesh->get_use_generic_vertex_attribs_state());
  EXPECT_TRUE(mesh->get_use_fixed_mvp_matrices_state());
  program->get_data_ptr()->use_generic_vertex_attribs = true;
  mesh->_render(&renderer);
  EXPECT_TRUE(mesh->get_use_generic_vertex_attribs_state());
  EXPECT_FALSE(mesh->get_use_fixed_mvp_matrices_state());
}

TEST_F(MeshRender, TexturesWithoutAProgramSwitchFixedTexturingOnAndOff) {
  Material* material = add_material(false);
  material->add_texture(new Texture);
  mesh->_render(&renderer);
  EXPECT_THAT(renderer.calls(),
              AllOf(Contains("enable_texture_2d(true)"), Contains("enable_texture_2d(false)")));
  EXPECT_EQ(renderer.calls().back(), "enable_texture_2d(false)");
  renderer.clear();
  material->set_gpu_program(program);
  mesh->_render(&renderer);
  EXPECT_EQ(renderer.count("enable_texture_2d"), 0);
}

TEST_F(MeshRender, OtherApisKnowNoFixedTexturing) {
  add_material(false)->add_texture(new Texture);
  renderer.use_api_type(ORV_API3D_VULKAN);
  mesh->_render(&renderer);
  EXPECT_EQ(renderer.count("enable_texture_2d"), 0);
}

TEST_F(MeshRender, UniformsTakeTheFixedMatrixState) {
  class Watched : public Mesh {
   public:
    void bind_gpu_program_uniforms(Renderer*, GpuProgramData* bound, bool fixed) override {
      program = bound;
      fixed_matrices = fixed;
    }
    GpuProgramData* program = nullptr;
    bool fixed_matrices = false;
  };
  const Held<Watched> watched;
  watched->set_use_fixed_mvp_matrices_state(true, nullptr);
  watched->_render(&renderer);
  EXPECT_EQ(watched->program, nullptr);
  EXPECT_TRUE(watched->fixed_matrices);
  watched->set_use_fixed_mvp_matrices_state(false, nullptr);
  watched->_render(&renderer);
  EXPECT_FALSE(watched->fixed_matrices);
}

TEST_F(MeshRender, ObjectsOwnProgramGridAndTripodAreNotDrawn) {
  mesh->set_gpu_program(program, nullptr);
  mesh->set_display_grid_state(true, nullptr);
  mesh->set_display_tripod_state(true, nullptr);
  mesh->_render(&renderer);
  EXPECT_EQ(renderer.count("gpu_program_bind"), 0);
  EXPECT_EQ(renderer.count("draw_immediate_line"), 0);
  EXPECT_EQ(renderer.count("geometry_vbo_draw"), 1);
}

TEST_F(MeshRender, TessellationIsAFlagOfTheData) {
  const auto child = new Mesh;
  mesh->add_child(child);
  mesh->set_tessellation_state(true, nullptr);
  EXPECT_TRUE(mesh->get_data()->tessellation);
  EXPECT_FALSE(child->get_data()->tessellation);
  mesh->set_tessellation_state(true, mesh);
  EXPECT_TRUE(child->get_data()->tessellation);
}

TEST_F(MeshRender, WireframeQuadsAreAFlagOfTheData) {
  EXPECT_FALSE(mesh->get_render_wireframe_quad_state());
  mesh->set_render_wireframe_quad_state(true);
  EXPECT_TRUE(mesh->get_data()->render_wireframe_quad);
  EXPECT_TRUE(mesh->get_render_wireframe_quad_state());
}

// ---- buffers ----

TEST_F(MeshRender, MappingRemembersTheAddress) {
  Vertex memory[2];
  renderer.answer_pointer("gpu_buffer_map", memory);
  EXPECT_EQ(mesh->map_vertex_buffer(&renderer), memory);
  EXPECT_THAT(renderer.calls(), ElementsAre("gpu_buffer_map(vb, \"GL_WRITE_ONLY\")"));
  EXPECT_EQ(mesh->get_map_vertex_buffer(), memory);
  EXPECT_TRUE(mesh->unmap_vertex_buffer(&renderer));
  EXPECT_EQ(mesh->get_map_vertex_buffer(), nullptr);
  EXPECT_THAT(renderer.calls(), Contains("gpu_buffer_unmap(vb)"));
}

TEST_F(MeshRender, FourFloatMappingNeedsSeparateArrays) {
  vec4 memory[2];
  renderer.answer_pointer("gpu_buffer_map", memory);
  EXPECT_EQ(mesh->map_vertex_buffer_vec4(&renderer), memory);
  mesh->get_data()->separate_vertex_arrays = false;
  renderer.clear();
  EXPECT_EQ(mesh->map_vertex_buffer_vec4(&renderer), nullptr);
  EXPECT_THAT(renderer.calls(), Not(Contains("gpu_buffer_map(vb, \"GL_WRITE_ONLY\")")));
}

TEST_F(MeshRender, BufferIdsAreThoseOfTheData) {
  mesh->get_data()->vertex_buffer_id = 7;
  mesh->get_data()->ibo = 8;
  EXPECT_EQ(mesh->get_vertex_buffer_opengl_id(), 7u);
  EXPECT_EQ(mesh->get_index_buffer_opengl_id(), 8u);
}

}  // namespace
}  // namespace orv
