#include <gtest/gtest.h>

#include <orv/render/renderer_gpu.h>

#include "render/opengl/renderer_opengl.h"
#include "support/fake_gl.h"

namespace orv::test {
namespace {

class Gpus : public testing::Test {
 protected:
  void SetUp() override { gl_.attach(renderer_); }

  FakeGl gl_;
  RendererOpenGL renderer_;
};

TEST_F(Gpus, CreateAppendsMakesCurrentAndReadsTheName) {
  RendererGpu* first = renderer_.gpu_create(3);
  RendererGpu* second = renderer_.gpu_create(4);
  ASSERT_NE(first, nullptr);
  EXPECT_EQ(first->getindex(), 3u);
  EXPECT_EQ(renderer_.get_num_gpus(), 2u);
  EXPECT_EQ(renderer_.gpu_get_by_index(0), first);
  EXPECT_EQ(renderer_.gpu_get_by_index(1), second);
  EXPECT_EQ(renderer_.get_current_gpu(), second);
  EXPECT_STREQ(renderer_.gpu_get_name(first), "Fake renderer");
}

TEST_F(Gpus, IndexPastTheEndGivesNull) {
  EXPECT_EQ(renderer_.gpu_get_by_index(0), nullptr);
  renderer_.gpu_create(0);
  EXPECT_EQ(renderer_.gpu_get_by_index(1), nullptr);
}

TEST_F(Gpus, AreFoundById) {
  RendererGpu* gpu = renderer_.gpu_create(0);
  EXPECT_EQ(renderer_.gpu_get_by_id(gpu->getid()), gpu);
  EXPECT_EQ(renderer_.gpu_get_by_id(-5), nullptr);
}

TEST_F(Gpus, NameIsEmptyWithoutATextOfTheDriver) {
  gl_.remove_string(GL_RENDERER);
  RendererGpu* gpu = renderer_.gpu_create(0);
  EXPECT_STREQ(renderer_.gpu_get_name(gpu), "");
  EXPECT_FALSE(renderer_.gpu_read_description(gpu));
}

TEST_F(Gpus, DescriptionIsReadAgainOnDemand) {
  RendererGpu* gpu = renderer_.gpu_create(0);
  gl_.set_string(GL_RENDERER, "Another");
  EXPECT_TRUE(renderer_.gpu_read_description(gpu));
  EXPECT_STREQ(renderer_.gpu_get_name(gpu), "Another");
}

TEST_F(Gpus, NullGpuIsRefused) {
  EXPECT_FALSE(renderer_.gpu_kill(nullptr));
  EXPECT_FALSE(renderer_.gpu_read_description(nullptr));
  EXPECT_EQ(renderer_.gpu_get_name(nullptr), nullptr);
}

TEST_F(Gpus, KillTakesOutAndClearsTheCurrentOne) {
  RendererGpu* first = renderer_.gpu_create(0);
  RendererGpu* second = renderer_.gpu_create(1);
  EXPECT_TRUE(renderer_.gpu_kill(first));
  EXPECT_EQ(renderer_.get_current_gpu(), second);
  EXPECT_TRUE(renderer_.gpu_kill(second));
  EXPECT_EQ(renderer_.get_current_gpu(), nullptr);
  EXPECT_EQ(renderer_.get_num_gpus(), 0u);
}

TEST_F(Gpus, KillRefusesAStranger) {
  RendererGpu stranger;
  EXPECT_FALSE(renderer_.gpu_kill(&stranger));
  EXPECT_EQ(renderer_.gpu_get_name(&stranger), nullptr);
}

TEST_F(Gpus, NameOfAStrangerIsNotRead) {
  RendererGpu stranger;
  int data = 0;
  stranger.setrdata(&data);
  EXPECT_EQ(renderer_.gpu_get_name(&stranger), nullptr);
  EXPECT_FALSE(renderer_.gpu_read_description(&stranger));
  EXPECT_EQ(data, 0);
}

TEST_F(Gpus, KillAll) {
  renderer_.gpu_create(0);
  renderer_.gpu_create(1);
  EXPECT_TRUE(renderer_.gpu_killall());
  EXPECT_EQ(renderer_.get_num_gpus(), 0u);
  EXPECT_EQ(renderer_.get_current_gpu(), nullptr);
}

TEST_F(Gpus, CurrentOneCanBeSet) {
  RendererGpu* first = renderer_.gpu_create(0);
  renderer_.gpu_create(1);
  EXPECT_TRUE(renderer_.set_current_gpu(first));
  EXPECT_EQ(renderer_.get_current_gpu(), first);
  EXPECT_TRUE(renderer_.gpu_reserved(first));
}

}  // namespace
}  // namespace orv::test
