#include <orv/gpu/gpu_enums.h>
#include <orv/services/opencl_plugin.h>

#include <gmock/gmock.h>

#include <vector>

#include "services/loaded_module.h"
#include "support/log_capture.h"
#include "support/recording_renderer.h"

namespace orv::test {
namespace {

using testing::Each;
using testing::ElementsAre;

constexpr const char* SOURCE = R"(
kernel void fill(global uint* out) { out[get_global_id(0)] = get_global_id(0); }
kernel void add(global const float* a, global const float* b, global float* out) {
  size_t i = get_global_id(0);
  out[i] = a[i] + b[i];
}
kernel void scale(global float* in_out, float factor) { in_out[get_global_id(0)] *= factor; }
)";

class OpenCLModule : public LoadedModule<OpenCLPlugin> {
 protected:
  OpenCLModule() : LoadedModule("opencl") {}

  void SetUp() override {
    LoadedModule::SetUp();
    ASSERT_NE(plugin_, nullptr);
    context_ = plugin_->create_context(0, 0, nullptr);
    ASSERT_GT(context_, 0);
  }

  int make_buffer(const std::vector<float>& values) {
    const int buffer = plugin_->create_buffer(context_, values.size() * sizeof(float),
                                              DATA_ACCESS_READ_WRITE, values.data());
    EXPECT_GT(buffer, 0);
    return buffer;
  }
  template <class Value = float>
  std::vector<Value> read(int buffer, std::size_t count) {
    std::vector<Value> values(count);
    EXPECT_TRUE(plugin_->read_buffer(buffer, 0, count * sizeof(Value), values.data()));
    return values;
  }
  int make_kernel(const char* name) {
    const int program = plugin_->build_program(context_, SOURCE, nullptr);
    EXPECT_GT(program, 0);
    const int kernel = plugin_->create_kernel(program, name);
    EXPECT_GT(kernel, 0);
    return kernel;
  }
  bool run(int kernel, unsigned long long points) {
    return plugin_->enqueue_kernel(kernel, 1, &points, nullptr, true);
  }

  int context_ = 0;
};

TEST_F(OpenCLModule, TellsOfItsDevice) {
  EXPECT_EQ(plugin_->get_num_platforms(), 1u);
  EXPECT_EQ(plugin_->get_num_devices(0), 1u);
  EXPECT_EQ(plugin_->get_num_devices(1), 0u);
  OpenCLDeviceInfo info;
  ASSERT_TRUE(plugin_->get_device_info(0, 0, &info));
  EXPECT_STREQ(info.platform_name, "Test platform");
  EXPECT_STREQ(info.device_name, "Processor");
  EXPECT_EQ(info.type, OPENCL_DEVICE_CPU);
  EXPECT_EQ(info.max_work_group_size, 256u);
  EXPECT_EQ(info.memory_size, 64ull << 20);
  EXPECT_FALSE(info.shares_with_opengl);
  EXPECT_FALSE(plugin_->get_device_info(0, 1, &info));
  EXPECT_FALSE(plugin_->get_device_info(0, 0, nullptr));
}

TEST_F(OpenCLModule, ContextsNeedADevice) {
  EXPECT_EQ(plugin_->create_context(1, 0, nullptr), 0);
  EXPECT_EQ(plugin_->create_context(0, 1, nullptr), 0);
  RecordingRenderer renderer;
  EXPECT_EQ(plugin_->create_context(0, 0, &renderer), 0) << "it cannot share";
  EXPECT_EQ(plugin_->share_gl_object(context_, OPENCL_GL_BUFFER, 1, DATA_ACCESS_READ_WRITE), 0);
}

TEST_F(OpenCLModule, BuffersHoldWhatIsWritten) {
  const int buffer = make_buffer({1, 2, 3, 4});
  const float values[] = {20, 30};
  EXPECT_TRUE(plugin_->write_buffer(buffer, 4, 8, values));
  EXPECT_THAT(read(buffer, 4), ElementsAre(1, 20, 30, 4));
  const int zeros = plugin_->create_buffer(context_, 12, DATA_ACCESS_READ_WRITE, nullptr);
  EXPECT_THAT(read(zeros, 3), Each(0));
}

TEST_F(OpenCLModule, RangesPastTheEndAreRefused) {
  const int buffer = make_buffer({1, 2});
  float values[2] = {};
  EXPECT_FALSE(plugin_->write_buffer(buffer, 4, 8, values));
  EXPECT_FALSE(plugin_->read_buffer(buffer, 9, 0, values));
  EXPECT_FALSE(plugin_->read_buffer(buffer, 8, ~0ull, values)) << "the sum wraps";
  EXPECT_FALSE(plugin_->read_buffer(buffer, 0, 8, nullptr));
  EXPECT_THAT(read(buffer, 2), ElementsAre(1, 2));
  EXPECT_EQ(plugin_->create_buffer(context_, 0, DATA_ACCESS_READ_WRITE, nullptr), 0);
  EXPECT_EQ(plugin_->create_buffer(context_, 1ull << 40, DATA_ACCESS_READ_WRITE, nullptr), 0);
}

TEST_F(OpenCLModule, BuffersShareTheMemory) {
  OpenCLDeviceInfo info;
  ASSERT_TRUE(plugin_->get_device_info(0, 0, &info));
  const auto make = [&] {
    return plugin_->create_buffer(context_, info.max_buffer_size, DATA_ACCESS_READ_WRITE, nullptr);
  };
  int last = 0;
  for (auto left = info.memory_size; left >= info.max_buffer_size; left -= info.max_buffer_size) {
    last = make();
    EXPECT_GT(last, 0);
  }
  EXPECT_EQ(make(), 0) << "all of it is taken";
  EXPECT_TRUE(plugin_->release_object(last));
  EXPECT_GT(make(), last) << "a new number";
}

TEST_F(OpenCLModule, KernelAddsBuffers) {
  const int kernel = make_kernel("add");
  const int a = make_buffer({1, 2, 3}), b = make_buffer({10, 20, 30}), out = make_buffer({0, 0, 0});
  EXPECT_FALSE(run(kernel, 3)) << "no arguments yet";
  EXPECT_TRUE(plugin_->set_kernel_argument(kernel, 0, a, 0, nullptr));
  EXPECT_TRUE(plugin_->set_kernel_argument(kernel, 1, b, 0, nullptr));
  EXPECT_TRUE(plugin_->set_kernel_argument(kernel, 2, out, 0, nullptr));
  EXPECT_TRUE(run(kernel, 3));
  EXPECT_THAT(read(out, 3), ElementsAre(11, 22, 33));
  EXPECT_FALSE(run(kernel, 4)) << "more points than the buffers hold";
  EXPECT_TRUE(plugin_->set_kernel_argument(kernel, 0, out, 0, nullptr));
  EXPECT_TRUE(run(kernel, 2));
  EXPECT_THAT(read(out, 3), ElementsAre(21, 42, 33));
}

TEST_F(OpenCLModule, KernelTakesPlainValues) {
  const int kernel = make_kernel("scale");
  const int buffer = make_buffer({1, -2, 4});
  const float factor = 2.5f;
  EXPECT_TRUE(plugin_->set_kernel_argument(kernel, 0, buffer, 0, nullptr));
  EXPECT_FALSE(run(kernel, 3));
  EXPECT_FALSE(plugin_->set_kernel_argument(kernel, 1, 0, sizeof factor, nullptr));
  EXPECT_FALSE(plugin_->set_kernel_argument(kernel, 1, 0, 8, &factor));
  EXPECT_FALSE(plugin_->set_kernel_argument(kernel, 2, 0, sizeof factor, &factor));
  EXPECT_TRUE(plugin_->set_kernel_argument(kernel, 1, 0, sizeof factor, &factor));
  EXPECT_TRUE(run(kernel, 3));
  EXPECT_THAT(read(buffer, 3), ElementsAre(2.5f, -5.0f, 10.0f));
}

TEST_F(OpenCLModule, GridsHaveUpToThreeDimensions) {
  const int kernel = make_kernel("fill");
  const int out = make_buffer(std::vector<float>(24));
  ASSERT_TRUE(plugin_->set_kernel_argument(kernel, 0, out, 0, nullptr));
  const unsigned long long grid[] = {2, 3, 4}, group[] = {2, 1, 4}, uneven[] = {2, 2, 4};
  EXPECT_TRUE(plugin_->enqueue_kernel(kernel, 3, grid, group, false));
  EXPECT_EQ(read<unsigned int>(out, 24)[23], 23u);
  EXPECT_FALSE(plugin_->enqueue_kernel(kernel, 3, grid, uneven, true));
  EXPECT_FALSE(plugin_->enqueue_kernel(kernel, 4, grid, nullptr, true));
  EXPECT_FALSE(plugin_->enqueue_kernel(kernel, 0, grid, nullptr, true));
  EXPECT_FALSE(plugin_->enqueue_kernel(kernel, 1, nullptr, nullptr, true));
  const unsigned long long huge[] = {1ull << 63, 1ull << 63, 2};
  EXPECT_FALSE(plugin_->enqueue_kernel(kernel, 3, huge, nullptr, true));
}

TEST_F(OpenCLModule, SourceThatDoesNotCompileIsLogged) {
  LogCapture log;
  EXPECT_EQ(plugin_->build_program(context_, "kernel void conquer(int x)", nullptr), 0);
  EXPECT_TRUE(log.contains("[test opencl] unknown kernel: conquer")) << log.text();
  EXPECT_EQ(plugin_->build_program(context_, "nothing", nullptr), 0);
  EXPECT_TRUE(log.contains("no kernel in the source")) << log.text();
  EXPECT_EQ(plugin_->build_program(context_, nullptr, nullptr), 0);
}

TEST_F(OpenCLModule, KernelsAreFoundByName) {
  const int program = plugin_->build_program(context_, "kernel void add(...)", "-w");
  EXPECT_GT(plugin_->create_kernel(program, "add"), 0);
  EXPECT_EQ(plugin_->create_kernel(program, "fill"), 0) << "not in this source";
  EXPECT_EQ(plugin_->create_kernel(program, nullptr), 0);
  EXPECT_EQ(plugin_->create_kernel(context_, "add"), 0) << "no program";
}

TEST_F(OpenCLModule, KernelOutlivesItsProgram) {
  const int program = plugin_->build_program(context_, SOURCE, nullptr);
  const int kernel = plugin_->create_kernel(program, "fill");
  const int out = make_buffer({9, 9});
  EXPECT_TRUE(plugin_->release_object(program));
  EXPECT_EQ(plugin_->create_kernel(program, "fill"), 0);
  EXPECT_TRUE(plugin_->set_kernel_argument(kernel, 0, out, 0, nullptr));
  EXPECT_TRUE(run(kernel, 2));
  EXPECT_THAT(read<unsigned int>(out, 2), ElementsAre(0, 1));
}

TEST_F(OpenCLModule, ObjectsOfTwoContextsDoNotMix) {
  const int other = plugin_->create_context(0, 0, nullptr);
  const int foreign = plugin_->create_buffer(other, 16, DATA_ACCESS_READ_WRITE, nullptr);
  const int kernel = make_kernel("fill");
  EXPECT_FALSE(plugin_->set_kernel_argument(kernel, 0, foreign, 0, nullptr));
}

TEST_F(OpenCLModule, ContextEndsWithAllThatWasMadeInIt) {
  const int other = plugin_->create_context(0, 0, nullptr);
  const int kept = plugin_->create_buffer(other, 16, DATA_ACCESS_READ_WRITE, nullptr);
  const int buffer = make_buffer({1});
  const int kernel = make_kernel("fill");
  EXPECT_TRUE(plugin_->set_kernel_argument(kernel, 0, buffer, 0, nullptr));
  EXPECT_TRUE(plugin_->release_object(context_));
  float value = 0;
  EXPECT_FALSE(plugin_->read_buffer(buffer, 0, 4, &value));
  EXPECT_FALSE(run(kernel, 1));
  EXPECT_FALSE(plugin_->release_object(buffer));
  EXPECT_FALSE(plugin_->release_object(context_));
  EXPECT_TRUE(plugin_->read_buffer(kept, 0, 4, &value));
}

TEST_F(OpenCLModule, ReleasedBufferIsNoArgumentAnyMore) {
  const int kernel = make_kernel("fill");
  const int buffer = make_buffer({1});
  EXPECT_TRUE(plugin_->set_kernel_argument(kernel, 0, buffer, 0, nullptr));
  EXPECT_TRUE(plugin_->release_object(buffer));
  EXPECT_FALSE(run(kernel, 1));
}

}  // namespace
}  // namespace orv::test
