/// @file
/// A stream of sound: its description, a queue of blocks and test tones.
#pragma once

#include <orv/core/api.h>
#include <orv/core/thread_lock.h>
#include <orv/fwd.h>
#include <orv/services/audio_frame.h>

namespace orv {

struct AudioDataQueue;

/// Describes a stream of PCM sound and carries its blocks from the thread that makes them to the
/// one that plays them. The library itself plays nothing: that is for a plugin derived from Audio.
///
///     // One thread:
///     AudioFrame* frame = audio.new_audio_frame(4096);
///     fill(frame->data, frame->size);
///     audio.push_audio_frame(frame);
///
///     // Another one:
///     if (AudioFrame* next = audio.pop_audio_frame()) {
///       play(next->data, next->size);
///       audio.del_audio_frame(next);
///     }
///
/// These four may run beside each other when one thread makes and pushes and one pops; the counts
/// may be asked for anywhere. All else wants the object to itself.
class ORV_API AudioData {
 public:
  /// With the values below and an empty queue.
  AudioData();
  /// Frees the PCM buffer, and those before it, and every frame that is still queued.
  ~AudioData();
  AudioData(const AudioData&) = delete;
  AudioData& operator=(const AudioData&) = delete;

  // ---- description ----

  int format = 5;                       ///< 5: whole numbers of 16 bits; only stored
  int num_channels = 2;                 ///< samples that belong to one moment
  int sample_rate = 44100;              ///< moments per second
  int bits_per_sample = 16;             ///< size of a sample
  int reserved_a = 0;                   ///< not used
  unsigned char* pcm_buffer = nullptr;  ///< block of alloc_pcm_buffer(), owned by this object
  int reserved_b = 0;                   ///< not used
  unsigned int pcm_buffer_size = 0;     ///< bytes in `pcm_buffer`
  int reserved_c = 0;                   ///< not used
  int frequency = 500;                  ///< of a test tone, in Hz; only stored
  int reserved_d = 0;                   ///< not used, but copied
  float volume = 0.6f;                  ///< from 0 to 1; only stored
  int reserved_e = 0;                   ///< not used, but copied
  unsigned int next_frame_index = 0;    ///< `index` of the next new frame
  ThreadLock* frames_lock;              ///< guards the queue; owned by this object
  ThreadLock* spare_lock;               ///< for the host: the library never takes it

  /// A zeroed `pcm_buffer` of `size` bytes. The block before it stays until this object goes, so
  /// pointers to it stay good. Without memory for it, buffer and size become null and 0.
  void alloc_pcm_buffer(unsigned int size);
  /// Takes over format, channels, rate, bits, frequency and volume (with the reserved words beside
  /// these two); neither buffer nor queue.
  void copy_from(const AudioData& other);

  // ---- frames ----

  /// A frame with a zeroed block, which is the caller's until it is pushed. Each takes the next
  /// index, also when it is never queued. Null without memory for it.
  AudioFrame* new_audio_frame(unsigned int size);
  /// Frees a frame that is not queued. Nothing for null.
  void del_audio_frame(AudioFrame* frame);
  /// Appends a frame to the queue, which owns it from then on; null is not appended. Push a frame
  /// once only. Gives the new count.
  unsigned int push_audio_frame(AudioFrame* frame);
  /// Takes the oldest frame from the queue; it is the caller's, who ends it by del_audio_frame().
  /// Null when there is none.
  AudioFrame* pop_audio_frame();
  /// The same as pop_audio_frame().
  AudioFrame* get_next_ready_audio_frame();
  /// Makes a frame, appends it and gives it; the queue owns it. Takes no lock: not while another
  /// thread uses the queue. Null without memory for it.
  AudioFrame* get_audio_frame(unsigned int size);
  unsigned int get_num_audio_frames() const;        ///< frames in the queue
  unsigned int get_num_ready_audio_frames() const;  ///< the same
  /// Frees every frame in the queue. Not while another thread uses one of them.
  void kill_audio_frames();

  // ---- test tones ----
  // `b` is the running value, `a` a parameter for those that have one.

  /// sin(b * pi * a)
  static float gen_sine_wave(float a, float b);
  /// 2 / b - 1, and 0 when `b` is 0.
  static float gen_sawtooth(float a, float b);
  /// 1 when `b` is below 0.5, else -1.
  static float gen_square(float a, float b);
  /// Random number from 0 to just below 1, from the calling thread's generator (Math::rand15).
  static float gen_white_noise(float a, float b);
  /// One of the four: 1 sine, 2 sawtooth, 3 square, 4 noise. 0 for any other type.
  static float generator(float a, float b, int type);

 private:
  AudioDataQueue* queue_;
};

}  // namespace orv
