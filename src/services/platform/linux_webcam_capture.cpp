#include "services/webcam_capture.h"

#include <orv/core/log_mgr.h>

#include <linux/videodev2.h>
#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <utility>

#include "core/read_file.h"

namespace orv::detail {
namespace {

constexpr char DEVICE[] = "/dev/video";
constexpr std::size_t DEVICE_LENGTH = sizeof(DEVICE) - 1;

/// In the order in which they are tried: the less work, the earlier.
constexpr struct {
  std::uint32_t code;
  CameraFormat format;
} FORMATS[] = {{V4L2_PIX_FMT_BGR24, CameraFormat::BGR24},
               {V4L2_PIX_FMT_RGB24, CameraFormat::RGB24},
               {V4L2_PIX_FMT_YUYV, CameraFormat::YUYV},
               {V4L2_PIX_FMT_NV12, CameraFormat::NV12},
               {V4L2_PIX_FMT_MJPEG, CameraFormat::MJPEG}};

/// Asks again as long as a signal came in between, within reason.
template <class Call>
int call_again(Call call) {
  int result = call();
  for (int i = 0; i < 100 && result == -EINTR; ++i) result = call();
  return result;
}

/// Bit N for /dev/videoN.
void note_number(void* to, const char* path) {
  if (!path || std::strncmp(path, DEVICE, DEVICE_LENGTH) != 0) return;
  const char* digits = path + DEVICE_LENGTH;
  if (*digits < '0' || *digits > '9') return;
  char* end = nullptr;
  const unsigned long number = std::strtoul(digits, &end, 10);
  if (*end != 0 || number >= WebcamList::MAX_DEVICES) return;
  *static_cast<std::uint64_t*>(to) |= std::uint64_t{1} << number;
}

/// The driver may have left out the zero at the end, and a device may call itself anything.
void copy_name(const unsigned char (&card)[32], char* name) {
  std::size_t i = 0;
  for (; i < sizeof(card) && card[i] != 0; ++i) {
    name[i] = card[i] < ' ' ? ' ' : static_cast<char>(card[i]);
  }
  name[i] = 0;
}

const YuvScale& yuv_scale_of(const v4l2_pix_format& pix) {
  std::uint32_t encoding = pix.ycbcr_enc;
  if (encoding == V4L2_YCBCR_ENC_DEFAULT) encoding = V4L2_MAP_YCBCR_ENC_DEFAULT(pix.colorspace);
  std::uint32_t range = pix.quantization;
  if (range == V4L2_QUANTIZATION_DEFAULT) {
    range = V4L2_MAP_QUANTIZATION_DEFAULT(false, pix.colorspace, encoding);
  }
  const bool is_full = range == V4L2_QUANTIZATION_FULL_RANGE;
  if (encoding == V4L2_YCBCR_ENC_709) return is_full ? BT709_FULL : BT709_LIMITED;
  return is_full ? BT601_FULL : BT601_LIMITED;
}

FrameLayout layout_of(const v4l2_pix_format& pix, CameraFormat format) {
  FrameLayout layout;
  layout.format = format;
  layout.width = pix.width;
  layout.height = pix.height;
  layout.stride = format == CameraFormat::MJPEG ? 0 : pix.bytesperline;
  layout.yuv = yuv_scale_of(pix);
  return layout;
}

v4l2_buffer make_buffer(unsigned int index) {
  v4l2_buffer buffer = {};
  buffer.index = index;
  buffer.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
  buffer.memory = V4L2_MEMORY_MMAP;
  return buffer;
}

v4l2_format make_format() {
  v4l2_format format = {};
  format.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
  return format;
}

}  // namespace

int WebcamCapture::fail(const char* step, int code) {
  failed_step_ = step;
  return code;
}

int WebcamCapture::request(unsigned long number, void* argument) {
  return call_again([&] { return sys_.ioctl(sys_.user, fd_, number, argument); });
}

int WebcamCapture::control(unsigned long number, const char* name, void* argument) {
  const int result = request(number, argument);
  return result < 0 ? fail(name, -result) : 0;
}

// ---- list ----

int WebcamCapture::open_device(int number) {
  char path[DEVICE_LENGTH + 12];
  std::snprintf(path, sizeof(path), "%s%d", DEVICE, number);
  const int fd = call_again([&] { return sys_.open(sys_.user, path); });
  if (fd < 0) return fail("open", -fd);
  fd_ = fd;
  number_ = number;
  return 0;
}

int WebcamCapture::query(std::uint32_t* capabilities, char* name) {
  v4l2_capability device = {};
  if (const int code = control(VIDIOC_QUERYCAP, "VIDIOC_QUERYCAP", &device)) return code;
  // A device has several nodes, and tells of each what it can do.
  const bool is_by_node = (device.capabilities & V4L2_CAP_DEVICE_CAPS) != 0;
  *capabilities = is_by_node ? device.device_caps : device.capabilities;
  copy_name(device.card, name);
  return 0;
}

int WebcamCapture::list(WebcamList* list, int last) {
  list->count = 0;
  std::uint64_t numbers = 0;
  const int result = sys_.glob(sys_.user, "/dev/video*", &note_number, &numbers);
  if (result < 0) return fail("glob", -result);
  WebcamCapture probe;  // a stream of ours goes on
  probe.set_sys(sys_);
  for (int i = 0; i < WebcamList::MAX_DEVICES && list->count <= std::max(last, 0); ++i) {
    if ((numbers >> i & 1) == 0) continue;
    WebcamDevice& device = list->devices[list->count];
    device.number = i;
    std::uint32_t capabilities = 0;
    int code = probe.open_device(i);
    if (!code) code = probe.query(&capabilities, device.name);
    probe.stop();
    if (code) {
      LogMgr::get().tracef_debug("[Webcam module] - %s%d passed over: %s: %s", DEVICE, i,
                                 probe.failed_step(), system_fault(code));
    } else if (capabilities & V4L2_CAP_VIDEO_CAPTURE) {
      ++list->count;
    }
  }
  return 0;
}

// ---- start and stop ----

int WebcamCapture::negotiate() {
  v4l2_format current = make_format();
  if (const int code = control(VIDIOC_G_FMT, "VIDIOC_G_FMT", &current)) return code;
  const v4l2_pix_format& set = current.fmt.pix;
  for (const auto& row : FORMATS) {
    v4l2_format format = make_format();
    v4l2_pix_format& pix = format.fmt.pix;
    pix.width = set.width > 0 ? set.width : 640;
    pix.height = set.height > 0 ? set.height : 480;
    pix.pixelformat = row.code;
    pix.field = V4L2_FIELD_NONE;
    const int code = control(VIDIOC_S_FMT, "VIDIOC_S_FMT", &format);
    if (code == EINVAL) continue;
    if (code) return code;
    // A driver sets what it has when it lacks what was wanted.
    layout_ = layout_of(pix, row.format);
    if (pix.pixelformat == row.code && layout_.check()) return 0;
  }
  return fail("no known pixel format", EINVAL);
}

int WebcamCapture::queue(unsigned int index) {
  v4l2_buffer buffer = make_buffer(index);
  return control(VIDIOC_QBUF, "VIDIOC_QBUF", &buffer);
}

int WebcamCapture::map_buffers() {
  v4l2_requestbuffers wanted = {};
  wanted.count = WANTED_BUFFERS;
  wanted.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
  wanted.memory = V4L2_MEMORY_MMAP;
  if (const int code = control(VIDIOC_REQBUFS, "VIDIOC_REQBUFS", &wanted)) return code;
  has_buffers_ = true;
  if (wanted.count == 0) return fail("VIDIOC_REQBUFS", ENOMEM);
  const unsigned int count = std::min(wanted.count, MAX_BUFFERS);
  while (num_mappings_ < count) {
    v4l2_buffer buffer = make_buffer(num_mappings_);
    if (const int code = control(VIDIOC_QUERYBUF, "VIDIOC_QUERYBUF", &buffer)) return code;
    if (buffer.length < layout_.bytes_needed()) return fail("buffers of less than a frame", EPROTO);
    Mapping& mapping = mappings_[num_mappings_];
    mapping.length = buffer.length;
    const int result = sys_.mmap(sys_.user, fd_, buffer.length, buffer.m.offset, &mapping.bytes);
    if (result < 0) return fail("mmap", -result);
    ++num_mappings_;
  }
  return 0;
}

int WebcamCapture::start_stream() {
  if (const int code = negotiate()) return code;
  if (const int code = map_buffers()) return code;
  for (unsigned int i = 0; i < num_mappings_; ++i) {
    if (const int code = queue(i)) return code;
  }
  int type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
  if (const int code = control(VIDIOC_STREAMON, "VIDIOC_STREAMON", &type)) return code;
  is_streaming_ = true;
  return 0;
}

int WebcamCapture::start(const WebcamDevice& device) {
  stop();
  std::uint32_t capabilities = 0;
  char name[sizeof(device.name)];
  int code = open_device(device.number);
  if (!code) code = query(&capabilities, name);
  if (!code && !(capabilities & V4L2_CAP_STREAMING)) code = fail("no streaming", ENOTSUP);
  if (!code) code = start_stream();
  if (code) {
    stop();
    return code;
  }
  // Few cameras change their size by themselves, and most know of no such thing.
  v4l2_event_subscription changes = {};
  changes.type = V4L2_EVENT_SOURCE_CHANGE;
  request(VIDIOC_SUBSCRIBE_EVENT, &changes);
  return 0;
}

void WebcamCapture::stop_stream() {
  int type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
  if (std::exchange(is_streaming_, false)) request(VIDIOC_STREAMOFF, &type);
  while (num_mappings_ > 0) {
    const Mapping& mapping = mappings_[--num_mappings_];
    sys_.munmap(sys_.user, mapping.bytes, mapping.length);
  }
  v4l2_requestbuffers none = {};
  none.type = V4L2_BUF_TYPE_VIDEO_CAPTURE;
  none.memory = V4L2_MEMORY_MMAP;
  if (std::exchange(has_buffers_, false)) request(VIDIOC_REQBUFS, &none);
}

void WebcamCapture::stop() {
  if (fd_ < 0) return;
  stop_stream();
  sys_.close(sys_.user, std::exchange(fd_, -1));
}

// ---- frames ----

bool WebcamCapture::has_source_changed() {
  bool has_changed = false;
  for (int i = 0; i < 32; ++i) {
    v4l2_event event = {};
    if (request(VIDIOC_DQEVENT, &event) < 0) break;
    has_changed = has_changed || event.type == V4L2_EVENT_SOURCE_CHANGE;
  }
  return has_changed;
}

bool WebcamCapture::has_format_changed() {
  v4l2_format format = make_format();
  if (control(VIDIOC_G_FMT, "VIDIOC_G_FMT", &format) != 0) return false;
  const v4l2_pix_format& pix = format.fmt.pix;
  return pix.width != layout_.width || pix.height != layout_.height;
}

int WebcamCapture::find_newest(Newest* newest) {
  // As many as there can be, and once more; a camera that always has another one is left then.
  for (unsigned int i = 0; i < 2 * MAX_BUFFERS; ++i) {
    v4l2_buffer buffer = make_buffer(0);
    const int code = control(VIDIOC_DQBUF, "VIDIOC_DQBUF", &buffer);
    if (code == EAGAIN) break;
    if (code == EIO) {  // a moment without a signal
      newest->is_faulty = true;
      break;
    }
    if (code) return code;
    if (buffer.index >= num_mappings_) return fail("a buffer that is none", EPROTO);
    int done = static_cast<int>(buffer.index);
    newest->is_faulty = (buffer.flags & V4L2_BUF_FLAG_ERROR) != 0 ||
                        buffer.bytesused > mappings_[buffer.index].length;
    if (!newest->is_faulty) {
      std::swap(newest->index, done);
      newest->size = buffer.bytesused;
    }
    if (done < 0) continue;
    if (const int fault = queue(static_cast<unsigned int>(done))) return fault;
  }
  return 0;
}

WebcamCapture::Grab WebcamCapture::lose(int code) {
  LogMgr::get().tracef_debug("[Webcam module] - %s%d is lost: %s: %s", DEVICE, number_,
                             failed_step_, system_fault(code));
  // Closed at once: only then the number is free for a camera that is plugged in again.
  stop();
  return Grab::FAULT;
}

WebcamCapture::Grab WebcamCapture::restart() {
  stop_stream();
  const int code = start_stream();
  return code ? lose(code) : Grab::NONE;
}

WebcamCapture::Grab WebcamCapture::grab(WebcamFrame* frame) {
  if (fd_ < 0) return Grab::FAULT;
  const int events = call_again([&] { return sys_.poll(sys_.user, fd_, POLLIN | POLLPRI); });
  if (events < 0) return lose(fail("poll", -events));
  if ((events & POLLPRI) && has_source_changed()) return restart();
  if ((events & ~POLLPRI) == 0) return Grab::NONE;
  Newest newest;
  if (const int code = find_newest(&newest)) return lose(code);
  if (newest.index < 0) return newest.is_faulty ? Grab::FAULT : Grab::NONE;
  const auto index = static_cast<unsigned int>(newest.index);
  const auto* data = static_cast<const unsigned char*>(mappings_[index].bytes);
  const bool is_taken = convert_frame(layout_, data, newest.size, frame);
  if (const int code = queue(index)) return lose(code);
  if (is_taken) return Grab::TAKEN;
  return has_format_changed() ? restart() : Grab::FAULT;
}

}  // namespace orv::detail
