/// @file
/// All that is known of a GPU.
#pragma once

#include <orv/core/api.h>
#include <orv/services/gpu_power.h>
#include <orv/services/gpu_temperature.h>

namespace orv {

/// What a GpuMonitor tells of a GPU, filled by its plugin; 0 and "" stand for what it cannot tell.
/// A plain record of fixed layout, which may be copied, stored and sent to another process.
class ORV_API GPU {
 public:
  static constexpr unsigned int MAX_STATES = 8;      ///< entries of `states`
  static constexpr unsigned int MAX_PROCESSES = 64;  ///< entries of `processes`
  static constexpr unsigned int MAX_FANS = 8;        ///< entries of `fans`
  static constexpr unsigned int MAX_SENSORS = 16;    ///< entries of `sensors`
  static constexpr unsigned int MAX_RAILS = 8;       ///< entries of `rails`

  /// A state of performance: what core and memory may do in it.
  class State {
   public:
    unsigned int core_min = 0;     ///< MHz
    unsigned int core_max = 0;     ///< MHz
    unsigned int memory_min = 0;   ///< MHz
    unsigned int memory_max = 0;   ///< MHz
    unsigned int voltage_min = 0;  ///< millivolts
    unsigned int voltage_max = 0;  ///< millivolts
  };
  /// A process that uses the GPU.
  class Process {
   public:
    unsigned int pid = 0;     ///< number of the process, 0 for an entry not in use
    unsigned int memory = 0;  ///< MiB of the GPU's memory
  };
  /// A fan.
  class Fan {
   public:
    float speed = 0.0f;          ///< percent of the highest
    unsigned int rpm = 0;        ///< turns a minute
    unsigned int max_rpm = 0;    ///< turns a minute at 100 percent
    unsigned int is_manual = 0;  ///< 1 while the host sets the speed
  };
  /// A reading that has no field of its own.
  class Sensor {
   public:
    char label[32] = {};  ///< name and unit for the user, "" for an entry not in use
    float value = 0.0f;   ///< read last
  };
  /// What a raw reading is multiplied with, and what is then added.
  class Scale {
   public:
    float factor = 1.0f;  ///< 1 leaves it
    float offset = 0.0f;  ///< 0 leaves it
  };
  /// A supply line of the board.
  class Rail {
   public:
    float voltage = 0.0f;   ///< volts
    float amperage = 0.0f;  ///< amperes
    float power = 0.0f;     ///< watts
  };

  // ---- who it is ----

  unsigned int index = 0;         ///< place in the monitor's list
  unsigned int vendor_id = 0;     ///< of the maker of the chip, on the PCI bus
  unsigned int device_id = 0;     ///< of the chip
  unsigned int board_id = 0;      ///< maker of the board in the low 16 bits, board in the high ones
  unsigned int revision = 0;      ///< of the chip
  unsigned int pci_domain = 0;    ///< place on the PCI bus
  unsigned int pci_bus = 0;       ///< place on the PCI bus
  unsigned int pci_device = 0;    ///< place on the PCI bus
  unsigned int pci_function = 0;  ///< place on the PCI bus
  char name[128] = {};            ///< for the user
  char driver_version[128] = {};  ///< of the driver that serves it
  char bios_version[128] = {};    ///< of its own firmware
  int opengl_index = -1;          ///< number among the renderer's GPUs, -1 unknown
  int opencl_index = -1;          ///< number among the OpenCL devices, -1 unknown
  int display_index = -1;         ///< screen that it shows, -1 for none or unknown

  // ---- what it can ----

  unsigned int num_cores = 0;           ///< shader processors
  unsigned int num_texture_units = 0;   ///< units that sample textures
  unsigned int num_raster_units = 0;    ///< units that write pixels
  unsigned int memory_size = 0;         ///< MiB
  unsigned int memory_bus_width = 0;    ///< bits
  unsigned int memory_type = 0;         ///< generation of graphics memory, such as 6
  unsigned int num_states = 0;          ///< entries of `states` in use
  State states[MAX_STATES];             ///< from the fastest to the slowest
  unsigned int update_interval = 1000;  ///< milliseconds between readings

  // ---- what it does ----

  Process processes[MAX_PROCESSES];  ///< who uses it
  Fan fans[MAX_FANS];                ///< those that it has, the rest 0
  Sensor sensors[MAX_SENSORS];       ///< further readings
  unsigned int memory_used = 0;      ///< MiB
  unsigned int memory_free = 0;      ///< MiB

  gpuTemperature core_temperature;      ///< of the chip
  gpuTemperature hot_spot_temperature;  ///< hottest place of the chip
  gpuTemperature memory_temperature;    ///< of the memory
  gpuTemperature board_temperature;     ///< of the board
  bool is_primary = false;              ///< the system started on it
  bool is_integrated = false;           ///< part of the processor, shares its memory
  bool is_throttled = false;            ///< slowed down by heat or power

  float gpu_usage = 0.0f;         ///< percent of the time that the cores worked
  float gpu_usage_max = 0.0f;     ///< highest, see update_usages_max()
  float memory_usage = 0.0f;      ///< percent of the time that the memory worked
  float memory_usage_max = 0.0f;  ///< highest, see update_usages_max()
  float encoder_usage = 0.0f;     ///< percent of the time that the video encoder worked
  float decoder_usage = 0.0f;     ///< percent of the time that the video decoder worked
  unsigned int bus_read = 0;      ///< KiB a second that came over the bus
  unsigned int bus_written = 0;   ///< KiB a second that went over the bus

  Scale scales[2];                  ///< corrections of temperatures and of power
  gpuPower power;                   ///< what it draws
  unsigned int bus_generation = 0;  ///< generation of the PCI Express link
  unsigned int bus_lanes = 0;       ///< lanes of the link in use
  unsigned int bus_max_lanes = 0;   ///< lanes that it has
  Rail rails[MAX_RAILS];            ///< supply lines, the rest 0
  unsigned int num_linked = 1;      ///< GPUs that work as one with it, itself included
  unsigned char uuid[16] = {};      ///< what no other GPU has
  unsigned int num_updates = 0;     ///< readings so far

  /// Raises the two highest usages to the present ones.
  void update_usages_max() {
    if (gpu_usage_max < gpu_usage) gpu_usage_max = gpu_usage;
    if (memory_usage_max < memory_usage) memory_usage_max = memory_usage;
  }
};

}  // namespace orv
