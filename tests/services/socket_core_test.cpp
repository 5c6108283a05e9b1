#include <orv/services/socket_core.h>

#include "services/held_socket.h"
#include "services/server_run.h"
#include "support/log_capture.h"
#include "support/tcp_client.h"
#include "support/vtable_slot.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <pthread.h>
#include <signal.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <string>

namespace orv {
namespace {

using test::count_own;
using Held = test::HeldSocket;
using test::LogCapture;
using test::SocketCorePair;
using test::TcpClient;
using test::vtable_slot;
using test::vtable_slot_of;
using testing::Contains;
using testing::IsEmpty;

bool is_open(int handle) { return fcntl(handle, F_GETFD) >= 0; }

int option_of(const Socket& socket, int level, int name) {
  int value = -1;
  socklen_t size = sizeof(value);
  getsockopt(socket.handle, level, name, &value, &size);
  return value;
}

// ---- the class ---------------------------------------------------------------------------------

TEST(SocketCore, VirtualOperationsStandInTheirOrder) {
  // The destructor takes two places.
  EXPECT_EQ(vtable_slot(&SocketCore::start), 2u);
  EXPECT_EQ(vtable_slot(&SocketCore::stop), 3u);
  EXPECT_EQ(vtable_slot(&SocketCore::create_socket), 4u);
  EXPECT_EQ(vtable_slot(&SocketCore::close_socket), 5u);
  EXPECT_EQ(vtable_slot(&SocketCore::shutdown_socket), 6u);
  EXPECT_EQ(vtable_slot(&SocketCore::kill_socket), 7u);
  EXPECT_EQ(vtable_slot(&SocketCore::bind_socket), 8u);
  EXPECT_EQ(vtable_slot(&SocketCore::listen_socket), 9u);
  EXPECT_EQ(vtable_slot(&SocketCore::create_tcp_server_socket), 10u);
  EXPECT_EQ(vtable_slot(&SocketCore::create_udp_server_socket), 11u);
  EXPECT_EQ(vtable_slot(&SocketCore::accept_connection), 12u);
  EXPECT_EQ(vtable_slot_of<bool(Socket*, SockAddr*)>(&SocketCore::connect_socket), 13u);
  EXPECT_EQ(
      (vtable_slot_of<bool(Socket*, const char*, unsigned short)>(&SocketCore::connect_socket)),
      14u);
  EXPECT_EQ(vtable_slot(&SocketCore::close_connection), 15u);
  EXPECT_EQ(vtable_slot(&SocketCore::send_socket), 16u);
  EXPECT_EQ(vtable_slot(&SocketCore::receive_socket_get_data_len), 17u);
  EXPECT_EQ(vtable_slot(&SocketCore::receive_socket), 18u);
  EXPECT_EQ(vtable_slot(&SocketCore::send_udp), 19u);
  EXPECT_EQ(vtable_slot(&SocketCore::receive_udp), 20u);
  EXPECT_EQ(vtable_slot(&SocketCore::set_socket_option), 21u);
}

TEST(SocketCore, StopBeforeStartIsFalse) {
  SocketCore core;
  EXPECT_FALSE(core.stop());
  EXPECT_TRUE(core.start());
  EXPECT_TRUE(core.start());
  EXPECT_TRUE(core.stop());
  EXPECT_FALSE(core.stop());
}

TEST(SocketCore, RecordsStartClosedAtLocalhost) {
  const Socket socket;
  EXPECT_EQ(socket.handle, 0);
  EXPECT_STREQ(socket.local.host, "localhost");
  EXPECT_EQ(socket.local.port, 0);
  EXPECT_STREQ(socket.remote.host, "");
  EXPECT_EQ(socket.remote.port, 0);
  EXPECT_EQ(socket.remote.addr, 0u);
  EXPECT_EQ(sizeof(socket.local.host), 128u);
}

TEST(SocketCore, NullArgumentsAreRefused) {
  SocketCore core;
  LogCapture log;
  SockAddr address;
  Socket closed;
  unsigned char byte = 0;
  EXPECT_FALSE(core.close_socket(nullptr));
  EXPECT_FALSE(core.shutdown_socket(nullptr));
  EXPECT_FALSE(core.kill_socket(nullptr));
  EXPECT_FALSE(core.bind_socket(nullptr, &address));
  EXPECT_FALSE(core.bind_socket(&closed, nullptr));
  EXPECT_FALSE(core.listen_socket(nullptr, 1));
  EXPECT_EQ(core.accept_connection(nullptr), nullptr);
  EXPECT_FALSE(core.connect_socket(nullptr, &address));
  EXPECT_FALSE(core.connect_socket(&closed, nullptr));
  EXPECT_FALSE(core.connect_socket(nullptr, "127.0.0.1", 1));
  EXPECT_FALSE(core.connect_socket(&closed, nullptr, 1));
  EXPECT_FALSE(core.close_connection(nullptr));
  EXPECT_EQ(core.send_socket(nullptr, &byte, 1), 0);
  EXPECT_EQ(core.send_socket(&closed, nullptr, 1), 0);
  EXPECT_EQ(core.receive_socket_get_data_len(nullptr), 0);
  EXPECT_EQ(core.receive_socket(nullptr, &byte, 1), 0);
  EXPECT_EQ(core.receive_socket(&closed, nullptr, 1), 0);
  EXPECT_EQ(core.send_udp(nullptr, "127.0.0.1", 1, &byte, 1), 0);
  EXPECT_EQ(core.send_udp(&closed, nullptr, 1, &byte, 1), 0);
  EXPECT_EQ(core.send_udp(&closed, "127.0.0.1", 1, nullptr, 1), 0);
  EXPECT_EQ(core.receive_udp(nullptr, &address, &byte, 1), 0);
  EXPECT_EQ(core.receive_udp(&closed, &address, nullptr, 1), 0);
  core.set_socket_option(nullptr, SOCKET_OPTION_REUSEADDR);
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(SocketCore, SizesThatAreNotAboveZeroMoveNothing) {
  SocketCore core;
  Socket closed;
  unsigned char byte = 0;
  for (const int size : {0, -1, -1000}) {
    EXPECT_EQ(core.send_socket(&closed, &byte, size), 0);
    EXPECT_EQ(core.receive_socket(&closed, &byte, size), 0);
    EXPECT_EQ(core.send_udp(&closed, "127.0.0.1", 1, &byte, size), 0);
    EXPECT_EQ(core.receive_udp(&closed, nullptr, &byte, size), 0);
  }
}

// Handle 0 is a closed socket and not the standard input, even where that is a socket.
TEST(SocketCore, ClosedSocketsFailAndLeaveStandardInputAlone) {
  int ends[2];
  ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, ends), 0);
  const int input = dup(0);
  dup2(ends[0], 0);
  ASSERT_EQ(write(ends[1], "typed", 5), 5);

  SocketCore core;
  Socket closed;
  SockAddr address;
  unsigned char byte = 0;
  EXPECT_EQ(core.receive_socket_get_data_len(&closed), -1);
  EXPECT_EQ(core.receive_socket(&closed, &byte, 1), -1);
  EXPECT_EQ(core.receive_udp(&closed, nullptr, &byte, 1), -1);
  EXPECT_EQ(core.send_socket(&closed, &byte, 1), -1);
  EXPECT_EQ(core.send_udp(&closed, "127.0.0.1", 9, &byte, 1), -1);
  EXPECT_FALSE(core.connect_socket(&closed, "127.0.0.1", 9));
  EXPECT_FALSE(core.bind_socket(&closed, &address));
  EXPECT_FALSE(core.listen_socket(&closed, 1));
  const Held failed(core.accept_connection(&closed));
  ASSERT_TRUE(failed);
  EXPECT_LT(failed->handle, 0);
  EXPECT_TRUE(core.close_socket(&closed));
  char typed[5];
  EXPECT_EQ(read(0, typed, 5), 5);

  dup2(input, 0);
  for (const int handle : {input, ends[0], ends[1]}) close(handle);
}

TEST(SocketCore, HandlesAreAboveZeroWithoutAStandardInput) {
  SocketCore core;
  const Held server(core.create_tcp_server_socket(0));
  ASSERT_TRUE(server);
  TcpClient client(server->local.port);
  const int input = dup(0);
  close(0);
  const Held created(core.create_socket(SOCKET_TYPE_STREAM, SOCKET_PROTOCOL_TCP));
  const Held accepted(core.accept_connection(server.get()));
  const bool free = !is_open(0);
  dup2(input, 0);
  close(input);
  ASSERT_TRUE(created);
  EXPECT_GE(created->handle, 3);
  EXPECT_GE(accepted->handle, 3);
  EXPECT_TRUE(free);
}

// ---- making and closing ------------------------------------------------------------------------

TEST(SocketCore, CreateSocketTakesTypeAndProtocol) {
  struct Row {
    int type, protocol;
    int system_type, system_protocol;
  };
  for (const Row& row :
       {Row{1, 1, SOCK_STREAM, IPPROTO_TCP}, Row{3, 3, SOCK_DGRAM, IPPROTO_UDP},
        Row{9, 9, SOCK_STREAM, IPPROTO_TCP}, Row{0, -4, SOCK_STREAM, IPPROTO_TCP}}) {
    SocketCore core;
    LogCapture log;
    const auto type = static_cast<SOCKET_TYPE>(row.type);
    const auto protocol = static_cast<SOCKET_PROTOCOL>(row.protocol);
    const Held socket(core.create_socket(type, protocol));
    ASSERT_TRUE(socket);
    EXPECT_EQ(socket->type, type);
    EXPECT_EQ(socket->protocol, protocol);
    EXPECT_EQ(option_of(*socket, SOL_SOCKET, SO_TYPE), row.system_type);
    EXPECT_EQ(option_of(*socket, SOL_SOCKET, SO_PROTOCOL), row.system_protocol);
    EXPECT_EQ(option_of(*socket, SOL_SOCKET, SO_DOMAIN), AF_INET);
    EXPECT_EQ(fcntl(socket->handle, F_GETFD), FD_CLOEXEC);
    EXPECT_THAT(log.lines(), Contains("ORV::SocketCore::create_socket() - socket " +
                                      std::to_string(socket->handle) + ": creation ok."));
  }
}

// Only privileged programs get raw sockets.
TEST(SocketCore, RawSocketsCarryWholePackets) {
  SocketCore core;
  LogCapture log;
  const Held socket(core.create_socket(SOCKET_TYPE_RAW, SOCKET_PROTOCOL_RAW));
  if (!socket) {
    EXPECT_THAT(log.lines(),
                Contains("ORV::SocketCore::create_socket() - socket creation failed."));
    return;
  }
  EXPECT_EQ(option_of(*socket, SOL_SOCKET, SO_TYPE), SOCK_RAW);
  EXPECT_EQ(option_of(*socket, SOL_SOCKET, SO_PROTOCOL), 255);
}

TEST(SocketCore, CreateSocketThatTheSystemRefusesIsNull) {
  SocketCore core;
  LogCapture log(LOG_LEVEL_ERROR);
  EXPECT_EQ(core.create_socket(SOCKET_TYPE_DATAGRAM, SOCKET_PROTOCOL_TCP), nullptr);
  EXPECT_THAT(log.lines(),
              testing::ElementsAre("ORV::SocketCore::create_socket() - socket creation failed."));
}

TEST(SocketCore, CloseSocketOfAClosedSocketIsTrue) {
  SocketCore core;
  const Held socket(core.create_socket(SOCKET_TYPE_STREAM, SOCKET_PROTOCOL_TCP));
  const int handle = socket->handle;
  EXPECT_TRUE(core.close_socket(socket.get()));
  EXPECT_EQ(socket->handle, 0);
  EXPECT_FALSE(is_open(handle));
  EXPECT_TRUE(core.close_socket(socket.get()));
}

TEST(SocketCore, ShutdownOfAClosedSocketIsFalse) {
  SocketCore core;
  Socket closed;
  EXPECT_FALSE(core.shutdown_socket(&closed));
}

TEST(SocketCore, ShutdownIsTrueEvenWhenItFails) {
  SocketCore core;
  const Held socket(core.create_socket(SOCKET_TYPE_STREAM, SOCKET_PROTOCOL_TCP));
  EXPECT_TRUE(core.shutdown_socket(socket.get())) << "not connected";
  Socket invalid;
  invalid.handle = -1;
  EXPECT_TRUE(core.shutdown_socket(&invalid));
}

TEST(SocketCore, KillSocketFreesEvenWhenShutdownFails) {
  SocketCore core;
  Socket* socket = core.create_socket(SOCKET_TYPE_STREAM, SOCKET_PROTOCOL_TCP);
  const int handle = socket->handle;
  EXPECT_TRUE(core.kill_socket(socket)) << "not connected";
  EXPECT_FALSE(is_open(handle));
  EXPECT_TRUE(core.kill_socket(new Socket)) << "closed";
}

TEST_F(SocketCorePair, CloseConnectionKeepsTheRecord) {
  LogCapture log;
  const int handle = peer_->handle;
  EXPECT_TRUE(core_.close_connection(peer_.get()));
  EXPECT_EQ(peer_->handle, 0);
  EXPECT_FALSE(is_open(handle));
  EXPECT_THAT(log.lines(), testing::ElementsAre("ORV::SocketCore::close_connection() - socket " +
                                                std::to_string(handle) + " closed ok."));
  EXPECT_TRUE(client_.wait_for_end());
}

// ---- servers -----------------------------------------------------------------------------------

TEST(SocketCore, BindLooksAtThePortAlone) {
  SocketCore core;
  LogCapture log;
  const Held socket(core.create_socket(SOCKET_TYPE_STREAM, SOCKET_PROTOCOL_TCP));
  SockAddr address;
  std::strcpy(address.host, "203.0.113.7");  // no address of this machine
  address.addr = 0xCB007107u;
  EXPECT_TRUE(core.bind_socket(socket.get(), &address));

  sockaddr_in bound{};
  socklen_t size = sizeof(bound);
  getsockname(socket->handle, reinterpret_cast<sockaddr*>(&bound), &size);
  EXPECT_EQ(bound.sin_addr.s_addr, htonl(INADDR_ANY));
  EXPECT_NE(socket->local.port, 0) << "the port that the system has chosen";
  EXPECT_EQ(socket->local.port, ntohs(bound.sin_port));
  EXPECT_STREQ(socket->local.host, "localhost");
  EXPECT_EQ(address.port, 0);
  EXPECT_THAT(log.lines(), Contains("ORV::SocketCore::bind_socket() - bind socket " +
                                    std::to_string(socket->handle) + " to port " +
                                    std::to_string(socket->local.port) + " ok."));
}

TEST(SocketCore, BindAndListenTellOfFailures) {
  SocketCore core;
  const Held first(core.create_tcp_server_socket(0));
  ASSERT_TRUE(first);
  const Held second(core.create_socket(SOCKET_TYPE_STREAM, SOCKET_PROTOCOL_TCP));
  const Held datagram(core.create_udp_server_socket(0));
  SockAddr address;
  address.port = first->local.port;
  LogCapture log(LOG_LEVEL_ERROR);
  EXPECT_FALSE(core.bind_socket(second.get(), &address));
  EXPECT_EQ(second->local.port, 0);
  EXPECT_FALSE(core.listen_socket(datagram.get(), 1));
  EXPECT_THAT(log.lines(),
              testing::ElementsAre("ORV::SocketCore::bind_socket() - bind socket " +
                                       std::to_string(second->handle) + " to port " +
                                       std::to_string(address.port) + " failed.",
                                   "ORV::SocketCore::listen_socket() - listen on port " +
                                       std::to_string(datagram->local.port) + " failed."));
}

TEST(SocketCore, TcpServerSocketListensAndMayReuseItsPort) {
  SocketCore core;
  LogCapture log;
  const Held server(core.create_tcp_server_socket(0));
  ASSERT_TRUE(server);
  EXPECT_EQ(option_of(*server, SOL_SOCKET, SO_REUSEADDR), 1);
  EXPECT_EQ(option_of(*server, SOL_SOCKET, SO_ACCEPTCONN), 1);
  const std::string port = std::to_string(server->local.port);
  EXPECT_THAT(log.lines(),
              Contains("ORV::SocketCore::listen_socket() - listen on port " + port + " ok."));
  EXPECT_THAT(log.lines(), Contains("ORV::SocketCore::create_tcp_server_socket() - listening on "
                                    "port " +
                                    port + " ok."));
  EXPECT_TRUE(TcpClient().connect(server->local.port));
}

TEST(SocketCore, TcpServerSocketOnAPortInUseIsNullAndLeavesNoHandle) {
  SocketCore core;
  const Held server(core.create_tcp_server_socket(0));
  ASSERT_TRUE(server);
  LogCapture log(LOG_LEVEL_ERROR);
  const long open_before = count_own("fd");
  EXPECT_EQ(core.create_tcp_server_socket(server->local.port), nullptr);
  EXPECT_EQ(count_own("fd"), open_before);
  const std::string port = std::to_string(server->local.port);
  ASSERT_EQ(log.lines().size(), 2u);
  EXPECT_TRUE(log.contains(" to port " + port + " failed."));
  EXPECT_EQ(log.lines()[1],
            "ORV::SocketCore::create_tcp_server_socket() - create server socket on port [" + port +
                "] failed.");
}

TEST(SocketCore, UdpServerSocketOnAPortInUseIsNullAndLeavesNoHandle) {
  SocketCore core;
  LogCapture log;
  const Held server(core.create_udp_server_socket(0));
  ASSERT_TRUE(server);
  const std::string port = std::to_string(server->local.port);
  EXPECT_THAT(log.lines(),
              Contains("ORV::SocketCore::create_udp_server_socket() - bind server socket [" +
                       std::to_string(server->handle) + "] to port [" + port + "] ok."));
  const long open_before = count_own("fd");
  EXPECT_EQ(core.create_udp_server_socket(server->local.port), nullptr);
  EXPECT_EQ(count_own("fd"), open_before);
  EXPECT_EQ(log.lines().back(),
            "ORV::SocketCore::create_udp_server_socket() - create server socket on port [" + port +
                "] failed.");
}

TEST_F(SocketCorePair, AcceptFillsNoAddress) {
  EXPECT_STREQ(peer_->local.host, "localhost");
  EXPECT_EQ(peer_->local.port, 0);
  EXPECT_STREQ(peer_->remote.host, "");
  EXPECT_EQ(peer_->remote.port, 0);
  EXPECT_EQ(peer_->type, SOCKET_TYPE_STREAM);
  EXPECT_EQ(peer_->protocol, SOCKET_PROTOCOL_TCP);
  EXPECT_EQ(fcntl(peer_->handle, F_GETFD), FD_CLOEXEC);
}

TEST(SocketCore, FailedAcceptGivesARecordWithAnInvalidHandle) {
  SocketCore core;
  LogCapture log;
  const Held datagram(core.create_udp_server_socket(0));
  const Held failed(core.accept_connection(datagram.get()));
  ASSERT_TRUE(failed);
  EXPECT_EQ(failed->handle, -1);
  EXPECT_EQ(failed->type, SOCKET_TYPE_DATAGRAM);
  EXPECT_EQ(failed->protocol, SOCKET_PROTOCOL_UDP);
  EXPECT_EQ(log.lines().back(),
            "ORV::SocketCore::accept_connection() - accept client socket -1 on port " +
                std::to_string(datagram->local.port) + " ok.");
}

// ---- clients -----------------------------------------------------------------------------------

TEST(SocketCore, ConnectsByNameAndByAddress) {
  SocketCore core;
  LogCapture log;
  const Held server(core.create_tcp_server_socket(0));
  const unsigned short port = server->local.port;
  const Held by_name(core.create_socket(SOCKET_TYPE_STREAM, SOCKET_PROTOCOL_TCP));
  const Held by_record(core.create_socket(SOCKET_TYPE_STREAM, SOCKET_PROTOCOL_TCP));
  EXPECT_TRUE(core.connect_socket(by_name.get(), "localhost", port));
  SockAddr address;
  std::strcpy(address.host, "127.0.0.1");
  address.port = port;
  EXPECT_TRUE(core.connect_socket(by_record.get(), &address));
  const std::string end = " on port " + std::to_string(port) + " ok.";
  const std::string begin = "ORV::SocketCore::connect_socket() - socket connection to server ";
  EXPECT_THAT(log.lines(), Contains(begin + "localhost" + end));
  EXPECT_THAT(log.lines(), Contains(begin + "127.0.0.1" + end));
  EXPECT_STREQ(by_name->remote.host, "") << "the record does not tell";
}

TEST(SocketCore, ConnectionsThatAreRefusedFail) {
  SocketCore core;
  unsigned short port;
  {
    const Held server(core.create_tcp_server_socket(0));
    port = server->local.port;
  }
  const Held socket(core.create_socket(SOCKET_TYPE_STREAM, SOCKET_PROTOCOL_TCP));
  LogCapture log(LOG_LEVEL_ERROR);
  EXPECT_FALSE(core.connect_socket(socket.get(), "127.0.0.1", port));
  EXPECT_THAT(log.lines(),
              testing::ElementsAre("ORV::SocketCore::connect_socket() - socket connection to "
                                   "server 127.0.0.1 on port " +
                                   std::to_string(port) + " failed."));
}

// Names that no look-up asks a name server for.
TEST(SocketCore, HostsThatAreNotFoundFail) {
  SocketCore core;
  const Held stream(core.create_socket(SOCKET_TYPE_STREAM, SOCKET_PROTOCOL_TCP));
  const Held datagram(core.create_udp_server_socket(0));
  unsigned char byte = 0;
  for (const std::string& host :
       {std::string(""), std::string("1.2.3.4.5.6."), std::string(300, 'x'), std::string("::1")}) {
    LogCapture log(LOG_LEVEL_ERROR);
    EXPECT_FALSE(core.connect_socket(stream.get(), host.c_str(), 80)) << host;
    EXPECT_EQ(core.send_udp(datagram.get(), host.c_str(), 80, &byte, 1), -1) << host;
    EXPECT_THAT(log.lines(),
                testing::ElementsAre("ORV::SocketCore::connect_socket() - socket connection to "
                                     "server " +
                                         host + " on port 80 failed.",
                                     "ORV::SocketCore::send_udp() - host " + host + " not found."));
  }
}

TEST(SocketCore, HostWithoutAnEndIsCut) {
  SocketCore core;
  const Held socket(core.create_socket(SOCKET_TYPE_STREAM, SOCKET_PROTOCOL_TCP));
  LogCapture log(LOG_LEVEL_ERROR);
  SockAddr address;
  std::memset(address.host, 'x', sizeof(address.host));
  EXPECT_FALSE(core.connect_socket(socket.get(), &address));
  EXPECT_TRUE(log.contains(" server " + std::string(127, 'x') + " on port 0 failed."));
}

// ---- options -----------------------------------------------------------------------------------

TEST(SocketCore, OptionsAreSwitchedOn) {
  SocketCore core;
  LogCapture log(LOG_LEVEL_DEBUG);
  const Held stream(core.create_socket(SOCKET_TYPE_STREAM, SOCKET_PROTOCOL_TCP));
  const Held datagram(core.create_socket(SOCKET_TYPE_DATAGRAM, SOCKET_PROTOCOL_UDP));
  log.clear();
  for (int twice = 0; twice < 2; ++twice) {  // the second time they stay on
    core.set_socket_option(stream.get(), SOCKET_OPTION_REUSEADDR);
    core.set_socket_option(stream.get(), SOCKET_OPTION_TCPNODELAY);
    core.set_socket_option(stream.get(), SOCKET_OPTION_NONBLOCKING);
    core.set_socket_option(datagram.get(), SOCKET_OPTION_BROADCAST);
    EXPECT_EQ(option_of(*stream, SOL_SOCKET, SO_REUSEADDR), 1);
    EXPECT_EQ(option_of(*stream, IPPROTO_TCP, TCP_NODELAY), 1);
    EXPECT_NE(fcntl(stream->handle, F_GETFL) & O_NONBLOCK, 0);
    EXPECT_EQ(option_of(*datagram, SOL_SOCKET, SO_BROADCAST), 1);
  }
  EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(SocketCore, OptionsThatFailAreDebugLinesButForBroadcast) {
  const char* const names[] = {"REUSEADDR", "TCPNODELAY", "NONBLOCKING", "BROADCAST"};
  for (const LOG_LEVEL level : {LOG_LEVEL_DEBUG, LOG_LEVEL_ERROR}) {
    SocketCore core;
    LogCapture log(level);
    Socket closed;
    for (int option = 1; option <= 4; ++option) {
      log.clear();
      core.set_socket_option(&closed, static_cast<SOCKET_OPTION>(option));
      if (level == LOG_LEVEL_ERROR && option != SOCKET_OPTION_BROADCAST) {
        EXPECT_THAT(log.lines(), IsEmpty());
        continue;
      }
      EXPECT_THAT(log.lines(),
                  testing::ElementsAre("ORV::SocketCore::set_socket_option() - socket 0 - unable "
                                       "to set socket option SOCKET_OPTION_" +
                                       std::string(names[option - 1]) + "."));
    }
  }
}

TEST(SocketCore, UnknownOptionsAreErrors) {
  SocketCore core;
  const Held socket(core.create_socket(SOCKET_TYPE_STREAM, SOCKET_PROTOCOL_TCP));
  for (const int option : {9, 0, 5, -1}) {
    LogCapture log(LOG_LEVEL_ERROR);
    core.set_socket_option(socket.get(), static_cast<SOCKET_OPTION>(option));
    EXPECT_THAT(log.lines(),
                testing::ElementsAre("ORV::SocketCore::set_socket_option() - socket " +
                                     std::to_string(socket->handle) + " - unknown option (" +
                                     std::to_string(option) + ")."));
  }
}

// ---- replacement -------------------------------------------------------------------------------

TEST(SocketCore, OperationsCallEachOtherThroughTheTable) {
  struct Refusing : SocketCore {
    bool listen_socket(Socket*, int backlog) override {
      asked_for = backlog;
      return false;
    }
    bool connect_socket(Socket*, const char* name, unsigned short number) override {
      host = name;
      port = number;
      return true;
    }
    using SocketCore::connect_socket;
    int asked_for = 0;
    std::string host;
    int port = 0;
  };
  Refusing core;
  EXPECT_EQ(core.create_tcp_server_socket(0), nullptr);
  EXPECT_EQ(core.asked_for, 10);
  Socket socket;
  SockAddr address;
  std::strcpy(address.host, "there");
  address.port = 77;
  EXPECT_TRUE(core.connect_socket(&socket, &address));
  EXPECT_EQ(core.host, "there");
  EXPECT_EQ(core.port, 77);
}

}  // namespace
}  // namespace orv
