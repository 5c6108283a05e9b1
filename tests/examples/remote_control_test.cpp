// The example that listens on a port, driven from outside as by any TCP client.
#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "examples/example_programs.h"
#include "support/tcp_client.h"

namespace orv::test {
namespace {

class RemoteControl : public testing::Test {
 protected:
  void SetUp() override {
    std::remove(picture_.c_str());
    program_ = popen(("exec env -u DISPLAY MESA_GL_VERSION_OVERRIDE=4.5 timeout 120 " +
                      example_program("30_remote_control") + " --port 0 --output '" + picture_ +
                      "' --profile core")
                         .c_str(),
                     "r");
    ASSERT_NE(program_, nullptr);
    ASSERT_EQ(std::fscanf(program_, "listening on port %d", &port_), 1);
  }
  void TearDown() override {
    if (program_) stop();
  }

  /// The answer to a command.
  std::string tell(const std::string& command) const {
    TcpClient client;
    if (!client.connect(port_) || !client.send(command)) return "nobody there";
    return client.receive(100);
  }
  /// The exit code.
  int stop() {
    tell("STOP_ORV_TCP_SERVER");
    const int status = pclose(program_);
    program_ = nullptr;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }
  std::string compare() const {
    return compare_to_golden(read_picture(picture_), "example_30_remote_control");
  }

  const std::string picture_ = std::string(ORV_TEST_OUTPUT_DIR) + "/remote_control.png";
  std::FILE* program_ = nullptr;
  int port_ = 0;
};

TEST_F(RemoteControl, AClientMovesTheCameraTakesAPictureAndStopsIt) {
  EXPECT_EQ(tell("camera 3.6 5.2 5.6"), "ok\n");
  EXPECT_EQ(tell("screenshot"), "ok\n");
  EXPECT_EQ(compare(), "");
  EXPECT_EQ(stop(), 0);
  EXPECT_FALSE(TcpClient().connect(port_));
}

TEST_F(RemoteControl, EachPictureIsOfTheLatestView) {
  EXPECT_EQ(tell("camera 0 0 9"), "ok\n");
  EXPECT_EQ(tell("screenshot"), "ok\n");
  const Picture from_the_side = read_picture(picture_);
  EXPECT_EQ(tell("camera 3.6 5.2 5.6"), "ok\n");
  EXPECT_EQ(read_picture(picture_).rgba, from_the_side.rgba) << "until the next is asked for";
  EXPECT_EQ(tell("screenshot"), "ok\n");
  EXPECT_NE(read_picture(picture_).rgba, from_the_side.rgba);
  EXPECT_EQ(compare(), "");
}

TEST_F(RemoteControl, StrangeCommandsAreAnsweredToo) {
  for (const std::string& command :
       {std::string("dance"), std::string("camera"), std::string("camera 1 2"),
        std::string(1000, 'x'), std::string("\0screenshot", 11), std::string("%s%n")}) {
    EXPECT_EQ(tell(command), "unknown command\n") << command;
  }
  TcpClient(port_).reset();
  EXPECT_EQ(tell("screenshot"), "ok\n");
  EXPECT_EQ(stop(), 0);
}

}  // namespace
}  // namespace orv::test
