// Plays 16-bit sound of one or two channels into whatever frame the host gives to mix().

#include <orv/services/audio.h>
#include <orv/services/audio_data.h>
#include <orv/services/audio_frame.h>

#include <cmath>
#include <cstdint>

#include "module_support.h"

namespace {

using orv::AudioData;
using orv::AudioFrame;
using orv::test::Numbered;

/// A moment of sound, left and right.
struct Moment {
  float left = 0.0f;
  float right = 0.0f;
};

Moment read_moment(const unsigned char* bytes, int num_channels) {
  std::int16_t samples[2] = {};
  std::memcpy(samples, bytes, sizeof(std::int16_t) * static_cast<std::size_t>(num_channels));
  if (num_channels == 1) samples[1] = samples[0];
  return {static_cast<float>(samples[0]), static_cast<float>(samples[1])};
}

/// The sound of one voice, moment by moment in its own rate.
class Source {
 public:
  Source(int num_channels, int rate) : num_channels_(num_channels), rate_(rate) {}
  ~Source() { leave_queue(); }
  Source(const Source&) = delete;
  Source& operator=(const Source&) = delete;

  int num_channels() const { return num_channels_; }
  int rate() const { return rate_; }
  unsigned int position() const { return position_; }
  bool is_stream() const { return queue_ != nullptr; }
  bool has_sound() const { return queue_ || !samples_.empty(); }

  void take_samples(const unsigned char* bytes, std::size_t size) {
    leave_queue();
    samples_.assign(bytes, bytes + size / moment_size() * moment_size());
    position_ = 0;
  }
  void follow(AudioData* queue) {
    leave_queue();
    samples_.clear();
    queue_ = queue;
    position_ = 0;
  }
  bool seek(unsigned int position) {
    if (queue_ || position >= samples_.size() / moment_size()) return false;
    position_ = position;
    return true;
  }
  void rewind() { position_ = 0; }

  /// The next moment; false when there is none now.
  bool peek(Moment* moment) {
    if (queue_) return peek_queue(moment);
    const std::size_t at = position_ * moment_size();
    if (at >= samples_.size()) return false;
    *moment = read_moment(&samples_[at], num_channels_);
    return true;
  }
  void advance() {
    ++position_;
    in_frame_ += moment_size();
  }

 private:
  std::size_t moment_size() const { return 2 * static_cast<std::size_t>(num_channels_); }

  bool peek_queue(Moment* moment) {
    while (!frame_ || in_frame_ + moment_size() > frame_->size) {
      queue_->del_audio_frame(frame_);
      frame_ = queue_->pop_audio_frame();
      in_frame_ = 0;
      if (!frame_) return false;
    }
    *moment = read_moment(frame_->data + in_frame_, num_channels_);
    return true;
  }
  void leave_queue() {
    if (queue_) queue_->del_audio_frame(frame_);
    frame_ = nullptr;
    queue_ = nullptr;
  }

  int num_channels_;
  int rate_;
  std::vector<unsigned char> samples_;
  AudioData* queue_ = nullptr;
  AudioFrame* frame_ = nullptr;
  std::size_t in_frame_ = 0;
  unsigned int position_ = 0;
};

struct Voice {
  std::unique_ptr<Source> source;
  orv::AUDIO_VOICE_STATE state = orv::AUDIO_VOICE_STOPPED;
  bool loop = false;
  float volume = 1.0f;
  float pan = 0.0f;
  int phase = 0;  ///< how far the device is beyond the source's moment, in parts of its rate

  /// What sounds now, with the voice's own loudness; then goes on by one moment of the device.
  Moment next(int device_rate) {
    Moment moment;
    if (!source->peek(&moment)) {
      if (source->is_stream()) return {};
      source->rewind();
      if (!loop) state = orv::AUDIO_VOICE_STOPPED;
      if (!loop || !source->peek(&moment)) return {};
    }
    for (phase += source->rate(); phase >= device_rate; phase -= device_rate) source->advance();
    return {moment.left * volume * std::min(1.0f, 1.0f - pan),
            moment.right * volume * std::min(1.0f, 1.0f + pan)};
  }
};

std::int16_t to_sample(float value) {
  return static_cast<std::int16_t>(std::lround(std::clamp(value, -32768.0f, 32767.0f)));
}

bool is_between(float value, float low, float high) { return value >= low && value <= high; }

class MemoryAudio : public orv::test::Module<orv::Audio> {
 public:
  MemoryAudio() : Module("test audio"), voices_(last_number()) {}

  bool stop() override {
    close_device();
    return Audio::stop();
  }

  unsigned int get_num_devices() override { return 1; }
  const char* get_device_name(unsigned int index) override {
    return index == 0 ? "memory" : nullptr;
  }
  bool open_device(unsigned int index, int sample_rate, int num_channels) override {
    close_device();
    if (index != 0 || sample_rate < 8000 || sample_rate > 192000) return false;
    if (num_channels < 1 || num_channels > 2) return false;
    rate_ = sample_rate;
    num_channels_ = num_channels;
    return true;
  }
  bool close_device() override {
    if (!rate_) return false;
    voices_.clear();
    rate_ = 0;
    return true;
  }

  int create_voice(const AudioData* format) override {
    if (!rate_ || !format || format->bits_per_sample != 16) return 0;
    if (format->num_channels < 1 || format->num_channels > 2) return 0;
    if (format->sample_rate < 1 || format->sample_rate > 192000) return 0;
    if (!is_between(format->volume, 0.0f, 1.0f)) return 0;
    Voice voice;
    voice.source = std::make_unique<Source>(format->num_channels, format->sample_rate);
    voice.volume = format->volume;
    return voices_.add(std::move(voice));
  }
  bool destroy_voice(int voice) override { return voices_.remove(voice); }
  bool set_voice_buffer(int number, const AudioData* data) override {
    Voice* voice = voice_for(number, data);
    if (!voice || !data->pcm_buffer || !data->pcm_buffer_size) return false;
    voice->source->take_samples(data->pcm_buffer, data->pcm_buffer_size);
    voice->state = orv::AUDIO_VOICE_STOPPED;
    return true;
  }
  bool stream_voice(int number, AudioData* data) override {
    Voice* voice = data ? voice_for(number, data) : voices_.find(number);
    if (!voice) return false;
    voice->source->follow(data);
    voice->state = orv::AUDIO_VOICE_STOPPED;
    return true;
  }

  bool play_voice(int number, bool loop) override {
    Voice* voice = voices_.find(number);
    if (!voice || !voice->source->has_sound()) return false;
    voice->state = orv::AUDIO_VOICE_PLAYING;
    voice->loop = loop;
    return true;
  }
  bool pause_voice(int number) override {
    Voice* voice = voices_.find(number);
    if (!voice || voice->state != orv::AUDIO_VOICE_PLAYING) return false;
    voice->state = orv::AUDIO_VOICE_PAUSED;
    return true;
  }
  bool stop_voice(int number) override {
    Voice* voice = voices_.find(number);
    if (!voice) return false;
    voice->state = orv::AUDIO_VOICE_STOPPED;
    voice->source->rewind();
    voice->phase = 0;
    return true;
  }
  orv::AUDIO_VOICE_STATE get_voice_state(int number) override {
    const Voice* voice = voices_.find(number);
    return voice ? voice->state : orv::AUDIO_VOICE_NONE;
  }
  bool seek_voice(int number, unsigned int sample_frame) override {
    const Voice* voice = voices_.find(number);
    return voice && voice->source->seek(sample_frame);
  }
  unsigned int get_voice_position(int number) override {
    const Voice* voice = voices_.find(number);
    return voice ? voice->source->position() : 0;
  }

  bool set_voice_volume(int number, float volume) override {
    Voice* voice = voices_.find(number);
    if (!voice || !is_between(volume, 0.0f, 1.0f)) return false;
    voice->volume = volume;
    return true;
  }
  bool set_voice_pan(int number, float pan) override {
    Voice* voice = voices_.find(number);
    if (!voice || !is_between(pan, -1.0f, 1.0f)) return false;
    voice->pan = pan;
    return true;
  }
  bool set_master_volume(float volume) override {
    if (!is_between(volume, 0.0f, 1.0f)) return false;
    master_volume_ = volume;
    return true;
  }
  float get_master_volume() override { return master_volume_; }

  bool mix(AudioFrame* frame) override {
    const std::size_t moment_size = 2 * static_cast<std::size_t>(num_channels_);
    if (!rate_ || !frame || !frame->data || frame->size % moment_size != 0) return false;
    for (std::size_t at = 0; at < frame->size; at += moment_size) {
      const Moment sum = mix_moment();
      std::int16_t samples[2] = {to_sample(sum.left), to_sample(sum.right)};
      if (num_channels_ == 1) samples[0] = to_sample((sum.left + sum.right) / 2.0f);
      std::memcpy(frame->data + at, samples, moment_size);
    }
    return true;
  }

 private:
  /// The voice, when its format is that of the data.
  Voice* voice_for(int number, const AudioData* data) const {
    Voice* voice = voices_.find(number);
    if (!voice || !data || data->bits_per_sample != 16) return nullptr;
    if (data->num_channels != voice->source->num_channels()) return nullptr;
    return data->sample_rate == voice->source->rate() ? voice : nullptr;
  }

  Moment mix_moment() {
    Moment sum;
    voices_.for_each([&](int, Voice& voice) {
      if (voice.state != orv::AUDIO_VOICE_PLAYING) return;
      const Moment moment = voice.next(rate_);
      sum.left += moment.left;
      sum.right += moment.right;
    });
    return {sum.left * master_volume_, sum.right * master_volume_};
  }

  int rate_ = 0;  ///< of the open device, 0 without one
  int num_channels_ = 0;
  float master_volume_ = 1.0f;
  Numbered<Voice> voices_;
};

}  // namespace

ORV_TEST_MODULE(MemoryAudio)
