/// @file
/// Cameras by Video4Linux, through a table of system calls that tests replace.
#pragma once

#include <cstddef>
#include <cstdint>

#include "services/webcam_frame.h"

namespace orv::detail {

/// The system calls by which cameras are used. A result below 0 is the negated error number.
struct V4l2Sys {
  using Found = void (*)(void* to, const char* path);

  void* user;  ///< first argument of each
  /// For reading and writing, without waiting. Gives a descriptor.
  int (*open)(void* user, const char* path);
  int (*close)(void* user, int fd);
  int (*ioctl)(void* user, int fd, unsigned long request, void* argument);
  /// For reading, shared with the camera.
  int (*mmap)(void* user, int fd, std::size_t length, std::uint32_t offset, void** mapped);
  int (*munmap)(void* user, void* mapped, std::size_t length);
  /// Doesn't wait; gives the events that there are.
  int (*poll)(void* user, int fd, short events);
  /// Tells the paths that match.
  int (*glob)(void* user, const char* pattern, Found found, void* to);

  /// The real ones.
  static const V4l2Sys& system();
};

/// A camera of the system.
struct WebcamDevice {
  int number = -1;     ///< that of /dev/videoN
  char name[33] = {};  ///< as the driver tells it
};

struct WebcamList {
  static constexpr int MAX_DEVICES = 64;

  WebcamDevice devices[MAX_DEVICES];
  int count = 0;
};

/// The stream of one camera. What a driver tells is checked before it is used.
class WebcamCapture {
 public:
  enum class Grab {
    NONE,   ///< nothing new
    TAKEN,  ///< the frame is the newest one
    FAULT,  ///< the frame is as it was: a damaged one came, or the camera is gone
  };

  WebcamCapture() = default;
  ~WebcamCapture() { stop(); }
  WebcamCapture(const WebcamCapture&) = delete;
  WebcamCapture& operator=(const WebcamCapture&) = delete;

  /// Takes other system calls. Only before start.
  void set_sys(const V4l2Sys& sys) { sys_ = sys; }

  /// Lists the cameras in the order of their numbers, up to the one at `last` in the list. An error
  /// number, 0 for none.
  int list(WebcamList* list, int last = WebcamList::MAX_DEVICES);
  /// Opens a camera and has it deliver. An error number, 0 for none; nothing is left open then.
  int start(const WebcamDevice& device);
  /// Ends the stream, if there is one, and gives everything back.
  void stop();
  /// Takes the newest frame. Never waits.
  Grab grab(WebcamFrame* frame);

  /// Of the stream, as the camera told it last.
  const FrameLayout& layout() const { return layout_; }
  /// What failed last, as a text that is never freed.
  const char* failed_step() const { return failed_step_; }

 private:
  static constexpr unsigned int WANTED_BUFFERS = 4;
  static constexpr unsigned int MAX_BUFFERS = 8;

  struct Mapping {
    void* bytes;
    std::size_t length;
  };
  /// The newest frame that was dequeued.
  struct Newest {
    int index = -1;
    std::size_t size = 0;
    bool is_faulty = false;  ///< a later one was damaged
  };

  int fail(const char* step, int code);
  int open_device(int number);
  int request(unsigned long number, void* argument);
  int control(unsigned long number, const char* name, void* argument);
  int query(std::uint32_t* capabilities, char* name);
  int negotiate();
  int map_buffers();
  int queue(unsigned int index);
  int start_stream();
  void stop_stream();
  bool has_source_changed();
  bool has_format_changed();
  int find_newest(Newest* newest);
  Grab restart();
  Grab lose(int code);

  V4l2Sys sys_ = V4l2Sys::system();
  int fd_ = -1;
  int number_ = -1;
  bool has_buffers_ = false;
  bool is_streaming_ = false;
  unsigned int num_mappings_ = 0;
  Mapping mappings_[MAX_BUFFERS] = {};
  FrameLayout layout_;
  const char* failed_step_ = "";
};

}  // namespace orv::detail
