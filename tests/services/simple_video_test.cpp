#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>
#include <orv/image/image.h>
#include <orv/services/audio_data.h>
#include <orv/services/audio_frame.h>
#include <orv/services/simple_video.h>

#include <gmock/gmock.h>

#include <cstdint>
#include <cstring>
#include <vector>

#include "services/loaded_module.h"
#include "support/held.h"
#include "support/log_capture.h"
#include "support/recording_renderer.h"

namespace orv::test {
namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;

class SimpleVideoModule : public LoadedModule<SimpleVideo> {
 protected:
  SimpleVideoModule() : LoadedModule("simple_video") {}

  void SetUp() override {
    LoadedModule::SetUp();
    ASSERT_NE(plugin_, nullptr);
    video_ = plugin_->open_video("8x6x50@25");
    ASSERT_GT(video_, 0);
  }

  std::vector<int> pixel(const Image& image, unsigned int x, unsigned int y) {
    const unsigned int channels = image.get_pixel_format_num_channels();
    const unsigned char* at = image.get_u8_ptr() + (x + image.width * y) * channels;
    return std::vector<int>(at, at + channels);
  }
  Image picture() {
    Image image;
    EXPECT_TRUE(plugin_->get_frame_image(video_, &image));
    return image;
  }

  int video_ = 0;
};

TEST_F(SimpleVideoModule, TellsWhatTheVideoIs) {
  EXPECT_EQ(plugin_->get_width(video_), 8u);
  EXPECT_EQ(plugin_->get_height(video_), 6u);
  EXPECT_EQ(plugin_->get_pixel_aspect(video_), 1.0);
  EXPECT_EQ(plugin_->get_frame_rate(video_), 25.0);
  EXPECT_EQ(plugin_->get_duration(video_), 2.0);
  EXPECT_EQ(plugin_->get_num_frames(video_), 50u);
  EXPECT_EQ(plugin_->get_num_audio_tracks(video_), 1u);
  EXPECT_STREQ(plugin_->get_codec_name(video_), "computed");
  EXPECT_STREQ(plugin_->get_metadata(video_, "Title"), "8x6x50@25");
  EXPECT_EQ(plugin_->get_metadata(video_, "artist"), nullptr);
  EXPECT_EQ(plugin_->get_metadata(video_, nullptr), nullptr);
}

TEST_F(SimpleVideoModule, OpensAFewAndClosesThem) {
  const char name[] = "4x4x2@10";
  const int other = plugin_->open_video_from_memory(name, sizeof name - 1);
  ASSERT_GT(other, video_);
  EXPECT_EQ(plugin_->get_num_frames(other), 2u);
  EXPECT_TRUE(plugin_->close_video(video_));
  EXPECT_FALSE(plugin_->is_open(video_));
  EXPECT_FALSE(plugin_->close_video(video_));
  EXPECT_TRUE(plugin_->is_open(other));
  EXPECT_TRUE(plugin_->close_all_videos());
  EXPECT_FALSE(plugin_->is_open(other));
}

TEST_F(SimpleVideoModule, WhatIsNoVideoIsRefusedWithALine) {
  LogCapture log;
  EXPECT_EQ(plugin_->open_video("holiday.avi"), 0);
  EXPECT_THAT(log.text(), HasSubstr("[test video] holiday.avi is no computed video"));
  EXPECT_EQ(plugin_->open_video("8x6x0@25"), 0);
  EXPECT_EQ(plugin_->open_video("8x6x50@nan"), 0);
  EXPECT_EQ(plugin_->open_video(nullptr), 0);
  EXPECT_EQ(plugin_->open_video_from_memory(nullptr, 4), 0);
}

TEST_F(SimpleVideoModule, DecodesPicturesOneByOne) {
  Image image = picture();
  EXPECT_EQ(image.width, 8u);
  EXPECT_EQ(image.height, 6u);
  EXPECT_EQ(image.pixel_format, PF_RGB_U8);
  EXPECT_THAT(pixel(image, 3, 2), ElementsAre(3, 2, 0));
  EXPECT_TRUE(plugin_->decode_next_frame(video_));
  EXPECT_TRUE(plugin_->decode_next_frame(video_));
  EXPECT_EQ(plugin_->get_frame_index(video_), 2u);
  EXPECT_DOUBLE_EQ(plugin_->get_time(video_), 0.08);
  const unsigned char* pixels = image.get_u8_ptr();
  EXPECT_TRUE(plugin_->get_frame_image(video_, &image));
  EXPECT_EQ(image.get_u8_ptr(), pixels) << "an image that fits is kept";
  EXPECT_THAT(pixel(image, 3, 2), ElementsAre(5, 2, 2));
}

TEST_F(SimpleVideoModule, DecodingEndsAtTheLastPicture) {
  unsigned int count = 1;
  while (plugin_->decode_next_frame(video_)) ++count;
  EXPECT_EQ(count, 50u);
  EXPECT_TRUE(plugin_->is_at_end(video_));
  EXPECT_EQ(plugin_->get_frame_index(video_), 49u);
  EXPECT_TRUE(plugin_->set_loop(video_, true));
  EXPECT_FALSE(plugin_->is_at_end(video_));
  EXPECT_TRUE(plugin_->decode_next_frame(video_));
  EXPECT_EQ(plugin_->get_frame_index(video_), 0u);
}

TEST_F(SimpleVideoModule, SeeksByTimeAndByPicture) {
  EXPECT_TRUE(plugin_->seek_time(video_, 1.0));
  EXPECT_EQ(plugin_->get_frame_index(video_), 25u);
  EXPECT_TRUE(plugin_->seek_time(video_, 1.059));
  EXPECT_EQ(plugin_->get_frame_index(video_), 26u);
  EXPECT_TRUE(plugin_->seek_frame(video_, 7));
  EXPECT_DOUBLE_EQ(plugin_->get_time(video_), 0.28);
  EXPECT_THAT(pixel(picture(), 0, 0), ElementsAre(7, 0, 7));
  EXPECT_FALSE(plugin_->seek_frame(video_, 50));
  EXPECT_FALSE(plugin_->seek_time(video_, 2.0));
  EXPECT_FALSE(plugin_->seek_time(video_, -0.1));
  EXPECT_EQ(plugin_->get_frame_index(video_), 7u);
}

TEST_F(SimpleVideoModule, PicturesComeAsWished) {
  EXPECT_TRUE(plugin_->set_output_format(video_, PF_BGRA_U8));
  EXPECT_FALSE(plugin_->set_output_format(video_, PF_RGBA_F32));
  EXPECT_TRUE(plugin_->seek_frame(video_, 10));
  EXPECT_THAT(pixel(picture(), 3, 5), ElementsAre(10, 5, 13, 255));
  EXPECT_TRUE(plugin_->set_flip_vertical(video_, true));
  EXPECT_THAT(pixel(picture(), 3, 5), ElementsAre(10, 0, 13, 255));
  EXPECT_TRUE(plugin_->set_output_size(video_, 4, 3));
  EXPECT_FALSE(plugin_->set_output_size(video_, 4, 0));
  const Image small = picture();
  EXPECT_EQ(small.width, 4u);
  EXPECT_EQ(small.height, 3u);
  EXPECT_THAT(pixel(small, 3, 0), ElementsAre(10, 4, 16, 255)) << "column 6 of row 4";
  EXPECT_TRUE(plugin_->set_output_size(video_, 0, 0));
  EXPECT_EQ(picture().width, 8u);
}

TEST_F(SimpleVideoModule, ClockShowsThePictureThatIsDue) {
  EXPECT_FALSE(plugin_->update_video(video_, 1.0)) << "it is paused at first";
  EXPECT_TRUE(plugin_->play_video(video_));
  EXPECT_TRUE(plugin_->is_playing(video_));
  EXPECT_FALSE(plugin_->update_video(video_, 0.03)) << "still the first";
  EXPECT_TRUE(plugin_->update_video(video_, 0.03));
  EXPECT_EQ(plugin_->get_frame_index(video_), 1u);
  EXPECT_TRUE(plugin_->set_speed(video_, 2.0));
  EXPECT_FALSE(plugin_->set_speed(video_, 0.0));
  EXPECT_TRUE(plugin_->update_video(video_, 0.5));
  EXPECT_EQ(plugin_->get_frame_index(video_), 26u);
  EXPECT_TRUE(plugin_->pause_video(video_));
  EXPECT_FALSE(plugin_->update_video(video_, 0.5));
  EXPECT_TRUE(plugin_->stop_video(video_));
  EXPECT_EQ(plugin_->get_frame_index(video_), 0u);
}

TEST_F(SimpleVideoModule, ClockStopsAtTheEndOrBeginsAgain) {
  EXPECT_TRUE(plugin_->play_video(video_));
  EXPECT_TRUE(plugin_->update_video(video_, 5.0));
  EXPECT_EQ(plugin_->get_frame_index(video_), 49u);
  EXPECT_FALSE(plugin_->is_playing(video_));
  EXPECT_TRUE(plugin_->play_video(video_));
  EXPECT_EQ(plugin_->get_frame_index(video_), 0u) << "from the begin again";
  EXPECT_TRUE(plugin_->set_loop(video_, true));
  EXPECT_TRUE(plugin_->update_video(video_, 2.5));
  EXPECT_EQ(plugin_->get_frame_index(video_), 12u);
  EXPECT_TRUE(plugin_->is_playing(video_));
}

TEST_F(SimpleVideoModule, FillsATexture) {
  const Held<Texture> texture;
  EXPECT_TRUE(plugin_->seek_frame(video_, 3));
  EXPECT_TRUE(plugin_->get_frame_texture(video_, nullptr, texture));
  EXPECT_EQ(texture->get_width(), 8u);
  EXPECT_EQ(texture->get_height(), 6u);
  EXPECT_EQ(texture->get_pixel_format(), PF_RGB_U8);
  EXPECT_THAT(pixel(*texture->get_image_ptr(), 7, 5), ElementsAre(10, 5, 3));
  EXPECT_FALSE(plugin_->get_frame_texture(video_, nullptr, nullptr));
  EXPECT_FALSE(plugin_->get_frame_image(video_, nullptr));
}

TEST_F(SimpleVideoModule, NextPictureReachesATextureOnTheGpu) {
  RecordingRenderer renderer;
  const Held<Texture> texture;
  renderer.label(texture->get_data_ptr(), "texture");
  EXPECT_TRUE(plugin_->get_frame_texture(video_, &renderer, texture));
  EXPECT_THAT(renderer.calls(), Contains("texture_load(null, texture, 0)"));
  texture->set_loaded_in_gpu_memory_state(true);
  renderer.clear();
  EXPECT_TRUE(plugin_->decode_next_frame(video_));
  EXPECT_TRUE(plugin_->get_frame_texture(video_, &renderer, texture));
  EXPECT_THAT(renderer.calls(), Contains("texture_update_2d(texture, 0, 0, 8, 6, 1)"));
  EXPECT_THAT(pixel(*texture->get_image_ptr(), 7, 5), ElementsAre(8, 5, 1));
}

TEST_F(SimpleVideoModule, TextureOfAnotherSizeGoesToTheGpuAnew) {
  RecordingRenderer renderer;
  const Held<Texture> texture;
  EXPECT_TRUE(plugin_->get_frame_texture(video_, &renderer, texture));
  texture->set_loaded_in_gpu_memory_state(true);
  EXPECT_TRUE(plugin_->set_output_size(video_, 4, 3));
  EXPECT_FALSE(plugin_->get_frame_texture(video_, nullptr, texture)) << "nobody to take it away";
  EXPECT_EQ(texture->get_width(), 8u);
  EXPECT_EQ(renderer.count("texture_unload"), 0);
  EXPECT_TRUE(plugin_->get_frame_texture(video_, &renderer, texture));
  EXPECT_EQ(renderer.count("texture_unload"), 1);
  EXPECT_EQ(texture->get_width(), 4u);
}

std::int16_t sample(const AudioFrame& frame, unsigned int index) {
  std::int16_t value = 0;
  std::memcpy(&value, frame.data + index * sizeof value, sizeof value);
  return value;
}

TEST_F(SimpleVideoModule, ReadsSoundIntoFrames) {
  AudioData sound;
  EXPECT_TRUE(plugin_->get_sound_format(video_, &sound));
  EXPECT_EQ(sound.num_channels, 1);
  EXPECT_EQ(sound.sample_rate, 8000);
  EXPECT_EQ(plugin_->read_sound(video_, &sound, 1000, 3), 3u);
  EXPECT_EQ(sound.get_num_audio_frames(), 3u);
  for (int i = 0; i < 3; ++i) {
    AudioFrame* frame = sound.pop_audio_frame();
    EXPECT_EQ(frame->size, 1000u);
    EXPECT_EQ(sample(*frame, 0), 500 * i);
    EXPECT_EQ(sample(*frame, 499), 500 * i + 499);
    sound.del_audio_frame(frame);
  }
  EXPECT_TRUE(plugin_->seek_time(video_, 1.96));
  EXPECT_EQ(plugin_->read_sound(video_, &sound, 400, 100), 2u) << "320 samples are left";
  AudioFrame* frame = sound.pop_audio_frame();
  EXPECT_EQ(sample(*frame, 0), 15680);
  sound.del_audio_frame(frame);
  frame = sound.pop_audio_frame();
  EXPECT_EQ(frame->size, 240u);
  EXPECT_EQ(sample(*frame, 119), 15999);
  sound.del_audio_frame(frame);
  EXPECT_EQ(plugin_->read_sound(video_, &sound, 400, 100), 0u);
}

TEST_F(SimpleVideoModule, SoundBeginsAgainWithThePictures) {
  AudioData sound;
  EXPECT_TRUE(plugin_->get_sound_format(video_, &sound));
  EXPECT_TRUE(plugin_->set_loop(video_, true));
  EXPECT_TRUE(plugin_->seek_frame(video_, 49));
  EXPECT_EQ(plugin_->read_sound(video_, &sound, 1000, 9), 1u) << "320 samples are left";
  EXPECT_EQ(plugin_->read_sound(video_, &sound, 1000, 9), 0u);
  sound.kill_audio_frames();
  EXPECT_TRUE(plugin_->decode_next_frame(video_));
  ASSERT_EQ(plugin_->read_sound(video_, &sound, 1000, 1), 1u);
  AudioFrame* frame = sound.pop_audio_frame();
  EXPECT_EQ(sample(*frame, 1), 1);
  sound.del_audio_frame(frame);
}

TEST_F(SimpleVideoModule, SoundNeedsItsFormat) {
  AudioData stereo;
  EXPECT_EQ(plugin_->read_sound(video_, &stereo, 1000, 1), 0u);
  EXPECT_EQ(plugin_->read_sound(video_, nullptr, 1000, 1), 0u);
  EXPECT_TRUE(plugin_->select_audio_track(video_, 0));
  EXPECT_FALSE(plugin_->select_audio_track(video_, 1));
}

TEST_F(SimpleVideoModule, UnknownVideosAnswerNothing) {
  Image image;
  for (const int unknown : {0, -1, 999}) {
    EXPECT_FALSE(plugin_->is_open(unknown));
    EXPECT_EQ(plugin_->get_width(unknown), 0u);
    EXPECT_EQ(plugin_->get_duration(unknown), 0.0);
    EXPECT_EQ(plugin_->get_codec_name(unknown), nullptr);
    EXPECT_FALSE(plugin_->play_video(unknown));
    EXPECT_FALSE(plugin_->seek_frame(unknown, 0));
    EXPECT_FALSE(plugin_->decode_next_frame(unknown));
    EXPECT_FALSE(plugin_->get_frame_image(unknown, &image));
    EXPECT_FALSE(plugin_->is_at_end(unknown));
  }
}

TEST_F(SimpleVideoModule, TerminateClosesAll) {
  EXPECT_TRUE(plugin_->terminate());
  EXPECT_FALSE(plugin_->is_open(video_));
}

}  // namespace
}  // namespace orv::test
