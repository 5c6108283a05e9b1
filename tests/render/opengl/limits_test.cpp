#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orv/render/render_window.h>

#include <string>

#include "render/opengl/renderer_opengl.h"
#include "support/fake_back_end.h"
#include "support/fake_gl.h"

namespace orv::test {
namespace {

using testing::ElementsAre;

class Limits : public testing::Test {
 protected:
  void start() { ASSERT_TRUE(gl_.start(renderer_)); }
  int reads_of(const char* name) {
    return static_cast<int>(
        gl_.calls_of({(std::string("glGetIntegerv(") + name + ",").c_str()}).size());
  }

  FakeGl gl_;
  RendererOpenGL renderer_;
};

// ---- direct reads ----

TEST_F(Limits, AreReadFromTheDriver) {
  gl_.set_integer(GL_CURRENT_PROGRAM, 7);
  start();
  EXPECT_EQ(renderer_.get_max_texture_image_units(), 16);
  EXPECT_EQ(renderer_.get_max_texture_size(), 4096);
  EXPECT_FLOAT_EQ(renderer_.get_max_anisotropy(), 16.0f);
  EXPECT_EQ(renderer_.get_current_program_id(), 7u);
}

TEST_F(Limits, AreZeroWithoutAContext) {
  EXPECT_EQ(renderer_.get_max_texture_image_units(), 0);
  EXPECT_EQ(renderer_.get_max_texture_size(), 0);
  EXPECT_FLOAT_EQ(renderer_.get_max_anisotropy(), 0.0f);
  EXPECT_EQ(renderer_.get_current_program_id(), 0u);
  EXPECT_EQ(renderer_.get_texture_2d_binding_of_unit(0), 0u);
  EXPECT_FALSE(renderer_.is_instancing_supported());
  EXPECT_EQ(renderer_.get_num_capabilities(), 0u);
  EXPECT_FALSE(renderer_.get_capability_values("GL_SAMPLES", nullptr, nullptr, nullptr, nullptr));
}

TEST_F(Limits, NoAnisotropyWithoutItsExtension) {
  gl_.set_extensions({});
  start();
  EXPECT_FLOAT_EQ(renderer_.get_max_anisotropy(), 1.0f);
  EXPECT_EQ(gl_.count("glGetFloatv"), 0);
}

TEST_F(Limits, BindingOfAUnitSelectsItAndTheOldOneAgain) {
  gl_.set_integer(GL_ACTIVE_TEXTURE, GL_TEXTURE3);
  gl_.set_integer(GL_TEXTURE_BINDING_2D, 9);
  start();
  EXPECT_EQ(renderer_.get_texture_2d_binding_of_unit(5), 9u);
  EXPECT_THAT(
      gl_.calls(),
      ElementsAre("glGetIntegerv(GL_ACTIVE_TEXTURE, ptr)", "glActiveTexture(GL_TEXTURE5)",
                  "glGetIntegerv(GL_TEXTURE_BINDING_2D, ptr)", "glActiveTexture(GL_TEXTURE3)"));
  EXPECT_EQ(renderer_.get_texture_2d_binding_current(5), 9u);
}

TEST_F(Limits, BindingOfAUnitThatIsNotThereIsZero) {
  start();
  EXPECT_EQ(renderer_.get_texture_2d_binding_of_unit(16), 0u);
  EXPECT_TRUE(gl_.calls().empty());
}

// ---- capabilities ----

TEST_F(Limits, NinetyOneCapabilitiesInTheirOrder) {
  start();
  ASSERT_EQ(renderer_.get_num_capabilities(), 91u);
  EXPECT_STREQ(renderer_.get_capability_name(0), "GL_MAX_SUBROUTINES");
  EXPECT_STREQ(renderer_.get_capability_name(3), "GL_MAX_TEXTURE_SIZE");
  EXPECT_STREQ(renderer_.get_capability_name(90), "GL_MAX_SHADER_COMPILER_THREADS_ARB");
  EXPECT_EQ(renderer_.get_capability_name(91), nullptr);
}

TEST_F(Limits, CapabilityListedTwiceIsOneRecord) {
  start();
  int found = 0;
  for (unsigned int i = 0; i < renderer_.get_num_capabilities(); ++i) {
    found += std::string(renderer_.get_capability_name(i)) ==
             "GL_SHADER_STORAGE_BUFFER_OFFSET_ALIGNMENT";
  }
  EXPECT_EQ(found, 1);
}

TEST_F(Limits, CapabilityIsAskedByName) {
  start();
  EXPECT_TRUE(renderer_.has_capability("GL_MAX_SAMPLES"));
  EXPECT_FALSE(renderer_.has_capability("GL_NO_SUCH_LIMIT"));
  EXPECT_FALSE(renderer_.has_capability(nullptr));
  EXPECT_FALSE(renderer_.get_capability_values(nullptr, nullptr, nullptr, nullptr, nullptr));
  EXPECT_FALSE(
      renderer_.get_capability_values("GL_NO_SUCH_LIMIT", nullptr, nullptr, nullptr, nullptr));
}

TEST_F(Limits, CapabilityReadTwiceAsksTheDriverOnce) {
  gl_.set_integers(GL_MAX_VIEWPORT_DIMS, {16384, 8192});
  start();
  unsigned int a = 0;
  unsigned int b = 0;
  EXPECT_TRUE(renderer_.get_capability_values("GL_MAX_VIEWPORT_DIMS", &a, &b, nullptr, nullptr));
  EXPECT_EQ(a, 16384u);
  EXPECT_EQ(b, 8192u);
  a = b = 0;
  unsigned int c = 1;
  unsigned int d = 1;
  EXPECT_TRUE(renderer_.get_capability_values("GL_MAX_VIEWPORT_DIMS", &a, &b, &c, &d));
  EXPECT_EQ(a, 16384u);
  EXPECT_EQ(b, 8192u);
  EXPECT_EQ(c, 0u);
  EXPECT_EQ(d, 0u);
  EXPECT_EQ(gl_.count("glGetIntegerv"), 1);
}

TEST_F(Limits, CapabilityWithoutTargetsIsTrue) {
  start();
  EXPECT_TRUE(renderer_.get_capability_values("GL_SAMPLES", nullptr, nullptr, nullptr, nullptr));
}

TEST_F(Limits, IndexedCapabilitiesAreReadAxisByAxis) {
  gl_.set_integers(GL_MAX_COMPUTE_WORK_GROUP_SIZE, {1024, 512, 64});
  start();
  unsigned int v[4] = {9, 9, 9, 9};
  EXPECT_TRUE(renderer_.get_capability_values("GL_MAX_COMPUTE_WORK_GROUP_SIZE", &v[0], &v[1], &v[2],
                                              &v[3]));
  EXPECT_THAT(v, ElementsAre(1024u, 512u, 64u, 0u));
  EXPECT_EQ(gl_.count("glGetIntegeri_v"), 3);
  EXPECT_TRUE(renderer_.get_capability_values("GL_MAX_COMPUTE_WORK_GROUP_COUNT", nullptr, nullptr,
                                              nullptr, nullptr));
  EXPECT_EQ(gl_.count("glGetIntegeri_v"), 6);
}

TEST_F(Limits, IndexedCapabilityWithoutTheFunctionIsFalse) {
  gl_.remove_function("glGetIntegeri_v");
  start();
  unsigned int a = 5;
  EXPECT_FALSE(renderer_.get_capability_values("GL_MAX_COMPUTE_WORK_GROUP_SIZE", &a, nullptr,
                                               nullptr, nullptr));
  EXPECT_EQ(a, 5u);
}

TEST_F(Limits, RejectedCapabilityIsCachedAsZeros) {
  gl_.reject_integer(GL_MAX_CULL_DISTANCES);
  start();
  unsigned int a = 5;
  EXPECT_TRUE(
      renderer_.get_capability_values("GL_MAX_CULL_DISTANCES", &a, nullptr, nullptr, nullptr));
  EXPECT_EQ(a, 0u);
  EXPECT_EQ(renderer_.check_gl_error(false, nullptr), 0u);
  EXPECT_TRUE(
      renderer_.get_capability_values("GL_MAX_CULL_DISTANCES", &a, nullptr, nullptr, nullptr));
  EXPECT_EQ(reads_of("GL_MAX_CULL_DISTANCES"), gl_.count("glGetIntegerv"));
  EXPECT_EQ(gl_.count("glGetIntegerv"), 1);
}

TEST_F(Limits, RecordsOfCapabilities) {
  GlCapabilities capabilities;
  EXPECT_EQ(capabilities.add("", 1), nullptr);
  EXPECT_EQ(capabilities.add(nullptr, 1), nullptr);
  RendererCapability* one = capabilities.add("one", 1);
  EXPECT_EQ(capabilities.add("one", 2), one);
  EXPECT_EQ(one->gl_enum, 1u);
  EXPECT_EQ(capabilities.size(), 1u);
}

// ---- memory ----

TEST_F(Limits, MemoryIsZeroWithoutTheVendorsExtensions) {
  gl_.set_extensions({});
  gl_.set_integers(GL_TEXTURE_FREE_MEMORY_ATI, {1, 2, 3, 4});
  start();
  EXPECT_EQ(renderer_.get_gpu_total_memory_nvx(), 0);
  EXPECT_EQ(renderer_.get_gpu_available_memory_nvx(), 0);
  EXPECT_EQ(renderer_.get_gpu_used_memory_nvx(), 0);
  EXPECT_EQ(renderer_.get_num_gpus_amd(), 0u);
  EXPECT_EQ(renderer_.get_gpu_total_memory_amd(0), 0);
  EXPECT_EQ(renderer_.get_free_memory_ati_0x87FE(), 0);
  EXPECT_EQ(renderer_.get_gpu_used_memory_ati(), 0);
  EXPECT_EQ(renderer_.get_texture_free_memory_ati(), 0);
  EXPECT_EQ(renderer_.get_vbo_free_memory_ati(), 0);
  EXPECT_EQ(renderer_.get_renderbuffer_free_memory_ati(), 0);
  EXPECT_TRUE(gl_.calls().empty());
}

TEST_F(Limits, MemoryOfNvidia) {
  gl_.add_extension("GL_NVX_gpu_memory_info");
  gl_.set_integer(0x9048, 8000);
  gl_.set_integer(0x9049, 3000);
  start();
  EXPECT_EQ(renderer_.get_gpu_total_memory_nvx(), 8000);
  EXPECT_EQ(renderer_.get_gpu_available_memory_nvx(), 3000);
  EXPECT_EQ(renderer_.get_gpu_used_memory_nvx(), 5000);
}

TEST_F(Limits, FreeMemoryOfAtiIsTheFirstOfFour) {
  gl_.add_extension("GL_ATI_meminfo");
  gl_.set_integers(GL_TEXTURE_FREE_MEMORY_ATI, {100, 2, 3, 4});
  gl_.set_integers(GL_VBO_FREE_MEMORY_ATI, {200, 2, 3, 4});
  gl_.set_integers(GL_RENDERBUFFER_FREE_MEMORY_ATI, {300, 2, 3, 4});
  gl_.set_integers(0x87FE, {400, 2, 3, 4});
  start();
  EXPECT_EQ(renderer_.get_texture_free_memory_ati(), 100);
  EXPECT_EQ(renderer_.get_vbo_free_memory_ati(), 200);
  EXPECT_EQ(renderer_.get_renderbuffer_free_memory_ati(), 300);
  EXPECT_EQ(renderer_.get_free_memory_ati_0x87FE(), 400);
}

TEST_F(Limits, UsedMemoryOfAtiIsNegativeWithoutTheTotal) {
  gl_.add_extension("GL_ATI_meminfo");
  gl_.set_integer(GL_TEXTURE_FREE_MEMORY_ATI, 100);
  start();
  EXPECT_EQ(renderer_.get_gpu_used_memory_ati(), -100);
}

TEST_F(Limits, RejectedVendorQuestionLeavesNoError) {
  gl_.add_extension("GL_NVX_gpu_memory_info");
  gl_.reject_integer(0x9048);
  start();
  EXPECT_EQ(renderer_.get_gpu_total_memory_nvx(), 0);
  EXPECT_EQ(renderer_.check_gl_error(false, nullptr), 0u);
}

unsigned int two_gpu_ids(unsigned int max_count, unsigned int* ids) {
  if (max_count < 2) return 0;
  ids[0] = 11;
  ids[1] = 12;
  return 2;
}

int gpu_info(unsigned int id, int property, unsigned int type, unsigned int size, void* values) {
  if (property != 0x21A3 || type != GL_UNSIGNED_INT || size != 4) return 0;
  static_cast<unsigned int*>(values)[0] = id * 1000;
  return 1;
}

TEST_F(Limits, MemoryOfAmd) {
  gl_.add_extension("GLX_AMD_gpu_association");
  gl_.add_extension("GL_ATI_meminfo");
  gl_.set_integer(GL_TEXTURE_FREE_MEMORY_ATI, 1000);
  renderer_.use_proc_address([this](const char* name) -> GlProc {
    if (std::string(name) == "glXGetGPUIDsAMD") return reinterpret_cast<GlProc>(&two_gpu_ids);
    if (std::string(name) == "glXGetGPUInfoAMD") return reinterpret_cast<GlProc>(&gpu_info);
    return gl_.proc_address(name);
  });
  ASSERT_TRUE(renderer_.start());
  ASSERT_TRUE(renderer_.extensions_load(nullptr));
  EXPECT_EQ(renderer_.get_num_gpus_amd(), 2u);
  EXPECT_EQ(renderer_.get_gpu_total_memory_amd(0), 11000);
  EXPECT_EQ(renderer_.get_gpu_total_memory_amd(1), 12000);
  EXPECT_EQ(renderer_.get_gpu_total_memory_amd(2), 0);
  EXPECT_EQ(renderer_.get_gpu_used_memory_ati(), 10000);
}

}  // namespace
}  // namespace orv::test
