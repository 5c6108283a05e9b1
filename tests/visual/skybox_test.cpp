#include <orv/visual/skybox.h>

#include <orv/gpu/gpu_program.h>
#include <orv/gpu/gpu_program_data.h>
#include <orv/gpu/gpu_program_mgr.h>
#include <orv/gpu/gpu_program_uniform.h>
#include <orv/gpu/material.h>
#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "support/held.h"
#include "support/log_capture.h"
#include "visual/draw_watcher.h"
#include "visual/picture_files.h"

namespace orv {
namespace {

using test::DrawWatcher;
using test::Held;
using test::LogCapture;
using test::PictureFiles;
using testing::Contains;
using testing::ElementsAre;

class SkyboxTest : public testing::Test {
 protected:
  void TearDown() override {
    sky->_cleanup(nullptr);
    GpuProgramMgr::get()->stop(nullptr);
  }
  bool load(const std::string& last_face) {
    const std::string face = files.write("face.tga", {10, 20, 30});
    const char* f = face.c_str();
    return sky->load_all_faces_from_files(&renderer, f, f, f, f, f, last_face.c_str(), PF_RGBA_U8);
  }
  bool load() { return load(files.write("last.tga", {1, 2, 3})); }

  PictureFiles files;
  DrawWatcher renderer;
  Held<Skybox> sky;
};

// ---- start ----

TEST_F(SkyboxTest, StartsWithAQuadAndNothingElse) {
  EXPECT_EQ(sky->get_type(), NODE_TYPE_SKYBOX);
  EXPECT_EQ(sky->get_cubemap(), nullptr);
  EXPECT_EQ(sky->get_cubemap_gpu_program(), nullptr);
  sky->render_geometry(&renderer);
  ASSERT_EQ(renderer.draws.size(), 1u);
  EXPECT_THAT(renderer.draws[0].positions,
              ElementsAre(vec4(-400, -300, 0, 1), vec4(-400, 300, 0, 1), vec4(400, 300, 0, 1),
                          vec4(400, -300, 0, 1)));
}

TEST_F(SkyboxTest, ResizeRewritesTheQuad) {
  EXPECT_TRUE(sky->resize(2, 4));
  sky->render_geometry(&renderer);
  EXPECT_EQ(renderer.draws[0].positions[0], vec4(-1, -2, 0, 1));
}

// ---- cube map ----

TEST_F(SkyboxTest, FacesAreLoadedInTheirOrderConvertedAndUploaded) {
  std::string names[6];
  const char* pointers[6];
  for (int i = 0; i < 6; ++i) {
    names[i] = files.write("face" + std::to_string(i) + ".tga", {10 * i, 1, 2});
    pointers[i] = names[i].c_str();
  }
  ASSERT_TRUE(sky->load_all_faces_from_files(&renderer, pointers, PF_RGBA_U8));
  Texture* cubemap = sky->get_cubemap();
  ASSERT_NE(cubemap, nullptr);
  EXPECT_EQ(cubemap->get_data_ptr()->get_type(), TEXTURE_CUBE);
  EXPECT_EQ(cubemap->get_addressing_mode(), SAMPLER_ADDRESSING_CLAMP);
  EXPECT_EQ(cubemap->get_ref(), 2) << "the sky's and the manager's";
  EXPECT_TRUE(TextureMgr::get()->has_resource(cubemap));
  for (int i = 0; i < 6; ++i) {
    const Image* face = cubemap->get_cubemap_image_ptr(static_cast<CUBEMAP_FACE>(i));
    EXPECT_EQ(face->get_u8_ptr()[0], 10 * i);
    EXPECT_EQ(face->pixel_format, PF_RGBA_U8);
  }
  EXPECT_EQ(renderer.count("texture_load"), 1);
}

TEST_F(SkyboxTest, FailureKeepsThePresentCubeMap) {
  ASSERT_TRUE(load());
  Texture* present = sky->get_cubemap();
  const unsigned int listed = TextureMgr::get()->get_num_resources();
  {
    const LogCapture log;
    EXPECT_FALSE(load(files.missing()));
    EXPECT_TRUE(log.contains("face 5 not loaded"));
    EXPECT_TRUE(log.contains("missing.tga"));
  }
  renderer.answer("texture_load", 0);
  EXPECT_FALSE(load());
  EXPECT_EQ(sky->get_cubemap(), present);
  EXPECT_EQ(TextureMgr::get()->get_num_resources(), listed) << "the refused ones are gone";
}

TEST_F(SkyboxTest, NullArgumentsLoadNothing) {
  const std::string face = files.write("face.tga", {1, 2, 3});
  const char* f = face.c_str();
  const char* names[6] = {f, f, f, f, f, nullptr};
  EXPECT_FALSE(sky->load_all_faces_from_files(nullptr, f, f, f, f, f, f, PF_RGB_U8));
  EXPECT_FALSE(sky->load_all_faces_from_files(&renderer, nullptr, PF_RGB_U8));
  EXPECT_FALSE(sky->load_all_faces_from_files(&renderer, names, PF_RGB_U8));
  EXPECT_EQ(sky->get_cubemap(), nullptr);
  EXPECT_EQ(TextureMgr::get()->get_num_resources(), 0u);
}

TEST_F(SkyboxTest, NewCubeMapReplacesTheOldOne) {
  ASSERT_TRUE(load());
  const int old_id = sky->get_cubemap()->get_id();
  ASSERT_TRUE(load());
  EXPECT_NE(sky->get_cubemap()->get_id(), old_id);
  EXPECT_FALSE(TextureMgr::get()->has_resource(old_id));
  EXPECT_EQ(renderer.count("texture_unload"), 1);
}

// ---- drawing ----

TEST_F(SkyboxTest, WithoutACubeMapItDrawsNothingAndDoesNotFail) {
  sky->render(&renderer, nullptr);
  EXPECT_TRUE(renderer.draws.empty());
  EXPECT_EQ(renderer.count("set_depth_mask"), 0);
  sky->render(nullptr, nullptr);
}

TEST_F(SkyboxTest, DrawsWithoutDepthAndCullingAndPutsTheStartStateBack) {
  ASSERT_TRUE(load());
  sky->render(&renderer, nullptr);
  const Held<GpuProgram> previous;
  renderer.label(previous->get_data_ptr(), "previous");
  renderer.label(sky->get_cubemap_gpu_program()->get_data_ptr(), "sky");
  renderer.label(sky->get_cubemap()->get_data_ptr(), "cubemap");
  renderer.set_current_program(previous->get_data_ptr());
  renderer.clear();
  sky->render(&renderer, nullptr);
  std::vector<std::string> calls;
  for (const std::string& call : renderer.calls()) {
    for (const char* part :
         {"_bind(", "depth", "cull", "CULL", "rasterizer", "vbo_draw", "unbind("}) {
      if (call.find(part) == std::string::npos) continue;
      calls.push_back(call);
      break;
    }
  }
  EXPECT_THAT(
      calls,
      ElementsAre("gpu_program_bind(sky)", "set_depth_mask(false)", "enable_depth_test(false)",
                  "disable_state(\"GL_CULL_FACE\")", "texture_bind(cubemap, 0)",
                  "geometry_vbo_bind(ptr)", "geometry_vbo_draw(ptr)", "geometry_vbo_unbind(ptr)",
                  "texture_unbind(cubemap, 0)", "gpu_program_bind(previous)",
                  "set_depth_mask(true)", "enable_depth_test(true)", "rasterizer_apply()"));
}

TEST_F(SkyboxTest, SamplerIsSentByTheRendererFirstAndKeptInTheProgramThen) {
  ASSERT_TRUE(load());
  sky->render(&renderer, nullptr);
  const GpuProgramData* program = sky->get_cubemap_gpu_program()->get_data_ptr();
  EXPECT_EQ(renderer.count("gpu_program_set_uniform_1i"), 1);
  EXPECT_EQ(program->find_uniform("cubemap"), nullptr);
  sky->render(&renderer, nullptr);
  EXPECT_EQ(renderer.count("gpu_program_set_uniform_1i"), 1);
  ASSERT_NE(program->find_uniform("cubemap"), nullptr);
}

// ---- program ----

TEST_F(SkyboxTest, ProgramIsMadeOnceByTheVersion) {
  for (const bool modern : {false, true}) {
    renderer.answer("is_api_version_at_least", modern);
    const Held<Skybox> fresh;
    fresh->render(&renderer, nullptr);
    fresh->render(&renderer, nullptr);
    GpuProgram* program = fresh->get_cubemap_gpu_program();
    ASSERT_NE(program, nullptr);
    EXPECT_STREQ(program->get_name(), modern ? "ORV_skybox_gl3_prog" : "ORV_skybox_gl2_prog");
    EXPECT_EQ(program->get_ref(), 2);
    EXPECT_THAT(renderer.calls(), Contains("is_api_version_at_least(3, 2)"));
    EXPECT_STREQ(program->get_model_view_matrix_uniform_name(), "ORV_ModelViewMatrix");
    EXPECT_STREQ(program->get_projection_matrix_uniform_name(), "ORV_ProjectionMatrix");
    EXPECT_STREQ(program->get_model_matrix_uniform_name(), "orvex_ModelMatrix") << "no other name";
    EXPECT_STREQ(program->get_vertex_attrib_name(0), "ORV_Position");
    EXPECT_EQ(renderer.count("gpu_shader_load"), 2);
    EXPECT_EQ(GpuProgramMgr::get()->get_num_resources(), 1u);
    fresh->_cleanup(&renderer);
    renderer.clear();
  }
}

TEST_F(SkyboxTest, TextsOfTheProgramsAreThose) {
  const char* const gl2[2] = {
      "#version 120\nuniform mat4 ORV_ModelViewMatrix;\nuniform mat4 ORV_ProjectionMatrix;\n"
      "void main() \n{\n  mat4 r = ORV_ModelViewMatrix;\n  r[3][0] = 0.0;\n  r[3][1] = 0.0;\n"
      "  r[3][2] = 0.0;\n  vec4 v = inverse(r) * inverse(ORV_ProjectionMatrix) * gl_Vertex;\n"
      "  gl_TexCoord[0] = v;\n  gl_Position = gl_Vertex;\n}",
      "#version 120\nuniform samplerCube cubemap;\nvoid main() \n{\n"
      "vec3 uv = gl_TexCoord[0].xyz;\nuv.x *= -1.0;\n"
      "  gl_FragColor = textureCube(cubemap, normalize(uv.xyz)); \n}"};
  const char* const gl3[2] = {
      "#version 150\nin vec4 ORV_Position;\nout vec4 Vertex_UV;\n"
      "uniform mat4 ORV_ModelViewMatrix;\nuniform mat4 ORV_ProjectionMatrix;\nvoid main() \n{\n"
      "  mat4 r = ORV_ModelViewMatrix;\n  r[3][0] = 0.0;\n  r[3][1] = 0.0;\n  r[3][2] = 0.0;\n"
      "  vec4 v = inverse(r) * inverse(ORV_ProjectionMatrix) * ORV_Position;\n  Vertex_UV = v;\n"
      "  gl_Position = ORV_Position;\n}",
      "#version 150\nin vec4 Vertex_UV;\nout vec4 Out_Color;\nuniform samplerCube cubemap;\n"
      "void main() \n{\nvec3 uv = Vertex_UV.xyz;\nuv.x *= -1.0;\n"
      "  Out_Color = texture(cubemap, normalize(uv.xyz)); \n}"};
  for (const bool modern : {false, true}) {
    renderer.answer("is_api_version_at_least", modern);
    const Held<Skybox> fresh;
    fresh->render(&renderer, nullptr);
    const GpuProgram* program = fresh->get_cubemap_gpu_program();
    const auto& texts = modern ? gl3 : gl2;
    EXPECT_STREQ(program->get_shader_source_code(GPU_SHADER_VERTEX), texts[0]);
    EXPECT_STREQ(program->get_shader_source_code(GPU_SHADER_PIXEL), texts[1]);
    fresh->_cleanup(&renderer);
  }
}

/// Knows no function "inverse".
class StrictRenderer : public DrawWatcher {
 public:
  bool gpu_shader_load(GpuProgramData* program, GPU_SHADER_TYPE type, const char* text,
                       unsigned int size) override {
    DrawWatcher::gpu_shader_load(program, type, text, size);
    return std::string(text, size).find(" inverse(") == std::string::npos;
  }
};

TEST_F(SkyboxTest, TextWithAnInverseOfItsOwnIsTheSecondTry) {
  StrictRenderer strict;
  sky->render(&strict, nullptr);
  ASSERT_NE(sky->get_cubemap_gpu_program(), nullptr);
  EXPECT_EQ(strict.count("gpu_shader_load"), 3);
  const std::string text =
      sky->get_cubemap_gpu_program()->get_shader_source_code(GPU_SHADER_VERTEX);
  EXPECT_NE(text.find("mat4 orv_inv(mat4 m)"), std::string::npos);
  // But for the function and its name it is the first text.
  EXPECT_NE(text.find("void main() \n{\n  mat4 r = ORV_ModelViewMatrix;\n  r[3][0] = 0.0;\n"
                      "  r[3][1] = 0.0;\n  r[3][2] = 0.0;\n  vec4 v = orv_inv(r) * "
                      "orv_inv(ORV_ProjectionMatrix) * gl_Vertex;\n  gl_TexCoord[0] = v;\n"
                      "  gl_Position = gl_Vertex;\n}"),
            std::string::npos);
}

TEST_F(SkyboxTest, RefusedProgramIsToldOnceAndNotTriedAgain) {
  const LogCapture log;
  ASSERT_TRUE(load());
  renderer.answer("gpu_shader_load", 0);
  sky->render(&renderer, nullptr);
  const int tries = renderer.count("gpu_shader_load");
  sky->render(&renderer, nullptr);
  EXPECT_EQ(renderer.count("gpu_shader_load"), tries);
  EXPECT_EQ(log.count("its program was refused"), 1);
  EXPECT_TRUE(renderer.draws.empty());
  EXPECT_EQ(GpuProgramMgr::get()->get_num_resources(), 0u);
}

TEST_F(SkyboxTest, ProgramOfTheHostIsUsedAndStaysTheHosts) {
  ASSERT_TRUE(load());
  GpuProgramMgr& manager = *GpuProgramMgr::get();
  GpuProgram* program = manager.create_gpu_program("host");
  sky->set_cubemap_gpu_program(program);
  sky->set_cubemap_gpu_program(program);
  EXPECT_EQ(sky->get_cubemap_gpu_program(), program);
  EXPECT_EQ(program->get_ref(), 2);
  sky->render(&renderer, nullptr);
  EXPECT_EQ(renderer.draws.size(), 1u);
  EXPECT_EQ(renderer.count("gpu_shader_load"), 0);
  EXPECT_STREQ(program->get_model_view_matrix_uniform_name(), "orvex_ModelViewMatrix");
  EXPECT_TRUE(sky->_cleanup(&renderer));
  EXPECT_TRUE(manager.has_resource(program));
  EXPECT_EQ(program->get_ref(), 1);
}

TEST_F(SkyboxTest, OwnProgramIsKeptWhileThatOfTheHostIsUsed) {
  ASSERT_TRUE(load());
  sky->render(&renderer, nullptr);
  GpuProgram* own = sky->get_cubemap_gpu_program();
  ASSERT_NE(own, nullptr);
  const Held<GpuProgram> program;
  for (int i = 0; i < 3; ++i) {
    sky->set_cubemap_gpu_program(program);
    EXPECT_EQ(sky->get_cubemap_gpu_program(), program.get());
    sky->render(&renderer, nullptr);
    sky->set_cubemap_gpu_program(nullptr);
    EXPECT_EQ(sky->get_cubemap_gpu_program(), own);
    sky->render(&renderer, nullptr);
  }
  EXPECT_EQ(renderer.draws.size(), 7u);
  EXPECT_EQ(renderer.count("gpu_shader_load"), 2) << "made once";
  EXPECT_EQ(program->get_ref(), 1);
  EXPECT_EQ(own->get_ref(), 2);
}

// ---- end ----

TEST_F(SkyboxTest, CleanupReleasesEverything) {
  ASSERT_TRUE(load());
  sky->add_material(new Material, nullptr);
  sky->render(&renderer, nullptr);
  EXPECT_TRUE(sky->cleanup(&renderer, nullptr));
  EXPECT_EQ(sky->get_cubemap(), nullptr);
  EXPECT_EQ(sky->get_cubemap_gpu_program(), nullptr);
  EXPECT_EQ(sky->get_num_materials(), 0u);
  EXPECT_EQ(TextureMgr::get()->get_num_resources(), 0u);
  EXPECT_EQ(GpuProgramMgr::get()->get_num_resources(), 0u);
  EXPECT_EQ(renderer.count("geometry_vbo_destroy"), 1);
  EXPECT_EQ(renderer.count("texture_unload"), 1);
  EXPECT_EQ(renderer.count("gpu_program_unload"), 1);
  renderer.clear();
  sky->render(&renderer, nullptr);
  sky->render_geometry(&renderer);
  EXPECT_TRUE(renderer.calls().empty());
  EXPECT_FALSE(sky->resize(1, 1));
}

TEST_F(SkyboxTest, ProgramThatTheSkyHoldsLastIsUnloadedByCleanup) {
  ASSERT_TRUE(load());
  sky->render(&renderer, nullptr);
  auto* program = new GpuProgram;
  program->shader_load_from_memory(&renderer, GPU_SHADER_VERTEX, "void main() {}", 14);
  sky->set_cubemap_gpu_program(program);
  sky->_cleanup(&renderer);
  EXPECT_EQ(renderer.count("gpu_program_unload"), 2) << "the host's and its own";
}

TEST_F(SkyboxTest, CubeMapHeldByOthersLivesOn) {
  ASSERT_TRUE(load());
  Texture* cubemap = sky->get_cubemap();
  cubemap->add_ref();
  sky->_cleanup(&renderer);
  EXPECT_EQ(cubemap->get_ref(), 1);
  EXPECT_NE(cubemap->get_data_ptr(), nullptr);
  cubemap->release(nullptr, nullptr);
}

TEST_F(SkyboxTest, ManagersMayStopBeforeTheSky) {
  ASSERT_TRUE(load());
  sky->render(&renderer, nullptr);
  TextureMgr::get()->stop(nullptr);
  GpuProgramMgr::get()->stop(nullptr);
  EXPECT_EQ(sky->get_cubemap()->get_ref(), 1);
  EXPECT_TRUE(sky->_cleanup(&renderer));
}

}  // namespace
}  // namespace orv
