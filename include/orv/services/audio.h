/// @file
/// Plugins that play sound.
#pragma once

#include <orv/core/api.h>
#include <orv/core/plugin.h>
#include <orv/fwd.h>

namespace orv {

/// What a voice of an Audio plugin does.
enum AUDIO_VOICE_STATE : int {
  AUDIO_VOICE_NONE = 0,     ///< there is no such voice
  AUDIO_VOICE_STOPPED = 1,  ///< silent, at the beginning of its sound
  AUDIO_VOICE_PLAYING = 2,  ///< sounding
  AUDIO_VOICE_PAUSED = 3    ///< silent, goes on where it was
};

/// A plugin that plays sound: voices, each with a sound of its own, are mixed into the sound of one
/// output device. The library plays nothing itself; a module fills every operation.
///
/// Sound is PCM as its AudioData tells: `sample_rate` sample frames a second, each of
/// `num_channels` interleaved samples of `bits_per_sample` bits (8 unsigned, 16 and 32 signed, in
/// the machine's byte order). A plugin converts from that to the device's format, which is always
/// 16 bits.
///
/// A host calls initialize(), start(), open_device(), then makes voices. close_device() ends all
/// voices; stop() closes the device.
///
/// Voices are named by numbers above 0 that are not given twice; 0 is no voice. What a plugin
/// cannot do, unknown voices, null where something is needed and numbers out of range give false, 0
/// or null and change nothing.
///
/// The host calls from one thread. A plugin may mix on a thread of its own: there it takes frames
/// from the AudioData of streaming voices while the host adds some, and nothing else of the host's.
///
/// The order of the operations is a contract with modules built apart.
class ORV_API Audio : public Plugin {
 public:
  /// A plugin of unknown type, for a module's class to name.
  Audio() = default;
  ~Audio() override;
  Audio(const Audio&) = delete;
  Audio& operator=(const Audio&) = delete;

  // ---- devices ----

  /// Looks for output devices anew and gives their number. An open device stays open.
  virtual unsigned int get_num_devices() = 0;
  /// Name of a device for the user; the plugin's text, good until the devices are counted again.
  /// Null past the last. Device 0 is the system's choice.
  virtual const char* get_device_name(unsigned int index) = 0;
  /// Opens a device in place of the one before, whose voices end.
  /// @param sample_rate   sample frames a second, 8000 to 192000
  /// @param num_channels  1 to 8; left, right, then those that the device has
  /// @return false when the device cannot do this; then no device is open
  virtual bool open_device(unsigned int index, int sample_rate, int num_channels) = 0;
  /// Ends all voices and lets go of the device. False when none is open.
  virtual bool close_device() = 0;

  // ---- voices ----

  /// Makes a silent voice for sound of a format, at the middle, with the volume of that AudioData.
  /// Only the fields that describe the sound are read; the AudioData is not kept.
  /// @return the voice, or 0 without an open device, for null, and for a format that cannot be
  ///         converted
  virtual int create_voice(const AudioData* format) = 0;
  /// Silences a voice and ends it. A streamed AudioData is let go with the frames that it holds.
  virtual bool destroy_voice(int voice) = 0;
  /// Gives a voice the sound in `data->pcm_buffer`, which is copied, in place of what it had, and
  /// stops it. False without a buffer and for another format than the voice's.
  virtual bool set_voice_buffer(int voice, const AudioData* data) = 0;
  /// Lets a voice play the frames of a queue in place of what it had, and stops it. While it plays,
  /// frames are popped and freed by the plugin; an empty queue sounds as silence and the voice
  /// plays on. `data` stays the host's and must last until the voice ends or streams something
  /// else; null ends streaming. False for another format than the voice's.
  virtual bool stream_voice(int voice, AudioData* data) = 0;

  // ---- playing ----

  /// Starts a voice, or lets a paused one go on.
  /// @param loop  whether the sound of set_voice_buffer() begins again at its end; without it the
  ///              voice stops there
  /// @return false for a voice without a sound
  virtual bool play_voice(int voice, bool loop) = 0;
  /// Holds a voice where it is. False unless it plays.
  virtual bool pause_voice(int voice) = 0;
  /// Silences a voice and goes back to the beginning of its sound; a queue is left as it is.
  virtual bool stop_voice(int voice) = 0;
  /// What the voice does; AUDIO_VOICE_NONE for an unknown one.
  virtual AUDIO_VOICE_STATE get_voice_state(int voice) = 0;
  /// Goes to a sample frame of the sound of set_voice_buffer(), counted from 0 in the voice's own
  /// sample rate. False past its end and for a streaming voice.
  virtual bool seek_voice(int voice, unsigned int sample_frame) = 0;
  /// The sample frame that is heard next; for a streaming voice those taken since it was started.
  /// 0 for an unknown voice.
  virtual unsigned int get_voice_position(int voice) = 0;

  // ---- loudness ----

  /// Factor on the voice's samples, 0 to 1.
  virtual bool set_voice_volume(int voice, float volume) = 0;
  /// Balance of a voice, from -1 (left alone) by 0 (both sides in full) to 1 (right alone). Devices
  /// of one channel keep it without hearing it.
  virtual bool set_voice_pan(int voice, float pan) = 0;
  /// Factor on everything, 0 to 1; 1 at first. Kept without a device too.
  virtual bool set_master_volume(float volume) = 0;
  /// The factor on everything.
  virtual float get_master_volume() = 0;

  // ---- mixing ----

  /// Fills all of `frame->data` with what all playing voices give next, in the device's format,
  /// and moves them on. Sums beyond 16 bits are cut to the largest value. For hosts that store or
  /// send the sound; false on a device that sounds by itself, without a device, and for a frame
  /// without data or whose size is no whole number of sample frames.
  virtual bool mix(AudioFrame* frame) = 0;
};

}  // namespace orv
