/// @file
/// Plugins that watch and tune GPUs.
#pragma once

#include <orv/core/api.h>
#include <orv/core/plugin.h>
#include <orv/fwd.h>

namespace orv {

/// Clocks of a GPU.
enum GPU_CLOCK : int {
  GPU_CLOCK_CORE = 0,    ///< of the whole chip
  GPU_CLOCK_SHADER = 1,  ///< of the shader processors, where it is another
  GPU_CLOCK_MEMORY = 2,  ///< of the memory
  GPU_CLOCK_VIDEO = 3    ///< of the video units
};

/// Parts of a GPU whose usage is told.
enum GPU_USAGE : int {
  GPU_USAGE_CORE = 0,     ///< the cores
  GPU_USAGE_MEMORY = 1,   ///< the memory
  GPU_USAGE_ENCODER = 2,  ///< the video encoder
  GPU_USAGE_DECODER = 3   ///< the video decoder
};

/// Bits that tell why a GPU runs slower than it could.
enum GPU_THROTTLE_REASON : unsigned int {
  GPU_THROTTLE_IDLE = 1,      ///< nothing to do
  GPU_THROTTLE_HEAT = 2,      ///< the temperature limit
  GPU_THROTTLE_POWER = 4,     ///< the power limit
  GPU_THROTTLE_VOLTAGE = 8,   ///< no more voltage
  GPU_THROTTLE_LOCKED = 16,   ///< GpuMonitor::lock_clock()
  GPU_THROTTLE_HARDWARE = 32  ///< the board pulled the brake
};

/// A process that uses a GPU.
class ORV_API GpuProcess {
 public:
  unsigned int pid = 0;           ///< number of the process
  char name[128] = {};            ///< of its program, without folders
  unsigned long long memory = 0;  ///< bytes of the GPU's memory
  float usage = 0.0f;             ///< percent of the time that the cores worked for it
  bool draws = false;             ///< draws pictures
  bool computes = false;          ///< computes
};

/// A plugin that reads the sensors of GPUs and sets their limits. The library has none itself; a
/// module fills every operation.
///
/// GPUs are counted from 0 in an order that refresh_gpus() alone changes. initialize() finds them.
/// What is read comes from the hardware at the call; update_gpu() reads everything into the GPU's
/// record. Sensors and fans of a GPU are counted from 0.
///
/// What a plugin or a GPU cannot do, numbers past the last, null where not told otherwise, values
/// out of range, and a lack of rights give false, 0 or null and change nothing; results through
/// pointers are written on success alone. What was set holds until it is set again, until
/// restore_defaults(), or until terminate(), which restores what this plugin changed.
///
/// Units are degrees Celsius, MHz, watts, percent and bytes. One thread at a time; a call may take
/// some milliseconds.
///
/// The order of the operations is a contract with modules built apart.
class ORV_API GpuMonitor : public Plugin {
 public:
  /// A plugin of unknown type, for a module's class to name.
  GpuMonitor() = default;
  ~GpuMonitor() override;
  GpuMonitor(const GpuMonitor&) = delete;
  GpuMonitor& operator=(const GpuMonitor&) = delete;

  // ---- GPUs ----

  /// GPUs that were found.
  virtual unsigned int get_num_gpus() = 0;
  /// Looks for GPUs anew. Their records start anew too, at the addresses that get_gpu() tells then;
  /// what was set stays.
  virtual bool refresh_gpus() = 0;
  /// Record of a GPU, the plugin's; null past the last. Good until refresh_gpus() or terminate().
  /// The host may reset its extremes.
  virtual GPU* get_gpu(unsigned int gpu) = 0;
  /// Reads everything into the record of a GPU and widens all extremes. What cannot be read is left
  /// as it was. False when nothing could be read.
  virtual bool update_gpu(unsigned int gpu) = 0;
  /// The same for those GPUs whose interval has passed since they were read.
  /// @return how many were read
  virtual unsigned int update_gpus() = 0;
  /// Milliseconds between readings, 10 to 3,600,000; also in the record.
  virtual bool set_update_interval(unsigned int gpu, unsigned int milliseconds) = 0;
  /// The GPU with these sixteen bytes, -1 for none.
  virtual int find_gpu_by_uuid(const unsigned char* uuid) = 0;
  /// The GPU at a place on the PCI bus, -1 for none.
  virtual int find_gpu_by_pci(unsigned int domain, unsigned int bus, unsigned int device,
                              unsigned int function) = 0;
  /// The GPU that a renderer's current context draws with, -1 when that cannot be told.
  virtual int find_gpu_of_renderer(Renderer* renderer) = 0;

  // ---- who they are ----

  /// @{
  /// Texts for the user; the plugin's, good until refresh_gpus().
  virtual const char* get_gpu_name(unsigned int gpu) = 0;
  virtual const char* get_vendor_name(unsigned int gpu) = 0;
  virtual const char* get_bios_version(unsigned int gpu) = 0;
  virtual const char* get_driver_name(unsigned int gpu) = 0;
  virtual const char* get_driver_version(unsigned int gpu) = 0;
  /// @}
  /// Link to the processor: generation of PCI Express and lanes, as they are now. Either may be
  /// null.
  virtual bool get_bus_link(unsigned int gpu, unsigned int* generation, unsigned int* lanes) = 0;

  // ---- temperatures ----

  /// Temperature sensors of a GPU. Sensor 0 is that of the chip.
  virtual unsigned int get_num_temperatures(unsigned int gpu) = 0;
  /// Name of a sensor for the user; the plugin's text.
  virtual const char* get_temperature_name(unsigned int gpu, unsigned int sensor) = 0;
  /// Reads a sensor. The extremes are those of all readings since reset_temperatures().
  virtual bool get_temperature(unsigned int gpu, unsigned int sensor,
                               gpuTemperature* temperature) = 0;
  /// Lets the extremes of all sensors begin at a reading of now.
  virtual bool reset_temperatures(unsigned int gpu) = 0;
  /// Temperature above which the GPU slows down.
  virtual bool get_temperature_limit(unsigned int gpu, float* limit) = 0;
  /// Sets it, within get_temperature_limit_range().
  virtual bool set_temperature_limit(unsigned int gpu, float limit) = 0;
  /// Lowest and highest limit that can be set. Either may be null.
  virtual bool get_temperature_limit_range(unsigned int gpu, float* lowest, float* highest) = 0;
  /// Temperature at which the GPU switches itself off.
  virtual bool get_shutdown_temperature(unsigned int gpu, float* temperature) = 0;

  // ---- clocks ----

  /// A clock as it is now.
  virtual bool get_clock(unsigned int gpu, GPU_CLOCK clock, unsigned int* mhz) = 0;
  /// Lowest and highest value of a clock, without offset. Either may be null.
  virtual bool get_clock_range(unsigned int gpu, GPU_CLOCK clock, unsigned int* lowest,
                               unsigned int* highest) = 0;
  /// What is added to a clock; 0 as the maker set it.
  virtual bool get_clock_offset(unsigned int gpu, GPU_CLOCK clock, int* mhz) = 0;
  /// Sets it, within get_clock_offset_range().
  virtual bool set_clock_offset(unsigned int gpu, GPU_CLOCK clock, int mhz) = 0;
  /// Lowest and highest offset that can be set. Either may be null.
  virtual bool get_clock_offset_range(unsigned int gpu, GPU_CLOCK clock, int* lowest,
                                      int* highest) = 0;
  /// Keeps a clock between two values, which may be equal, within its range.
  virtual bool lock_clock(unsigned int gpu, GPU_CLOCK clock, unsigned int lowest,
                          unsigned int highest) = 0;
  /// Lets a clock run freely again.
  virtual bool unlock_clock(unsigned int gpu, GPU_CLOCK clock) = 0;
  /// State of performance that the GPU is in, 0 being the fastest.
  virtual bool get_performance_state(unsigned int gpu, unsigned int* state) = 0;
  /// Why the GPU is slower than it could be.
  /// @param reasons  receives bits of GPU_THROTTLE_REASON, 0 when it is not
  virtual bool get_throttle_reasons(unsigned int gpu, unsigned int* reasons) = 0;

  // ---- boost ----

  /// Reads how the GPU raises its clock.
  virtual bool get_boost(unsigned int gpu, gpuBoostv2* boost) = 0;
  /// Sets targets, additional voltage and the offsets of the points; other fields are not read.
  /// Several values are set together or not at all.
  virtual bool set_boost(unsigned int gpu, const gpuBoostv2* boost) = 0;
  /// As the maker set it.
  virtual bool reset_boost(unsigned int gpu) = 0;

  // ---- fans ----

  /// Fans of a GPU.
  virtual unsigned int get_num_fans(unsigned int gpu) = 0;
  /// Speed of a fan, 0 to 100 percent.
  virtual bool get_fan_speed(unsigned int gpu, unsigned int fan, float* percent) = 0;
  /// Turns of a fan a minute.
  virtual bool get_fan_rpm(unsigned int gpu, unsigned int fan, unsigned int* rpm) = 0;
  /// Keeps a fan at a speed, within get_fan_range(), whatever the temperature.
  virtual bool set_fan_speed(unsigned int gpu, unsigned int fan, float percent) = 0;
  /// Lets the GPU choose the speed of a fan, as it does at first.
  virtual bool set_fan_auto(unsigned int gpu, unsigned int fan) = 0;
  /// Whether the GPU chooses the speed of a fan; false also past the last.
  virtual bool is_fan_auto(unsigned int gpu, unsigned int fan) = 0;
  /// Lowest and highest speed that can be set, in percent. Either may be null.
  virtual bool get_fan_range(unsigned int gpu, unsigned int fan, float* lowest, float* highest) = 0;

  // ---- power ----

  /// Reads all about power. The highest is that of all readings since reset_power_test().
  virtual bool get_power(unsigned int gpu, gpuPower* power) = 0;
  /// Lets the highest reading begin at 0.
  virtual bool reset_power_test(unsigned int gpu) = 0;
  /// Watts that the GPU may draw.
  virtual bool get_power_limit(unsigned int gpu, float* watts) = 0;
  /// Sets them, within get_power_limit_range().
  virtual bool set_power_limit(unsigned int gpu, float watts) = 0;
  /// Lowest, usual and highest limit. Each may be null.
  virtual bool get_power_limit_range(unsigned int gpu, float* lowest, float* usual,
                                     float* highest) = 0;
  /// What is added to the voltage of the core, in volts; false when the hardware refuses.
  virtual bool set_voltage_offset(unsigned int gpu, float volts) = 0;
  /// Joules since the driver was loaded.
  virtual bool get_energy(unsigned int gpu, double* joules) = 0;

  // ---- usage ----

  /// Percent of the last moments that a part worked.
  virtual bool get_usage(unsigned int gpu, GPU_USAGE part, float* percent) = 0;
  /// Lets the highest usages in the record begin at 0.
  virtual bool reset_usages(unsigned int gpu) = 0;
  /// KiB a second that come to the GPU and go from it. Either may be null.
  virtual bool get_bus_throughput(unsigned int gpu, unsigned int* read, unsigned int* written) = 0;

  // ---- memory ----

  /// Bytes of the GPU's memory. Either may be null.
  virtual bool get_memory(unsigned int gpu, unsigned long long* total,
                          unsigned long long* used) = 0;
  /// Errors of the memory since the driver was loaded. Either may be null. False for memory that
  /// does not count them.
  virtual bool get_memory_errors(unsigned int gpu, unsigned long long* corrected,
                                 unsigned long long* uncorrected) = 0;

  // ---- processes ----

  /// Takes a list of the processes that use a GPU now; gives their number.
  virtual unsigned int update_processes(unsigned int gpu) = 0;
  /// A process of the list that was taken last.
  virtual bool get_process(unsigned int gpu, unsigned int index, GpuProcess* process) = 0;

  // ---- watching ----

  /// Lets update_gpu() write a warning to the log when a sensor is at a temperature or above, once
  /// until it fell below.
  /// @param limit  a temperature; 0 switches the alarm off
  virtual bool set_alarm(unsigned int gpu, unsigned int sensor, float limit) = 0;
  /// Whether the alarm of a sensor was given and the temperature did not fall since.
  virtual bool is_alarm_on(unsigned int gpu, unsigned int sensor) = 0;
  /// Lets update_gpu() append a line of readings (CSV) to a file, which begins anew with a heading;
  /// null ends it. False, with the file before kept, when this one cannot be written.
  virtual bool record_to_file(unsigned int gpu, const char* filename) = 0;
  /// A report on a GPU for the user, several lines.
  /// @param text  receives at most size - 1 bytes and a zero; may be null with size 0
  /// @return bytes of the whole report, without the zero
  virtual unsigned int write_report(unsigned int gpu, char* text, unsigned int size) = 0;

  // ---- rights and defaults ----

  /// Whether limits, clocks and fans of a GPU may be set by this process.
  virtual bool can_set(unsigned int gpu) = 0;
  /// Clocks, boost, fans, limits and voltage as the maker set them.
  virtual bool restore_defaults(unsigned int gpu) = 0;
};

}  // namespace orv
