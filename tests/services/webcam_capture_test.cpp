#include "services/webcam_capture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <string>
#include <vector>

#include "services/fake_camera.h"
#include "support/log_capture.h"

namespace orv::test {
namespace {

using detail::CameraFormat;
using detail::V4l2Sys;
using detail::WebcamCapture;
using detail::WebcamDevice;
using detail::WebcamFrame;
using detail::WebcamList;
using testing::ElementsAre;
using Grab = WebcamCapture::Grab;

class WebcamCaptureTest : public testing::Test {
 protected:
  WebcamCaptureTest() : camera(system.cameras[0]) {
    capture.set_sys(system.sys());
    device.number = 0;
  }
  ~WebcamCaptureTest() override {
    capture.stop();
    EXPECT_THAT(system.misuse, ElementsAre());
  }

  Grab grab() { return capture.grab(&frame); }
  Bytes pixels() const { return Bytes(frame.bytes.get(), frame.bytes.get() + frame.size); }

  FakeCameras system;
  FakeCamera& camera;
  WebcamCapture capture;
  WebcamDevice device;
  WebcamFrame frame;
};

std::vector<int> numbers_of(const WebcamList& list) {
  std::vector<int> numbers;
  for (int i = 0; i < list.count; ++i) numbers.push_back(list.devices[i].number);
  return numbers;
}

// ---- list ----

TEST_F(WebcamCaptureTest, ListsByNumberWhatCaptures) {
  system.cameras[10].name = "Ten";
  system.cameras[2].name = "Two";
  system.cameras[1].device_caps = V4L2_CAP_META_CAPTURE;  // the second node of a camera
  system.cameras[3].device_caps = V4L2_CAP_VIDEO_OUTPUT;
  WebcamList list;
  EXPECT_EQ(capture.list(&list), 0);
  EXPECT_THAT(numbers_of(list), ElementsAre(0, 2, 10));
  EXPECT_STREQ(list.devices[1].name, "Two");
  EXPECT_STREQ(list.devices[2].name, "Ten");
  EXPECT_TRUE(system.is_all_given_back());
}

TEST_F(WebcamCaptureTest, OldDriversTellCapabilitiesOfTheWholeDevice) {
  camera.capabilities = V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_STREAMING;
  camera.device_caps = 0;
  WebcamList list;
  capture.list(&list);
  EXPECT_EQ(list.count, 1);
  EXPECT_EQ(capture.start(device), 0);
}

TEST_F(WebcamCaptureTest, ListsNumbersFrom0To63Alone) {
  system.cameras[63];
  system.cameras[64];
  system.more_paths = {"/dev/video",
                       "/dev/videocodec",
                       "/dev/video-1",
                       "/dev/video 5",
                       "/dev/video5a",
                       "/dev/video4294967296",
                       "/dev/video0",
                       "/tmp/video7",
                       "",
                       "/dev/video+3",
                       "/dev/video99999999999999999999"};
  WebcamList list;
  EXPECT_EQ(capture.list(&list), 0);
  EXPECT_THAT(numbers_of(list), ElementsAre(0, 63));
}

TEST_F(WebcamCaptureTest, ListHoldsAllThatThereCanBe) {
  for (int i = 0; i < 64; ++i) system.cameras[i];
  WebcamList list;
  capture.list(&list);
  EXPECT_EQ(list.count, 64);
  EXPECT_TRUE(system.is_all_given_back());
}

TEST_F(WebcamCaptureTest, ListStopsAtTheLastWanted) {
  for (int i = 0; i < 5; ++i) system.cameras[i];
  WebcamList list;
  capture.list(&list, 1);
  EXPECT_EQ(list.count, 2);
  EXPECT_EQ(system.num_opened, 2);
  capture.list(&list, -7);
  EXPECT_EQ(list.count, 1) << "there is one, at least";
}

TEST_F(WebcamCaptureTest, NamesAreBoundedAndOneLine) {
  camera.name = "0123456789abcdef0123456789ABCDEF and no zero";
  system.cameras[1].name = "two\nlines\t";
  WebcamList list;
  capture.list(&list);
  EXPECT_STREQ(list.devices[0].name, "0123456789abcdef0123456789ABCDEF");
  EXPECT_STREQ(list.devices[1].name, "two lines ");
}

TEST_F(WebcamCaptureTest, ListPassesOverWhatCannotBeAsked) {
  const LogCapture log;
  system.cameras[1];
  system.cameras[1].vanish();
  system.cameras[2];
  WebcamList list;
  EXPECT_EQ(capture.list(&list), 0);
  EXPECT_THAT(numbers_of(list), ElementsAre(0, 2));
  EXPECT_TRUE(log.contains("[Webcam module] - /dev/video1 passed over: open: "));
  EXPECT_TRUE(system.is_all_given_back());
}

TEST_F(WebcamCaptureTest, ListLeavesAStreamAlone) {
  ASSERT_EQ(capture.start(device), 0);
  WebcamList list;
  EXPECT_EQ(capture.list(&list), 0);
  EXPECT_EQ(list.count, 1);
  EXPECT_TRUE(camera.deliver(Bytes(36)));
  EXPECT_EQ(grab(), Grab::TAKEN);
}

TEST_F(WebcamCaptureTest, ListTellsThatNothingCouldBeListed) {
  system.fail_call = "glob";
  WebcamList list;
  list.count = 9;
  EXPECT_EQ(capture.list(&list), EIO);
  EXPECT_EQ(list.count, 0);
}

// ---- start ----

TEST_F(WebcamCaptureTest, StartMakesItsCallsInOrder) {
  ASSERT_EQ(capture.start(device), 0);
  EXPECT_THAT(
      system.calls,
      ElementsAre("open", "VIDIOC_QUERYCAP", "VIDIOC_G_FMT", "VIDIOC_S_FMT", "VIDIOC_REQBUFS",
                  "VIDIOC_QUERYBUF", "mmap", "VIDIOC_QUERYBUF", "mmap", "VIDIOC_QUERYBUF", "mmap",
                  "VIDIOC_QUERYBUF", "mmap", "VIDIOC_QBUF", "VIDIOC_QBUF", "VIDIOC_QBUF",
                  "VIDIOC_QBUF", "VIDIOC_STREAMON", "VIDIOC_SUBSCRIBE_EVENT"));
  EXPECT_EQ(camera.buffers.size(), 4u);
  system.calls.clear();
  capture.stop();
  EXPECT_THAT(system.calls, ElementsAre("VIDIOC_STREAMOFF", "munmap", "munmap", "munmap", "munmap",
                                        "VIDIOC_REQBUFS", "close"));
  EXPECT_TRUE(system.is_all_given_back());
}

TEST_F(WebcamCaptureTest, AnyStepThatFailsGivesEverythingBack) {
  capture.start(device);
  capture.stop();
  const std::size_t num_steps = system.calls.size() - 7;  // without those of stop
  ASSERT_EQ(num_steps, 19u);
  for (std::size_t step = 0; step < num_steps; ++step) {
    for (const int code : {EIO, ENODEV, ENOMEM}) {
      FakeCameras failing;
      failing.cameras[0];
      failing.fail_at = static_cast<int>(step);
      failing.fail_code = code;
      WebcamCapture tried;
      tried.set_sys(failing.sys());
      const bool is_needed = step != num_steps - 1;  // events
      EXPECT_EQ(tried.start(device), is_needed ? code : 0) << system.calls[step];
      if (is_needed) {
        EXPECT_TRUE(failing.is_all_given_back()) << system.calls[step];
        EXPECT_EQ(tried.failed_step(), system.calls[step]);
      }
      EXPECT_EQ(tried.grab(&frame), is_needed ? Grab::FAULT : Grab::NONE);
      failing.fail_at = -1;
      EXPECT_EQ(tried.start(device), 0) << "afterwards all is well";
    }
  }
}

TEST_F(WebcamCaptureTest, InterruptedCallsAreMadeAgain) {
  system.interrupts = true;
  WebcamList list;
  EXPECT_EQ(capture.list(&list, 0), 0);
  EXPECT_EQ(list.count, 1);
  ASSERT_EQ(capture.start(device), 0);
  camera.deliver(Bytes(36, 5));
  EXPECT_EQ(grab(), Grab::TAKEN);
  EXPECT_EQ(pixels(), Bytes(36, 5));
}

TEST_F(WebcamCaptureTest, CallsThatAreInterruptedForEverEnd) {
  for (const char* call : {"open", "VIDIOC_S_FMT", "VIDIOC_STREAMON"}) {
    system.fail_call = call;
    system.fail_code = EINTR;
    EXPECT_EQ(capture.start(device), EINTR) << call;
    EXPECT_TRUE(system.is_all_given_back());
  }
}

TEST_F(WebcamCaptureTest, FormatsAreTriedFromTheSimplestOn) {
  const std::uint32_t codes[] = {V4L2_PIX_FMT_BGR24, V4L2_PIX_FMT_RGB24, V4L2_PIX_FMT_YUYV,
                                 V4L2_PIX_FMT_NV12, V4L2_PIX_FMT_MJPEG};
  const CameraFormat formats[] = {CameraFormat::BGR24, CameraFormat::RGB24, CameraFormat::YUYV,
                                  CameraFormat::NV12, CameraFormat::MJPEG};
  camera.buffer_size = 52;
  for (std::size_t i = 0; i < 5; ++i) {
    camera.formats.assign(codes + i, codes + 5);
    std::reverse(camera.formats.begin(), camera.formats.end());
    ASSERT_EQ(capture.start(device), 0);
    EXPECT_EQ(capture.layout().format, formats[i]);
    EXPECT_EQ(camera.set_format, codes[i]);
  }
}

TEST_F(WebcamCaptureTest, TheSizeThatIsSetIsAskedFor) {
  camera.formats = {V4L2_PIX_FMT_YUYV};
  ASSERT_EQ(capture.start(device), 0);
  EXPECT_EQ(capture.layout().width, 4u);
  EXPECT_EQ(capture.layout().height, 3u);
}

TEST_F(WebcamCaptureTest, NoKnownFormatIsAFailure) {
  for (const bool refuses : {true, false}) {
    camera.formats.clear();
    if (!refuses) camera.formats = {V4L2_PIX_FMT_H264};  // set in place of what was asked for
    EXPECT_EQ(capture.start(device), EINVAL);
    EXPECT_TRUE(system.is_all_given_back());
  }
}

TEST_F(WebcamCaptureTest, ACameraThatCannotStreamIsRefused) {
  camera.device_caps = V4L2_CAP_VIDEO_CAPTURE | V4L2_CAP_READWRITE;
  EXPECT_EQ(capture.start(device), ENOTSUP);
  EXPECT_TRUE(system.is_all_given_back());
}

TEST_F(WebcamCaptureTest, CamerasThatLieAboutSizesAreRefused) {
  const struct {
    std::uint32_t width, height, bytesperline, buffer_size;
    int code;
  } rows[] = {{0, 3, 12, 36, EINVAL},        {4, 0, 12, 36, EINVAL},
              {4, 3, 11, 36, EINVAL},        {0xFFFFFFFF, 0xFFFFFFFF, 12, 36, EINVAL},
              {16384, 16384, 0, 36, EINVAL}, {4, 3, 0xFFFFFFFF, 36, EPROTO},
              {4, 3, 13, 36, EPROTO},        {1000, 1000, 3000, 36, EPROTO},
              {4, 3, 12, 35, EPROTO},        {4, 3, 12, 0, EPROTO}};
  for (const auto& row : rows) {
    camera.width = row.width;
    camera.height = row.height;
    camera.bytesperline = row.bytesperline;
    camera.buffer_size = row.buffer_size;
    EXPECT_EQ(capture.start(device), row.code)
        << row.width << "x" << row.height << " " << row.bytesperline << " " << row.buffer_size;
    EXPECT_TRUE(system.is_all_given_back());
  }
}

TEST_F(WebcamCaptureTest, BuffersThatTellMoreThanTheyHaveAreNotMapped) {
  system.spoil = [](const std::string& call, void* argument) {
    if (call == "VIDIOC_QUERYBUF") static_cast<v4l2_buffer*>(argument)->length = 1u << 30;
  };
  EXPECT_EQ(capture.start(device), EINVAL);
  EXPECT_TRUE(system.is_all_given_back());
}

TEST_F(WebcamCaptureTest, AnyNumberOfBuffersWillDo) {
  for (const std::uint32_t num : {1u, 2u, 8u, 9u, 32u, 100u}) {
    camera.num_buffers = num;
    ASSERT_EQ(capture.start(device), 0);
    EXPECT_EQ(system.num_mapped - system.num_unmapped, std::min(static_cast<int>(num), 8));
    ASSERT_TRUE(camera.deliver(Bytes(36, static_cast<unsigned char>(num))));
    EXPECT_EQ(grab(), Grab::TAKEN);
    EXPECT_EQ(pixels(), Bytes(36, static_cast<unsigned char>(num)));
    capture.stop();
    EXPECT_TRUE(system.is_all_given_back());
  }
  system.spoil = [](const std::string& call, void* argument) {
    if (call == "VIDIOC_REQBUFS") static_cast<v4l2_requestbuffers*>(argument)->count = 0;
  };
  EXPECT_EQ(capture.start(device), ENOMEM);
}

TEST_F(WebcamCaptureTest, StartAgainStopsFirst) {
  ASSERT_EQ(capture.start(device), 0);
  ASSERT_EQ(capture.start(device), 0);
  EXPECT_EQ(system.num_opened, 2);
  EXPECT_EQ(system.num_closed, 1);
  capture.stop();
  capture.stop();
  EXPECT_TRUE(system.is_all_given_back());
}

TEST_F(WebcamCaptureTest, TheColoursThatTheDriverTellsAreUsed) {
  const struct {
    std::uint32_t colorspace, encoding, quantization;
    const detail::YuvScale& scale;
  } rows[] = {
      {V4L2_COLORSPACE_DEFAULT, 0, 0, detail::BT601_LIMITED},
      {V4L2_COLORSPACE_SRGB, 0, 0, detail::BT601_LIMITED},
      {V4L2_COLORSPACE_JPEG, 0, 0, detail::BT601_FULL},
      {V4L2_COLORSPACE_REC709, 0, 0, detail::BT709_LIMITED},
      {V4L2_COLORSPACE_SRGB, V4L2_YCBCR_ENC_709, 0, detail::BT709_LIMITED},
      {V4L2_COLORSPACE_SRGB, V4L2_YCBCR_ENC_709, V4L2_QUANTIZATION_FULL_RANGE, detail::BT709_FULL},
      {V4L2_COLORSPACE_JPEG, 0, V4L2_QUANTIZATION_LIM_RANGE, detail::BT601_LIMITED},
      {77, 77, 77, detail::BT601_LIMITED}};
  camera.formats = {V4L2_PIX_FMT_YUYV};
  for (const auto& row : rows) {
    camera.colorspace = row.colorspace;
    camera.ycbcr_enc = row.encoding;
    camera.quantization = row.quantization;
    ASSERT_EQ(capture.start(device), 0);
    EXPECT_EQ(capture.layout().yuv.r_v, row.scale.r_v) << row.colorspace;
    EXPECT_EQ(capture.layout().yuv.y_zero, row.scale.y_zero) << row.colorspace;
  }
}

// ---- frames ----

TEST_F(WebcamCaptureTest, NothingIsTakenBeforeTheFirstFrame) {
  EXPECT_EQ(grab(), Grab::FAULT) << "not started";
  ASSERT_EQ(capture.start(device), 0);
  EXPECT_EQ(grab(), Grab::NONE);
  EXPECT_EQ(frame.bytes, nullptr);
}

TEST_F(WebcamCaptureTest, TheNewestOfManyIsTaken) {
  ASSERT_EQ(capture.start(device), 0);
  for (unsigned char i = 1; i <= 4; ++i) ASSERT_TRUE(camera.deliver(Bytes(36, i)));
  EXPECT_FALSE(camera.deliver(Bytes(36, 5))) << "all buffers are full";
  EXPECT_EQ(grab(), Grab::TAKEN);
  EXPECT_EQ(pixels(), Bytes(36, 4));
  EXPECT_EQ(camera.queued.size(), 4u) << "all buffers are the camera's again";
  EXPECT_EQ(grab(), Grab::NONE);
  EXPECT_EQ(pixels(), Bytes(36, 4));
}

TEST_F(WebcamCaptureTest, ACameraThatAlwaysHasAnotherFrameHoldsNobody) {
  ASSERT_EQ(capture.start(device), 0);
  unsigned char next = 0;
  system.spoil = [&](const std::string& call, void*) {
    if (call == "VIDIOC_QBUF") camera.deliver(Bytes(36, ++next));
  };
  camera.deliver(Bytes(36, ++next));
  for (int i = 0; i < 3; ++i) {
    system.calls.clear();
    EXPECT_EQ(grab(), Grab::TAKEN);
    EXPECT_LE(system.count("VIDIOC_DQBUF"), 16);
  }
}

TEST_F(WebcamCaptureTest, DamagedFramesArePassedOver) {
  ASSERT_EQ(capture.start(device), 0);
  camera.deliver(Bytes(36, 1));
  camera.deliver(Bytes(36, 2), V4L2_BUF_FLAG_ERROR);
  EXPECT_EQ(grab(), Grab::TAKEN);
  EXPECT_EQ(pixels(), Bytes(36, 1));
  camera.deliver(Bytes(36, 3), V4L2_BUF_FLAG_ERROR);
  EXPECT_EQ(grab(), Grab::FAULT);
  EXPECT_EQ(pixels(), Bytes(36, 1));
  EXPECT_EQ(camera.queued.size(), 4u);
  camera.deliver(Bytes(36, 4));
  EXPECT_EQ(grab(), Grab::TAKEN) << "and things go on";
}

TEST_F(WebcamCaptureTest, ShortAndOverlongFramesAreRefused) {
  ASSERT_EQ(capture.start(device), 0);
  for (const std::size_t size : {0u, 1u, 35u, 37u, 1000000u}) {
    camera.deliver(Bytes(size, 1));
    EXPECT_EQ(grab(), Grab::FAULT) << size;
    EXPECT_EQ(frame.bytes, nullptr);
  }
  camera.deliver(Bytes(36, 1));
  EXPECT_EQ(grab(), Grab::TAKEN);
}

TEST_F(WebcamCaptureTest, ABufferThatIsNoneEndsTheStream) {
  ASSERT_EQ(capture.start(device), 0);
  for (const std::uint32_t index : {4u, 0x80000000u, 0xFFFFFFFFu}) {
    system.spoil = [&](const std::string& call, void* argument) {
      if (call == "VIDIOC_DQBUF") static_cast<v4l2_buffer*>(argument)->index = index;
    };
    camera.deliver(Bytes(36));
    EXPECT_EQ(grab(), Grab::FAULT);
    EXPECT_TRUE(system.is_all_given_back());
    system.spoil = nullptr;
    ASSERT_EQ(capture.start(device), 0);
  }
}

TEST_F(WebcamCaptureTest, AMomentWithoutASignalIsNoEnd) {
  ASSERT_EQ(capture.start(device), 0);
  camera.deliver(Bytes(36, 1));
  system.fail_call = "VIDIOC_DQBUF";
  system.fail_code = EIO;
  EXPECT_EQ(grab(), Grab::FAULT);
  system.fail_call = "";
  EXPECT_EQ(grab(), Grab::TAKEN);
}

TEST_F(WebcamCaptureTest, AnyOtherFailureEndsTheStream) {
  for (const char* call : {"poll", "VIDIOC_DQBUF", "VIDIOC_QBUF"}) {
    const LogCapture log;
    ASSERT_EQ(capture.start(device), 0);
    camera.deliver(Bytes(36, 1));
    system.fail_call = call;
    system.fail_code = ENODEV;
    EXPECT_EQ(grab(), Grab::FAULT) << call;
    EXPECT_TRUE(system.is_all_given_back()) << call;
    system.calls.clear();
    EXPECT_EQ(grab(), Grab::FAULT);
    EXPECT_THAT(system.calls, ElementsAre()) << "it isn't asked again";
    EXPECT_EQ(log.count("[Webcam module] - /dev/video0 is lost: " + std::string(call)), 1);
    system.fail_call = "";
  }
}

TEST_F(WebcamCaptureTest, ACameraMayVanish) {
  ASSERT_EQ(capture.start(device), 0);
  camera.deliver(Bytes(36, 1));
  ASSERT_EQ(grab(), Grab::TAKEN);
  camera.vanish();
  EXPECT_EQ(grab(), Grab::FAULT);
  EXPECT_TRUE(system.is_all_given_back()) << "at once";
  EXPECT_EQ(pixels(), Bytes(36, 1)) << "the last frame stays";
  camera = FakeCamera();
  EXPECT_EQ(capture.start(device), 0) << "plugged in again";
}

TEST_F(WebcamCaptureTest, ACameraMayVanishAtEachCallOfAGrab) {
  for (int step = 0;; ++step) {
    camera = FakeCamera();
    ASSERT_EQ(capture.start(device), 0);
    for (unsigned char i = 0; i < 3; ++i) camera.deliver(Bytes(36, i));
    system.calls.clear();
    system.fail_at = step;
    system.fail_code = ENODEV;
    const Grab result = grab();
    const bool is_past = system.calls.size() <= static_cast<std::size_t>(step);
    system.fail_at = -1;
    if (is_past) {
      EXPECT_GE(step, 8);
      break;
    }
    EXPECT_EQ(result, Grab::FAULT) << step;
    EXPECT_TRUE(system.is_all_given_back()) << step;
  }
}

// ---- changes of size ----

TEST_F(WebcamCaptureTest, AChangeThatIsToldRestartsTheStream) {
  ASSERT_EQ(capture.start(device), 0);
  camera.deliver(Bytes(36, 1));
  ASSERT_EQ(grab(), Grab::TAKEN);
  camera.width = 2;
  camera.height = 2;
  camera.bytesperline = 8;
  camera.buffer_size = 16;
  camera.events = {V4L2_EVENT_SOURCE_CHANGE, V4L2_EVENT_SOURCE_CHANGE};
  EXPECT_EQ(grab(), Grab::NONE);
  EXPECT_EQ(capture.layout().width, 2u);
  EXPECT_EQ(frame.width, 4u) << "the frame is still the old one";
  ASSERT_TRUE(camera.deliver({1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12, 0, 0}));
  EXPECT_EQ(grab(), Grab::TAKEN);
  EXPECT_EQ(frame.width, 2u);
  EXPECT_EQ(frame.height, 2u);
  EXPECT_EQ(pixels(), (Bytes{7, 8, 9, 10, 11, 12, 1, 2, 3, 4, 5, 6}));
}

TEST_F(WebcamCaptureTest, AChangeThatIsNotToldShowsByTheLength) {
  ASSERT_EQ(capture.start(device), 0);
  camera.width = 2;
  camera.height = 2;
  camera.bytesperline = 6;
  camera.deliver(Bytes(12, 1));
  EXPECT_EQ(grab(), Grab::NONE);
  EXPECT_EQ(capture.layout().height, 2u);
  camera.deliver(Bytes(12, 2));
  EXPECT_EQ(grab(), Grab::TAKEN);
  EXPECT_EQ(pixels(), Bytes(12, 2));
}

TEST_F(WebcamCaptureTest, OtherEventsChangeNothing) {
  ASSERT_EQ(capture.start(device), 0);
  camera.events.assign(100, V4L2_EVENT_CTRL);
  camera.deliver(Bytes(36, 1));
  system.calls.clear();
  EXPECT_EQ(grab(), Grab::TAKEN);
  EXPECT_EQ(system.count("VIDIOC_DQEVENT"), 32) << "the rest has time";
  EXPECT_EQ(system.count("VIDIOC_STREAMOFF"), 0);
}

TEST_F(WebcamCaptureTest, AChangeToASizeThatCannotBeEndsTheStream) {
  ASSERT_EQ(capture.start(device), 0);
  camera.width = 1u << 20;
  camera.events = {V4L2_EVENT_SOURCE_CHANGE};
  EXPECT_EQ(grab(), Grab::FAULT);
  EXPECT_TRUE(system.is_all_given_back());
}

TEST_F(WebcamCaptureTest, ARestartMayFailAtEachStep) {
  const auto change_size = [&](int fail_at) {
    capture.stop();
    camera = FakeCamera();
    EXPECT_EQ(capture.start(device), 0);
    camera.events = {V4L2_EVENT_SOURCE_CHANGE};
    system.calls.clear();
    system.fail_at = fail_at;
    return grab();
  };
  ASSERT_EQ(change_size(-1), Grab::NONE);
  const std::vector<std::string> calls = system.calls;
  const auto first = std::find(calls.begin(), calls.end(), "VIDIOC_G_FMT") - calls.begin();
  ASSERT_EQ(calls.size() - static_cast<std::size_t>(first), 16u);
  for (auto step = static_cast<std::size_t>(first); step < calls.size(); ++step) {
    EXPECT_EQ(change_size(static_cast<int>(step)), Grab::FAULT) << calls[step];
    EXPECT_TRUE(system.is_all_given_back()) << calls[step];
    system.fail_at = -1;
  }
}

// ---- the real calls ----

void note_path(void* to, const char* path) {
  static_cast<std::vector<std::string>*>(to)->emplace_back(path);
}

TEST(V4l2Sys, OpensMapsAndCloses) {
  const V4l2Sys& sys = V4l2Sys::system();
  EXPECT_EQ(sys.open(nullptr, "/nonexistent/video0"), -ENOENT);
  const int memory = memfd_create("frames", MFD_CLOEXEC);
  ASSERT_GE(memory, 0);
  ASSERT_EQ(write(memory, "pixels", 6), 6);
  const std::string path = "/proc/self/fd/" + std::to_string(memory);
  const int fd = sys.open(nullptr, path.c_str());
  ASSERT_GE(fd, 0);
  v4l2_capability device = {};
  EXPECT_EQ(sys.ioctl(nullptr, fd, VIDIOC_QUERYCAP, &device), -ENOTTY);
  void* mapped = nullptr;
  ASSERT_EQ(sys.mmap(nullptr, fd, 4096, 0, &mapped), 0);
  EXPECT_EQ(std::string(static_cast<const char*>(mapped), 6), "pixels");
  EXPECT_EQ(sys.munmap(nullptr, mapped, 4096), 0);
  EXPECT_EQ(sys.mmap(nullptr, fd, 0, 0, &mapped), -EINVAL);
  EXPECT_EQ(sys.munmap(nullptr, nullptr, 0), -EINVAL);
  EXPECT_EQ(sys.poll(nullptr, fd, POLLIN), POLLIN);
  EXPECT_EQ(sys.close(nullptr, fd), 0);
  EXPECT_EQ(sys.close(nullptr, fd), -EBADF);
  EXPECT_EQ(sys.poll(nullptr, fd, POLLIN), POLLNVAL);
  close(memory);
}

TEST(V4l2Sys, FindsPaths) {
  std::vector<std::string> paths;
  EXPECT_EQ(V4l2Sys::system().glob(nullptr, "/dev/nul?", &note_path, &paths), 0);
  EXPECT_THAT(paths, ElementsAre("/dev/null"));
  paths.clear();
  EXPECT_EQ(V4l2Sys::system().glob(nullptr, "/nonexistent/video*", &note_path, &paths), 0);
  EXPECT_THAT(paths, ElementsAre());
}

}  // namespace
}  // namespace orv::test
