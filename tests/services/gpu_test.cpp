// The records that a GPU monitor fills keep their layout, which modules built apart rely on.

#include <orv/services/gpu.h>
#include <orv/services/gpu_boostv2.h>
#include <orv/services/gpu_power.h>
#include <orv/services/gpu_temperature.h>

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <type_traits>

namespace orv {
namespace {

static_assert(sizeof(gpuTemperature) == 12);
static_assert(offsetof(gpuTemperature, current) == 0);
static_assert(offsetof(gpuTemperature, min) == 4);
static_assert(offsetof(gpuTemperature, max) == 8);

static_assert(sizeof(gpuPower) == 11 * 4);
static_assert(offsetof(gpuPower, current) == 0);
static_assert(offsetof(gpuPower, max_in_test) == 4);
static_assert(offsetof(gpuPower, throttle_reasons) == 40);

static_assert(std::is_trivially_copyable_v<gpuTemperature>);
static_assert(std::is_trivially_copyable_v<gpuPower>);
static_assert(std::is_trivially_copyable_v<gpuBoostv2>);
static_assert(std::is_trivially_copyable_v<GPU>);
static_assert(std::is_standard_layout_v<GPU>);

// One unsigned, then four numbers.
static_assert(offsetof(GPU, index) == 0);
static_assert(std::is_same_v<decltype(GPU::index), unsigned int>);
static_assert(offsetof(GPU, vendor_id) == 4);
static_assert(offsetof(GPU, revision) == 16);
// 16 bytes of numbers.
static_assert(offsetof(GPU, pci_domain) == 20);
static_assert(offsetof(GPU, pci_function) == 32);
// Three strings of 128 characters.
static_assert(offsetof(GPU, name) == 36);
static_assert(offsetof(GPU, driver_version) == 36 + 128);
static_assert(offsetof(GPU, bios_version) == 36 + 2 * 128);
static_assert(sizeof(GPU::name) == 128 && sizeof(GPU::bios_version) == 128);
// Three values with all bits set.
static_assert(offsetof(GPU, opengl_index) == 420);
static_assert(offsetof(GPU, opencl_index) == 424);
static_assert(offsetof(GPU, display_index) == 428);
// 28 bytes of numbers, a block of 192 bytes, one number.
static_assert(offsetof(GPU, num_cores) == 432);
static_assert(offsetof(GPU, num_states) == 456);
static_assert(offsetof(GPU, states) == 460 && sizeof(GPU::states) == 192);
static_assert(offsetof(GPU, update_interval) == 652);
// Blocks of 512, 128 and 576 bytes, and 8 bytes.
static_assert(offsetof(GPU, processes) == 656 && sizeof(GPU::processes) == 512);
static_assert(offsetof(GPU, fans) == 1168 && sizeof(GPU::fans) == 128);
static_assert(offsetof(GPU, sensors) == 1296 && sizeof(GPU::sensors) == 576);
static_assert(offsetof(GPU, memory_used) == 1872);
static_assert(offsetof(GPU, memory_free) == 1876);
// Four temperatures and three flags.
static_assert(offsetof(GPU, core_temperature) == 1880);
static_assert(offsetof(GPU, board_temperature) == 1880 + 3 * 12);
static_assert(offsetof(GPU, is_primary) == 1928 && sizeof(GPU::is_primary) == 1);
static_assert(offsetof(GPU, is_throttled) == 1930);
// The usage block.
static_assert(offsetof(GPU, gpu_usage) == 1932);
static_assert(offsetof(GPU, gpu_usage_max) == 1936);
static_assert(offsetof(GPU, memory_usage) == 1940);
static_assert(offsetof(GPU, memory_usage_max) == 1944);
static_assert(offsetof(GPU, bus_written) == 1960);
// Two pairs, the power, three numbers, 96 bytes.
static_assert(offsetof(GPU, scales) == 1964 && sizeof(GPU::scales) == 16);
static_assert(offsetof(GPU, power) == 1980);
static_assert(offsetof(GPU, bus_generation) == 2024);
static_assert(offsetof(GPU, bus_max_lanes) == 2032);
static_assert(offsetof(GPU, rails) == 2036 && sizeof(GPU::rails) == 96);
// One number, 16 bytes, one number.
static_assert(offsetof(GPU, num_linked) == 2132);
static_assert(offsetof(GPU, uuid) == 2136 && sizeof(GPU::uuid) == 16);
static_assert(offsetof(GPU, num_updates) == 2152);
static_assert(sizeof(GPU) == 2156);

/// Whether all bytes from one place of a record up to another are zero.
bool is_zero(const GPU& gpu, std::size_t from, std::size_t to) {
  unsigned char bytes[sizeof(GPU)];
  std::memcpy(bytes, &gpu, sizeof bytes);
  for (std::size_t i = from; i < to; ++i) {
    if (bytes[i] != 0) return false;
  }
  return true;
}

TEST(GpuTemperature, NewOneIsOutsideOfAllReadings) {
  const gpuTemperature temperature;
  EXPECT_EQ(temperature.current, 0.0f);
  EXPECT_EQ(temperature.min, 1000.0f);
  EXPECT_EQ(temperature.max, -1000.0f);
}

TEST(GpuTemperature, FirstUpdateSetsBothExtremes) {
  gpuTemperature temperature;
  temperature.update_min_max();
  EXPECT_EQ(temperature.min, 0.0f);
  EXPECT_EQ(temperature.max, 0.0f);
}

TEST(GpuTemperature, UpdateWidensTheExtremes) {
  gpuTemperature temperature;
  for (const float reading : {40.0f, 35.5f, 61.25f, 50.0f}) {
    temperature.current = reading;
    temperature.update_min_max();
  }
  EXPECT_EQ(temperature.min, 35.5f);
  EXPECT_EQ(temperature.max, 61.25f);
  EXPECT_EQ(temperature.current, 50.0f);
}

TEST(GpuTemperature, InitTakesThePresentReading) {
  gpuTemperature temperature;
  temperature.min = 10.0f;
  temperature.max = 90.0f;
  temperature.current = 42.0f;
  temperature.init_min_max_from_current();
  EXPECT_EQ(temperature.min, 42.0f);
  EXPECT_EQ(temperature.max, 42.0f);
}

TEST(GpuPower, AllFieldsAreZeroAtFirst) {
  const gpuPower power;
  unsigned char bytes[sizeof power];
  std::memcpy(bytes, &power, sizeof bytes);
  for (const unsigned char byte : bytes) EXPECT_EQ(byte, 0);
}

TEST(GpuPower, HighestReadingIsKept) {
  gpuPower power;
  power.current = 215.5f;
  power.update_max_in_test();
  EXPECT_EQ(power.max_in_test, 215.5f);
  power.current = 90.0f;
  power.update_max_in_test();
  EXPECT_EQ(power.max_in_test, 215.5f);
  EXPECT_EQ(power.current, 90.0f);
}

TEST(GpuBoostv2, CopiesHoldEveryPoint) {
  gpuBoostv2 boost;
  EXPECT_EQ(boost.num_points, 0u);
  EXPECT_EQ(boost.points[gpuBoostv2::MAX_POINTS - 1].voltage, 0u);
  boost.boost_clock = 1800;
  boost.points[gpuBoostv2::MAX_POINTS - 1].offset = -15000;
  const gpuBoostv2 copy = boost;
  gpuBoostv2 assigned;
  assigned = copy;
  EXPECT_EQ(assigned.boost_clock, 1800u);
  EXPECT_EQ(assigned.points[gpuBoostv2::MAX_POINTS - 1].offset, -15000);
}

TEST(Gpu, StartsWithItsDefaults) {
  const GPU gpu;
  EXPECT_TRUE(is_zero(gpu, 0, offsetof(GPU, opengl_index)));
  EXPECT_EQ(gpu.opengl_index, -1);
  EXPECT_EQ(gpu.opencl_index, -1);
  EXPECT_EQ(gpu.display_index, -1);
  EXPECT_TRUE(is_zero(gpu, offsetof(GPU, num_cores), offsetof(GPU, update_interval)));
  EXPECT_EQ(gpu.update_interval, 1000u);
  EXPECT_TRUE(is_zero(gpu, offsetof(GPU, processes), offsetof(GPU, core_temperature)));
  for (const gpuTemperature& temperature : {gpu.core_temperature, gpu.hot_spot_temperature,
                                            gpu.memory_temperature, gpu.board_temperature}) {
    EXPECT_EQ(temperature.current, 0.0f);
    EXPECT_EQ(temperature.min, 1000.0f);
    EXPECT_EQ(temperature.max, -1000.0f);
  }
  EXPECT_FALSE(gpu.is_primary);
  EXPECT_FALSE(gpu.is_integrated);
  EXPECT_FALSE(gpu.is_throttled);
  EXPECT_TRUE(is_zero(gpu, offsetof(GPU, gpu_usage), offsetof(GPU, scales)));
  for (const GPU::Scale& scale : gpu.scales) {
    EXPECT_EQ(scale.factor, 1.0f);
    EXPECT_EQ(scale.offset, 0.0f);
  }
  EXPECT_TRUE(is_zero(gpu, offsetof(GPU, power), offsetof(GPU, num_linked)));
  EXPECT_EQ(gpu.num_linked, 1u);
  EXPECT_TRUE(is_zero(gpu, offsetof(GPU, uuid), sizeof(GPU)));
}

TEST(Gpu, UsagesRiseAndDoNotFall) {
  GPU gpu;
  gpu.gpu_usage = 70.0f;
  gpu.memory_usage = 20.0f;
  gpu.update_usages_max();
  gpu.gpu_usage = 30.0f;
  gpu.memory_usage = 55.0f;
  gpu.update_usages_max();
  EXPECT_EQ(gpu.gpu_usage_max, 70.0f);
  EXPECT_EQ(gpu.memory_usage_max, 55.0f);
}

}  // namespace
}  // namespace orv
