// Videos that are computed. One is named "WIDTHxHEIGHTxFRAMES@RATE", by its file name or by what
// stands in memory. The pixel (x, y) of picture n, counted from the upper left one, has red x + n,
// green y and blue n. Its one sound track is the sample n at the moment n, 8000 a second.

#include <orv/gpu/texture.h>
#include <orv/gpu/texture_data.h>
#include <orv/image/image.h>
#include <orv/services/audio_data.h>
#include <orv/services/audio_frame.h>
#include <orv/services/simple_video.h>

#include <strings.h>

#include <cmath>
#include <cstdint>

#include "module_support.h"

namespace {

using orv::test::Numbered;

constexpr int SOUND_RATE = 8000;

struct Video {
  unsigned int width = 0, height = 0, num_frames = 0;
  double rate = 0.0;
  char title[64] = {};

  orv::PIXEL_FORMAT format = orv::PF_RGB_U8;
  unsigned int wished_width = 0, wished_height = 0;
  bool flip = false, loop = false, playing = false;
  double speed = 1.0, time = 0.0;
  unsigned int frame = 0;
  std::uint64_t next_sample = 0;

  double duration() const { return num_frames / rate; }
  std::uint64_t num_samples() const { return static_cast<std::uint64_t>(duration() * SOUND_RATE); }

  void go_to(unsigned int index) {
    frame = index;
    time = index / rate;
    next_sample = static_cast<std::uint64_t>(time * SOUND_RATE);
  }
  /// Shows the picture that is due; true when it is another.
  bool show() {
    const unsigned int before = frame;
    if (loop && time >= duration()) {
      time = std::fmod(time, duration());
      next_sample = static_cast<std::uint64_t>(time * SOUND_RATE);
    }
    if (time >= duration()) {
      time = duration();
      playing = false;
    }
    frame = std::min(num_frames - 1, static_cast<unsigned int>(time * rate + 1e-9));
    return frame != before;
  }
  void draw(orv::Image& image) const {
    const unsigned int channels = image.get_pixel_format_num_channels();
    const bool bgr = image.pixel_format == orv::PF_BGR_U8 || image.pixel_format == orv::PF_BGRA_U8;
    unsigned char* pixel = image.get_u8_ptr();
    for (unsigned int row = 0; row < image.height; ++row) {
      const unsigned int shown = flip ? image.height - 1 - row : row;
      const unsigned int y =
          static_cast<unsigned int>(std::uint64_t{shown} * height / image.height);
      for (unsigned int column = 0; column < image.width; ++column, pixel += channels) {
        const unsigned int x =
            static_cast<unsigned int>(std::uint64_t{column} * width / image.width);
        pixel[bgr ? 2 : 0] = static_cast<unsigned char>(x + frame);
        pixel[1] = static_cast<unsigned char>(y);
        pixel[bgr ? 0 : 2] = static_cast<unsigned char>(frame);
        if (channels == 4) pixel[3] = 255;
      }
    }
  }
};

class ComputedVideo : public orv::test::Module<orv::SimpleVideo> {
 public:
  ComputedVideo() : Module("test video"), videos_(last_number()) {}

  bool terminate() override {
    close_all_videos();
    return SimpleVideo::terminate();
  }

  int open_video(const char* filename) override {
    Video video;
    if (!filename) return 0;
    if (std::sscanf(filename, "%5ux%5ux%6u@%lf", &video.width, &video.height, &video.num_frames,
                    &video.rate) != 4 ||
        video.width < 1 || video.width > 4096 || video.height < 1 || video.height > 4096 ||
        video.num_frames < 1 || !(video.rate >= 0.1 && video.rate <= 1000.0)) {
      tracef_warning("%s is no computed video", filename);
      return 0;
    }
    orv::test::copy_text(video.title, filename);
    return videos_.add(video);
  }
  int open_video_from_memory(const void* data, unsigned int size) override {
    char name[64] = {};
    if (!data || size >= sizeof name) return 0;
    std::memcpy(name, data, size);
    return open_video(name);
  }
  bool close_video(int video) override { return videos_.remove(video); }
  bool close_all_videos() override {
    videos_.clear();
    return true;
  }
  bool is_open(int video) override { return videos_.find(video) != nullptr; }

  unsigned int get_width(int video) override { return get(video, &Video::width); }
  unsigned int get_height(int video) override { return get(video, &Video::height); }
  double get_pixel_aspect(int video) override { return is_open(video) ? 1.0 : 0.0; }
  double get_frame_rate(int video) override { return get(video, &Video::rate); }
  double get_duration(int number) override {
    const Video* video = videos_.find(number);
    return video ? video->duration() : 0.0;
  }
  unsigned int get_num_frames(int video) override { return get(video, &Video::num_frames); }
  const char* get_codec_name(int video) override { return is_open(video) ? "computed" : nullptr; }
  const char* get_metadata(int number, const char* name) override {
    const Video* video = videos_.find(number);
    return video && name && strcasecmp(name, "title") == 0 ? video->title : nullptr;
  }
  unsigned int get_num_audio_tracks(int video) override { return is_open(video) ? 1 : 0; }

  bool select_audio_track(int video, unsigned int track) override {
    return is_open(video) && track == 0;
  }
  bool set_output_format(int video, orv::PIXEL_FORMAT format) override {
    if (format < orv::PF_RGB_U8 || format > orv::PF_BGRA_U8) return false;
    return set(video, &Video::format, format);
  }
  bool set_output_size(int video, unsigned int width, unsigned int height) override {
    if ((width == 0) != (height == 0) || width > 4096 || height > 4096) return false;
    return set(video, &Video::wished_width, width) && set(video, &Video::wished_height, height);
  }
  bool set_flip_vertical(int video, bool state) override { return set(video, &Video::flip, state); }
  bool set_loop(int video, bool state) override { return set(video, &Video::loop, state); }
  bool set_speed(int video, double speed) override {
    return speed > 0.0 && speed <= 16.0 && set(video, &Video::speed, speed);
  }

  bool play_video(int number) override {
    Video* video = videos_.find(number);
    if (!video) return false;
    if (video->time >= video->duration()) video->go_to(0);
    video->playing = true;
    return true;
  }
  bool pause_video(int video) override { return set(video, &Video::playing, false); }
  bool stop_video(int number) override { return pause_video(number) && seek_frame(number, 0); }
  bool is_playing(int video) override { return get(video, &Video::playing); }
  bool update_video(int number, double seconds) override {
    Video* video = videos_.find(number);
    if (!video || !video->playing || !(seconds >= 0.0 && seconds <= 1e6)) return false;
    video->time += seconds * video->speed;
    return video->show();
  }

  bool seek_time(int number, double seconds) override {
    Video* video = videos_.find(number);
    if (!video || !(seconds >= 0.0 && seconds < video->duration())) return false;
    video->go_to(static_cast<unsigned int>(seconds * video->rate + 1e-9));
    return true;
  }
  bool seek_frame(int number, unsigned int frame) override {
    Video* video = videos_.find(number);
    if (!video || frame >= video->num_frames) return false;
    video->go_to(frame);
    return true;
  }
  double get_time(int video) override { return get(video, &Video::time); }
  unsigned int get_frame_index(int video) override { return get(video, &Video::frame); }
  bool is_at_end(int number) override {
    const Video* video = videos_.find(number);
    return video && !video->loop && video->frame + 1 == video->num_frames;
  }

  bool decode_next_frame(int number) override {
    Video* video = videos_.find(number);
    if (!video) return false;
    const bool last = video->frame + 1 == video->num_frames;
    if (last && !video->loop) return false;
    video->frame = last ? 0 : video->frame + 1;
    video->time = video->frame / video->rate;
    if (last) video->next_sample = 0;
    return true;
  }
  bool get_frame_image(int number, orv::Image* image) override {
    const Video* video = videos_.find(number);
    if (!video || !image) return false;
    const unsigned int width = video->wished_width ? video->wished_width : video->width;
    const unsigned int height = video->wished_height ? video->wished_height : video->height;
    if (image->width != width || image->height != height || image->pixel_format != video->format ||
        !image->has_pixels()) {
      if (!image->create(width, height, 1, video->format, false, true)) return false;
    }
    video->draw(*image);
    return true;
  }
  bool get_frame_texture(int number, orv::Renderer* renderer, orv::Texture* texture) override {
    orv::Image image;
    if (!texture || !get_frame_image(number, &image)) return false;
    if (!make_like(*texture, image, renderer) || !texture->load_from_image(image)) return false;
    // An upload leaves alone what is on the GPU already; binding brings the new pixels there.
    return !renderer || texture->bind(renderer, 0);
  }

  bool get_sound_format(int video, orv::AudioData* data) override {
    if (!is_open(video) || !data) return false;
    data->format = 5;
    data->num_channels = 1;
    data->sample_rate = SOUND_RATE;
    data->bits_per_sample = 16;
    return true;
  }
  unsigned int read_sound(int number, orv::AudioData* data, unsigned int frame_size,
                          unsigned int max_frames) override {
    Video* video = videos_.find(number);
    if (!video || !data || frame_size < 2 || frame_size > (1u << 20)) return 0;
    if (data->num_channels != 1 || data->bits_per_sample != 16) return 0;
    unsigned int num_frames = 0;
    while (num_frames < max_frames && video->next_sample < video->num_samples()) {
      const auto count = static_cast<unsigned int>(
          std::min<std::uint64_t>(frame_size / 2, video->num_samples() - video->next_sample));
      orv::AudioFrame* frame = data->new_audio_frame(count * 2);
      if (!frame) break;
      for (unsigned int i = 0; i < count; ++i) {
        const auto sample = static_cast<std::int16_t>(video->next_sample++);
        std::memcpy(frame->data + i * sizeof sample, &sample, sizeof sample);
      }
      data->push_audio_frame(frame);
      ++num_frames;
    }
    return num_frames;
  }

 private:
  /// Gives a texture the size and format of an image. One that is on the GPU goes there anew.
  static bool make_like(orv::Texture& texture, const orv::Image& image, orv::Renderer* renderer) {
    const bool fits = texture.get_data_ptr()->type == orv::TEXTURE_2D &&
                      texture.get_width() == image.width && texture.get_height() == image.height &&
                      texture.get_pixel_format() == image.pixel_format;
    if (fits) return true;
    if (texture.is_loaded_in_gpu_memory() && !texture.unload(renderer)) return false;
    if (!texture.create_2d(image.width, image.height, image.pixel_format, false)) return false;
    texture.gen_mipmaps(false);
    return true;
  }

  template <class Value>
  Value get(int number, Value Video::*field) const {
    const Video* video = videos_.find(number);
    return video ? video->*field : Value();
  }
  template <class Value>
  bool set(int number, Value Video::*field, Value value) {
    Video* video = videos_.find(number);
    if (!video) return false;
    video->*field = value;
    return true;
  }

  Numbered<Video> videos_;
};

}  // namespace

ORV_TEST_MODULE(ComputedVideo)
