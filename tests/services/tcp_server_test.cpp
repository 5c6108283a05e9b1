#include <orv/services/tcp_server.h>

#include "services/server_callbacks.h"
#include "services/server_run.h"
#include "support/log_capture.h"
#include "support/tcp_client.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/resource.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <string>
#include <thread>

namespace orv {
namespace {

using test::CoreCalls;
using test::count_own;
using test::CountingCore;
using test::Gate;
using test::Inbox;
using test::LogCapture;
using test::ServerRun;
using test::stop_text;
using test::TcpClient;
using test::tell;
using test::wait_until;
using test::zero_ended;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

// ---- an idle server ----------------------------------------------------------------------------

TEST(TcpServer, StartsIdle) {
  TcpServer server;
  TcpServer other;
  EXPECT_GE(server.getid(), 2);
  EXPECT_NE(server.getid(), other.getid());
  EXPECT_FALSE(server.is_running());
  EXPECT_EQ(server.get_stop_message(), stop_text);
  EXPECT_EQ(server.get_socket_core(), nullptr);
  EXPECT_EQ(server.get_server_socket(), nullptr);
  for (int place = -1; place <= 128; ++place) {
    EXPECT_EQ(server.get_client_thread(place), nullptr);
  }
}

TEST(TcpServer, RecordsOfClientThreadsStartEmpty) {
  const TcpServerClientThreadParams params;
  EXPECT_EQ(params.server, nullptr);
  EXPECT_EQ(params.core, nullptr);
  EXPECT_EQ(params.server_socket, nullptr);
  EXPECT_EQ(params.port, 0);
  EXPECT_EQ(params.flags[0] | params.flags[1], 0);
  EXPECT_EQ(params.reserved, 0u);
  EXPECT_EQ(params.thread, 0u);
  EXPECT_EQ(params.client_socket, nullptr);
  EXPECT_EQ(params.client_proc, nullptr);
  EXPECT_EQ(params.client_proc_v2, nullptr);
  EXPECT_EQ(params.user_data, nullptr);
  EXPECT_EQ(params.size, 0);
  EXPECT_EQ(params.data, nullptr);
}

TEST(TcpServer, InitMakesACoreOnceAndStartsItEachTime) {
  TcpServer server;
  EXPECT_TRUE(server.init());
  SocketCore* core = server.get_socket_core();
  ASSERT_NE(core, nullptr);
  EXPECT_TRUE(server.init());
  EXPECT_EQ(server.get_socket_core(), core);
  EXPECT_TRUE(core->stop()) << "started";
  EXPECT_TRUE(server.init());
  EXPECT_TRUE(core->stop()) << "started again";
}

TEST(TcpServer, WithoutACoreOnlyStopIsTrue) {
  TcpServer server;
  EXPECT_FALSE(server.cleanup_client_threads());
  EXPECT_FALSE(server.send_stop_message());
  EXPECT_TRUE(server.stop());
}

TEST(TcpServer, StopStopsTheCoreAndLetsGoOfIt) {
  struct Core : CountingCore {
    Core(CoreCalls& calls, bool& stopped) : CountingCore(calls), stopped_(stopped) {}
    bool stop() override { return stopped_ = true; }
    bool& stopped_;
  };
  CoreCalls calls;
  bool stopped = false;
  TcpServer server;
  server.set_socket_core(new Core(calls, stopped));
  EXPECT_TRUE(server.cleanup_client_threads());
  EXPECT_EQ(calls.cores, 1);
  EXPECT_TRUE(server.stop());
  EXPECT_TRUE(stopped);
  EXPECT_EQ(calls.cores, 0);
  EXPECT_EQ(server.get_socket_core(), nullptr);
  EXPECT_FALSE(server.cleanup_client_threads());
}

TEST(TcpServer, TheServerOwnsItsCore) {
  CoreCalls calls;
  {
    TcpServer server;
    auto* core = new CountingCore(calls);
    server.set_socket_core(core);
    server.set_socket_core(core);
    EXPECT_EQ(server.get_socket_core(), core);
    server.set_socket_core(new CountingCore(calls));
    EXPECT_EQ(calls.cores, 1);
    server.set_socket_core(nullptr);
    EXPECT_EQ(calls.cores, 0);
    server.set_socket_core(new CountingCore(calls));
  }
  EXPECT_EQ(calls.cores, 0);
}

TEST(TcpServer, StopMessagesAreCutAt127Bytes) {
  LogCapture log;
  TcpServer server;
  server.set_stop_message("halt");
  EXPECT_STREQ(server.get_stop_message(), "halt");
  server.set_stop_message(nullptr);
  EXPECT_STREQ(server.get_stop_message(), "halt");
  server.set_stop_message(std::string(300, 's').c_str());
  EXPECT_EQ(server.get_stop_message(), std::string(127, 's'));
  server.set_stop_message("");
  EXPECT_STREQ(server.get_stop_message(), "");
  const std::string begin = "ORV::TcpServer::set_stop_message() - new stop message: ";
  EXPECT_THAT(log.lines(), ElementsAre(begin + "halt - length=4.",
                                       begin + std::string(127, 's') + " - length=127.",
                                       begin + " - length=0."));
}

// The lines name run() whoever writes them.
TEST(TcpServer, ACoreThatDoesNotStartIsAnError) {
  struct Core : SocketCore {
    bool start() override { return false; }
  };
  TcpServer server;
  server.set_socket_core(new Core);
  LogCapture log(LOG_LEVEL_ERROR);
  EXPECT_FALSE(server.init());
  EXPECT_THAT(log.lines(), ElementsAre("ORV::TcpServer::run() - unable to start the socket core."));
}

TEST(TcpServer, APortThatCannotBeHadIsAnErrorOfBothLoops) {
  SocketCore core;
  Socket* other = core.create_tcp_server_socket(0);
  for (const ServerRun::Loop loop : {&TcpServer::run, &TcpServer::run_v2}) {
    TcpServer server;
    LogCapture log(LOG_LEVEL_ERROR);
    EXPECT_EQ((server.*loop)(other->local.port), 0);
    EXPECT_EQ(log.lines().back(), "ORV::TcpServer::run() - unable to create a TCP socket.");
    EXPECT_FALSE(server.is_running());
    EXPECT_EQ(server.get_server_socket(), nullptr);
  }
  core.kill_socket(other);
}

// It has no port to connect to; a later loop starts as if nothing had been asked.
TEST(TcpServer, StopBeforeALoopIsFalseAndForgotten) {
  TcpServer server;
  ASSERT_TRUE(server.init());
  EXPECT_FALSE(server.send_stop_message());
  Inbox inbox;
  server.set_client_proc(&Inbox::receive, &inbox);
  ServerRun run(server, &TcpServer::run);
  EXPECT_EQ(tell(run.port(), "one"), "got it");
  EXPECT_EQ(tell(run.port(), "two"), "got it");
  EXPECT_EQ(run.stop(), 0);
}

// ---- run() -------------------------------------------------------------------------------------

TEST(TcpServer, RunHandsEachMessageToTheCallback) {
  Inbox inbox;
  TcpServer server;
  server.set_client_proc(&Inbox::receive, &inbox);
  ServerRun run(server, &TcpServer::run);
  EXPECT_TRUE(server.is_running());
  EXPECT_EQ(tell(run.port(), "one"), "got it");
  EXPECT_EQ(tell(run.port(), "second"), "got it");
  EXPECT_THAT(inbox.texts(), ElementsAre(zero_ended("one"), zero_ended("second")))
      << "the size counts the added zero";
  EXPECT_EQ(inbox.messages()[0].thread, inbox.messages()[1].thread);
  EXPECT_NE(inbox.messages()[0].thread, std::this_thread::get_id());
}

TEST(TcpServer, RunClosesEachConnectionAfterItsMessage) {
  CoreCalls calls;
  TcpServer server;  // without a callback
  server.set_socket_core(new CountingCore(calls));
  ServerRun run(server, &TcpServer::run);
  EXPECT_EQ(tell(run.port(), "hello"), "");
  EXPECT_TRUE(wait_until([&] { return calls.kills == 1; }));
  const long open_before = count_own("fd");
  for (int i = 0; i < 20; ++i) EXPECT_EQ(tell(run.port(), "more"), "");
  EXPECT_TRUE(wait_until([&] { return calls.kills == 21; }));
  EXPECT_EQ(count_own("fd"), open_before);
}

TEST(TcpServer, ThreadedRunAnswersOnOtherThreads) {
  Inbox inbox;
  CoreCalls calls;
  TcpServer server;
  server.set_socket_core(new CountingCore(calls));
  server.set_client_proc(&Inbox::receive, &inbox);
  ServerRun run(server, &TcpServer::run);
  EXPECT_EQ(tell(run.port(), "on the loop"), "got it");
  server.threaded_client_callback(true);
  EXPECT_EQ(tell(run.port(), "beside it"), "got it");
  EXPECT_EQ(tell(run.port(), stop_text), "");
  EXPECT_EQ(run.wait(), 1);
  ASSERT_THAT(inbox.texts(), ElementsAre(zero_ended("on the loop"), zero_ended("beside it")));
  EXPECT_NE(inbox.messages()[0].thread, inbox.messages()[1].thread);
  EXPECT_EQ(server.get_client_thread(0), nullptr) << "run() takes no places";
  EXPECT_TRUE(wait_until([&] { return calls.kills == 4; })) << "three clients and the port";
}

// A callback that works for long holds nobody up when it has a thread.
TEST(TcpServer, ThreadedRunHearsOthersMeanwhile) {
  struct Work {
    Gate gate;
    Inbox inbox;
  } work;
  CoreCalls calls;
  TcpServer server;
  server.set_socket_core(new CountingCore(calls));
  server.threaded_client_callback(true);
  server.set_client_proc(
      [](SocketCore* core, Socket* client, unsigned char* data, int size, void* user_data) {
        Work* all = static_cast<Work*>(user_data);
        if (std::strcmp(reinterpret_cast<char*>(data), "wait") == 0) all->gate.wait();
        Inbox::receive(core, client, data, size, &all->inbox);
      },
      &work);
  ServerRun run(server, &TcpServer::run);
  TcpClient slow(run.port());
  ASSERT_TRUE(slow.send("wait"));
  EXPECT_EQ(tell(run.port(), "quick"), "got it");
  EXPECT_TRUE(slow.is_open_and_silent());
  work.gate.open();
  EXPECT_EQ(slow.receive(100), "got it");
}

TEST(TcpServer, ClientThreadsOutliveStop) {
  Gate gate;
  CoreCalls calls;
  TcpServer server;
  server.set_socket_core(new CountingCore(calls));
  server.threaded_client_callback(true);
  server.set_client_proc(
      [](SocketCore* core, Socket* client, unsigned char* data, int size, void* user_data) {
        static_cast<Gate*>(user_data)->wait();
        core->send_socket(client, data, size);
      },
      &gate);
  ServerRun run(server, &TcpServer::run);
  TcpClient client(run.port());
  ASSERT_TRUE(client.send("answer me"));
  EXPECT_TRUE(wait_until([&] { return gate.waiting() == 1; }));
  EXPECT_EQ(run.stop(), 0);
  EXPECT_TRUE(server.stop());
  EXPECT_EQ(server.get_socket_core(), nullptr);
  gate.open();
  EXPECT_EQ(client.receive(100), zero_ended("answer me"));
}

TEST(TcpServer, OfALongMessageComesTheBeginning) {
  Inbox inbox;
  TcpServer server;
  server.set_client_proc(&Inbox::receive, &inbox);
  ServerRun run(server, &TcpServer::run);
  TcpClient client(run.port());
  ASSERT_TRUE(client.send(std::string(1023, 'a') + std::string(977, 'b')));
  EXPECT_TRUE(client.wait_for_end());
  EXPECT_EQ(tell(run.port(), "next"), "got it");
  EXPECT_THAT(inbox.texts(), ElementsAre(zero_ended(std::string(1023, 'a')), zero_ended("next")));
}

TEST(TcpServer, BytesOfAMessageMayBeAnything) {
  Inbox inbox;
  TcpServer server;
  server.set_client_proc(&Inbox::receive, &inbox);
  ServerRun run(server, &TcpServer::run);
  const std::string message("a\0b\xff%s%n", 8);
  EXPECT_EQ(tell(run.port(), message), "got it");
  EXPECT_THAT(inbox.texts(), ElementsAre(zero_ended(message)));
}

// A client that closes without a message leaves its socket open, as long as the server lives.
TEST(TcpServer, SilentClientsThatCloseLeaveTheirSockets) {
  CoreCalls calls;
  const long open_before = count_own("fd");
  {
    TcpServer server;
    server.set_socket_core(new CountingCore(calls));
    ServerRun run(server, &TcpServer::run);
    EXPECT_EQ(tell(run.port(), "x"), "");
    EXPECT_TRUE(wait_until([&] { return calls.kills == 1; }));
    const long open_running = count_own("fd");
    for (int i = 0; i < 5; ++i) TcpClient(run.port()).close();
    EXPECT_EQ(tell(run.port(), "x"), "");  // those before are dealt with
    EXPECT_TRUE(wait_until([&] { return calls.kills == 2; }));
    EXPECT_EQ(count_own("fd"), open_running + 5);
    EXPECT_EQ(run.stop(), 0);
    server.stop();
    EXPECT_GE(count_own("fd"), open_before + 5);
  }
  EXPECT_EQ(count_own("fd"), open_before);
  EXPECT_EQ(calls.cores, 0);
}

TEST(TcpServer, TheStopMessageEndsRunAndClosesThePort) {
  LogCapture log;
  Inbox inbox;
  TcpServer server;
  server.set_client_proc(&Inbox::receive, &inbox);
  ServerRun run(server, &TcpServer::run);
  EXPECT_EQ(tell(run.port(), stop_text), "");
  EXPECT_EQ(run.wait(), 1);
  EXPECT_FALSE(server.is_running());
  EXPECT_EQ(server.get_server_socket(), nullptr);
  EXPECT_FALSE(TcpClient().connect(run.port()));
  EXPECT_FALSE(server.send_stop_message()) << "no port to connect to";
  EXPECT_THAT(inbox.texts(), IsEmpty());
  EXPECT_THAT(log.lines(), Contains("ORV::TcpServer::run() - received stop message. Exit from tcp "
                                    "svr loop."));
}

TEST(TcpServer, StopMessagesArePrefixes) {
  struct Row {
    const char* wanted;
    std::string message;
    bool stops;
  };
  for (const Row& row :
       {Row{nullptr, stop_text + "XYZ", true}, Row{nullptr, "STOP_ORV_TCP_SERVE", false},
        Row{nullptr, "stop_orv_tcp_server", false}, Row{nullptr, " " + stop_text, false},
        Row{"q", "quit", true}, Row{"q", "Quit", false}, Row{"", "anything", true},
        Row{"", std::string("\0", 1), true}}) {
    TcpServer server;
    server.set_stop_message(row.wanted);
    ServerRun run(server, &TcpServer::run);
    EXPECT_EQ(tell(run.port(), row.message), "");
    if (!row.stops) {
      EXPECT_EQ(run.stop(), 0) << row.message;
    } else {
      EXPECT_EQ(run.wait(), 1) << row.message;
    }
  }
}

TEST(TcpServer, TheStopMessageEndsThreadedRunToo) {
  TcpServer server;
  server.threaded_client_callback(true);
  ServerRun run(server, &TcpServer::run);
  EXPECT_EQ(tell(run.port(), stop_text), "");
  EXPECT_EQ(run.wait(), 1);
}

// ---- stopping from here ------------------------------------------------------------------------

TEST(TcpServer, SendStopMessageLeavesThePortOpenAndRunningTrue) {
  for (const ServerRun::Loop loop : {&TcpServer::run, &TcpServer::run_v2}) {
    TcpServer server;
    ServerRun run(server, loop);
    EXPECT_EQ(run.stop(), 0);
    EXPECT_TRUE(server.is_running());
    ASSERT_NE(server.get_server_socket(), nullptr);
    EXPECT_EQ(server.get_server_socket()->local.port, run.port());
    TcpClient client;
    EXPECT_TRUE(client.connect(run.port())) << "it waits for a loop";
    EXPECT_TRUE(client.is_open_and_silent());
  }
}

TEST(TcpServer, AFurtherLoopHasAPortOfItsOwn) {
  Inbox inbox;
  TcpServer server;
  server.set_client_proc(&Inbox::receive, &inbox);
  ServerRun first(server, &TcpServer::run);
  const Socket* left = server.get_server_socket();
  EXPECT_EQ(first.stop(), 0);
  ServerRun second(server, &TcpServer::run);
  EXPECT_NE(server.get_server_socket(), left);
  EXPECT_NE(second.port(), first.port());
  EXPECT_TRUE(TcpClient().connect(first.port())) << "left open";
  EXPECT_EQ(tell(second.port(), "here"), "got it");
}

TEST(TcpServer, APortIsToBeHadAgainAfterClosingItsSocket) {
  TcpServer server;
  ServerRun run(server, &TcpServer::run);
  EXPECT_EQ(run.stop(), 0);
  const auto port = static_cast<unsigned short>(run.port());
  EXPECT_EQ(server.run(port), 0) << "in use";
  EXPECT_FALSE(server.is_running());
  EXPECT_EQ(server.get_server_socket(), nullptr) << "that of the failed loop";
  ServerRun again(server, &TcpServer::run);
  EXPECT_EQ(again.stop(), 0);
  const auto port_again = static_cast<unsigned short>(again.port());
  EXPECT_TRUE(server.get_socket_core()->close_socket(server.get_server_socket()));
  server.set_stop_message("");
  std::thread client(
      [&] { EXPECT_TRUE(wait_until([&] { return TcpClient(port_again).send("x"); })); });
  EXPECT_EQ(server.run(port_again), 1);
  client.join();
}

// It reads nothing and says nothing; the loop waits for it alone.
TEST(TcpServer, SendStopMessageWakesRunFromASilentClient) {
  CoreCalls calls;
  TcpServer server;
  server.set_socket_core(new CountingCore(calls));
  ServerRun run(server, &TcpServer::run);
  TcpClient silent(run.port());
  EXPECT_TRUE(wait_until([&] { return calls.peeks == 1; }));
  std::this_thread::sleep_for(std::chrono::milliseconds(5));
  EXPECT_EQ(run.stop(), 0);
  EXPECT_TRUE(silent.wait_for_end());
}

TEST(TcpServer, CallbacksMaySendTheStop) {
  TcpServer server;
  server.set_client_proc(
      [](SocketCore*, Socket*, unsigned char*, int, void* user_data) {
        EXPECT_TRUE(static_cast<TcpServer*>(user_data)->send_stop_message());
      },
      &server);
  ServerRun run(server, &TcpServer::run);
  EXPECT_EQ(tell(run.port(), "enough"), "");
  EXPECT_EQ(run.wait(), 0);
}

TEST(TcpServer, SendStopMessageIsFalseWithoutASocket) {
  struct Core : SocketCore {
    Socket* create_socket(SOCKET_TYPE type, SOCKET_PROTOCOL protocol) override {
      return refuse ? nullptr : SocketCore::create_socket(type, protocol);
    }
    std::atomic<bool> refuse{false};
  };
  auto* core = new Core;
  TcpServer server;
  server.set_socket_core(core);
  ServerRun run(server, &TcpServer::run);
  core->refuse = true;
  EXPECT_FALSE(server.send_stop_message());
  EXPECT_EQ(tell(run.port(), "alive?"), "");
  EXPECT_EQ(tell(run.port(), "alive?"), "") << "no stop was asked for";
  core->refuse = false;
  EXPECT_EQ(run.stop(), 0);
}

// A server that is destroyed stops nothing, and leaves nothing behind once its loop has ended.
TEST(TcpServer, ALoopOutlivesItsServer) {
  const long open_before = count_own("fd");
  CoreCalls calls;
  auto* server = new TcpServer;
  server->set_socket_core(new CountingCore(calls));
  std::thread loop([&] { EXPECT_EQ(server->run(0), 1); });
  ASSERT_TRUE(wait_until([&] { return calls.accepts == 1; }));
  const int port = server->get_server_socket()->local.port;
  delete server;
  EXPECT_EQ(tell(port, "still there?"), "");
  EXPECT_EQ(tell(port, stop_text), "");
  loop.join();
  EXPECT_EQ(calls.cores, 0);
  EXPECT_EQ(count_own("fd"), open_before);
}

// ---- failures to accept ------------------------------------------------------------------------

TEST(TcpServer, FailuresToAcceptDoNotSpin) {
  struct Core : SocketCore {
    Socket* accept_connection(Socket* server) override {
      if (++accepts > 20) return SocketCore::accept_connection(server);
      if (accepts % 2 == 0) return nullptr;
      Socket* failed = new Socket;
      failed->handle = -1;
      return failed;
    }
    std::atomic<int> accepts{0};
  };
  for (const ServerRun::Loop loop : {&TcpServer::run, &TcpServer::run_v2}) {
    auto* core = new Core;
    TcpServer server;
    server.set_socket_core(core);
    server.threaded_client_callback(true);
    const auto begin = std::chrono::steady_clock::now();
    ServerRun run(server, loop);
    EXPECT_TRUE(wait_until([&] { return core->accepts == 21; }));
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(200));
    EXPECT_EQ(server.get_client_thread(0), nullptr);
    EXPECT_EQ(run.stop(), 0);
  }
}

// Nobody is lost while the system has no descriptor left.
TEST(TcpServer, RunGoesOnWhenDescriptorsRunOut) {
  CoreCalls calls;
  TcpServer server;
  server.set_socket_core(new CountingCore(calls));
  Inbox inbox;
  server.set_client_proc(&Inbox::receive, &inbox);
  ServerRun run(server, &TcpServer::run);
  const auto port = static_cast<unsigned short>(run.port());
  SocketCore core;
  Socket* silent = core.create_socket(SOCKET_TYPE_STREAM, SOCKET_PROTOCOL_TCP);
  Socket* client = core.create_socket(SOCKET_TYPE_STREAM, SOCKET_PROTOCOL_TCP);
  ASSERT_NE(client, nullptr);
  EXPECT_TRUE(wait_until([&] { return calls.accepts == 1; }));
  std::this_thread::sleep_for(std::chrono::milliseconds(5));

  rlimit before{};
  getrlimit(RLIMIT_NOFILE, &before);
  const int next = dup(client->handle);
  close(next);
  rlimit tight = before;
  tight.rlim_cur = static_cast<rlim_t>(next);
  ASSERT_EQ(setrlimit(RLIMIT_NOFILE, &tight), 0);
  // A loop that waits has its descriptor already; this one takes it for good.
  EXPECT_TRUE(core.connect_socket(silent, "127.0.0.1", port));
  EXPECT_TRUE(core.shutdown_socket(silent));
  EXPECT_TRUE(core.connect_socket(client, "127.0.0.1", port));
  EXPECT_TRUE(wait_until([&] { return calls.accepts > 5; })) << "it fails and tries again";
  setrlimit(RLIMIT_NOFILE, &before);

  std::string text = "made it";
  EXPECT_EQ(core.send_socket(client, reinterpret_cast<unsigned char*>(text.data()), 7), 7);
  EXPECT_EQ(core.receive_socket_get_data_len(client), 6);
  core.kill_socket(silent);
  core.kill_socket(client);
  EXPECT_THAT(inbox.texts(), ElementsAre(zero_ended(text)));
}

}  // namespace
}  // namespace orv
