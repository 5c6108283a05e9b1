#include <orv/services/audio_data.h>

#include <orv/core/log_mgr.h>
#include <orv/core/utils.h>
#include <orv/math/math.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <deque>
#include <vector>

#include "core/lock_guard.h"

namespace orv {

struct AudioDataQueue {
  std::vector<AudioFrame*> listed;  // part of the record, filled by nobody
  std::deque<AudioFrame*> queued;
  std::vector<void*> pcm_blocks;  // every one ever handed out
};

namespace {

// Not null for 0 bytes either.
unsigned char* alloc_zeroed(unsigned int size, const char* what) {
  void* block = std::calloc(std::max(size, 1u), 1);
  if (!block) LogMgr::get().tracef_debug("AudioData - no memory for %s of %u bytes", what, size);
  return static_cast<unsigned char*>(block);
}

}  // namespace

AudioData::AudioData()
    : frames_lock(new ThreadLock), spare_lock(new ThreadLock), queue_(new AudioDataQueue) {}

AudioData::~AudioData() {
  kill_audio_frames();
  for (void* block : queue_->pcm_blocks) std::free(block);
  delete queue_;
  delete spare_lock;
  delete frames_lock;
}

// ---- description ------------------------------------------------------------------------------

void AudioData::alloc_pcm_buffer(unsigned int size) {
  pcm_buffer = alloc_zeroed(size, "a PCM buffer");
  pcm_buffer_size = pcm_buffer ? size : 0;
  if (pcm_buffer) queue_->pcm_blocks.push_back(pcm_buffer);
}

void AudioData::copy_from(const AudioData& other) {
  format = other.format;
  num_channels = other.num_channels;
  sample_rate = other.sample_rate;
  bits_per_sample = other.bits_per_sample;
  frequency = other.frequency;
  reserved_d = other.reserved_d;
  volume = other.volume;
  reserved_e = other.reserved_e;
}

// ---- frames -----------------------------------------------------------------------------------

AudioFrame* AudioData::new_audio_frame(unsigned int size) {
  unsigned char* block = alloc_zeroed(size, "a frame");
  if (!block) return nullptr;
  auto* frame = new AudioFrame;
  frame->id = utils::gen_id();
  frame->index = next_frame_index++;
  frame->data = block;
  frame->size = size;
  return frame;
}

void AudioData::del_audio_frame(AudioFrame* frame) {
  if (!frame) return;
  std::free(frame->data);
  delete frame;
}

unsigned int AudioData::push_audio_frame(AudioFrame* frame) {
  const detail::LockGuard guard(frames_lock);
  if (frame) queue_->queued.push_back(frame);
  return static_cast<unsigned int>(queue_->queued.size());
}

AudioFrame* AudioData::pop_audio_frame() {
  const detail::LockGuard guard(frames_lock);
  if (queue_->queued.empty()) return nullptr;
  AudioFrame* frame = queue_->queued.front();
  queue_->queued.pop_front();
  return frame;
}

AudioFrame* AudioData::get_next_ready_audio_frame() { return pop_audio_frame(); }

AudioFrame* AudioData::get_audio_frame(unsigned int size) {
  AudioFrame* frame = new_audio_frame(size);
  if (frame) queue_->queued.push_back(frame);
  return frame;
}

unsigned int AudioData::get_num_audio_frames() const {
  const detail::LockGuard guard(frames_lock);
  return static_cast<unsigned int>(queue_->queued.size());
}

unsigned int AudioData::get_num_ready_audio_frames() const { return get_num_audio_frames(); }

void AudioData::kill_audio_frames() {
  while (AudioFrame* frame = pop_audio_frame()) del_audio_frame(frame);
}

// ---- test tones -------------------------------------------------------------------------------

float AudioData::gen_sine_wave(float a, float b) { return std::sin(b * 3.14159f * a); }

float AudioData::gen_sawtooth(float /*a*/, float b) { return b == 0.0f ? 0.0f : 2.0f / b - 1.0f; }

float AudioData::gen_square(float /*a*/, float b) { return b < 0.5f ? 1.0f : -1.0f; }

float AudioData::gen_white_noise(float /*a*/, float /*b*/) {
  return static_cast<float>(Math::rand15()) * (1.0f / 32768.0f);
}

float AudioData::generator(float a, float b, int type) {
  switch (type) {
    case 1:
      return gen_sine_wave(a, b);
    case 2:
      return gen_sawtooth(a, b);
    case 3:
      return gen_square(a, b);
    case 4:
      return gen_white_noise(a, b);
    default:
      return 0.0f;
  }
}

}  // namespace orv
