/// @file
/// Pictures from a camera.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/scene/node.h>

namespace orv {

struct WebcamWin32Data;

/// A video capture device that hands out its latest frame. The name is the same on every system;
/// on Linux, Video4Linux is behind it: cameras are the nodes /dev/video0 to /dev/video63 that
/// capture, in this order.
///
/// No call waits for the camera. All calls belong to one thread.
class ORV_API WebcamWin32 : public Node {
 public:
  /// Without a device.
  WebcamWin32();
  /// Calls `stop`; the frame is freed.
  ~WebcamWin32() override;
  WebcamWin32(const WebcamWin32&) = delete;
  WebcamWin32& operator=(const WebcamWin32&) = delete;

  /// Counts the devices, with a line in the log for each and one for their number. False when the
  /// system can't be asked; a device that can't be opened isn't counted, and no device is no
  /// failure.
  bool initialize();
  /// Runs `initialize`, each time, and returns the number of devices.
  unsigned int get_num_webcams();
  /// Lets a device deliver, in the size it is set to. A device that delivers is stopped first, and
  /// a frame of before is no longer handed out. Needs no `initialize`. False, with a line in the
  /// log, when there is no such device, or when a step of opening it fails; the line tells the
  /// error number.
  /// @param device_index from 0, as `initialize` lists them
  bool start(int device_index);
  /// Takes the newest frame, if there is a newer one. True when the frame is as new as can be;
  /// false before `start` and before the first frame, when what the device delivered is damaged,
  /// and from then on when the device is gone. The frame stays as it was then.
  bool grab_frame();
  /// The frame: rows bottom-up without gaps, three bytes a pixel in the order blue, green, red.
  /// Null before the first grab after `start`. Borrowed; its memory stays until a grab finds
  /// another size, also after `stop` and another `start`.
  unsigned char* get_frame();
  /// @{
  /// Size of the frame in pixels; between `start` and the first grab that which is to be expected,
  /// 0 before.
  int get_frame_width();
  int get_frame_height();
  /// @}
  /// Name of the device that was started last, as its driver tells it; empty before. Valid until
  /// the next `start`.
  const char* get_device_name();
  /// Stops the device and lets go of it, with a line in the log, whether or not it was started.
  /// Always true.
  bool stop();
  /// Counterpart of `initialize`. There is nothing to end on Linux, and a device that was started
  /// goes on. Always true.
  bool terminate();

 private:
  friend struct WebcamWin32Data;

  WebcamWin32Data* data_;
};

}  // namespace orv
