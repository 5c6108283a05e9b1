// What goes through sockets: streams, and datagrams.
#include <orv/services/socket_core.h>

#include "services/held_socket.h"
#include "services/server_run.h"
#include "support/log_capture.h"
#include "support/tcp_client.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <pthread.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/time.h>

#include <chrono>
#include <cstring>
#include <memory>
#include <string>
#include <thread>

namespace orv {
namespace {

using Held = test::HeldSocket;
using test::LogCapture;
using test::SocketCorePair;
using test::TcpClient;
using testing::IsEmpty;

unsigned char* bytes(std::string& text) { return reinterpret_cast<unsigned char*>(text.data()); }

/// Interrupts a thread's waiting calls a few times; those that come too early do no harm.
void interrupt(std::thread& thread) {
  struct sigaction action {};
  action.sa_handler = [](int) {};
  sigaction(SIGUSR1, &action, nullptr);
  for (int i = 0; i < 30; ++i) {
    pthread_kill(thread.native_handle(), SIGUSR1);
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
}

// ---- streams -----------------------------------------------------------------------------------

TEST_F(SocketCorePair, PeekTellsOf1023BytesAndLeavesThem) {
  ASSERT_TRUE(client_.send(std::string(5000, 'p')));
  int pending = 0;
  ASSERT_TRUE(test::wait_until(
      [&] { return ioctl(peer_->handle, FIONREAD, &pending) == 0 && pending == 5000; }));
  EXPECT_EQ(core_.receive_socket_get_data_len(peer_.get()), 1023);
  EXPECT_EQ(core_.receive_socket_get_data_len(peer_.get()), 1023);
  std::string all(6000, '\0');
  EXPECT_EQ(core_.receive_socket(peer_.get(), bytes(all), 6000), 5000);
}

TEST_F(SocketCorePair, ReceiveWritesWhatItGotToTheLog) {
  LogCapture log;
  ASSERT_TRUE(client_.send("hello"));
  ASSERT_EQ(core_.receive_socket_get_data_len(peer_.get()), 5);
  std::string buffer = "xxxxxxxxxx";  // what stands behind the bytes is not printed
  EXPECT_EQ(core_.receive_socket(peer_.get(), bytes(buffer), 10), 5);
  EXPECT_EQ(buffer, "helloxxxxx");
  EXPECT_THAT(log.lines(), testing::ElementsAre(
                               "ORV::SocketCore::receive_socket() - received 5 bytes on socket " +
                               std::to_string(peer_->handle) + " - buffer: hello"));
}

TEST_F(SocketCorePair, ReceiveReadsToTheLastByteOfTheBuffer) {
  ASSERT_TRUE(client_.send("0123456789"));
  const std::unique_ptr<unsigned char[]> four(new unsigned char[4]);
  EXPECT_EQ(core_.receive_socket(peer_.get(), four.get(), 4), 4);
  EXPECT_EQ(std::memcmp(four.get(), "0123", 4), 0);
}

TEST_F(SocketCorePair, TheEndOfAConnectionIsZero) {
  LogCapture log;
  client_.close();
  unsigned char byte = 0;
  EXPECT_EQ(core_.receive_socket_get_data_len(peer_.get()), 0);
  EXPECT_EQ(core_.receive_socket(peer_.get(), &byte, 1), 0);
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(SocketCorePair, ResetConnectionsFail) {
  client_.reset();
  EXPECT_EQ(core_.receive_socket_get_data_len(peer_.get()), -1);
}

TEST_F(SocketCorePair, SendReachesThePeer) {
  std::string text = "seven!!";
  EXPECT_EQ(core_.send_socket(peer_.get(), bytes(text), 7), 7);
  EXPECT_EQ(client_.receive(7), text);
}

// A signal would end this program.
TEST_F(SocketCorePair, SendToAPeerThatIsGoneFails) {
  client_.reset();
  std::string text = "anyone there?";
  EXPECT_TRUE(test::wait_until([&] { return core_.send_socket(peer_.get(), bytes(text), 5) < 0; }));
  EXPECT_EQ(core_.send_socket(peer_.get(), bytes(text), 5), -1);
}

// One call, which a full buffer cuts short.
TEST_F(SocketCorePair, SendMayTakePartOfTheBytes) {
  core_.set_socket_option(peer_.get(), SOCKET_OPTION_NONBLOCKING);
  std::string much(64 << 20, 'm');
  const int sent = core_.send_socket(peer_.get(), bytes(much), static_cast<int>(much.size()));
  EXPECT_GT(sent, 0);
  EXPECT_LT(sent, static_cast<int>(much.size()));
}

TEST_F(SocketCorePair, ShutdownWakesAWaitingThread) {
  int received = -2;
  std::thread waiting([&] { received = core_.receive_socket_get_data_len(peer_.get()); });
  std::this_thread::sleep_for(std::chrono::milliseconds(10));
  EXPECT_TRUE(core_.shutdown_socket(peer_.get()));
  waiting.join();
  EXPECT_EQ(received, 0);
  EXPECT_TRUE(client_.wait_for_end());
}

TEST_F(SocketCorePair, SignalsDoNotEndWaiting) {
  int received = -2;
  std::thread waiting([&] { received = core_.receive_socket_get_data_len(peer_.get()); });
  interrupt(waiting);
  EXPECT_TRUE(client_.send("late"));
  waiting.join();
  EXPECT_EQ(received, 4);
}

TEST_F(SocketCorePair, SignalsDoNotEndAccepting) {
  int handle = -2;
  std::thread waiting([&] {
    const Held next(core_.accept_connection(server_.get()));
    handle = next->handle;
  });
  interrupt(waiting);
  EXPECT_TRUE(TcpClient().connect(server_->local.port));
  waiting.join();
  EXPECT_GT(handle, 0);
}

// Where the queue of a server is full a connection takes its time.
class SocketCoreFullQueue : public testing::Test {
 protected:
  void SetUp() override {
    SockAddr any;
    ASSERT_TRUE(core_.bind_socket(server_.get(), &any));
    ASSERT_TRUE(core_.listen_socket(server_.get(), 0));
    ASSERT_TRUE(connect(first_));
  }
  Held make() { return Held(core_.create_socket(SOCKET_TYPE_STREAM, SOCKET_PROTOCOL_TCP)); }
  bool connect(const Held& socket) {
    return core_.connect_socket(socket.get(), "127.0.0.1", server_->local.port);
  }

  SocketCore core_;
  Held server_ = make();
  Held first_ = make();
  Held second_ = make();
};

TEST_F(SocketCoreFullQueue, SignalsDoNotEndConnecting) {
  bool connected = false;
  std::thread waiting([&] { connected = connect(second_); });
  interrupt(waiting);
  const Held taken(core_.accept_connection(server_.get()));
  waiting.join();
  EXPECT_TRUE(connected);
}

// Nobody accepts here, and the system itself would try for minutes.
TEST_F(SocketCoreFullQueue, SignalsDoNotLiftALimitToConnecting) {
  const timeval limit{0, 200'000};
  ASSERT_EQ(setsockopt(second_->handle, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof(limit)), 0);
  bool connected = true;
  const auto begin = std::chrono::steady_clock::now();
  std::thread waiting([&] { connected = connect(second_); });
  interrupt(waiting);
  waiting.join();
  EXPECT_FALSE(connected);
  EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(60));
}

// ---- datagrams ---------------------------------------------------------------------------------

class SocketCoreUdp : public testing::Test {
 protected:
  void SetUp() override {
    server_.reset(core_.create_udp_server_socket(0));
    sender_.reset(core_.create_udp_server_socket(0));
    ASSERT_TRUE(server_);
    ASSERT_TRUE(sender_);
  }
  int send(std::string text, const char* host = "localhost") {
    return core_.send_udp(sender_.get(), host, server_->local.port, bytes(text),
                          static_cast<int>(text.size()));
  }

  SocketCore core_;
  Held server_;
  Held sender_;
  std::string buffer_ = std::string(8, '.');
};

TEST_F(SocketCoreUdp, ReceiverLearnsWhoHasSent) {
  LogCapture log;
  EXPECT_EQ(send("ping"), 4);
  SockAddr from;
  std::memset(from.host, 'x', sizeof(from.host));
  from.addr = 17;
  EXPECT_EQ(core_.receive_udp(server_.get(), &from, bytes(buffer_), 8), 4);
  EXPECT_EQ(buffer_, "ping....");
  EXPECT_STREQ(from.host, "127.0.0.1");
  EXPECT_EQ(from.host[127], 0) << "the rest is cleared";
  EXPECT_EQ(from.port, sender_->local.port);
  EXPECT_EQ(from.addr, 17u) << "not looked at";
  EXPECT_THAT(log.lines(),
              testing::ElementsAre("ORV::SocketCore::send_udp() - sent 4 bytes on socket " +
                                       std::to_string(sender_->handle) + ".",
                                   "ORV::SocketCore::receive_udp() - socket " +
                                       std::to_string(server_->handle) +
                                       " - received 4 bytes from 127.0.0.1."));
}

TEST_F(SocketCoreUdp, ReceiverMayNotCareWhoHasSent) {
  LogCapture log;
  EXPECT_EQ(send("a longer datagram", "127.0.0.1"), 17);
  EXPECT_EQ(core_.receive_udp(server_.get(), nullptr, bytes(buffer_), 8), 8);
  EXPECT_EQ(buffer_, "a longer");
  EXPECT_EQ(log.lines().back(), "ORV::SocketCore::receive_udp() - socket " +
                                    std::to_string(server_->handle) + " - received 8 bytes.");
}

TEST_F(SocketCoreUdp, AfterAFailureTheSenderIsEmpty) {
  core_.set_socket_option(server_.get(), SOCKET_OPTION_NONBLOCKING);
  SockAddr from;
  std::strcpy(from.host, "before");
  from.port = 12;
  EXPECT_EQ(core_.receive_udp(server_.get(), &from, bytes(buffer_), 8), -1);
  EXPECT_STREQ(from.host, "");
  EXPECT_EQ(from.port, 0);
}

}  // namespace
}  // namespace orv
