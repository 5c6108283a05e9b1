/// @file
/// Plugins that decode video.
#pragma once

#include <orv/core/api.h>
#include <orv/core/plugin.h>
#include <orv/fwd.h>

namespace orv {

/// A plugin that decodes video files: pictures into images and textures, sound into the frames of
/// an AudioData. The library has none itself; a module fills every operation.
///
/// A host opens a video, chooses how pictures should look, and then either steps through it with
/// decode_next_frame(), or lets the video's clock run (play_video(), and update_video() once a
/// frame) and takes the picture whenever update_video() tells of a new one.
///
/// Videos are named by numbers above 0 that are not given twice; 0 is none. Pictures are counted
/// from 0, times are seconds from the beginning. What a plugin cannot do, unknown videos, null
/// where something is needed and numbers out of range give false, 0 or null and change nothing.
/// What takes a renderer belongs to the renderer's thread. Distinct videos may be used on distinct
/// threads, one video by one thread at a time; while one is opened or closed, all others rest.
///
/// The order of the operations is a contract with modules built apart.
class ORV_API SimpleVideo : public Plugin {
 public:
  /// A plugin of unknown type, for a module's class to name.
  SimpleVideo() = default;
  ~SimpleVideo() override;
  SimpleVideo(const SimpleVideo&) = delete;
  SimpleVideo& operator=(const SimpleVideo&) = delete;

  // ---- videos ----

  /// Opens a file, at its beginning and paused. 0, with the cause in the log, when it cannot be
  /// read or holds no pictures.
  virtual int open_video(const char* filename) = 0;
  /// The same from `size` bytes in memory, which stay the host's and must last until the video is
  /// closed.
  virtual int open_video_from_memory(const void* data, unsigned int size) = 0;
  /// Closes a video. Textures that were filled stay.
  virtual bool close_video(int video) = 0;
  /// Closes all videos, as terminate() does. True without any.
  virtual bool close_all_videos() = 0;
  /// Whether the number names an open video.
  virtual bool is_open(int video) = 0;

  // ---- what it is ----

  /// Pixels of a row of the video itself.
  virtual unsigned int get_width(int video) = 0;
  /// Rows of the video itself.
  virtual unsigned int get_height(int video) = 0;
  /// Width of a pixel as part of its height, usually 1.
  virtual double get_pixel_aspect(int video) = 0;
  /// Pictures a second, the mean where it varies.
  virtual double get_frame_rate(int video) = 0;
  /// Seconds from the beginning to the end; 0 when it is not told.
  virtual double get_duration(int video) = 0;
  /// Pictures; 0 when it is not told.
  virtual unsigned int get_num_frames(int video) = 0;
  /// Name of the coding of the pictures; the plugin's text, good until the video is closed.
  virtual const char* get_codec_name(int video) = 0;
  /// A text of the file, such as "title", by its name in any case; null without. The plugin's text,
  /// good until the video is closed.
  virtual const char* get_metadata(int video, const char* name) = 0;
  /// Sound tracks, 0 for a silent video.
  virtual unsigned int get_num_audio_tracks(int video) = 0;

  // ---- wishes ----

  /// Sound track that read_sound() reads, 0 at first.
  virtual bool select_audio_track(int video, unsigned int track) = 0;
  /// Pixel format of pictures, PF_RGB_U8 at first. Byte formats of three and four channels are
  /// always possible.
  virtual bool set_output_format(int video, PIXEL_FORMAT format) = 0;
  /// Size of pictures in pixels, to which they are scaled; 0, 0 for the video's own, as at first.
  virtual bool set_output_size(int video, unsigned int width, unsigned int height) = 0;
  /// Whether the last row comes first, as OpenGL wants it; it does not at first.
  virtual bool set_flip_vertical(int video, bool state) = 0;
  /// Whether the video begins again at its end; it does not at first. The sound begins again with
  /// the pictures.
  virtual bool set_loop(int video, bool state) = 0;
  /// Speed of the clock, above 0 to 16; 1 at first.
  virtual bool set_speed(int video, double speed) = 0;

  // ---- clock ----

  /// Lets the clock run; from the beginning when the video was at its end.
  virtual bool play_video(int video) = 0;
  /// Holds the clock.
  virtual bool pause_video(int video) = 0;
  /// Holds the clock and goes back to the beginning.
  virtual bool stop_video(int video) = 0;
  /// Whether the clock runs. It stops at the end.
  virtual bool is_playing(int video) = 0;
  /// Moves the clock on and decodes the picture that is due; those between are left out.
  /// @param seconds  since the last call, 0 or more
  /// @return true when there is another picture than before; false also while the clock is held
  virtual bool update_video(int video, double seconds) = 0;

  // ---- place ----

  /// Goes to the picture that is shown at a time; sound goes along. False past the end.
  virtual bool seek_time(int video, double seconds) = 0;
  /// Goes to a picture; sound goes along. False past the end.
  virtual bool seek_frame(int video, unsigned int frame) = 0;
  /// The time that the clock shows.
  virtual double get_time(int video) = 0;
  /// The present picture.
  virtual unsigned int get_frame_index(int video) = 0;
  /// Whether the present picture is the last and does not repeat.
  virtual bool is_at_end(int video) = 0;

  // ---- pictures ----

  /// Goes on by one picture, whether or not the clock runs, which is set to it. False at the end,
  /// and when the picture cannot be decoded: then the present one stays.
  virtual bool decode_next_frame(int video) = 0;
  /// Copies the present picture, as it was wished for, into an image, which is made anew when its
  /// size or format is another.
  virtual bool get_frame_image(int video, Image* image) = 0;
  /// Copies the present picture into a texture, which becomes a plain one of its size and format,
  /// and brings it to the GPU at unit 0, also when an earlier picture is there. With a null
  /// renderer that happens when the texture is bound; false then for one that is on the GPU with
  /// another size or format.
  virtual bool get_frame_texture(int video, Renderer* renderer, Texture* texture) = 0;

  // ---- sound ----

  /// Writes the format of the chosen sound track to the describing fields of an AudioData.
  virtual bool get_sound_format(int video, AudioData* data) = 0;
  /// Decodes sound from where the last call ended, and appends it to the queue in frames of at most
  /// `frame_size` bytes, a multiple of a sample frame. The sound runs ahead of the pictures as far
  /// as it is read; seeking brings them together.
  /// @param data         made like the format of get_sound_format()
  /// @param max_frames   stop after so many
  /// @return frames that were appended; 0 at the end, with a loop until the pictures begin again
  virtual unsigned int read_sound(int video, AudioData* data, unsigned int frame_size,
                                  unsigned int max_frames) = 0;
};

}  // namespace orv
