// Two GPUs that are computed: a large one and one within the processor, which can do little. Each
// reading is one step further in a cycle of rising and falling load.

#include <orv/services/gpu.h>
#include <orv/services/gpu_boostv2.h>
#include <orv/services/gpu_monitor.h>

#include <chrono>
#include <string>

#include "module_support.h"

namespace {

using orv::GPU;
using orv::gpuTemperature;
using orv::test::copy_text;
using orv::test::tell;

constexpr unsigned int NUM_GPUS = 2;
constexpr unsigned int NUM_SENSORS = 2;
constexpr const char* SENSOR_NAMES[NUM_SENSORS] = {"chip", "memory"};
constexpr float DEFAULT_LIMIT = 83.0f;
constexpr float DEFAULT_POWER = 200.0f;

/// Percent of load, step by step.
constexpr float LOADS[] = {10.0f, 50.0f, 100.0f, 60.0f};

struct Simulated {
  bool is_large = false;
  GPU record;
  unsigned int step = 0;
  std::chrono::steady_clock::time_point read_at;
  float temperature_limit = DEFAULT_LIMIT;
  float power_limit = DEFAULT_POWER;
  int clock_offset = 0;
  unsigned int locked_low = 0, locked_high = 0;
  float fan_speed = -1.0f;  ///< below 0 while it is automatic
  double energy = 0.0;
  orv::gpuBoostv2 boost;
  float alarms[NUM_SENSORS] = {};
  bool alarm_on[NUM_SENSORS] = {};
  std::string record_filename;
  std::vector<orv::GpuProcess> processes;

  float load() const { return LOADS[step % 4]; }
  /// Power follows the load up to the limit.
  float power() const { return std::min(power_limit, 20.0f + load() * 2.2f); }
  float temperature(unsigned int sensor) const {
    return (sensor == 0 ? 30.0f : 35.0f) + power() / 4.0f - current_fan_speed() / 10.0f;
  }
  float current_fan_speed() const { return fan_speed >= 0.0f ? fan_speed : load() / 2.0f; }
  bool is_power_limited() const { return 20.0f + load() * 2.2f > power_limit; }
  unsigned int throttle_reasons() const {
    return (is_power_limited() ? orv::GPU_THROTTLE_POWER : 0u) |
           (locked_high ? orv::GPU_THROTTLE_LOCKED : 0u);
  }
  unsigned int core_clock() const {
    int mhz = 300 + static_cast<int>(load()) * 15 + clock_offset;
    if (locked_high) {
      mhz = std::clamp(mhz, static_cast<int>(locked_low), static_cast<int>(locked_high));
    }
    return static_cast<unsigned int>(mhz);
  }
  gpuTemperature& kept(unsigned int sensor) {
    return sensor == 0 ? record.core_temperature : record.memory_temperature;
  }
  gpuTemperature read_temperature(unsigned int sensor) {
    gpuTemperature& temperature_ = kept(sensor);
    temperature_.current = temperature(sensor);
    temperature_.update_min_max();
    return temperature_;
  }
  void read_power() {
    orv::gpuPower& power_ = record.power;
    power_.current = power_.board = power();
    power_.limit = power_limit;
    power_.limit_default = DEFAULT_POWER;
    power_.limit_min = 100.0f;
    power_.limit_max = 250.0f;
    power_.voltage = 1.0f;
    power_.amperage = power();
    power_.energy = static_cast<float>(energy / 1000.0);
    power_.throttle_reasons = throttle_reasons();
    power_.update_max_in_test();
  }
  void reset() {
    temperature_limit = DEFAULT_LIMIT;
    power_limit = DEFAULT_POWER;
    clock_offset = 0;
    locked_low = locked_high = 0;
    fan_speed = -1.0f;
    reset_boost();
  }
  void reset_boost() {
    boost = {};
    boost.base_clock = 1200;
    boost.boost_clock = 1800;
    boost.max_clock = 2100;
    boost.temperature_target = DEFAULT_LIMIT;
    boost.power_target = 100.0f;
    boost.num_points = 3;
    for (unsigned int i = 0; i < boost.num_points; ++i) {
      boost.points[i].voltage = 800000 + i * 100000;
      boost.points[i].clock = 1200000 + i * 300000;
    }
  }
};

class SimulatedMonitor : public orv::test::Module<orv::GpuMonitor> {
 public:
  SimulatedMonitor() : Module("test monitor") {}

  bool initialize() override { return refresh_gpus() && GpuMonitor::initialize(); }
  bool terminate() override {
    gpus_.clear();
    return GpuMonitor::terminate();
  }

  // ---- GPUs ----

  unsigned int get_num_gpus() override { return static_cast<unsigned int>(gpus_.size()); }
  bool refresh_gpus() override {
    const bool is_first = gpus_.empty();
    gpus_.resize(NUM_GPUS);
    for (unsigned int i = 0; i < NUM_GPUS; ++i) {
      if (is_first) gpus_[i].reset();
      make(gpus_[i], i);
    }
    return true;
  }
  GPU* get_gpu(unsigned int gpu) override {
    Simulated* found = find(gpu);
    return found ? &found->record : nullptr;
  }
  bool update_gpu(unsigned int gpu) override {
    Simulated* found = find(gpu);
    if (!found) return false;
    ++found->step;
    found->energy += found->power();
    found->read_at = std::chrono::steady_clock::now();
    read(*found);
    watch(*found);
    return true;
  }
  unsigned int update_gpus() override {
    unsigned int num_read = 0;
    for (unsigned int i = 0; i < get_num_gpus(); ++i) {
      const auto passed = std::chrono::steady_clock::now() - gpus_[i].read_at;
      const std::chrono::milliseconds interval(gpus_[i].record.update_interval);
      if (gpus_[i].record.num_updates && passed < interval) continue;
      num_read += update_gpu(i) ? 1 : 0;
    }
    return num_read;
  }
  bool set_update_interval(unsigned int gpu, unsigned int milliseconds) override {
    Simulated* found = find(gpu);
    if (!found || milliseconds < 10 || milliseconds > 3600000) return false;
    found->record.update_interval = milliseconds;
    return true;
  }
  int find_gpu_by_uuid(const unsigned char* uuid) override {
    return uuid ? find_record([uuid](const GPU& gpu) {
      return std::memcmp(gpu.uuid, uuid, sizeof gpu.uuid) == 0;
    })
                : -1;
  }
  int find_gpu_by_pci(unsigned int domain, unsigned int bus, unsigned int device,
                      unsigned int function) override {
    return find_record([=](const GPU& gpu) {
      return gpu.pci_domain == domain && gpu.pci_bus == bus && gpu.pci_device == device &&
             gpu.pci_function == function;
    });
  }
  int find_gpu_of_renderer(orv::Renderer*) override { return -1; }

  // ---- who they are ----

  const char* get_gpu_name(unsigned int gpu) override {
    const Simulated* found = find(gpu);
    return found ? found->record.name : nullptr;
  }
  const char* get_vendor_name(unsigned int gpu) override { return find(gpu) ? "Tests" : nullptr; }
  const char* get_bios_version(unsigned int gpu) override {
    const Simulated* found = find(gpu);
    return found && found->is_large ? found->record.bios_version : nullptr;
  }
  const char* get_driver_name(unsigned int gpu) override {
    return find(gpu) ? "simulated" : nullptr;
  }
  const char* get_driver_version(unsigned int gpu) override {
    const Simulated* found = find(gpu);
    return found ? found->record.driver_version : nullptr;
  }
  bool get_bus_link(unsigned int gpu, unsigned int* generation, unsigned int* lanes) override {
    const Simulated* found = find_large(gpu);
    if (!found) return false;
    tell(generation, found->record.bus_generation);
    tell(lanes, found->record.bus_lanes);
    return true;
  }

  // ---- temperatures ----

  unsigned int get_num_temperatures(unsigned int gpu) override {
    const Simulated* found = find(gpu);
    return !found ? 0 : found->is_large ? NUM_SENSORS : 1;
  }
  const char* get_temperature_name(unsigned int gpu, unsigned int sensor) override {
    return sensor < get_num_temperatures(gpu) ? SENSOR_NAMES[sensor] : nullptr;
  }
  bool get_temperature(unsigned int gpu, unsigned int sensor,
                       gpuTemperature* temperature) override {
    if (!temperature || sensor >= get_num_temperatures(gpu)) return false;
    *temperature = find(gpu)->read_temperature(sensor);
    return true;
  }
  bool reset_temperatures(unsigned int gpu) override {
    for (unsigned int i = 0; i < get_num_temperatures(gpu); ++i) {
      find(gpu)->read_temperature(i);
      find(gpu)->kept(i).init_min_max_from_current();
    }
    return find(gpu) != nullptr;
  }
  bool get_temperature_limit(unsigned int gpu, float* limit) override {
    return give(find_large(gpu), limit, &Simulated::temperature_limit);
  }
  bool set_temperature_limit(unsigned int gpu, float limit) override {
    Simulated* found = find_large(gpu);
    if (!found || !(limit >= 65.0f && limit <= 91.0f)) return false;
    found->temperature_limit = limit;
    return true;
  }
  bool get_temperature_limit_range(unsigned int gpu, float* lowest, float* highest) override {
    if (!find_large(gpu)) return false;
    tell(lowest, 65.0f);
    tell(highest, 91.0f);
    return true;
  }
  bool get_shutdown_temperature(unsigned int gpu, float* temperature) override {
    if (!find_large(gpu) || !temperature) return false;
    *temperature = 98.0f;
    return true;
  }

  // ---- clocks ----

  bool get_clock(unsigned int gpu, orv::GPU_CLOCK clock, unsigned int* mhz) override {
    const Simulated* found = find(gpu);
    if (!found || !mhz) return false;
    if (clock != orv::GPU_CLOCK_CORE && clock != orv::GPU_CLOCK_MEMORY) return false;
    *mhz = clock == orv::GPU_CLOCK_CORE ? found->core_clock() : 7000u;
    return true;
  }
  bool get_clock_range(unsigned int gpu, orv::GPU_CLOCK clock, unsigned int* lowest,
                       unsigned int* highest) override {
    if (!find(gpu) || clock != orv::GPU_CLOCK_CORE) return false;
    tell(lowest, 300u);
    tell(highest, 2100u);
    return true;
  }
  bool get_clock_offset(unsigned int gpu, orv::GPU_CLOCK clock, int* mhz) override {
    return clock == orv::GPU_CLOCK_CORE && give(find_large(gpu), mhz, &Simulated::clock_offset);
  }
  bool set_clock_offset(unsigned int gpu, orv::GPU_CLOCK clock, int mhz) override {
    Simulated* found = find_large(gpu);
    if (!found || clock != orv::GPU_CLOCK_CORE || mhz < -200 || mhz > 200) return false;
    found->clock_offset = mhz;
    return true;
  }
  bool get_clock_offset_range(unsigned int gpu, orv::GPU_CLOCK clock, int* lowest,
                              int* highest) override {
    if (!find_large(gpu) || clock != orv::GPU_CLOCK_CORE) return false;
    tell(lowest, -200);
    tell(highest, 200);
    return true;
  }
  bool lock_clock(unsigned int gpu, orv::GPU_CLOCK clock, unsigned int lowest,
                  unsigned int highest) override {
    Simulated* found = find_large(gpu);
    if (!found || clock != orv::GPU_CLOCK_CORE) return false;
    if (lowest > highest || lowest < 300 || highest > 2100) return false;
    found->locked_low = lowest;
    found->locked_high = highest;
    return true;
  }
  bool unlock_clock(unsigned int gpu, orv::GPU_CLOCK clock) override {
    Simulated* found = find_large(gpu);
    if (!found || clock != orv::GPU_CLOCK_CORE) return false;
    found->locked_low = found->locked_high = 0;
    return true;
  }
  bool get_performance_state(unsigned int gpu, unsigned int* state) override {
    const Simulated* found = find(gpu);
    if (!found || !state) return false;
    *state = found->load() >= 50.0f ? 0u : 1u;
    return true;
  }
  bool get_throttle_reasons(unsigned int gpu, unsigned int* reasons) override {
    const Simulated* found = find(gpu);
    if (!found || !reasons) return false;
    *reasons = found->throttle_reasons();
    return true;
  }

  // ---- boost ----

  bool get_boost(unsigned int gpu, orv::gpuBoostv2* boost) override {
    return give(find_large(gpu), boost, &Simulated::boost);
  }
  bool set_boost(unsigned int gpu, const orv::gpuBoostv2* boost) override {
    Simulated* found = find_large(gpu);
    if (!found || !boost || !(boost->power_target >= 50.0f && boost->power_target <= 125.0f) ||
        !(boost->temperature_target >= 65.0f && boost->temperature_target <= 91.0f) ||
        !(boost->voltage_boost >= 0.0f && boost->voltage_boost <= 100.0f)) {
      return false;
    }
    found->boost.temperature_target = boost->temperature_target;
    found->boost.power_target = boost->power_target;
    found->boost.voltage_boost = boost->voltage_boost;
    for (unsigned int i = 0; i < found->boost.num_points; ++i) {
      found->boost.points[i].offset = boost->points[i].offset;
    }
    return true;
  }
  bool reset_boost(unsigned int gpu) override {
    Simulated* found = find_large(gpu);
    if (found) found->reset_boost();
    return found != nullptr;
  }

  // ---- fans ----

  unsigned int get_num_fans(unsigned int gpu) override { return find_large(gpu) ? 1 : 0; }
  bool get_fan_speed(unsigned int gpu, unsigned int fan, float* percent) override {
    if (!percent || fan >= get_num_fans(gpu)) return false;
    *percent = find(gpu)->current_fan_speed();
    return true;
  }
  bool get_fan_rpm(unsigned int gpu, unsigned int fan, unsigned int* rpm) override {
    if (!rpm || fan >= get_num_fans(gpu)) return false;
    *rpm = static_cast<unsigned int>(find(gpu)->current_fan_speed() * 30.0f);
    return true;
  }
  bool set_fan_speed(unsigned int gpu, unsigned int fan, float percent) override {
    if (fan >= get_num_fans(gpu) || !(percent >= 30.0f && percent <= 100.0f)) return false;
    find(gpu)->fan_speed = percent;
    return true;
  }
  bool set_fan_auto(unsigned int gpu, unsigned int fan) override {
    if (fan >= get_num_fans(gpu)) return false;
    find(gpu)->fan_speed = -1.0f;
    return true;
  }
  bool is_fan_auto(unsigned int gpu, unsigned int fan) override {
    return fan < get_num_fans(gpu) && find(gpu)->fan_speed < 0.0f;
  }
  bool get_fan_range(unsigned int gpu, unsigned int fan, float* lowest, float* highest) override {
    if (fan >= get_num_fans(gpu)) return false;
    tell(lowest, 30.0f);
    tell(highest, 100.0f);
    return true;
  }

  // ---- power ----

  bool get_power(unsigned int gpu, orv::gpuPower* power) override {
    Simulated* found = find_large(gpu);
    if (!found || !power) return false;
    found->read_power();
    *power = found->record.power;
    return true;
  }
  bool reset_power_test(unsigned int gpu) override {
    Simulated* found = find_large(gpu);
    if (found) found->record.power.max_in_test = 0.0f;
    return found != nullptr;
  }
  bool get_power_limit(unsigned int gpu, float* watts) override {
    return give(find_large(gpu), watts, &Simulated::power_limit);
  }
  bool set_power_limit(unsigned int gpu, float watts) override {
    Simulated* found = find_large(gpu);
    if (!found || !(watts >= 100.0f && watts <= 250.0f)) return false;
    found->power_limit = watts;
    return true;
  }
  bool get_power_limit_range(unsigned int gpu, float* lowest, float* usual,
                             float* highest) override {
    if (!find_large(gpu)) return false;
    tell(lowest, 100.0f);
    tell(usual, DEFAULT_POWER);
    tell(highest, 250.0f);
    return true;
  }
  bool set_voltage_offset(unsigned int, float) override { return false; }
  bool get_energy(unsigned int gpu, double* joules) override {
    return give(find_large(gpu), joules, &Simulated::energy);
  }

  // ---- usage, memory, processes ----

  bool get_usage(unsigned int gpu, orv::GPU_USAGE part, float* percent) override {
    const Simulated* found = find(gpu);
    if (!found || !percent) return false;
    if (part != orv::GPU_USAGE_CORE && part != orv::GPU_USAGE_MEMORY) return false;
    *percent = part == orv::GPU_USAGE_CORE ? found->load() : found->load() / 2.0f;
    return true;
  }
  bool reset_usages(unsigned int gpu) override {
    Simulated* found = find(gpu);
    if (!found) return false;
    found->record.gpu_usage_max = found->record.memory_usage_max = 0.0f;
    return true;
  }
  bool get_bus_throughput(unsigned int gpu, unsigned int* read, unsigned int* written) override {
    const Simulated* found = find_large(gpu);
    if (!found) return false;
    tell(read, found->load() * 1000.0f);
    tell(written, found->load() * 500.0f);
    return true;
  }
  bool get_memory(unsigned int gpu, unsigned long long* total, unsigned long long* used) override {
    const Simulated* found = find(gpu);
    if (!found) return false;
    tell(total, static_cast<unsigned long long>(found->record.memory_size) << 20);
    tell(used, static_cast<unsigned long long>(found->record.memory_size) << 18);
    return true;
  }
  bool get_memory_errors(unsigned int, unsigned long long*, unsigned long long*) override {
    return false;
  }
  unsigned int update_processes(unsigned int gpu) override {
    Simulated* found = find(gpu);
    if (!found) return 0;
    found->processes.clear();
    if (!found->is_large) return 0;
    for (unsigned int i = 0; i < 2; ++i) {
      orv::GpuProcess process;
      process.pid = 1000 + i;
      copy_text(process.name, i == 0 ? "viewer" : "solver");
      process.memory = (256ull + i) << 20;
      process.usage = found->load() / 2.0f;
      process.draws = i == 0;
      process.computes = i == 1;
      found->processes.push_back(process);
    }
    return 2;
  }
  bool get_process(unsigned int gpu, unsigned int index, orv::GpuProcess* process) override {
    const Simulated* found = find(gpu);
    if (!found || !process || index >= found->processes.size()) return false;
    *process = found->processes[index];
    return true;
  }

  // ---- watching ----

  bool set_alarm(unsigned int gpu, unsigned int sensor, float limit) override {
    if (sensor >= get_num_temperatures(gpu) || !(limit >= 0.0f && limit <= 200.0f)) return false;
    find(gpu)->alarms[sensor] = limit;
    find(gpu)->alarm_on[sensor] = false;
    return true;
  }
  bool is_alarm_on(unsigned int gpu, unsigned int sensor) override {
    return sensor < get_num_temperatures(gpu) && find(gpu)->alarm_on[sensor];
  }
  bool record_to_file(unsigned int gpu, const char* filename) override {
    Simulated* found = find(gpu);
    if (!found) return false;
    if (!filename) {
      found->record_filename.clear();
      return true;
    }
    std::FILE* file = std::fopen(filename, "w");
    if (!file) return false;
    std::fputs("usage,temperature,power\n", file);
    std::fclose(file);
    found->record_filename = filename;
    return true;
  }
  unsigned int write_report(unsigned int gpu, char* text, unsigned int size) override {
    const Simulated* found = find(gpu);
    if (!found || (!text && size)) return 0;
    const int length = std::snprintf(text, size, "%s\nusage: %.0f %%\ntemperature: %.1f C\n",
                                     found->record.name, static_cast<double>(found->load()),
                                     static_cast<double>(found->temperature(0)));
    return static_cast<unsigned int>(length);
  }

  bool can_set(unsigned int gpu) override { return find_large(gpu) != nullptr; }
  bool restore_defaults(unsigned int gpu) override {
    Simulated* found = find_large(gpu);
    if (found) found->reset();
    return found != nullptr;
  }

 private:
  Simulated* find(unsigned int gpu) { return gpu < gpus_.size() ? &gpus_[gpu] : nullptr; }
  /// The GPU, when it is one that can do more than be looked at.
  Simulated* find_large(unsigned int gpu) {
    Simulated* found = find(gpu);
    return found && found->is_large ? found : nullptr;
  }
  template <class Condition>
  int find_record(Condition condition) const {
    for (std::size_t i = 0; i < gpus_.size(); ++i) {
      if (condition(gpus_[i].record)) return static_cast<int>(i);
    }
    return -1;
  }
  template <class Value>
  static bool give(const Simulated* from, Value* to, Value Simulated::*field) {
    if (!from || !to) return false;
    *to = from->*field;
    return true;
  }

  static void make(Simulated& gpu, unsigned int index) {
    gpu.is_large = index == 0;
    gpu.processes.clear();
    GPU& record = gpu.record;
    const unsigned int interval = record.update_interval;
    record = {};
    record.update_interval = interval;
    record.index = index;
    record.pci_bus = index == 0 ? 1 : 0;
    record.pci_device = index == 0 ? 0 : 2;
    copy_text(record.name, index == 0 ? "Large GPU" : "Small GPU");
    copy_text(record.driver_version, "1.2.3");
    if (gpu.is_large) copy_text(record.bios_version, "90.04");
    record.num_cores = index == 0 ? 4096 : 128;
    record.memory_size = index == 0 ? 8192 : 512;
    record.is_primary = index == 0;
    record.is_integrated = index != 0;
    record.bus_generation = gpu.is_large ? 4 : 0;
    record.bus_lanes = record.bus_max_lanes = gpu.is_large ? 16 : 0;
    for (unsigned char& byte : record.uuid) byte = static_cast<unsigned char>(0xA0 + index);
  }

  void read(Simulated& gpu) {
    GPU& record = gpu.record;
    ++record.num_updates;
    for (unsigned int i = 0; i < get_num_temperatures(record.index); ++i) gpu.read_temperature(i);
    record.gpu_usage = gpu.load();
    record.memory_usage = gpu.load() / 2.0f;
    record.update_usages_max();
    record.memory_used = record.memory_size / 4;
    record.memory_free = record.memory_size - record.memory_used;
    if (!gpu.is_large) return;
    gpu.read_power();
    record.is_throttled = gpu.is_power_limited();
    record.fans[0].speed = gpu.current_fan_speed();
    record.fans[0].rpm = static_cast<unsigned int>(gpu.current_fan_speed() * 30.0f);
    record.fans[0].max_rpm = 3000;
    record.fans[0].is_manual = gpu.fan_speed >= 0.0f ? 1 : 0;
    const unsigned int num_processes = update_processes(record.index);
    for (unsigned int i = 0; i < num_processes; ++i) {
      record.processes[i].pid = gpu.processes[i].pid;
      record.processes[i].memory = static_cast<unsigned int>(gpu.processes[i].memory >> 20);
    }
  }

  void watch(Simulated& gpu) {
    for (unsigned int i = 0; i < get_num_temperatures(gpu.record.index); ++i) {
      const bool is_hot = gpu.alarms[i] > 0.0f && gpu.temperature(i) >= gpu.alarms[i];
      if (is_hot && !gpu.alarm_on[i]) {
        tracef_warning("%s: %s at %.1f C", gpu.record.name, SENSOR_NAMES[i],
                       static_cast<double>(gpu.temperature(i)));
      }
      gpu.alarm_on[i] = is_hot;
    }
    if (gpu.record_filename.empty()) return;
    std::FILE* file = std::fopen(gpu.record_filename.c_str(), "a");
    if (!file) return;
    std::fprintf(file, "%.1f,%.1f,%.1f\n", static_cast<double>(gpu.load()),
                 static_cast<double>(gpu.temperature(0)), static_cast<double>(gpu.power()));
    std::fclose(file);
  }

  std::vector<Simulated> gpus_;
};

}  // namespace

ORV_TEST_MODULE(SimulatedMonitor)
