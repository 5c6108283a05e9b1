#include <orv/core/utils.h>
#include <orv/math/math.h>
#include <orv/services/audio_data.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <future>
#include <limits>
#include <thread>
#include <vector>

namespace orv::test {
namespace {

bool is_zero(const unsigned char* data, unsigned int size) {
  return std::all_of(data, data + size, [](unsigned char byte) { return byte == 0; });
}

std::vector<std::uintptr_t> places(std::initializer_list<const void*> fields) {
  std::vector<std::uintptr_t> all;
  for (const void* field : fields) all.push_back(reinterpret_cast<std::uintptr_t>(field));
  return all;
}

// ---- frames as records -----------------------------------------------------------------------

TEST(AudioFrame, StartsAsDescribed) {
  const AudioFrame frame;
  EXPECT_EQ(frame.id, 0);
  EXPECT_EQ(frame.index, 0u);
  EXPECT_EQ(frame.data, nullptr);
  EXPECT_EQ(frame.size, 0u);
  EXPECT_EQ(frame.ready, 1);
  for (const int word : {frame.reserved_a, frame.reserved_b, frame.reserved_c, frame.reserved_d}) {
    EXPECT_EQ(word, 0);
  }
}

TEST(AudioFrame, FieldsStandInTheirOrder) {
  const AudioFrame frame;
  const auto order =
      places({&frame.id, &frame.index, &frame.reserved_a, &frame.reserved_b, &frame.data,
              &frame.size, &frame.reserved_c, &frame.ready, &frame.reserved_d});
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

// ---- description -----------------------------------------------------------------------------

TEST(AudioData, StartsAsDescribed) {
  const AudioData audio;
  EXPECT_EQ(audio.format, 5);
  EXPECT_EQ(audio.num_channels, 2);
  EXPECT_EQ(audio.sample_rate, 44100);
  EXPECT_EQ(audio.bits_per_sample, 16);
  EXPECT_EQ(audio.pcm_buffer, nullptr);
  EXPECT_EQ(audio.pcm_buffer_size, 0u);
  EXPECT_EQ(audio.frequency, 500);
  EXPECT_EQ(audio.volume, 0.6f);
  EXPECT_EQ(audio.next_frame_index, 0u);
  EXPECT_NE(audio.frames_lock, nullptr);
  EXPECT_NE(audio.spare_lock, nullptr);
  EXPECT_NE(audio.frames_lock, audio.spare_lock);
  EXPECT_EQ(audio.get_num_audio_frames(), 0u);
  EXPECT_EQ(audio.get_num_ready_audio_frames(), 0u);
  for (const int word :
       {audio.reserved_a, audio.reserved_b, audio.reserved_c, audio.reserved_d, audio.reserved_e}) {
    EXPECT_EQ(word, 0);
  }
}

TEST(AudioData, FieldsStandInTheirOrder) {
  const AudioData audio;
  const auto order =
      places({&audio.format, &audio.num_channels, &audio.sample_rate, &audio.bits_per_sample,
              &audio.reserved_a, &audio.pcm_buffer, &audio.reserved_b, &audio.pcm_buffer_size,
              &audio.reserved_c, &audio.frequency, &audio.reserved_d, &audio.volume,
              &audio.reserved_e, &audio.next_frame_index, &audio.frames_lock, &audio.spare_lock});
  EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));
}

TEST(AudioData, AllocPcmBufferZeroesTheBlock) {
  AudioData audio;
  audio.alloc_pcm_buffer(4096);
  EXPECT_EQ(audio.pcm_buffer_size, 4096u);
  ASSERT_NE(audio.pcm_buffer, nullptr);
  EXPECT_TRUE(is_zero(audio.pcm_buffer, 4096));
  audio.pcm_buffer[4095] = 1;
}

TEST(AudioData, AllocPcmBufferKeepsTheBlockBefore) {
  AudioData audio;
  audio.alloc_pcm_buffer(100);
  unsigned char* first = audio.pcm_buffer;
  std::memset(first, 7, 100);
  audio.alloc_pcm_buffer(200);
  EXPECT_EQ(audio.pcm_buffer_size, 200u);
  EXPECT_NE(audio.pcm_buffer, first);
  EXPECT_TRUE(is_zero(audio.pcm_buffer, 200));
  // Address checks would tell if it were gone, and leak checks if it stayed for ever.
  EXPECT_TRUE(std::all_of(first, first + 100, [](unsigned char byte) { return byte == 7; }));
}

TEST(AudioData, AllocPcmBufferOfNothing) {
  AudioData audio;
  audio.alloc_pcm_buffer(0);
  EXPECT_EQ(audio.pcm_buffer_size, 0u);
  EXPECT_NE(audio.pcm_buffer, nullptr);
}

TEST(AudioData, CopyFromTakesTheDescriptionOnly) {
  AudioData from, to;
  from.format = 1;
  from.num_channels = 6;
  from.sample_rate = 48000;
  from.bits_per_sample = 24;
  from.frequency = 440;
  from.volume = 0.25f;
  from.reserved_a = from.reserved_b = from.reserved_c = 9;
  from.reserved_d = 10;
  from.reserved_e = 11;
  from.next_frame_index = 12;
  from.alloc_pcm_buffer(16);
  from.get_audio_frame(16);
  ThreadLock* lock = to.frames_lock;
  to.copy_from(from);
  EXPECT_EQ(to.format, 1);
  EXPECT_EQ(to.num_channels, 6);
  EXPECT_EQ(to.sample_rate, 48000);
  EXPECT_EQ(to.bits_per_sample, 24);
  EXPECT_EQ(to.frequency, 440);
  EXPECT_EQ(to.volume, 0.25f);
  EXPECT_EQ(to.reserved_d, 10);
  EXPECT_EQ(to.reserved_e, 11);
  EXPECT_EQ(to.reserved_a, 0);
  EXPECT_EQ(to.reserved_b, 0);
  EXPECT_EQ(to.reserved_c, 0);
  EXPECT_EQ(to.pcm_buffer, nullptr);
  EXPECT_EQ(to.pcm_buffer_size, 0u);
  EXPECT_EQ(to.next_frame_index, 0u);
  EXPECT_EQ(to.frames_lock, lock);
  EXPECT_EQ(to.get_num_audio_frames(), 0u);
}

TEST(AudioData, CopyFromItself) {
  AudioData audio;
  audio.alloc_pcm_buffer(16);
  audio.volume = 1.0f;
  audio.copy_from(audio);
  EXPECT_EQ(audio.volume, 1.0f);
  EXPECT_EQ(audio.pcm_buffer_size, 16u);
}

// ---- frames ----------------------------------------------------------------------------------

TEST(AudioData, NewFrameIsZeroedAndNotQueued) {
  AudioData audio;
  const int before = utils::gen_id();
  AudioFrame* frame = audio.new_audio_frame(64);
  ASSERT_NE(frame, nullptr);
  EXPECT_GT(frame->id, before);
  EXPECT_EQ(frame->index, 0u);
  EXPECT_EQ(frame->size, 64u);
  EXPECT_EQ(frame->ready, 1);
  EXPECT_TRUE(is_zero(frame->data, 64));
  EXPECT_EQ(audio.get_num_audio_frames(), 0u);
  audio.del_audio_frame(frame);
}

TEST(AudioData, NewFrameOfNothing) {
  AudioData audio;
  AudioFrame* frame = audio.new_audio_frame(0);
  ASSERT_NE(frame, nullptr);
  EXPECT_EQ(frame->size, 0u);
  audio.del_audio_frame(frame);
}

TEST(AudioData, IndicesRiseForFramesThatWereDeletedToo) {
  AudioData audio;
  audio.del_audio_frame(audio.new_audio_frame(1));
  audio.del_audio_frame(audio.new_audio_frame(1));
  AudioFrame* third = audio.new_audio_frame(1);
  EXPECT_EQ(third->index, 2u);
  EXPECT_EQ(audio.next_frame_index, 3u);
  audio.del_audio_frame(third);
}

TEST(AudioData, IndicesStartAgainAfterTheLast) {
  AudioData audio;
  audio.next_frame_index = std::numeric_limits<unsigned int>::max();
  audio.get_audio_frame(1);
  EXPECT_EQ(audio.next_frame_index, 0u);
}

TEST(AudioData, NullFramesAreIgnored) {
  AudioData audio;
  audio.del_audio_frame(nullptr);
  EXPECT_EQ(audio.push_audio_frame(nullptr), 0u);
  EXPECT_EQ(audio.pop_audio_frame(), nullptr);
}

TEST(AudioData, PopOfAnEmptyQueueIsNull) {
  AudioData audio;
  EXPECT_EQ(audio.pop_audio_frame(), nullptr);
  EXPECT_EQ(audio.get_next_ready_audio_frame(), nullptr);
}

TEST(AudioData, FramesArePoppedInTheOrderPushed) {
  AudioData audio;
  std::vector<AudioFrame*> frames;
  for (unsigned int i = 0; i < 5; ++i) {
    frames.push_back(audio.new_audio_frame(i));
    EXPECT_EQ(audio.push_audio_frame(frames.back()), i + 1);
    EXPECT_EQ(audio.get_num_audio_frames(), i + 1);
    EXPECT_EQ(audio.get_num_ready_audio_frames(), i + 1);
  }
  for (AudioFrame* frame : frames) {
    EXPECT_EQ(audio.pop_audio_frame(), frame);
    audio.del_audio_frame(frame);
  }
  EXPECT_EQ(audio.pop_audio_frame(), nullptr);
}

TEST(AudioData, NextReadyFrameIsTakenFromTheQueueWhetherReadyOrNot) {
  AudioData audio;
  AudioFrame* frame = audio.new_audio_frame(8);
  frame->ready = 0;
  audio.push_audio_frame(frame);
  EXPECT_EQ(audio.get_num_ready_audio_frames(), 1u);
  EXPECT_EQ(audio.get_next_ready_audio_frame(), frame);
  EXPECT_EQ(audio.get_num_audio_frames(), 0u);
  audio.del_audio_frame(frame);
}

TEST(AudioData, GetFrameMakesOneAndQueuesIt) {
  AudioData audio;
  AudioFrame* first = audio.get_audio_frame(8);
  AudioFrame* second = audio.get_audio_frame(16);
  EXPECT_NE(first, second);
  EXPECT_EQ(second->size, 16u);
  EXPECT_EQ(second->index, 1u);
  EXPECT_EQ(audio.get_num_audio_frames(), 2u);
  EXPECT_EQ(audio.pop_audio_frame(), first);
  audio.del_audio_frame(first);
}

TEST(AudioData, KillFramesEmptiesTheQueue) {
  AudioData audio;
  for (unsigned int i = 0; i < 3; ++i) audio.get_audio_frame(32);
  audio.kill_audio_frames();
  EXPECT_EQ(audio.get_num_audio_frames(), 0u);
  EXPECT_EQ(audio.next_frame_index, 3u);
  audio.kill_audio_frames();
}

TEST(AudioData, FramesMayMoveBetweenQueues) {
  AudioData from, to;
  AudioFrame* frame = from.get_audio_frame(8);
  EXPECT_EQ(to.push_audio_frame(from.pop_audio_frame()), 1u);
  EXPECT_EQ(to.pop_audio_frame(), frame);
  to.del_audio_frame(frame);
}

// ---- threads ---------------------------------------------------------------------------------

struct LockCase {
  const char* name;
  bool waits;
  void (*work)(AudioData&);
};

const LockCase lock_cases[] = {
    {"push", true, [](AudioData& audio) { audio.push_audio_frame(nullptr); }},
    {"pop", true, [](AudioData& audio) { audio.pop_audio_frame(); }},
    {"next ready", true, [](AudioData& audio) { audio.get_next_ready_audio_frame(); }},
    {"count", true, [](AudioData& audio) { audio.get_num_audio_frames(); }},
    {"ready count", true, [](AudioData& audio) { audio.get_num_ready_audio_frames(); }},
    {"get", false, [](AudioData& audio) { audio.get_audio_frame(4); }},
    {"new", false, [](AudioData& audio) { audio.del_audio_frame(audio.new_audio_frame(4)); }},
};

TEST(AudioData, OnlySomeWaitForTheLock) {
  for (const LockCase& row : lock_cases) {
    AudioData audio;
    audio.frames_lock->acquire();
    audio.spare_lock->acquire();
    auto done = std::async(std::launch::async, row.work, std::ref(audio));
    const auto patience = std::chrono::milliseconds(row.waits ? 20 : 20000);
    const bool waited = done.wait_for(patience) == std::future_status::timeout;
    EXPECT_EQ(waited, row.waits) << row.name;
    audio.frames_lock->release();
    // Nothing takes the other one.
    done.wait();
    audio.spare_lock->release();
  }
}

TEST(AudioData, OwnLockMayBeHeldByTheSameThread) {
  AudioData audio;
  audio.frames_lock->acquire();
  audio.get_audio_frame(4);
  EXPECT_EQ(audio.get_num_audio_frames(), 1u);
  audio.kill_audio_frames();
  audio.frames_lock->release();
}

TEST(AudioData, CarriesFramesFromOneThreadToAnother) {
  constexpr unsigned int COUNT = 20000;
  AudioData audio;
  std::atomic<bool> ended{false};
  std::thread producer([&] {
    for (unsigned int i = 0; i < COUNT; ++i) {
      AudioFrame* frame = audio.new_audio_frame(64);
      std::memset(frame->data, static_cast<int>(i & 255), 64);
      audio.push_audio_frame(frame);
      // The player is slower at times.
      while (audio.get_num_audio_frames() > 256) std::this_thread::yield();
    }
    ended = true;
  });
  unsigned int received = 0, wrong = 0;
  while (true) {
    const bool was_ended = ended;
    AudioFrame* frame = audio.pop_audio_frame();
    if (!frame && was_ended) break;
    if (!frame) {
      std::this_thread::yield();
      continue;
    }
    const unsigned char expected = static_cast<unsigned char>(received & 255);
    wrong += frame->index != received || frame->data[0] != expected || frame->data[63] != expected;
    ++received;
    audio.del_audio_frame(frame);
  }
  producer.join();
  EXPECT_EQ(received, COUNT);
  EXPECT_EQ(wrong, 0u);
}

// ---- test tones ------------------------------------------------------------------------------

TEST(AudioData, SineWaveHasNoFactorOfTwo) {
  EXPECT_FLOAT_EQ(AudioData::gen_sine_wave(1.0f, 0.5f), 1.0f);
  EXPECT_FLOAT_EQ(AudioData::gen_sine_wave(3.0f, 0.5f), -1.0f);
  EXPECT_NEAR(AudioData::gen_sine_wave(2.0f, 0.5f), 0.0f, 1e-5f);
  EXPECT_EQ(AudioData::gen_sine_wave(440.0f, 0.0f), 0.0f);
}

TEST(AudioData, SawtoothIsAHyperbola) {
  EXPECT_EQ(AudioData::gen_sawtooth(0.0f, 2.0f), 0.0f);
  EXPECT_EQ(AudioData::gen_sawtooth(9.0f, 1.0f), 1.0f);
  EXPECT_EQ(AudioData::gen_sawtooth(0.0f, 0.25f), 7.0f);
  EXPECT_EQ(AudioData::gen_sawtooth(0.0f, -2.0f), -2.0f);
}

TEST(AudioData, SawtoothOfZeroIsZeroAndNoInfinity) {
  EXPECT_EQ(AudioData::gen_sawtooth(0.0f, 0.0f), 0.0f);
  EXPECT_EQ(AudioData::gen_sawtooth(0.0f, -0.0f), 0.0f);
  EXPECT_EQ(AudioData::gen_sawtooth(7.0f, 0.0f), 0.0f);
}

TEST(AudioData, SquareFallsAtTheHalf) {
  EXPECT_EQ(AudioData::gen_square(0.0f, 0.0f), 1.0f);
  EXPECT_EQ(AudioData::gen_square(0.0f, std::nextafter(0.5f, 0.0f)), 1.0f);
  EXPECT_EQ(AudioData::gen_square(0.0f, 0.5f), -1.0f);
  EXPECT_EQ(AudioData::gen_square(0.0f, 1.0f), -1.0f);
}

TEST(AudioData, WhiteNoiseIsPositiveAndBelowOne) {
  float lowest = 1.0f, highest = 0.0f;
  for (int i = 0; i < 20000; ++i) {
    const float noise = AudioData::gen_white_noise(0.0f, 0.0f);
    ASSERT_GE(noise, 0.0f);
    ASSERT_LT(noise, 1.0f);
    ASSERT_EQ(noise * 32768.0f, std::floor(noise * 32768.0f));
    lowest = std::min(lowest, noise);
    highest = std::max(highest, noise);
  }
  EXPECT_LT(lowest, 0.01f);
  EXPECT_GT(highest, 0.99f);
}

TEST(AudioData, WhiteNoiseIsTheLibrarysRandomSeries) {
  Math::srnd(5);
  const float noise = AudioData::gen_white_noise(0.0f, 0.0f);
  Math::srnd(5);
  EXPECT_EQ(noise, static_cast<float>(Math::rand15()) / 32768.0f);
}

TEST(AudioData, GeneratorChoosesByType) {
  EXPECT_EQ(AudioData::generator(2.0f, 0.3f, 1), AudioData::gen_sine_wave(2.0f, 0.3f));
  EXPECT_EQ(AudioData::generator(2.0f, 0.3f, 2), AudioData::gen_sawtooth(2.0f, 0.3f));
  EXPECT_EQ(AudioData::generator(2.0f, 0.3f, 3), AudioData::gen_square(2.0f, 0.3f));
  Math::srnd(8);
  const float noise = AudioData::generator(2.0f, 0.3f, 4);
  Math::srnd(8);
  EXPECT_EQ(noise, AudioData::gen_white_noise(2.0f, 0.3f));
}

TEST(AudioData, GeneratorOfAnotherTypeIsZero) {
  for (const int type : {9, 5, 0, -1}) EXPECT_EQ(AudioData::generator(2.0f, 0.3f, type), 0.0f);
}

}  // namespace
}  // namespace orv::test
