#include <orv/services/webcam_win32.h>

#include <orv/core/log_mgr.h>

#include <cerrno>
#include <cstring>

#include "core/read_file.h"
#include "services/webcam_win32_data.h"

namespace orv {

using detail::WebcamCapture;
using detail::WebcamList;

// ---- life ----

WebcamWin32::WebcamWin32() : data_(new WebcamWin32Data) { set_type(NODE_TYPE_WEBCAM); }

WebcamWin32::~WebcamWin32() {
  stop();
  delete data_;
}

// ---- devices ----

bool WebcamWin32::initialize() {
  LogMgr& log = LogMgr::get();
  WebcamList list;
  const int code = data_->capture.list(&list);
  for (int i = 0; i < list.count; ++i) {
    log.tracef("[Webcam module] - capture device %d: %s", i, list.devices[i].name);
  }
  log.tracef("[Webcam module] initialization - found %d capture device(s).", list.count);
  data_->num_webcams = static_cast<unsigned int>(list.count);
  return code == 0;
}

unsigned int WebcamWin32::get_num_webcams() {
  initialize();
  return data_->num_webcams;
}

bool WebcamWin32::terminate() { return true; }

// ---- capture ----

bool WebcamWin32::start(int device_index) {
  if (data_->started) stop();
  LogMgr& log = LogMgr::get();
  WebcamCapture& capture = data_->capture;
  WebcamList list;
  capture.list(&list, device_index);
  if (list.count == 0) {
    log.tracef_error("[Webcam module] - found 0 capture device. Unable to start device %d",
                     device_index);
    return false;
  }
  const bool is_there = device_index >= 0 && device_index < list.count;
  const detail::WebcamDevice device =
      is_there ? list.devices[device_index] : detail::WebcamDevice();
  data_->device_index = device_index;
  std::memcpy(data_->device_name, device.name, sizeof(device.name));
  data_->has_frame = false;
  const int code = is_there ? capture.start(device) : ENODEV;
  data_->started = code == 0;
  data_->frame_width = data_->started ? static_cast<int>(capture.layout().width) : 0;
  data_->frame_height = data_->started ? static_cast<int>(capture.layout().height) : 0;
  if (data_->started) {
    log.tracef("[Webcam module] - capture device %d (%s) started ok.", device_index, device.name);
    return true;
  }
  log.tracef_error("[Webcam module] - capture device %d (%s) startup FAILED (code=%d)!",
                   device_index, device.name, code);
  log.tracef_debug("[Webcam module] - %s: %s", is_there ? capture.failed_step() : "no such device",
                   detail::system_fault(code));
  return false;
}

bool WebcamWin32::grab_frame() {
  if (!data_->started) return false;
  detail::WebcamFrame& frame = data_->frame;
  const WebcamCapture::Grab grab = data_->capture.grab(&frame);
  if (grab != WebcamCapture::Grab::TAKEN) {
    return grab == WebcamCapture::Grab::NONE && data_->has_frame;
  }
  data_->has_frame = true;
  data_->frame_width = static_cast<int>(frame.width);
  data_->frame_height = static_cast<int>(frame.height);
  return true;
}

unsigned char* WebcamWin32::get_frame() {
  // Not one of a device before, whose size may be another than the one that is told.
  return data_->has_frame ? data_->frame.bytes.get() : nullptr;
}

int WebcamWin32::get_frame_width() { return data_->frame_width; }

int WebcamWin32::get_frame_height() { return data_->frame_height; }

const char* WebcamWin32::get_device_name() { return data_->device_name; }

bool WebcamWin32::stop() {
  LogMgr::get().tracef("[Webcam module] - stopping capture device %d (%s).", data_->device_index,
                       data_->device_name);
  data_->capture.stop();
  data_->started = false;
  return true;
}

}  // namespace orv
