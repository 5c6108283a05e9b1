#include <orv/services/gpu.h>
#include <orv/services/gpu_boostv2.h>
#include <orv/services/gpu_monitor.h>
#include <orv/services/gpu_power.h>
#include <orv/services/gpu_temperature.h>

#include <gmock/gmock.h>

#include <cstring>
#include <string>

#include "services/loaded_module.h"
#include "support/log_capture.h"
#include "support/temp_folder.h"

namespace orv::test {
namespace {

using testing::HasSubstr;
using testing::Not;

constexpr unsigned int LARGE = 0, SMALL = 1, NONE = 2;

class GpuMonitorModule : public LoadedModule<GpuMonitor> {
 protected:
  GpuMonitorModule() : LoadedModule("gpu_monitor") {}

  void SetUp() override {
    LoadedModule::SetUp();
    ASSERT_NE(plugin_, nullptr);
    ASSERT_EQ(plugin_->get_num_gpus(), 2u);
  }
  /// Reads the large GPU until its load is all of it.
  GPU* work_hard() {
    for (int i = 0; i < 2; ++i) EXPECT_TRUE(plugin_->update_gpu(LARGE));
    return plugin_->get_gpu(LARGE);
  }
  unsigned int clock() {
    unsigned int mhz = 0;
    EXPECT_TRUE(plugin_->get_clock(LARGE, GPU_CLOCK_CORE, &mhz));
    return mhz;
  }
  gpuPower power() {
    gpuPower reading;
    EXPECT_TRUE(plugin_->get_power(LARGE, &reading));
    return reading;
  }
};

TEST_F(GpuMonitorModule, TellsWhoTheGpusAre) {
  EXPECT_STREQ(plugin_->get_gpu_name(LARGE), "Large GPU");
  EXPECT_STREQ(plugin_->get_gpu_name(SMALL), "Small GPU");
  EXPECT_STREQ(plugin_->get_vendor_name(LARGE), "Tests");
  EXPECT_STREQ(plugin_->get_driver_name(LARGE), "simulated");
  EXPECT_STREQ(plugin_->get_driver_version(SMALL), "1.2.3");
  EXPECT_STREQ(plugin_->get_bios_version(LARGE), "90.04");
  EXPECT_EQ(plugin_->get_bios_version(SMALL), nullptr) << "it has none of its own";
  unsigned int lanes = 0;
  EXPECT_TRUE(plugin_->get_bus_link(LARGE, nullptr, &lanes));
  EXPECT_EQ(lanes, 16u);
  EXPECT_FALSE(plugin_->get_bus_link(SMALL, nullptr, &lanes));
}

TEST_F(GpuMonitorModule, FindsGpus) {
  unsigned char uuid[16];
  std::memset(uuid, 0xA1, sizeof uuid);
  EXPECT_EQ(plugin_->find_gpu_by_uuid(uuid), 1);
  uuid[15] = 0;
  EXPECT_EQ(plugin_->find_gpu_by_uuid(uuid), -1);
  EXPECT_EQ(plugin_->find_gpu_by_uuid(nullptr), -1);
  EXPECT_EQ(plugin_->find_gpu_by_pci(0, 1, 0, 0), 0);
  EXPECT_EQ(plugin_->find_gpu_by_pci(0, 0, 2, 0), 1);
  EXPECT_EQ(plugin_->find_gpu_by_pci(0, 9, 0, 0), -1);
  EXPECT_EQ(plugin_->find_gpu_of_renderer(nullptr), -1);
}

TEST_F(GpuMonitorModule, UpdateFillsTheRecord) {
  const GPU* gpu = plugin_->get_gpu(LARGE);
  ASSERT_NE(gpu, nullptr);
  EXPECT_EQ(gpu->num_cores, 4096u);
  EXPECT_TRUE(gpu->is_primary);
  EXPECT_EQ(gpu->num_updates, 0u);
  EXPECT_EQ(gpu->core_temperature.min, 1000.0f) << "not read yet";
  EXPECT_TRUE(plugin_->update_gpu(LARGE));
  EXPECT_EQ(gpu->num_updates, 1u);
  EXPECT_EQ(gpu->gpu_usage, 50.0f);
  EXPECT_EQ(gpu->memory_usage, 25.0f);
  EXPECT_EQ(gpu->power.current, 130.0f);
  EXPECT_EQ(gpu->fans[0].speed, 25.0f);
  EXPECT_EQ(gpu->fans[0].rpm, 750u);
  EXPECT_EQ(gpu->core_temperature.current, 60.0f);
  EXPECT_EQ(gpu->memory_temperature.current, 65.0f);
  EXPECT_EQ(gpu->memory_used + gpu->memory_free, gpu->memory_size);
  EXPECT_EQ(gpu->processes[0].pid, 1000u);
  EXPECT_EQ(gpu->processes[1].memory, 257u);
  EXPECT_EQ(gpu->processes[2].pid, 0u);
}

TEST_F(GpuMonitorModule, ExtremesWidenAndBeginAnew) {
  const GPU* gpu = plugin_->get_gpu(LARGE);
  for (int i = 0; i < 4; ++i) plugin_->update_gpu(LARGE);
  EXPECT_EQ(gpu->gpu_usage, 10.0f);
  EXPECT_EQ(gpu->gpu_usage_max, 100.0f);
  EXPECT_EQ(gpu->memory_usage_max, 50.0f);
  EXPECT_EQ(gpu->power.max_in_test, 200.0f);
  EXPECT_EQ(gpu->core_temperature.max, 75.0f);
  EXPECT_EQ(gpu->core_temperature.min, 40.0f);
  gpuTemperature chip;
  EXPECT_TRUE(plugin_->get_temperature(LARGE, 0, &chip));
  EXPECT_EQ(chip.max, 75.0f);
  EXPECT_TRUE(plugin_->reset_temperatures(LARGE));
  EXPECT_EQ(gpu->core_temperature.max, 40.0f);
  EXPECT_EQ(gpu->core_temperature.min, 40.0f);
  EXPECT_TRUE(plugin_->reset_usages(LARGE));
  EXPECT_EQ(gpu->gpu_usage_max, 0.0f);
  EXPECT_TRUE(plugin_->reset_power_test(LARGE));
  EXPECT_EQ(power().max_in_test, 42.0f) << "that of the next reading";
}

TEST_F(GpuMonitorModule, UpdatesWaitForTheirInterval) {
  EXPECT_TRUE(plugin_->set_update_interval(LARGE, 3600000));
  EXPECT_TRUE(plugin_->set_update_interval(SMALL, 3600000));
  EXPECT_EQ(plugin_->update_gpus(), 2u) << "neither was read";
  EXPECT_EQ(plugin_->update_gpus(), 0u);
  EXPECT_FALSE(plugin_->set_update_interval(LARGE, 9));
  EXPECT_EQ(plugin_->get_gpu(LARGE)->update_interval, 3600000u);
}

TEST_F(GpuMonitorModule, SensorsHaveNames) {
  EXPECT_EQ(plugin_->get_num_temperatures(LARGE), 2u);
  EXPECT_EQ(plugin_->get_num_temperatures(SMALL), 1u);
  EXPECT_STREQ(plugin_->get_temperature_name(LARGE, 1), "memory");
  EXPECT_EQ(plugin_->get_temperature_name(SMALL, 1), nullptr);
  gpuTemperature temperature;
  EXPECT_FALSE(plugin_->get_temperature(SMALL, 1, &temperature));
  EXPECT_FALSE(plugin_->get_temperature(LARGE, 0, nullptr));
}

TEST_F(GpuMonitorModule, TemperatureLimitStaysInItsRange) {
  float limit = 0, lowest = 0, highest = 0;
  EXPECT_TRUE(plugin_->get_temperature_limit_range(LARGE, &lowest, &highest));
  EXPECT_TRUE(plugin_->set_temperature_limit(LARGE, lowest));
  EXPECT_FALSE(plugin_->set_temperature_limit(LARGE, highest + 1));
  EXPECT_TRUE(plugin_->get_temperature_limit(LARGE, &limit));
  EXPECT_EQ(limit, lowest);
  EXPECT_TRUE(plugin_->get_shutdown_temperature(LARGE, &limit));
  EXPECT_EQ(limit, 98.0f);
}

TEST_F(GpuMonitorModule, ClocksFollowLoadOffsetAndLock) {
  work_hard();
  EXPECT_EQ(clock(), 1800u);
  EXPECT_TRUE(plugin_->set_clock_offset(LARGE, GPU_CLOCK_CORE, 150));
  EXPECT_FALSE(plugin_->set_clock_offset(LARGE, GPU_CLOCK_CORE, 201));
  EXPECT_EQ(clock(), 1950u);
  int offset = 0, lowest = 0;
  EXPECT_TRUE(plugin_->get_clock_offset(LARGE, GPU_CLOCK_CORE, &offset));
  EXPECT_EQ(offset, 150);
  EXPECT_TRUE(plugin_->get_clock_offset_range(LARGE, GPU_CLOCK_CORE, &lowest, nullptr));
  EXPECT_EQ(lowest, -200);
  EXPECT_TRUE(plugin_->lock_clock(LARGE, GPU_CLOCK_CORE, 500, 900));
  EXPECT_FALSE(plugin_->lock_clock(LARGE, GPU_CLOCK_CORE, 900, 500));
  EXPECT_FALSE(plugin_->lock_clock(LARGE, GPU_CLOCK_MEMORY, 500, 900));
  EXPECT_EQ(clock(), 900u);
  unsigned int reasons = 0;
  EXPECT_TRUE(plugin_->get_throttle_reasons(LARGE, &reasons));
  EXPECT_EQ(reasons, GPU_THROTTLE_POWER | GPU_THROTTLE_LOCKED);
  EXPECT_TRUE(plugin_->unlock_clock(LARGE, GPU_CLOCK_CORE));
  EXPECT_EQ(clock(), 1950u);
  unsigned int range[2] = {}, unknown = 77;
  EXPECT_TRUE(plugin_->get_clock_range(LARGE, GPU_CLOCK_CORE, &range[0], &range[1]));
  EXPECT_EQ(range[1], 2100u);
  EXPECT_FALSE(plugin_->get_clock(LARGE, GPU_CLOCK_VIDEO, &unknown));
  EXPECT_EQ(unknown, 77u) << "written on success alone";
}

TEST_F(GpuMonitorModule, PerformanceStateFollowsTheLoad) {
  unsigned int state = 9;
  EXPECT_TRUE(plugin_->get_performance_state(LARGE, &state));
  EXPECT_EQ(state, 1u);
  work_hard();
  EXPECT_TRUE(plugin_->get_performance_state(LARGE, &state));
  EXPECT_EQ(state, 0u);
}

TEST_F(GpuMonitorModule, BoostIsSetAsAWhole) {
  gpuBoostv2 boost;
  ASSERT_TRUE(plugin_->get_boost(LARGE, &boost));
  EXPECT_EQ(boost.num_points, 3u);
  EXPECT_EQ(boost.points[2].clock, 1800000u);
  boost.power_target = 110.0f;
  boost.points[1].offset = 15000;
  EXPECT_TRUE(plugin_->set_boost(LARGE, &boost));
  boost.points[1].offset = 99000;
  boost.temperature_target = 200.0f;
  EXPECT_FALSE(plugin_->set_boost(LARGE, &boost));
  ASSERT_TRUE(plugin_->get_boost(LARGE, &boost));
  EXPECT_EQ(boost.power_target, 110.0f);
  EXPECT_EQ(boost.points[1].offset, 15000);
  EXPECT_TRUE(plugin_->reset_boost(LARGE));
  ASSERT_TRUE(plugin_->get_boost(LARGE, &boost));
  EXPECT_EQ(boost.points[1].offset, 0);
  EXPECT_FALSE(plugin_->set_boost(LARGE, nullptr));
}

TEST_F(GpuMonitorModule, FansAreSetAndLeftAlone) {
  EXPECT_EQ(plugin_->get_num_fans(LARGE), 1u);
  EXPECT_EQ(plugin_->get_num_fans(SMALL), 0u);
  EXPECT_TRUE(plugin_->is_fan_auto(LARGE, 0));
  EXPECT_TRUE(plugin_->set_fan_speed(LARGE, 0, 80.0f));
  EXPECT_FALSE(plugin_->set_fan_speed(LARGE, 0, 20.0f));
  EXPECT_FALSE(plugin_->set_fan_speed(LARGE, 1, 80.0f));
  EXPECT_FALSE(plugin_->is_fan_auto(LARGE, 0));
  float percent = 0, lowest = 0, highest = 0;
  unsigned int rpm = 0;
  EXPECT_TRUE(plugin_->get_fan_speed(LARGE, 0, &percent));
  EXPECT_EQ(percent, 80.0f);
  EXPECT_TRUE(plugin_->get_fan_rpm(LARGE, 0, &rpm));
  EXPECT_EQ(rpm, 2400u);
  EXPECT_TRUE(plugin_->get_fan_range(LARGE, 0, &lowest, &highest));
  EXPECT_EQ(lowest, 30.0f);
  const GPU* gpu = work_hard();
  EXPECT_EQ(gpu->fans[0].is_manual, 1u);
  EXPECT_EQ(gpu->core_temperature.current, 72.0f) << "cooler by more wind";
  EXPECT_TRUE(plugin_->set_fan_auto(LARGE, 0));
  EXPECT_TRUE(plugin_->is_fan_auto(LARGE, 0));
}

TEST_F(GpuMonitorModule, PowerIsLimited) {
  work_hard();
  EXPECT_EQ(power().current, 200.0f);
  EXPECT_TRUE(plugin_->set_power_limit(LARGE, 150.0f));
  EXPECT_FALSE(plugin_->set_power_limit(LARGE, 99.0f));
  const gpuPower limited = power();
  EXPECT_EQ(limited.current, 150.0f);
  EXPECT_EQ(limited.max_in_test, 200.0f) << "the higher reading before is kept";
  EXPECT_EQ(limited.limit, 150.0f);
  EXPECT_EQ(limited.limit_default, 200.0f);
  EXPECT_EQ(limited.throttle_reasons, GPU_THROTTLE_POWER);
  float watts = 0, usual = 0;
  EXPECT_TRUE(plugin_->get_power_limit(LARGE, &watts));
  EXPECT_EQ(watts, 150.0f);
  EXPECT_TRUE(plugin_->get_power_limit_range(LARGE, nullptr, &usual, nullptr));
  EXPECT_EQ(usual, 200.0f);
  double joules = 0;
  EXPECT_TRUE(plugin_->get_energy(LARGE, &joules));
  EXPECT_DOUBLE_EQ(joules, 330.0);
  EXPECT_FALSE(plugin_->set_voltage_offset(LARGE, 0.1f)) << "the hardware refuses";
}

TEST_F(GpuMonitorModule, UsageAndMemoryAreTold) {
  work_hard();
  float percent = 0;
  EXPECT_TRUE(plugin_->get_usage(LARGE, GPU_USAGE_CORE, &percent));
  EXPECT_EQ(percent, 100.0f);
  EXPECT_TRUE(plugin_->get_usage(LARGE, GPU_USAGE_MEMORY, &percent));
  EXPECT_EQ(percent, 50.0f);
  EXPECT_FALSE(plugin_->get_usage(LARGE, GPU_USAGE_ENCODER, &percent));
  unsigned int read = 0, written = 0;
  EXPECT_TRUE(plugin_->get_bus_throughput(LARGE, &read, &written));
  EXPECT_EQ(read, 100000u);
  EXPECT_EQ(written, 50000u);
  unsigned long long total = 0, used = 0;
  EXPECT_TRUE(plugin_->get_memory(LARGE, &total, &used));
  EXPECT_EQ(total, 8ull << 30);
  EXPECT_EQ(used, 2ull << 30);
  EXPECT_FALSE(plugin_->get_memory_errors(LARGE, &total, &used));
}

TEST_F(GpuMonitorModule, ProcessesAreListed) {
  GpuProcess process;
  EXPECT_FALSE(plugin_->get_process(LARGE, 0, &process)) << "no list was taken";
  EXPECT_EQ(plugin_->update_processes(LARGE), 2u);
  ASSERT_TRUE(plugin_->get_process(LARGE, 1, &process));
  EXPECT_EQ(process.pid, 1001u);
  EXPECT_STREQ(process.name, "solver");
  EXPECT_TRUE(process.computes);
  EXPECT_FALSE(process.draws);
  EXPECT_FALSE(plugin_->get_process(LARGE, 2, &process));
  EXPECT_EQ(plugin_->update_processes(SMALL), 0u);
}

TEST_F(GpuMonitorModule, AlarmIsGivenOnce) {
  LogCapture log;
  EXPECT_TRUE(plugin_->set_alarm(LARGE, 0, 70.0f));
  EXPECT_TRUE(plugin_->update_gpu(LARGE));
  EXPECT_FALSE(plugin_->is_alarm_on(LARGE, 0));
  EXPECT_TRUE(plugin_->update_gpu(LARGE));
  EXPECT_TRUE(plugin_->is_alarm_on(LARGE, 0));
  EXPECT_THAT(log.text(), HasSubstr("[test monitor] Large GPU: chip at 75.0 C"));
  EXPECT_TRUE(plugin_->update_gpu(LARGE));
  EXPECT_FALSE(plugin_->is_alarm_on(LARGE, 0)) << "it cooled down";
  EXPECT_FALSE(plugin_->set_alarm(SMALL, 1, 70.0f));
}

TEST_F(GpuMonitorModule, ReadingsGoToAFile) {
  const TempFolder folder;
  const std::string file = folder.path() + "/readings.csv";
  EXPECT_TRUE(plugin_->record_to_file(LARGE, file.c_str()));
  EXPECT_FALSE(plugin_->record_to_file(LARGE, "/nonexistent/readings.csv"))
      << "and the file before goes on";
  work_hard();
  EXPECT_TRUE(plugin_->record_to_file(LARGE, nullptr));
  plugin_->update_gpu(LARGE);
  std::FILE* readings = std::fopen(file.c_str(), "r");
  ASSERT_NE(readings, nullptr);
  char text[256] = {};
  EXPECT_GT(std::fread(text, 1, sizeof text - 1, readings), 0u);
  std::fclose(readings);
  EXPECT_STREQ(text, "usage,temperature,power\n50.0,60.0,130.0\n100.0,75.0,200.0\n");
}

TEST_F(GpuMonitorModule, ReportIsCutToTheRoomForIt) {
  const unsigned int length = plugin_->write_report(LARGE, nullptr, 0);
  ASSERT_GT(length, 20u);
  std::string whole(length + 1, '#');
  EXPECT_EQ(plugin_->write_report(LARGE, whole.data(), length + 1), length);
  EXPECT_THAT(whole, HasSubstr("Large GPU\nusage: 10 %"));
  char part[6] = "#####";
  EXPECT_EQ(plugin_->write_report(LARGE, part, sizeof part), length);
  EXPECT_STREQ(part, "Large");
}

TEST_F(GpuMonitorModule, DefaultsComeBack) {
  EXPECT_TRUE(plugin_->can_set(LARGE));
  EXPECT_FALSE(plugin_->can_set(SMALL));
  plugin_->set_power_limit(LARGE, 120.0f);
  plugin_->set_clock_offset(LARGE, GPU_CLOCK_CORE, -100);
  plugin_->set_fan_speed(LARGE, 0, 100.0f);
  EXPECT_TRUE(plugin_->restore_defaults(LARGE));
  EXPECT_EQ(power().limit, 200.0f);
  EXPECT_EQ(clock(), 450u);
  EXPECT_TRUE(plugin_->is_fan_auto(LARGE, 0));
  EXPECT_FALSE(plugin_->restore_defaults(SMALL));
}

TEST_F(GpuMonitorModule, RefreshStartsRecordsAnew) {
  work_hard();
  EXPECT_TRUE(plugin_->refresh_gpus());
  EXPECT_EQ(plugin_->get_gpu(LARGE)->num_updates, 0u);
  EXPECT_EQ(plugin_->get_gpu(LARGE)->gpu_usage_max, 0.0f);
}

TEST_F(GpuMonitorModule, SettingsOutliveARefresh) {
  EXPECT_TRUE(plugin_->set_power_limit(LARGE, 120.0f));
  EXPECT_TRUE(plugin_->set_fan_speed(LARGE, 0, 70.0f));
  EXPECT_TRUE(plugin_->set_update_interval(SMALL, 250));
  EXPECT_TRUE(plugin_->refresh_gpus());
  float value = 0;
  EXPECT_TRUE(plugin_->get_power_limit(LARGE, &value));
  EXPECT_EQ(value, 120.0f);
  EXPECT_TRUE(plugin_->get_fan_speed(LARGE, 0, &value));
  EXPECT_EQ(value, 70.0f);
  EXPECT_EQ(plugin_->get_gpu(SMALL)->update_interval, 250u);
}

TEST_F(GpuMonitorModule, TerminateRestoresWhatWasSet) {
  EXPECT_TRUE(plugin_->set_power_limit(LARGE, 120.0f));
  EXPECT_TRUE(plugin_->set_update_interval(SMALL, 250));
  EXPECT_TRUE(plugin_->terminate());
  EXPECT_EQ(plugin_->get_num_gpus(), 0u);
  EXPECT_EQ(plugin_->get_gpu(LARGE), nullptr);
  EXPECT_TRUE(plugin_->initialize());
  float value = 0;
  EXPECT_TRUE(plugin_->get_power_limit(LARGE, &value));
  EXPECT_EQ(value, 200.0f);
  EXPECT_EQ(plugin_->get_gpu(SMALL)->update_interval, 1000u);
}

TEST_F(GpuMonitorModule, GpusPastTheLastAnswerNothing) {
  float value = 0;
  EXPECT_EQ(plugin_->get_gpu(NONE), nullptr);
  EXPECT_EQ(plugin_->get_gpu_name(NONE), nullptr);
  EXPECT_FALSE(plugin_->update_gpu(NONE));
  EXPECT_EQ(plugin_->get_num_temperatures(NONE), 0u);
  EXPECT_FALSE(plugin_->reset_temperatures(NONE));
  EXPECT_FALSE(plugin_->get_power_limit(NONE, &value));
  EXPECT_FALSE(plugin_->get_usage(NONE, GPU_USAGE_CORE, &value));
  EXPECT_EQ(plugin_->write_report(NONE, nullptr, 0), 0u);
  EXPECT_FALSE(plugin_->get_power(SMALL, nullptr));
}

}  // namespace
}  // namespace orv::test
