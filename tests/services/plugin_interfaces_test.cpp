// The order of the operations that plugins fill is a contract with modules built apart.

#include <orv/services/audio.h>
#include <orv/services/freetype_gl_plugin_interface.h>
#include <orv/services/gpu_monitor.h>
#include <orv/services/opencl_plugin.h>
#include <orv/services/physx.h>
#include <orv/services/simple_video.h>

#include "support/vtable_slot.h"

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <type_traits>

namespace orv::test {
namespace {

/// Operations of Plugin, in which the destructor counts once but takes two places.
constexpr std::size_t NUM_PLUGIN_OPERATIONS = 9;
constexpr std::size_t FIRST_OWN_SLOT = NUM_PLUGIN_OPERATIONS + 1;

/// Its operation takes the place behind the last of the interface.
template <class Interface>
struct Next : Interface {
  virtual void operation_behind_the_last() = 0;
};

template <class Interface>
void expect_operations_of_plugin_first() {
  EXPECT_EQ(vtable_slot(&Interface::tracef), 2u);
  EXPECT_EQ(vtable_slot(&Interface::tracef_warning), 3u);
  EXPECT_EQ(vtable_slot(&Interface::tracef_error), 4u);
  EXPECT_EQ(vtable_slot(&Interface::tracef_debug), 5u);
  EXPECT_EQ(vtable_slot(&Interface::initialize), 6u);
  EXPECT_EQ(vtable_slot(&Interface::terminate), 7u);
  EXPECT_EQ(vtable_slot(&Interface::start), 8u);
  EXPECT_EQ(vtable_slot(&Interface::stop), 9u);
}

/// The operations, given in order, are all that the interface adds; `count` includes Plugin's.
template <class Interface, class... Operations>
void expect_order(std::size_t count, Operations... operations) {
  static_assert(std::is_base_of_v<Plugin, Interface>);
  static_assert(std::is_abstract_v<Interface>);
  static_assert(!std::is_copy_constructible_v<Interface> && !std::is_copy_assignable_v<Interface>);
  static_assert(sizeof(Interface) == sizeof(Plugin), "an interface has no fields");
  expect_operations_of_plugin_first<Interface>();
  const std::size_t slots[] = {vtable_slot(operations)...};
  for (std::size_t i = 0; i < sizeof...(operations); ++i) {
    EXPECT_EQ(slots[i], FIRST_OWN_SLOT + i) << "operation " << i << " of the interface's own";
  }
  EXPECT_EQ(NUM_PLUGIN_OPERATIONS + sizeof...(operations), count);
  EXPECT_EQ(vtable_slot(&Next<Interface>::operation_behind_the_last), count + 1);
}

/// How many entries of the library's own table of the class are pure: they are all the same.
std::size_t count_pure(const char* table_symbol, std::size_t count) {
  const auto* table = static_cast<void* const*>(dlsym(RTLD_DEFAULT, table_symbol));
  if (!table) return 0;
  void* const* entries = table + 2;  // behind offset and type information
  const void* pure = entries[count];
  std::size_t num_pure = 0;
  for (std::size_t i = 2; i <= count; ++i) num_pure += entries[i] == pure ? 1 : 0;
  return num_pure;
}

TEST(PluginInterfaces, AudioStandsInItsOrder) {
  expect_order<Audio>(28, &Audio::get_num_devices, &Audio::get_device_name, &Audio::open_device,
                      &Audio::close_device, &Audio::create_voice, &Audio::destroy_voice,
                      &Audio::set_voice_buffer, &Audio::stream_voice, &Audio::play_voice,
                      &Audio::pause_voice, &Audio::stop_voice, &Audio::get_voice_state,
                      &Audio::seek_voice, &Audio::get_voice_position, &Audio::set_voice_volume,
                      &Audio::set_voice_pan, &Audio::set_master_volume, &Audio::get_master_volume,
                      &Audio::mix);
  EXPECT_EQ(count_pure("_ZTVN3orv5AudioE", 28), 19u);
}

TEST(PluginInterfaces, FreeTypeGLStandsInItsOrder) {
  using Ftgl = FreeTypeGLPluginInterface;
  expect_order<Ftgl>(29, &Ftgl::load_face, &Ftgl::load_face_from_memory, &Ftgl::free_face,
                     &Ftgl::set_pixel_height, &Ftgl::get_pixel_height, &Ftgl::get_font_metrics,
                     &Ftgl::get_glyph_metrics, &Ftgl::get_kerning, &Ftgl::measure_text,
                     &Ftgl::set_color, &Ftgl::set_outline, &Ftgl::set_kerning, &Ftgl::create_atlas,
                     &Ftgl::cache_glyphs, &Ftgl::upload_atlas, &Ftgl::get_atlas_texture,
                     &Ftgl::clear_text, &Ftgl::add_text, &Ftgl::render_text, &Ftgl::draw_text);
  // Four of Plugin's operations are pure here as well.
  EXPECT_EQ(count_pure("_ZTVN3orv25FreeTypeGLPluginInterfaceE", 29), 24u);
}

TEST(PluginInterfaces, OpenCLStandsInItsOrder) {
  using CL = OpenCLPlugin;
  expect_order<CL>(22, &CL::get_num_platforms, &CL::get_num_devices, &CL::get_device_info,
                   &CL::create_context, &CL::create_buffer, &CL::share_gl_object,
                   &CL::release_object, &CL::write_buffer, &CL::read_buffer, &CL::build_program,
                   &CL::create_kernel, &CL::set_kernel_argument, &CL::enqueue_kernel);
  EXPECT_EQ(count_pure("_ZTVN3orv12OpenCLPluginE", 22), 13u);
}

TEST(PluginInterfaces, SimpleVideoStandsInItsOrder) {
  using Video = SimpleVideo;
  expect_order<Video>(
      44, &Video::open_video, &Video::open_video_from_memory, &Video::close_video,
      &Video::close_all_videos, &Video::is_open, &Video::get_width, &Video::get_height,
      &Video::get_pixel_aspect, &Video::get_frame_rate, &Video::get_duration,
      &Video::get_num_frames, &Video::get_codec_name, &Video::get_metadata,
      &Video::get_num_audio_tracks, &Video::select_audio_track, &Video::set_output_format,
      &Video::set_output_size, &Video::set_flip_vertical, &Video::set_loop, &Video::set_speed,
      &Video::play_video, &Video::pause_video, &Video::stop_video, &Video::is_playing,
      &Video::update_video, &Video::seek_time, &Video::seek_frame, &Video::get_time,
      &Video::get_frame_index, &Video::is_at_end, &Video::decode_next_frame,
      &Video::get_frame_image, &Video::get_frame_texture, &Video::get_sound_format,
      &Video::read_sound);
  EXPECT_EQ(count_pure("_ZTVN3orv11SimpleVideoE", 44), 35u);
}

TEST(PluginInterfaces, PhysXStandsInItsOrder) {
  expect_order<PhysX>(
      94, &PhysX::create_scene, &PhysX::destroy_scene, &PhysX::set_gravity, &PhysX::get_gravity,
      &PhysX::set_fixed_step, &PhysX::simulate, &PhysX::fetch_results, &PhysX::get_num_bodies,
      &PhysX::get_body, &PhysX::set_group_collision, &PhysX::create_material, &PhysX::set_material,
      &PhysX::destroy_material, &PhysX::create_box_shape, &PhysX::create_sphere_shape,
      &PhysX::create_capsule_shape, &PhysX::create_plane_shape, &PhysX::create_convex_shape,
      &PhysX::create_mesh_shape, &PhysX::create_height_field_shape, &PhysX::set_shape_pose,
      &PhysX::set_shape_trigger, &PhysX::set_shape_group, &PhysX::destroy_shape,
      &PhysX::create_static_body, &PhysX::create_dynamic_body, &PhysX::create_kinematic_body,
      &PhysX::destroy_body, &PhysX::attach_shape, &PhysX::detach_shape, &PhysX::set_body_pose,
      &PhysX::get_body_pose, &PhysX::get_body_matrix, &PhysX::set_kinematic_target,
      &PhysX::set_linear_velocity, &PhysX::get_linear_velocity, &PhysX::set_angular_velocity,
      &PhysX::get_angular_velocity, &PhysX::add_force, &PhysX::add_force_at, &PhysX::add_torque,
      &PhysX::set_mass, &PhysX::get_mass, &PhysX::set_damping, &PhysX::set_body_gravity,
      &PhysX::set_axis_lock, &PhysX::set_continuous_collision, &PhysX::wake_body,
      &PhysX::is_body_sleeping, &PhysX::set_body_user_data, &PhysX::get_body_user_data,
      &PhysX::create_fixed_joint, &PhysX::create_hinge_joint, &PhysX::create_slider_joint,
      &PhysX::create_ball_joint, &PhysX::create_distance_joint, &PhysX::set_joint_limits,
      &PhysX::set_joint_motor, &PhysX::set_joint_break_force, &PhysX::is_joint_broken,
      &PhysX::destroy_joint, &PhysX::ray_cast, &PhysX::ray_cast_all, &PhysX::sweep, &PhysX::overlap,
      &PhysX::get_contacts, &PhysX::get_trigger_events, &PhysX::set_contact_callback,
      &PhysX::create_cloth, &PhysX::destroy_cloth, &PhysX::read_cloth, &PhysX::pin_cloth_vertex,
      &PhysX::set_cloth_stiffness, &PhysX::set_cloth_damping, &PhysX::set_cloth_wind,
      &PhysX::set_cloth_collision, &PhysX::create_vehicle, &PhysX::destroy_vehicle,
      &PhysX::drive_vehicle, &PhysX::get_wheel_pose, &PhysX::create_character,
      &PhysX::destroy_character, &PhysX::move_character, &PhysX::set_character_position,
      &PhysX::get_character_position);
  EXPECT_EQ(count_pure("_ZTVN3orv5PhysXE", 94), 85u);
}

TEST(PluginInterfaces, GpuMonitorStandsInItsOrder) {
  using Monitor = GpuMonitor;
  expect_order<Monitor>(
      71, &Monitor::get_num_gpus, &Monitor::refresh_gpus, &Monitor::get_gpu, &Monitor::update_gpu,
      &Monitor::update_gpus, &Monitor::set_update_interval, &Monitor::find_gpu_by_uuid,
      &Monitor::find_gpu_by_pci, &Monitor::find_gpu_of_renderer, &Monitor::get_gpu_name,
      &Monitor::get_vendor_name, &Monitor::get_bios_version, &Monitor::get_driver_name,
      &Monitor::get_driver_version, &Monitor::get_bus_link, &Monitor::get_num_temperatures,
      &Monitor::get_temperature_name, &Monitor::get_temperature, &Monitor::reset_temperatures,
      &Monitor::get_temperature_limit, &Monitor::set_temperature_limit,
      &Monitor::get_temperature_limit_range, &Monitor::get_shutdown_temperature,
      &Monitor::get_clock, &Monitor::get_clock_range, &Monitor::get_clock_offset,
      &Monitor::set_clock_offset, &Monitor::get_clock_offset_range, &Monitor::lock_clock,
      &Monitor::unlock_clock, &Monitor::get_performance_state, &Monitor::get_throttle_reasons,
      &Monitor::get_boost, &Monitor::set_boost, &Monitor::reset_boost, &Monitor::get_num_fans,
      &Monitor::get_fan_speed, &Monitor::get_fan_rpm, &Monitor::set_fan_speed,
      &Monitor::set_fan_auto, &Monitor::is_fan_auto, &Monitor::get_fan_range, &Monitor::get_power,
      &Monitor::reset_power_test, &Monitor::get_power_limit, &Monitor::set_power_limit,
      &Monitor::get_power_limit_range, &Monitor::set_voltage_offset, &Monitor::get_energy,
      &Monitor::get_usage, &Monitor::reset_usages, &Monitor::get_bus_throughput,
      &Monitor::get_memory, &Monitor::get_memory_errors, &Monitor::update_processes,
      &Monitor::get_process, &Monitor::set_alarm, &Monitor::is_alarm_on, &Monitor::record_to_file,
      &Monitor::write_report, &Monitor::can_set, &Monitor::restore_defaults);
  EXPECT_EQ(count_pure("_ZTVN3orv10GpuMonitorE", 71), 62u);
}

}  // namespace
}  // namespace orv::test
