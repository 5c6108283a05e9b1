#pragma once

#include <linux/videodev2.h>
#include <poll.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "services/webcam_capture.h"

namespace orv::test {

using Bytes = std::vector<unsigned char>;

/// A camera in memory. Its buffers are blocks of the heap of exactly their size, so that the
/// address sanitizer sees a read beyond them.
struct FakeCamera {
  std::string name = "Fake camera";
  std::uint32_t capabilities =
      V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_STREAMING | V4L2_CAP_DEVICE_CAPS | V4L2_CAP_META_CAPTURE;
  std::uint32_t device_caps = V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_STREAMING;
  std::vector<std::uint32_t> formats = {V4L2_PIX_FMT_BGR24};
  std::uint32_t width = 4;
  std::uint32_t height = 3;
  std::uint32_t bytesperline = 12;
  std::uint32_t colorspace = 0;
  std::uint32_t ycbcr_enc = 0;
  std::uint32_t quantization = 0;
  std::uint32_t buffer_size = 36;
  std::uint32_t num_buffers = 0;  ///< that it makes, whatever was asked for; 0 does as asked
  bool knows_events = true;
  std::deque<std::uint32_t> events;

  /// Fills the buffer that was queued first. False, with the frame lost, when none is.
  bool deliver(const Bytes& frame, std::uint32_t flags = 0);
  /// All that is asked of it ends in ENODEV from now on.
  void vanish() { is_gone = true; }

  struct Buffer {
    std::unique_ptr<unsigned char[]> bytes;
    std::uint32_t size = 0;
    std::uint32_t used = 0;
    std::uint32_t flags = 0;
    bool is_queued = false;
    bool is_mapped = false;
  };

  bool is_gone = false;
  bool is_streaming = false;
  std::uint32_t set_format = 0;
  std::vector<Buffer> buffers;
  std::deque<std::uint32_t> queued;
  std::deque<std::uint32_t> done;
};

inline bool FakeCamera::deliver(const Bytes& frame, std::uint32_t flags) {
  if (!is_streaming || queued.empty()) return false;
  Buffer& buffer = buffers[queued.front()];
  std::copy_n(frame.begin(), std::min<std::size_t>(frame.size(), buffer.size), buffer.bytes.get());
  buffer.used = static_cast<std::uint32_t>(frame.size());
  buffer.flags = flags;
  done.push_back(queued.front());
  queued.pop_front();
  return true;
}

/// A system with cameras in memory. It counts what is taken and given back, notes what a driver
/// would not stand, and fails where it is told to.
class FakeCameras {
 public:
  std::map<int, FakeCamera> cameras;
  std::vector<std::string> more_paths;  ///< that are found beside those of the cameras

  /// Every call in its order: "open", "VIDIOC_QBUF" and so on.
  std::vector<std::string> calls;
  int fail_at = -1;                 ///< the call of this number fails
  std::string fail_call;            ///< calls of this name fail
  int fail_code = EIO;              ///< with this error
  bool interrupts = false;          ///< open, ioctl and poll fail once by EINTR, then work
  std::vector<std::string> misuse;  ///< what no driver would stand
  int num_opened = 0;
  int num_closed = 0;
  int num_mapped = 0;
  int num_unmapped = 0;
  /// Changes what is told in an answer.
  std::function<void(const std::string& call, void* argument)> spoil;

  FakeCameras() = default;
  FakeCameras(const FakeCameras&) = delete;
  FakeCameras& operator=(const FakeCameras&) = delete;

  detail::V4l2Sys sys();
  /// Whether nothing is open, mapped or allocated, and nothing was misused.
  bool is_all_given_back() const;
  int count(const std::string& call) const;

 private:
  static FakeCameras& of(void* user) { return *static_cast<FakeCameras*>(user); }
  static const char* name_of(unsigned long request);
  static int num_buffers_mapped(const FakeCamera& camera);
  // 0, or the negated error by which the call is to fail.
  int enter(const char* call);
  int wrong(const char* what) {
    misuse.push_back(what);
    return -EINVAL;
  }
  FakeCamera* camera_of(int fd);
  int control(FakeCamera& camera, unsigned long request, void* argument);
  int set_format(FakeCamera& camera, v4l2_pix_format& pix);
  void tell_format(const FakeCamera& camera, std::uint32_t code, v4l2_pix_format& pix) const;
  int request_buffers(FakeCamera& camera, v4l2_requestbuffers& request);
  int query_buffer(FakeCamera& camera, v4l2_buffer& buffer);
  int queue_buffer(FakeCamera& camera, const v4l2_buffer& buffer);
  int dequeue_buffer(FakeCamera& camera, v4l2_buffer& buffer);

  std::map<int, int> open_;  // descriptor to number
  bool was_interrupted_ = false;
};

inline const char* FakeCameras::name_of(unsigned long request) {
  static const std::map<unsigned long, const char*> names = {
      {VIDIOC_QUERYCAP, "VIDIOC_QUERYCAP"},   {VIDIOC_G_FMT, "VIDIOC_G_FMT"},
      {VIDIOC_S_FMT, "VIDIOC_S_FMT"},         {VIDIOC_REQBUFS, "VIDIOC_REQBUFS"},
      {VIDIOC_QUERYBUF, "VIDIOC_QUERYBUF"},   {VIDIOC_QBUF, "VIDIOC_QBUF"},
      {VIDIOC_DQBUF, "VIDIOC_DQBUF"},         {VIDIOC_STREAMON, "VIDIOC_STREAMON"},
      {VIDIOC_STREAMOFF, "VIDIOC_STREAMOFF"}, {VIDIOC_SUBSCRIBE_EVENT, "VIDIOC_SUBSCRIBE_EVENT"},
      {VIDIOC_DQEVENT, "VIDIOC_DQEVENT"}};
  const auto found = names.find(request);
  return found == names.end() ? "unknown" : found->second;
}

inline int FakeCameras::enter(const char* call) {
  const bool can_wait = std::strcmp(call, "mmap") != 0;
  if (interrupts && can_wait && !std::exchange(was_interrupted_, !was_interrupted_)) return -EINTR;
  const int number = static_cast<int>(calls.size());
  calls.emplace_back(call);
  return number == fail_at || fail_call == call ? -fail_code : 0;
}

inline FakeCamera* FakeCameras::camera_of(int fd) {
  const auto found = open_.find(fd);
  return found == open_.end() ? nullptr : &cameras[found->second];
}

inline detail::V4l2Sys FakeCameras::sys() {
  detail::V4l2Sys sys = {};
  sys.user = this;
  sys.open = [](void* user, const char* path) {
    FakeCameras& self = of(user);
    if (const int fault = self.enter("open")) return fault;
    const int number = std::atoi(path + std::strlen("/dev/video"));
    const auto found = self.cameras.find(number);
    if (found == self.cameras.end()) return -ENOENT;
    if (found->second.is_gone) return -ENODEV;
    ++self.num_opened;
    self.open_[100 + self.num_opened] = number;
    return 100 + self.num_opened;
  };
  sys.close = [](void* user, int fd) {
    FakeCameras& self = of(user);
    self.calls.emplace_back("close");
    if (self.open_.erase(fd) == 0) return self.wrong("closed what isn't open");
    ++self.num_closed;
    return 0;
  };
  sys.ioctl = [](void* user, int fd, unsigned long request, void* argument) {
    FakeCameras& self = of(user);
    FakeCamera* camera = self.camera_of(fd);
    if (!camera) return self.wrong("ioctl on what isn't open");
    const char* name = name_of(request);
    if (const int fault = self.enter(name)) return fault;
    if (camera->is_gone) return -ENODEV;
    const int result = self.control(*camera, request, argument);
    if (result == 0 && self.spoil) self.spoil(name, argument);
    return result;
  };
  sys.mmap = [](void* user, int fd, std::size_t length, std::uint32_t offset, void** mapped) {
    FakeCameras& self = of(user);
    FakeCamera* camera = self.camera_of(fd);
    if (!camera) return self.wrong("mapped from what isn't open");
    if (const int fault = self.enter("mmap")) return fault;
    const std::size_t index = offset / 0x1000;
    if (index >= camera->buffers.size()) return self.wrong("mapped a buffer that is none");
    FakeCamera::Buffer& buffer = camera->buffers[index];
    // As the kernel does: not beyond the buffer.
    if (length == 0 || length > buffer.size || buffer.is_mapped) return -EINVAL;
    buffer.is_mapped = true;
    *mapped = buffer.bytes.get();
    ++self.num_mapped;
    return 0;
  };
  sys.munmap = [](void* user, void* mapped, std::size_t length) {
    FakeCameras& self = of(user);
    self.calls.emplace_back("munmap");
    for (auto& [number, camera] : self.cameras) {
      for (FakeCamera::Buffer& buffer : camera.buffers) {
        if (buffer.bytes.get() != mapped || !buffer.is_mapped || length > buffer.size) continue;
        buffer.is_mapped = false;
        ++self.num_unmapped;
        return 0;
      }
    }
    return self.wrong("unmapped what isn't mapped");
  };
  sys.poll = [](void* user, int fd, short events) -> int {
    FakeCameras& self = of(user);
    FakeCamera* camera = self.camera_of(fd);
    if (!camera) return POLLNVAL;
    if (const int fault = self.enter("poll")) return fault;
    if (camera->is_gone) return POLLERR | POLLHUP;
    if (!camera->is_streaming) return POLLERR;
    return events & ((camera->done.empty() ? 0 : POLLIN) | (camera->events.empty() ? 0 : POLLPRI));
  };
  sys.glob = [](void* user, const char* pattern, detail::V4l2Sys::Found found, void* to) {
    FakeCameras& self = of(user);
    if (self.fail_call == "glob") return -self.fail_code;
    if (std::strcmp(pattern, "/dev/video*") != 0) return self.wrong("another pattern");
    for (const std::string& path : self.more_paths) found(to, path.c_str());
    // Names in the order of their letters: video10 before video2.
    std::vector<std::string> paths;
    for (const auto& entry : self.cameras)
      paths.push_back("/dev/video" + std::to_string(entry.first));
    std::sort(paths.begin(), paths.end());
    for (const std::string& path : paths) found(to, path.c_str());
    return 0;
  };
  return sys;
}

inline int FakeCameras::control(FakeCamera& camera, unsigned long request, void* argument) {
  switch (request) {
    case VIDIOC_QUERYCAP: {
      auto& answer = *static_cast<v4l2_capability*>(argument);
      std::memcpy(answer.card, camera.name.data(), std::min<std::size_t>(camera.name.size(), 32));
      answer.capabilities = camera.capabilities;
      answer.device_caps = camera.device_caps;
      return 0;
    }
    case VIDIOC_G_FMT:
      tell_format(camera, camera.set_format, static_cast<v4l2_format*>(argument)->fmt.pix);
      return 0;
    case VIDIOC_S_FMT:
      return set_format(camera, static_cast<v4l2_format*>(argument)->fmt.pix);
    case VIDIOC_REQBUFS:
      return request_buffers(camera, *static_cast<v4l2_requestbuffers*>(argument));
    case VIDIOC_QUERYBUF:
      return query_buffer(camera, *static_cast<v4l2_buffer*>(argument));
    case VIDIOC_QBUF:
      return queue_buffer(camera, *static_cast<v4l2_buffer*>(argument));
    case VIDIOC_DQBUF:
      return dequeue_buffer(camera, *static_cast<v4l2_buffer*>(argument));
    case VIDIOC_STREAMON:
      if (camera.queued.empty()) return wrong("stream without buffers");
      camera.is_streaming = true;
      return 0;
    case VIDIOC_STREAMOFF:
      camera.is_streaming = false;
      camera.queued.clear();
      camera.done.clear();
      for (FakeCamera::Buffer& buffer : camera.buffers) buffer.is_queued = false;
      return 0;
    case VIDIOC_SUBSCRIBE_EVENT:
      return camera.knows_events ? 0 : -ENOTTY;
    case VIDIOC_DQEVENT:
      if (camera.events.empty()) return -ENOENT;
      static_cast<v4l2_event*>(argument)->type = camera.events.front();
      camera.events.pop_front();
      return 0;
    default:
      return wrong("unknown request");
  }
}

inline void FakeCameras::tell_format(const FakeCamera& camera, std::uint32_t code,
                                     v4l2_pix_format& pix) const {
  pix.width = camera.width;
  pix.height = camera.height;
  pix.pixelformat = code;
  pix.bytesperline = camera.bytesperline;
  pix.sizeimage = camera.buffer_size;
  pix.colorspace = camera.colorspace;
  pix.ycbcr_enc = camera.ycbcr_enc;
  pix.quantization = camera.quantization;
}

inline int FakeCameras::set_format(FakeCamera& camera, v4l2_pix_format& pix) {
  if (!camera.buffers.empty()) return -EBUSY;
  bool is_known = false;
  for (const std::uint32_t code : camera.formats) is_known = is_known || code == pix.pixelformat;
  camera.set_format = is_known || camera.formats.empty() ? pix.pixelformat : camera.formats.front();
  if (camera.formats.empty()) return -EINVAL;
  tell_format(camera, camera.set_format, pix);
  return 0;
}

inline int FakeCameras::num_buffers_mapped(const FakeCamera& camera) {
  int num = 0;
  for (const FakeCamera::Buffer& buffer : camera.buffers) num += buffer.is_mapped;
  return num;
}

inline int FakeCameras::request_buffers(FakeCamera& camera, v4l2_requestbuffers& request) {
  if (camera.is_streaming) return wrong("buffers while streaming");
  if (num_buffers_mapped(camera) > 0) return wrong("buffers freed while mapped");
  camera.queued.clear();
  camera.done.clear();
  camera.buffers.clear();
  if (request.count > 0 && camera.num_buffers > 0) request.count = camera.num_buffers;
  camera.buffers.resize(request.count);
  for (FakeCamera::Buffer& buffer : camera.buffers) {
    buffer.bytes.reset(new unsigned char[camera.buffer_size]());
    buffer.size = camera.buffer_size;
  }
  return 0;
}

inline int FakeCameras::query_buffer(FakeCamera& camera, v4l2_buffer& buffer) {
  if (buffer.index >= camera.buffers.size()) return wrong("asked for a buffer that is none");
  buffer.length = camera.buffers[buffer.index].size;
  buffer.m.offset = buffer.index * 0x1000;
  return 0;
}

inline int FakeCameras::queue_buffer(FakeCamera& camera, const v4l2_buffer& buffer) {
  if (buffer.index >= camera.buffers.size()) return wrong("queued a buffer that is none");
  if (std::exchange(camera.buffers[buffer.index].is_queued, true)) return wrong("queued twice");
  camera.queued.push_back(buffer.index);
  return 0;
}

inline int FakeCameras::dequeue_buffer(FakeCamera& camera, v4l2_buffer& buffer) {
  if (!camera.is_streaming) return wrong("dequeued without a stream");
  if (camera.done.empty()) return -EAGAIN;
  buffer.index = camera.done.front();
  camera.done.pop_front();
  FakeCamera::Buffer& filled = camera.buffers[buffer.index];
  filled.is_queued = false;
  buffer.bytesused = filled.used;
  buffer.flags = filled.flags;
  return 0;
}

inline bool FakeCameras::is_all_given_back() const {
  bool is_idle = open_.empty() && num_opened == num_closed && num_mapped == num_unmapped;
  // A device that is gone has taken its buffers along.
  for (const auto& [number, camera] : cameras) {
    is_idle = is_idle && num_buffers_mapped(camera) == 0 &&
              (camera.is_gone || (!camera.is_streaming && camera.buffers.empty()));
  }
  return is_idle && misuse.empty();
}

inline int FakeCameras::count(const std::string& call) const {
  int num = 0;
  for (const std::string& made : calls) num += made == call;
  return num;
}

}  // namespace orv::test
