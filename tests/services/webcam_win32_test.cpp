#include <orv/services/webcam_win32.h>

#include <orv/image/image.h>
#include <orv/image/image_codec_stb.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>

#include "services/fake_camera.h"
#include "services/webcam_win32_data.h"
#include "support/log_capture.h"
#include "support/temp_folder.h"

namespace orv::test {
namespace {

using testing::ElementsAre;

class WebcamWin32Test : public testing::Test {
 protected:
  WebcamWin32Test() { WebcamWin32Data::of(*webcam).capture.set_sys(system.sys()); }
  ~WebcamWin32Test() override {
    webcam.reset();
    EXPECT_TRUE(system.is_all_given_back());
  }

  // What a grab makes of a frame.
  Bytes grab(const Bytes& delivered, int device = 0) {
    EXPECT_TRUE(system.cameras[device].deliver(delivered));
    if (!webcam->grab_frame()) return {};
    return pixels();
  }
  Bytes pixels() {
    const auto size = static_cast<std::size_t>(webcam->get_frame_width()) *
                      static_cast<std::size_t>(webcam->get_frame_height()) * 3;
    return Bytes(webcam->get_frame(), webcam->get_frame() + size);
  }

  LogCapture log{LOG_LEVEL_INFO};
  FakeCameras system;
  std::unique_ptr<WebcamWin32> webcam = std::make_unique<WebcamWin32>();
};

// ---- node ----

TEST_F(WebcamWin32Test, IsANode) {
  EXPECT_EQ(webcam->get_type(), NODE_TYPE_WEBCAM);
  EXPECT_TRUE(webcam->is_type_of(NODE_TYPE_NODE));
  auto* parent = new Node;
  auto* child = new WebcamWin32;
  WebcamWin32Data::of(*child).capture.set_sys(system.sys());
  system.cameras[0];
  parent->add_child(child);
  EXPECT_TRUE(child->start(0));
  parent->release(nullptr, nullptr);
  EXPECT_TRUE(system.is_all_given_back()) << "released while it delivers";
}

TEST_F(WebcamWin32Test, IsEmptyAtFirst) {
  EXPECT_EQ(webcam->get_frame(), nullptr);
  EXPECT_EQ(webcam->get_frame_width(), 0);
  EXPECT_EQ(webcam->get_frame_height(), 0);
  EXPECT_STREQ(webcam->get_device_name(), "");
}

// ---- devices ----

TEST_F(WebcamWin32Test, InitializeTellsTheDevices) {
  system.cameras[4].name = "Lid";
  system.cameras[12].name = "Desk";
  EXPECT_TRUE(webcam->initialize());
  EXPECT_THAT(log.lines(),
              ElementsAre("[Webcam module] - capture device 0: Lid",
                          "[Webcam module] - capture device 1: Desk",
                          "[Webcam module] initialization - found 2 capture device(s)."));
}

TEST_F(WebcamWin32Test, InitializeWithoutDevicesIsNoFailure) {
  EXPECT_TRUE(webcam->initialize());
  EXPECT_THAT(log.lines(),
              ElementsAre("[Webcam module] initialization - found 0 capture device(s)."));
}

TEST_F(WebcamWin32Test, InitializeFailsWhenTheSystemCannotBeAsked) {
  system.cameras[0];
  system.fail_call = "glob";
  EXPECT_FALSE(webcam->initialize());
  EXPECT_EQ(webcam->get_num_webcams(), 0u);
}

TEST_F(WebcamWin32Test, CountingLooksEachTime) {
  EXPECT_EQ(webcam->get_num_webcams(), 0u);
  system.cameras[0];
  EXPECT_EQ(webcam->get_num_webcams(), 1u);
  system.cameras[1];
  EXPECT_EQ(webcam->get_num_webcams(), 2u);
  system.cameras.erase(0);
  EXPECT_EQ(webcam->get_num_webcams(), 1u);
  EXPECT_EQ(log.count("initialization - found"), 4);
}

TEST_F(WebcamWin32Test, TerminateIsTrueAndLeavesAStreamAlone) {
  EXPECT_TRUE(webcam->terminate());
  system.cameras[0];
  webcam->initialize();
  EXPECT_TRUE(webcam->start(0));
  EXPECT_TRUE(webcam->terminate());
  EXPECT_EQ(grab(Bytes(36, 3)), Bytes(36, 3));
}

// ---- start and stop ----

TEST_F(WebcamWin32Test, StartWithoutDevicesTellsTheIndex) {
  EXPECT_FALSE(webcam->start(3));
  EXPECT_THAT(log.lines(),
              ElementsAre("[Webcam module] - found 0 capture device. Unable to start device 3"));
  EXPECT_FALSE(webcam->grab_frame());
}

TEST_F(WebcamWin32Test, StartTellsNameAndSize) {
  system.cameras[7].name = "Lid";
  EXPECT_TRUE(webcam->start(0));
  EXPECT_THAT(log.lines(), ElementsAre("[Webcam module] - capture device 0 (Lid) started ok."));
  EXPECT_STREQ(webcam->get_device_name(), "Lid");
  EXPECT_EQ(webcam->get_frame_width(), 4);
  EXPECT_EQ(webcam->get_frame_height(), 3);
  EXPECT_EQ(webcam->get_frame(), nullptr) << "nothing was grabbed yet";
}

TEST_F(WebcamWin32Test, StartTakesTheDeviceOfThatIndex) {
  system.cameras[2].name = "First";
  system.cameras[30].name = "Second";
  EXPECT_TRUE(webcam->start(1));
  EXPECT_STREQ(webcam->get_device_name(), "Second");
  EXPECT_TRUE(system.cameras[30].is_streaming);
  EXPECT_FALSE(system.cameras[2].is_streaming);
}

TEST_F(WebcamWin32Test, StartOfADeviceThatIsNoneFails) {
  system.cameras[0];
  for (const int index : {1, -1, 64, 1 << 30, -(1 << 30)}) {
    log.clear();
    EXPECT_FALSE(webcam->start(index));
    EXPECT_THAT(log.lines(),
                ElementsAre("[Webcam module] - capture device " + std::to_string(index) +
                            " () startup FAILED (code=" + std::to_string(ENODEV) + ")!"));
    EXPECT_STREQ(webcam->get_device_name(), "");
  }
}

TEST_F(WebcamWin32Test, StartThatFailsTellsTheCode) {
  // Those before are of the list: a device that can't be asked isn't there.
  const int first_step = 3, num_steps = 18;
  for (int step = first_step; step < first_step + num_steps; ++step) {
    FakeCameras failing;
    failing.cameras[0].name = "Lid";
    failing.fail_at = step;
    failing.fail_code = EBUSY;
    WebcamWin32 tried;
    WebcamWin32Data::of(tried).capture.set_sys(failing.sys());
    log.clear();
    EXPECT_FALSE(tried.start(0)) << step;
    EXPECT_THAT(log.lines(),
                ElementsAre("[Webcam module] - capture device 0 (Lid) startup FAILED (code=" +
                            std::to_string(EBUSY) + ")!"))
        << step;
    EXPECT_TRUE(failing.is_all_given_back()) << step;
    EXPECT_FALSE(tried.grab_frame());
    EXPECT_EQ(tried.get_frame_width(), 0);
    EXPECT_STREQ(tried.get_device_name(), "Lid");
  }
}

TEST_F(WebcamWin32Test, StartSaysAtDebugLevelWhatFailed) {
  const LogCapture debug;
  system.cameras[0];
  system.fail_call = "VIDIOC_STREAMON";
  EXPECT_FALSE(webcam->start(0));
  EXPECT_TRUE(debug.contains("[Webcam module] - VIDIOC_STREAMON: "));
}

TEST_F(WebcamWin32Test, StopGivesEverythingBackAndKeepsTheFrame) {
  system.cameras[0].name = "Lid";
  webcam->start(0);
  EXPECT_EQ(grab(Bytes(36, 8)), Bytes(36, 8));
  log.clear();
  EXPECT_TRUE(webcam->stop());
  EXPECT_THAT(log.lines(), ElementsAre("[Webcam module] - stopping capture device 0 (Lid)."));
  EXPECT_TRUE(system.is_all_given_back());
  EXPECT_FALSE(webcam->grab_frame());
  EXPECT_EQ(pixels(), Bytes(36, 8));
}

TEST_F(WebcamWin32Test, StopWithoutAStartIsToldAllTheSame) {
  EXPECT_TRUE(webcam->stop());
  EXPECT_THAT(log.lines(), ElementsAre("[Webcam module] - stopping capture device 0 ()."));
}

TEST_F(WebcamWin32Test, TheDestructorStops) {
  system.cameras[0].name = "Lid";
  webcam->start(0);
  log.clear();
  webcam.reset();
  EXPECT_THAT(log.lines(), ElementsAre("[Webcam module] - stopping capture device 0 (Lid)."));
  EXPECT_TRUE(system.is_all_given_back());
}

TEST_F(WebcamWin32Test, StartOfAnotherDeviceStopsTheFirst) {
  system.cameras[0].name = "Lid";
  system.cameras[1].name = "Desk";
  system.cameras[1].width = 2;
  webcam->start(0);
  EXPECT_EQ(grab(Bytes(36, 8)), Bytes(36, 8));
  log.clear();
  EXPECT_TRUE(webcam->start(1));
  EXPECT_THAT(log.lines(), ElementsAre("[Webcam module] - stopping capture device 0 (Lid).",
                                       "[Webcam module] - capture device 1 (Desk) started ok."));
  EXPECT_FALSE(system.cameras[0].is_streaming);
  EXPECT_EQ(webcam->get_frame(), nullptr) << "of the other size, and the other camera's";
  EXPECT_EQ(webcam->get_frame_width(), 2);
  EXPECT_FALSE(webcam->grab_frame()) << "nothing of this camera yet";
}

TEST_F(WebcamWin32Test, TheFramesMemoryStaysUntilAGrabOfAnotherSize) {
  FakeCamera& camera = system.cameras[0];
  webcam->start(0);
  EXPECT_EQ(grab(Bytes(36, 8)), Bytes(36, 8));
  const unsigned char* held = webcam->get_frame();
  webcam->stop();
  EXPECT_EQ(webcam->get_frame(), held);
  EXPECT_TRUE(webcam->start(0));
  EXPECT_EQ(Bytes(held, held + 36), Bytes(36, 8));
  EXPECT_EQ(grab(Bytes(36, 9)), Bytes(36, 9));
  EXPECT_EQ(webcam->get_frame(), held) << "of the same size: the same block";
  system.fail_call = "VIDIOC_STREAMON";
  EXPECT_FALSE(webcam->start(0));
  EXPECT_EQ(webcam->get_frame(), nullptr);
  EXPECT_EQ(Bytes(held, held + 36), Bytes(36, 9));
  system.fail_call = "";
  camera.width = camera.height = 2;
  camera.bytesperline = 6;
  EXPECT_TRUE(webcam->start(0));
  EXPECT_EQ(grab(Bytes(12, 7)), Bytes(12, 7));
}

TEST_F(WebcamWin32Test, FailuresAreToldAtErrorLevel) {
  const LogCapture errors(LOG_LEVEL_ERROR);
  webcam->start(2);
  EXPECT_EQ(errors.count("found 0 capture device. Unable to start device 2"), 1);
  system.cameras[0];
  system.fail_call = "VIDIOC_REQBUFS";
  webcam->start(0);
  EXPECT_EQ(errors.count("startup FAILED (code="), 1);
  system.fail_call = "";
  webcam->start(0);
  webcam->stop();
  webcam->initialize();
  EXPECT_EQ(errors.lines().size(), 2u) << "all else is no error";
}

TEST_F(WebcamWin32Test, TwoCamerasDeliverSideBySide) {
  system.cameras[0];
  system.cameras[1];
  WebcamWin32 other;
  WebcamWin32Data::of(other).capture.set_sys(system.sys());
  EXPECT_TRUE(webcam->start(0));
  EXPECT_TRUE(other.start(1));
  system.cameras[1].deliver(Bytes(36, 2));
  EXPECT_EQ(grab(Bytes(36, 1)), Bytes(36, 1));
  EXPECT_TRUE(other.grab_frame());
  EXPECT_EQ(other.get_frame()[0], 2);
}

// ---- frames ----

TEST_F(WebcamWin32Test, NoFrameBeforeStartAndBeforeTheFirst) {
  EXPECT_FALSE(webcam->grab_frame());
  EXPECT_EQ(webcam->get_frame(), nullptr);
  system.cameras[0];
  EXPECT_TRUE(webcam->start(0));
  EXPECT_FALSE(webcam->grab_frame());
  EXPECT_EQ(webcam->get_frame(), nullptr);
}

TEST_F(WebcamWin32Test, RowsAreBottomUpInBlueGreenRed) {
  FakeCamera& camera = system.cameras[0];
  camera.width = camera.height = 2;
  camera.bytesperline = 8;
  camera.buffer_size = 16;
  const Bytes upright = {1, 2, 3, 4, 5, 6, 0, 0, 7, 8, 9, 10, 11, 12, 0, 0};
  webcam->start(0);
  EXPECT_EQ(grab(upright), (Bytes{7, 8, 9, 10, 11, 12, 1, 2, 3, 4, 5, 6}));
  camera.formats = {V4L2_PIX_FMT_RGB24};
  webcam->start(0);
  EXPECT_EQ(grab(upright), (Bytes{9, 8, 7, 12, 11, 10, 3, 2, 1, 6, 5, 4}));
}

TEST_F(WebcamWin32Test, ColourDifferencesBecomeBlueGreenRed) {
  FakeCamera& camera = system.cameras[0];
  camera.width = camera.height = 2;
  camera.bytesperline = 4;
  camera.buffer_size = 8;
  camera.formats = {V4L2_PIX_FMT_YUYV};
  webcam->start(0);
  EXPECT_EQ(grab({81, 90, 16, 240, 41, 240, 41, 110}),
            (Bytes{255, 0, 0, 255, 0, 0, 0, 0, 254, 0, 0, 179}));
  camera.bytesperline = 2;
  camera.buffer_size = 6;
  camera.formats = {V4L2_PIX_FMT_NV12};
  webcam->start(0);
  EXPECT_EQ(grab({16, 235, 235, 16, 128, 128}),
            (Bytes{255, 255, 255, 0, 0, 0, 0, 0, 0, 255, 255, 255}));
}

TEST_F(WebcamWin32Test, JpegFramesBringTheirSize) {
  FakeCamera& camera = system.cameras[0];
  camera.formats = {V4L2_PIX_FMT_MJPEG};
  camera.buffer_size = 4096;
  camera.bytesperline = 0;
  camera.width = 640;
  camera.height = 480;
  const std::string path = ORV_TEST_DATA_DIR "/../fuzz/corpus/image/colour.jpg";
  const std::string jpeg = TempFolder::read_file(path);
  ASSERT_FALSE(jpeg.empty());
  webcam->start(0);
  EXPECT_EQ(webcam->get_frame_width(), 640);
  const Bytes taken = grab(Bytes(jpeg.begin(), jpeg.end()));
  Image image;
  ImageCodecStb codec;
  ASSERT_TRUE(codec.load_image_from_file(&image, path.c_str(), false, PF_RGB_U8));
  EXPECT_EQ(webcam->get_frame_width(), static_cast<int>(image.width));
  EXPECT_EQ(webcam->get_frame_height(), static_cast<int>(image.height));
  image.flip_vertical();
  ASSERT_EQ(taken.size(), std::size_t{image.width} * image.height * 3);
  const unsigned char* rgb = image.get_u8_ptr();
  for (std::size_t i = 0; i < taken.size(); ++i) ASSERT_EQ(taken[i], rgb[i / 3 * 3 + 2 - i % 3]);
  EXPECT_EQ(grab(Bytes(jpeg.begin(), jpeg.end() - 40)), Bytes()) << "cut short";
  EXPECT_EQ(pixels(), taken);
}

TEST_F(WebcamWin32Test, TheSameFrameIsGivenUntilThereIsANewerOne) {
  system.cameras[0];
  webcam->start(0);
  EXPECT_EQ(grab(Bytes(36, 1)), Bytes(36, 1));
  const unsigned char* before = webcam->get_frame();
  EXPECT_TRUE(webcam->grab_frame());
  EXPECT_EQ(pixels(), Bytes(36, 1));
  EXPECT_EQ(grab(Bytes(36, 2)), Bytes(36, 2));
  EXPECT_EQ(webcam->get_frame(), before) << "made anew for another size alone";
}

TEST_F(WebcamWin32Test, AFrameOfAnotherSizeTakesItsPlace) {
  FakeCamera& camera = system.cameras[0];
  webcam->start(0);
  EXPECT_EQ(grab(Bytes(36, 1)), Bytes(36, 1));
  camera.width = 6;
  camera.bytesperline = 20;
  camera.buffer_size = 60;
  camera.events = {V4L2_EVENT_SOURCE_CHANGE};
  EXPECT_TRUE(webcam->grab_frame()) << "the frame of before";
  EXPECT_EQ(pixels(), Bytes(36, 1));
  EXPECT_EQ(grab(Bytes(60, 2)), Bytes(54, 2));
  EXPECT_EQ(webcam->get_frame_width(), 6);
}

TEST_F(WebcamWin32Test, ACameraThatVanishesGivesFalse) {
  FakeCamera& camera = system.cameras[0];
  webcam->start(0);
  EXPECT_EQ(grab(Bytes(36, 1)), Bytes(36, 1));
  camera.vanish();
  EXPECT_FALSE(webcam->grab_frame());
  EXPECT_FALSE(webcam->grab_frame());
  EXPECT_EQ(pixels(), Bytes(36, 1));
  EXPECT_TRUE(webcam->stop());
  EXPECT_FALSE(webcam->start(0));
  EXPECT_TRUE(log.contains("found 0 capture device. Unable to start device 0"));
}

TEST_F(WebcamWin32Test, StartsAgainAndAgain) {
  system.cameras[0];
  for (unsigned char i = 0; i < 50; ++i) {
    ASSERT_TRUE(webcam->start(0));
    EXPECT_EQ(grab(Bytes(36, i)), Bytes(36, i));
    if (i % 2) webcam->stop();
  }
  webcam->stop();
  EXPECT_EQ(system.num_opened, 100) << "once for the list";
  EXPECT_TRUE(system.is_all_given_back());
}

// Of the system that the tests run on nothing is known but that no call waits or breaks.
TEST(WebcamWin32, AsksTheRealSystem) {
  const LogCapture log;
  WebcamWin32 webcam;
  EXPECT_TRUE(webcam.initialize());
  EXPECT_TRUE(log.contains("[Webcam module] initialization - found "));
}

}  // namespace
}  // namespace orv::test
