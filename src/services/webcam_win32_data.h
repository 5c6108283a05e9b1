#pragma once

#include <orv/services/webcam_win32.h>

#include "services/webcam_capture.h"

namespace orv {

struct WebcamWin32Data {
  static WebcamWin32Data& of(WebcamWin32& webcam) { return *webcam.data_; }

  detail::WebcamCapture capture;
  detail::WebcamFrame frame;  // the block outlives a start: a host may still hold it
  bool has_frame = false;     // one was taken since the start
  int frame_width = 0;
  int frame_height = 0;
  unsigned int num_webcams = 0;
  int device_index = 0;
  char device_name[sizeof(detail::WebcamDevice::name)] = {};
  bool started = false;
};

}  // namespace orv
