#include <orv/services/audio.h>
#include <orv/services/audio_data.h>
#include <orv/services/audio_frame.h>

#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <thread>
#include <vector>

#include "services/loaded_module.h"

namespace orv::test {
namespace {

using testing::Each;
using testing::ElementsAre;

using Samples = std::vector<std::int16_t>;

void describe(AudioData& data, int num_channels, int rate) {
  data.num_channels = num_channels;
  data.sample_rate = rate;
  data.volume = 1.0f;
}

void fill(AudioData& data, const Samples& samples) {
  data.alloc_pcm_buffer(static_cast<unsigned int>(samples.size() * 2));
  std::memcpy(data.pcm_buffer, samples.data(), samples.size() * 2);
}

void push(AudioData& data, const Samples& samples) {
  AudioFrame* frame = data.new_audio_frame(static_cast<unsigned int>(samples.size() * 2));
  std::memcpy(frame->data, samples.data(), samples.size() * 2);
  data.push_audio_frame(frame);
}

class AudioModule : public LoadedModule<Audio> {
 protected:
  AudioModule() : LoadedModule("audio") {}

  void SetUp() override {
    LoadedModule::SetUp();
    ASSERT_NE(plugin_, nullptr);
    ASSERT_TRUE(plugin_->open_device(0, 44100, 2));
    describe(mono_, 1, 44100);
    describe(stereo_, 2, 44100);
  }

  int play(AudioData& data, const Samples& samples, bool loop = false) {
    fill(data, samples);
    const int voice = plugin_->create_voice(&data);
    EXPECT_GT(voice, 0);
    EXPECT_TRUE(plugin_->set_voice_buffer(voice, &data));
    EXPECT_TRUE(plugin_->play_voice(voice, loop));
    return voice;
  }
  int stream(AudioData& data) {
    const int voice = plugin_->create_voice(&data);
    EXPECT_TRUE(plugin_->stream_voice(voice, &data));
    EXPECT_TRUE(plugin_->play_voice(voice, false));
    return voice;
  }
  Samples mix(std::size_t num_samples) {
    AudioFrame* frame = out_.new_audio_frame(static_cast<unsigned int>(num_samples * 2));
    EXPECT_TRUE(plugin_->mix(frame));
    Samples samples(num_samples);
    std::memcpy(samples.data(), frame->data, num_samples * 2);
    out_.del_audio_frame(frame);
    return samples;
  }

  AudioData mono_, stereo_, out_;
};

TEST_F(AudioModule, TellsOfItsDevice) {
  EXPECT_EQ(plugin_->get_num_devices(), 1u);
  EXPECT_STREQ(plugin_->get_device_name(0), "memory");
  EXPECT_EQ(plugin_->get_device_name(1), nullptr);
}

TEST_F(AudioModule, DeviceIsOpenOnceAtMost) {
  EXPECT_FALSE(plugin_->open_device(1, 44100, 2));
  EXPECT_FALSE(plugin_->close_device()) << "a failed attempt leaves none open";
  EXPECT_EQ(plugin_->create_voice(&mono_), 0);
  EXPECT_FALSE(plugin_->open_device(0, 7999, 2));
  EXPECT_FALSE(plugin_->open_device(0, 44100, 3));
  EXPECT_TRUE(plugin_->open_device(0, 8000, 1));
  EXPECT_TRUE(plugin_->close_device());
}

TEST_F(AudioModule, VoicesEndWithTheirDevice) {
  const int first = play(mono_, {1000, 1000});
  ASSERT_TRUE(plugin_->open_device(0, 44100, 2)) << "in place of the one before";
  EXPECT_EQ(plugin_->get_voice_state(first), AUDIO_VOICE_NONE);
  EXPECT_THAT(mix(2), Each(0));
  const int second = play(mono_, {1000, 1000});
  EXPECT_TRUE(plugin_->close_device());
  EXPECT_EQ(plugin_->get_voice_state(second), AUDIO_VOICE_NONE);
}

TEST_F(AudioModule, NothingPlaysAsSilence) { EXPECT_THAT(mix(8), Each(0)); }

TEST_F(AudioModule, VoicesAreMixed) {
  const int voice = play(mono_, {1000, 2000, 3000});
  EXPECT_TRUE(plugin_->set_voice_volume(voice, 0.5f));
  play(stereo_, {100, -100, 200, -200});
  EXPECT_THAT(mix(8), ElementsAre(600, 400, 1200, 800, 1500, 1500, 0, 0));
}

TEST_F(AudioModule, SumsAreCutAtSixteenBits) {
  play(stereo_, {30000, -30000});
  play(stereo_, {30000, -30000});
  EXPECT_THAT(mix(2), ElementsAre(32767, -32768));
}

TEST_F(AudioModule, VoiceTakesVolumeOfItsData) {
  mono_.volume = 0.25f;
  play(mono_, {4000});
  EXPECT_THAT(mix(2), ElementsAre(1000, 1000));
}

TEST_F(AudioModule, PanTurnsOneSideDown) {
  const int voice = play(mono_, {1000, 1000, 1000});
  EXPECT_TRUE(plugin_->set_voice_pan(voice, -1.0f));
  EXPECT_THAT(mix(2), ElementsAre(1000, 0));
  EXPECT_TRUE(plugin_->set_voice_pan(voice, 0.5f));
  EXPECT_THAT(mix(2), ElementsAre(500, 1000));
  EXPECT_FALSE(plugin_->set_voice_pan(voice, 1.5f));
  EXPECT_THAT(mix(2), ElementsAre(500, 1000));
}

TEST_F(AudioModule, MasterVolumeScalesAll) {
  EXPECT_EQ(plugin_->get_master_volume(), 1.0f);
  EXPECT_TRUE(plugin_->set_master_volume(0.5f));
  EXPECT_FALSE(plugin_->set_master_volume(2.0f));
  EXPECT_EQ(plugin_->get_master_volume(), 0.5f);
  play(mono_, {1000});
  EXPECT_THAT(mix(2), ElementsAre(500, 500));
}

TEST_F(AudioModule, VoiceStopsAtItsEnd) {
  const int voice = play(mono_, {7, 8});
  EXPECT_EQ(plugin_->get_voice_state(voice), AUDIO_VOICE_PLAYING);
  mix(4);
  EXPECT_EQ(plugin_->get_voice_position(voice), 2u);
  EXPECT_THAT(mix(4), Each(0));
  EXPECT_EQ(plugin_->get_voice_state(voice), AUDIO_VOICE_STOPPED);
  EXPECT_EQ(plugin_->get_voice_position(voice), 0u);
}

TEST_F(AudioModule, LoopBeginsAgain) {
  const int voice = play(mono_, {1, 2}, true);
  EXPECT_THAT(mix(10), ElementsAre(1, 1, 2, 2, 1, 1, 2, 2, 1, 1));
  EXPECT_EQ(plugin_->get_voice_state(voice), AUDIO_VOICE_PLAYING);
}

TEST_F(AudioModule, PausedVoiceGoesOnWhereItWas) {
  const int voice = play(mono_, {1, 2, 3});
  EXPECT_THAT(mix(2), ElementsAre(1, 1));
  EXPECT_TRUE(plugin_->pause_voice(voice));
  EXPECT_FALSE(plugin_->pause_voice(voice));
  EXPECT_EQ(plugin_->get_voice_state(voice), AUDIO_VOICE_PAUSED);
  EXPECT_THAT(mix(4), Each(0));
  EXPECT_TRUE(plugin_->play_voice(voice, false));
  EXPECT_THAT(mix(4), ElementsAre(2, 2, 3, 3));
}

TEST_F(AudioModule, StopGoesBackToTheBegin) {
  const int voice = play(mono_, {1, 2, 3});
  mix(4);
  EXPECT_TRUE(plugin_->stop_voice(voice));
  EXPECT_EQ(plugin_->get_voice_state(voice), AUDIO_VOICE_STOPPED);
  EXPECT_TRUE(plugin_->play_voice(voice, false));
  EXPECT_THAT(mix(2), ElementsAre(1, 1));
}

TEST_F(AudioModule, SeekGoesToASampleFrame) {
  const int voice = play(stereo_, {1, 2, 3, 4, 5, 6});
  EXPECT_TRUE(plugin_->seek_voice(voice, 2));
  EXPECT_EQ(plugin_->get_voice_position(voice), 2u);
  EXPECT_FALSE(plugin_->seek_voice(voice, 3));
  EXPECT_THAT(mix(2), ElementsAre(5, 6));
}

TEST_F(AudioModule, OtherRatesAreConverted) {
  describe(mono_, 1, 22050);
  play(mono_, {10, 20});
  EXPECT_THAT(mix(8), ElementsAre(10, 10, 10, 10, 20, 20, 20, 20));
  describe(stereo_, 2, 88200);
  play(stereo_, {1, -1, 2, -2, 3, -3, 4, -4});
  EXPECT_THAT(mix(4), ElementsAre(1, -1, 3, -3));
}

TEST_F(AudioModule, DeviceOfOneChannelHearsBothSides) {
  ASSERT_TRUE(plugin_->open_device(0, 44100, 1));
  play(stereo_, {100, 300});
  EXPECT_THAT(mix(1), ElementsAre(200));
}

TEST_F(AudioModule, StreamPlaysAcrossFrames) {
  const int voice = stream(mono_);
  EXPECT_THAT(mix(2), Each(0)) << "an empty queue is silence";
  push(mono_, {1, 2});
  push(mono_, {3});
  EXPECT_THAT(mix(8), ElementsAre(1, 1, 2, 2, 3, 3, 0, 0));
  EXPECT_EQ(plugin_->get_voice_state(voice), AUDIO_VOICE_PLAYING);
  EXPECT_EQ(plugin_->get_voice_position(voice), 3u);
  EXPECT_EQ(mono_.get_num_audio_frames(), 0u);
  EXPECT_FALSE(plugin_->seek_voice(voice, 0));
  push(mono_, {4});
  EXPECT_THAT(mix(2), ElementsAre(4, 4));
}

TEST_F(AudioModule, StreamTakesFramesOfAnotherThread) {
  constexpr int num_frames = 200;
  stream(mono_);
  std::thread producer([this] {
    for (int i = 1; i <= num_frames; ++i) push(mono_, Samples(16, static_cast<std::int16_t>(i)));
  });
  std::int64_t sum = 0;
  for (int i = 0; i < 1000 && mono_.get_num_audio_frames() == 0; ++i) std::this_thread::yield();
  for (int i = 0; i < num_frames; ++i) {
    for (const std::int16_t sample : mix(32)) sum += sample;
  }
  producer.join();
  for (int i = 0; i < num_frames; ++i) {
    for (const std::int16_t sample : mix(32)) sum += sample;
  }
  EXPECT_EQ(sum, std::int64_t{32} * num_frames * (num_frames + 1) / 2) << "each sample once";
}

TEST_F(AudioModule, EndedStreamLeavesTheQueue) {
  const int voice = stream(mono_);
  push(mono_, {1, 2});
  push(mono_, {3});
  mix(2);
  EXPECT_TRUE(plugin_->stream_voice(voice, nullptr));
  EXPECT_EQ(mono_.get_num_audio_frames(), 1u) << "the frame that was begun is gone";
  EXPECT_FALSE(plugin_->play_voice(voice, false)) << "no sound any more";
}

TEST_F(AudioModule, WhatCannotBePlayedIsRefused) {
  EXPECT_EQ(plugin_->create_voice(nullptr), 0);
  AudioData odd;
  odd.bits_per_sample = 24;
  EXPECT_EQ(plugin_->create_voice(&odd), 0);
  AudioData loud;
  loud.volume = 1.5f;
  EXPECT_EQ(plugin_->create_voice(&loud), 0);
  const int voice = plugin_->create_voice(&mono_);
  EXPECT_FALSE(plugin_->play_voice(voice, false)) << "no sound yet";
  EXPECT_FALSE(plugin_->set_voice_buffer(voice, nullptr));
  EXPECT_FALSE(plugin_->set_voice_buffer(voice, &mono_)) << "no buffer";
  fill(stereo_, {1, 2});
  EXPECT_FALSE(plugin_->set_voice_buffer(voice, &stereo_)) << "another format";
  EXPECT_FALSE(plugin_->stream_voice(voice, &stereo_));
}

TEST_F(AudioModule, UnknownVoicesDoNothing) {
  const int voice = play(mono_, {1});
  EXPECT_TRUE(plugin_->destroy_voice(voice));
  EXPECT_FALSE(plugin_->destroy_voice(voice));
  for (const int unknown : {voice, 0, -1, 12345}) {
    EXPECT_FALSE(plugin_->play_voice(unknown, false));
    EXPECT_FALSE(plugin_->stop_voice(unknown));
    EXPECT_FALSE(plugin_->set_voice_volume(unknown, 1.0f));
    EXPECT_EQ(plugin_->get_voice_state(unknown), AUDIO_VOICE_NONE);
    EXPECT_EQ(plugin_->get_voice_position(unknown), 0u);
  }
  EXPECT_NE(plugin_->create_voice(&mono_), voice) << "numbers are not given twice";
}

TEST_F(AudioModule, MixRefusesWhatIsNoFrame) {
  EXPECT_FALSE(plugin_->mix(nullptr));
  AudioFrame empty;
  EXPECT_FALSE(plugin_->mix(&empty));
  AudioFrame* odd = out_.new_audio_frame(6);
  EXPECT_FALSE(plugin_->mix(odd)) << "one and a half sample frames";
  out_.del_audio_frame(odd);
  plugin_->stop();
  AudioFrame* whole = out_.new_audio_frame(8);
  EXPECT_FALSE(plugin_->mix(whole)) << "stop() closes the device";
  out_.del_audio_frame(whole);
}

TEST_F(AudioModule, UnloadsWithVoicesPlaying) {
  push(mono_, {1, 2, 3});
  stream(mono_);
  mix(2);
  unload();
  EXPECT_EQ(mono_.get_num_audio_frames(), 0u);
}

}  // namespace
}  // namespace orv::test
