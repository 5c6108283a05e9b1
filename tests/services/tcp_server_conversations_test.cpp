// TcpServer::run_v2(): a thread for each connection.
#include <orv/services/tcp_server.h>

#include "services/server_callbacks.h"
#include "services/server_run.h"
#include "support/log_capture.h"
#include "support/tcp_client.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <pthread.h>

#include <cstring>
#include <string>

namespace orv {
namespace {

using test::CoreCalls;
using test::count_own;
using test::CountingCore;
using test::echo;
using test::Inbox;
using test::ServerRun;
using test::stop_text;
using test::TcpClient;
using test::tell;
using test::wait_until;
using testing::IsEmpty;

TEST(TcpServer, RunV2LeadsConversations) {
  TcpServer server;
  server.threaded_client_callback(true);
  server.set_client_proc_v2(&echo, nullptr);
  ServerRun run(server, &TcpServer::run_v2);
  EXPECT_TRUE(server.is_running());
  TcpClient a(run.port());
  TcpClient b(run.port());
  for (const char* word : {"one", "two", "three"}) {
    for (TcpClient* client : {&a, &b}) {
      EXPECT_TRUE(client->send(word));
      EXPECT_EQ(client->receive(std::strlen(word)), word);
    }
  }
  a.finish_sending();
  EXPECT_TRUE(a.wait_for_end());
  EXPECT_TRUE(b.is_open_and_silent());
}

TEST(TcpServer, RunV2HandsTheRecordToTheCallback) {
  TcpServer server;
  struct Seen {
    TcpServerClientThreadParams params;
    SocketCore* core = nullptr;
    Socket* client = nullptr;
    void* record = nullptr;
    bool same_thread = false;
  } seen;
  server.threaded_client_callback(true);
  server.set_client_proc_v2(
      [](SocketCore* core, Socket* client, void* params, void* user_data) {
        Seen* all = static_cast<Seen*>(user_data);
        all->params = *static_cast<TcpServerClientThreadParams*>(params);
        all->core = core;
        all->client = client;
        all->record = params;
        all->same_thread = pthread_equal(all->params.thread, pthread_self());
      },
      &seen);
  ServerRun run(server, &TcpServer::run_v2);
  EXPECT_EQ(tell(run.port(), "hello"), "");
  EXPECT_EQ(run.stop(), 0);
  const Socket* server_socket = server.get_server_socket();
  EXPECT_EQ(server.get_client_thread(0), seen.record);
  EXPECT_TRUE(server.cleanup_client_threads());
  EXPECT_EQ(seen.params.server, &server);
  EXPECT_EQ(seen.params.core, server.get_socket_core());
  EXPECT_EQ(seen.core, server.get_socket_core());
  EXPECT_EQ(seen.params.server_socket, server_socket);
  EXPECT_EQ(seen.params.port, run.port());
  EXPECT_EQ(seen.params.client_socket, seen.client);
  EXPECT_NE(seen.client, nullptr);
  EXPECT_EQ(seen.params.client_proc, nullptr);
  EXPECT_NE(seen.params.client_proc_v2, nullptr);
  EXPECT_EQ(seen.params.user_data, &seen);
  EXPECT_EQ(seen.params.size, 0);
  EXPECT_EQ(seen.params.data, nullptr);
  EXPECT_TRUE(seen.same_thread);
}

TEST(TcpServer, BothCallbacksShareTheLastUserData) {
  TcpServer server;
  Inbox first;
  Inbox second;
  server.set_client_proc(&Inbox::receive, &first);
  server.set_client_proc_v2(nullptr, &second);
  ServerRun run(server, &TcpServer::run);
  EXPECT_EQ(tell(run.port(), "whose?"), "got it");
  EXPECT_THAT(first.texts(), IsEmpty());
  EXPECT_EQ(second.texts().size(), 1u);
}

TEST(TcpServer, RunV2KnowsNoStopMessage) {
  TcpServer server;
  server.threaded_client_callback(true);
  server.set_client_proc_v2(&echo, nullptr);
  ServerRun run(server, &TcpServer::run_v2);
  TcpClient client(run.port());
  EXPECT_TRUE(client.send(stop_text));
  EXPECT_EQ(client.receive(stop_text.size()), stop_text);
  EXPECT_TRUE(TcpClient().connect(run.port()));
}

// Without threads nobody is heard, and nobody is closed.
TEST(TcpServer, RunV2WithoutThreadsDropsClientsOpen) {
  const long open_before = count_own("fd");
  {
    CoreCalls calls;
    TcpServer server;
    server.set_socket_core(new CountingCore(calls));
    server.set_client_proc_v2(&echo, nullptr);
    ServerRun run(server, &TcpServer::run_v2);
    TcpClient client(run.port());
    EXPECT_TRUE(client.send("hello?"));
    EXPECT_TRUE(wait_until([&] { return calls.accepts == 2; }));
    EXPECT_TRUE(client.is_open_and_silent());
    EXPECT_EQ(server.get_client_thread(0), nullptr);
    EXPECT_EQ(run.stop(), 0);
    server.stop();
    EXPECT_TRUE(client.is_open_and_silent());
  }
  EXPECT_EQ(count_own("fd"), open_before);
}

TEST(TcpServer, RunV2WithoutACallbackCloses) {
  TcpServer server;
  server.threaded_client_callback(true);
  ServerRun run(server, &TcpServer::run_v2);
  EXPECT_TRUE(TcpClient(run.port()).wait_for_end());
}

TEST(TcpServer, PlacesAreTakenUntilCleanUp) {
  CoreCalls calls;
  TcpServer server;
  server.set_socket_core(new CountingCore(calls));
  server.threaded_client_callback(true);
  ServerRun run(server, &TcpServer::run_v2);
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(TcpClient(run.port()).wait_for_end());
  EXPECT_TRUE(wait_until([&] { return calls.kills == 3; }));
  EXPECT_EQ(run.stop(), 0);
  for (int place = 0; place < 3; ++place) {
    ASSERT_NE(server.get_client_thread(place), nullptr) << place;
    EXPECT_EQ(server.get_client_thread(place)->client_socket, nullptr) << place;
  }
  EXPECT_EQ(server.get_client_thread(3), nullptr);
  EXPECT_TRUE(server.cleanup_client_threads());
  for (int place = 0; place < 3; ++place) EXPECT_EQ(server.get_client_thread(place), nullptr);

  ServerRun again(server, &TcpServer::run_v2);
  EXPECT_TRUE(TcpClient(again.port()).wait_for_end());
  EXPECT_NE(server.get_client_thread(0), nullptr) << "the first free one";
}

TEST(TcpServer, SendStopMessageWakesConversations) {
  TcpServer server;
  server.threaded_client_callback(true);
  server.set_client_proc_v2(&echo, nullptr);
  ServerRun run(server, &TcpServer::run_v2);
  TcpClient clients[5];
  for (TcpClient& client : clients) {
    ASSERT_TRUE(client.connect(run.port()));
    ASSERT_TRUE(client.send("?"));
    ASSERT_EQ(client.receive(1), "?");
  }
  EXPECT_EQ(run.stop(), 0);
  for (TcpClient& client : clients) EXPECT_TRUE(client.wait_for_end());
  EXPECT_TRUE(server.cleanup_client_threads());
}

// It writes to one that does not read: the thread waits in the middle of sending.
TEST(TcpServer, CleanUpWakesThreadsThatSend) {
  const long threads_before = count_own("task");
  TcpServer server;
  server.threaded_client_callback(true);
  server.set_client_proc_v2(
      [](SocketCore* core, Socket* client, void*, void*) {
        std::string much(1 << 20, 'm');
        while (core->send_socket(client, reinterpret_cast<unsigned char*>(much.data()), 1 << 20) >
               0) {
        }
      },
      nullptr);
  ServerRun run(server, &TcpServer::run_v2);
  TcpClient client(run.port());
  EXPECT_EQ(client.receive(1), "m");
  EXPECT_EQ(run.stop(), 0);
  EXPECT_TRUE(server.cleanup_client_threads());
  EXPECT_TRUE(wait_until([&] { return count_own("task") <= threads_before; }));
}

// Those that ask for it themselves are not waited for.
TEST(TcpServer, CleanUpFromAConversationLeavesThatOne) {
  TcpServer server;
  server.threaded_client_callback(true);
  server.set_client_proc_v2(
      [](SocketCore* core, Socket* client, void* params, void*) {
        unsigned char byte = 0;
        if (core->receive_socket(client, &byte, 1) != 1) return;
        auto* record = static_cast<TcpServerClientThreadParams*>(params);
        EXPECT_TRUE(record->server->cleanup_client_threads());
        EXPECT_EQ(record->server->get_client_thread(1), record);
      },
      nullptr);
  ServerRun run(server, &TcpServer::run_v2);
  TcpClient waiting(run.port());
  EXPECT_TRUE(wait_until([&] { return server.get_client_thread(0); }));
  TcpClient asking(run.port());
  EXPECT_TRUE(asking.send("!"));
  EXPECT_TRUE(asking.wait_for_end());
  EXPECT_TRUE(waiting.wait_for_end());
  EXPECT_EQ(server.get_client_thread(0), nullptr);
  EXPECT_NE(server.get_client_thread(1), nullptr);
}

TEST(TcpServer, CallbacksMayCloseTheirConnection) {
  TcpServer server;
  server.threaded_client_callback(true);
  server.set_client_proc_v2(
      [](SocketCore* core, Socket* client, void*, void*) { core->close_connection(client); },
      nullptr);
  ServerRun run(server, &TcpServer::run_v2);
  EXPECT_TRUE(TcpClient(run.port()).wait_for_end());
}

TEST(TcpServer, ConversationsOutliveTheirServer) {
  const long open_before = count_own("fd");
  CoreCalls calls;
  TcpClient client;
  {
    TcpServer server;
    server.set_socket_core(new CountingCore(calls));
    server.threaded_client_callback(true);
    server.set_client_proc_v2(&echo, nullptr);
    ServerRun run(server, &TcpServer::run_v2);
    ASSERT_TRUE(client.connect(run.port()));
    EXPECT_TRUE(wait_until([&] { return server.get_client_thread(0); }));
    // Without server.stop().
    TcpClient last(run.port());
    EXPECT_TRUE(wait_until([&] { return server.get_client_thread(1); }));
    EXPECT_EQ(run.stop(), 0);
  }
  EXPECT_TRUE(client.wait_for_end());
  client.close();
  EXPECT_TRUE(wait_until([&] { return calls.cores == 0; }));
  EXPECT_TRUE(wait_until([&] { return count_own("fd") == open_before; }));
}

}  // namespace
}  // namespace orv
