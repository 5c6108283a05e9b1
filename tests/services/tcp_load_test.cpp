// A server under more than it is made for: many clients, and clients that misbehave. Every wait is
// bounded, and the whole takes seconds.
#include <orv/services/tcp_server.h>

#include "services/server_callbacks.h"
#include "services/server_run.h"
#include "support/log_capture.h"
#include "support/tcp_client.h"

#include <gtest/gtest.h>

#include <malloc.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <memory>
#include <semaphore>
#include <string>
#include <thread>
#include <vector>

namespace orv {
namespace {

using test::CoreCalls;
using test::count_own;
using test::CountingCore;
using test::echo;
using test::LogCapture;
using test::ServerRun;
using test::TcpClient;
using test::wait_until;

using Clock = std::chrono::steady_clock;

/// Runs the same work on some threads and waits for all of them.
template <class Work>
void in_parallel(int count, Work work) {
  std::vector<std::thread> threads;
  for (int i = 0; i < count; ++i) threads.emplace_back(work, i);
  for (std::thread& thread : threads) thread.join();
}

/// A conversation that has been taken up and goes on.
bool talk(TcpClient& client, const std::string& word) {
  return client.send(word) && client.receive(word.size()) == word;
}

// ---- run(): nothing is lost --------------------------------------------------------------------

constexpr int clients = 64;
constexpr int messages = 10'000;

/// Message `number`, of 6 to 1,022 bytes that depend on it.
std::string message_of(int number) {
  const auto size = static_cast<std::size_t>(6 + number * 37 % 1017);
  std::string text = std::to_string(number) + " ";
  for (int i = 0; text.size() < size; ++i) text += static_cast<char>('a' + (number + i) % 26);
  return text.substr(0, size);
}

/// Counts how often each message came, and what is no message.
class Tally {
 public:
  static void receive(SocketCore*, Socket*, unsigned char* data, int size, void* user_data) {
    Tally* tally = static_cast<Tally*>(user_data);
    const std::string text(reinterpret_cast<char*>(data), static_cast<std::size_t>(size - 1));
    const int number = std::atoi(text.c_str());
    if (number < 0 || number >= messages || text != message_of(number) || data[size - 1] != 0) {
      ++tally->wrong;
    } else {
      ++tally->came[number];
    }
  }

  std::atomic<int> came[messages] = {};
  std::atomic<int> wrong{0};
};

/// Sends messages, each over a connection of its own, from all clients at the same time, of whom
/// `at_once` may have a connection.
void send_messages(int port, int count, int at_once) {
  std::counting_semaphore<> turns(at_once);
  std::atomic<int> next{0};
  std::atomic<int> failed{0};
  in_parallel(clients, [&](int) {
    for (int number = next++; number < count; number = next++) {
      turns.acquire();
      {
        TcpClient client;
        client.set_limit(120'000);
        if (!client.connect(port) || !client.send(message_of(number)) || !client.wait_for_end()) {
          ++failed;
        }
      }
      turns.release();
    }
  });
  EXPECT_EQ(failed, 0);
}

class TcpLoadMessages : public testing::TestWithParam<bool> {
 protected:
  void send_and_count(int count, int at_once) {
    const auto tally = std::make_unique<Tally>();
    CoreCalls calls;
    TcpServer server;
    server.set_socket_core(new CountingCore(calls));
    server.threaded_client_callback(GetParam());
    server.set_client_proc(&Tally::receive, tally.get());
    ServerRun run(server, &TcpServer::run);
    send_messages(run.port(), count, at_once);
    EXPECT_TRUE(wait_until([&] { return calls.kills == count; }));
    EXPECT_EQ(tally->wrong, 0);
    EXPECT_EQ(std::count(tally->came, tally->came + count, 1), count);
    EXPECT_EQ(run.stop(), 0);
  }
};

TEST_P(TcpLoadMessages, NoneOf10000From64ClientsIsLost) { send_and_count(messages, 10); }

// More than the 10 places to wait: the system sends some away, and they come again in seconds.
TEST_P(TcpLoadMessages, NoneIsLostInARush) { send_and_count(clients * 3, clients); }

INSTANTIATE_TEST_SUITE_P(Run, TcpLoadMessages, testing::Bool(), [](const auto& run) {
  return run.param ? std::string("Threaded") : std::string("OnTheLoop");
});

// ---- run_v2(): places --------------------------------------------------------------------------

TEST(TcpLoad, RunV2Leads128ConversationsAtOnceAndLeavesTheNextOpen) {
  LogCapture log(LOG_LEVEL_ERROR);
  CoreCalls calls;
  TcpServer server;
  server.set_socket_core(new CountingCore(calls));
  server.threaded_client_callback(true);
  server.set_client_proc_v2(&echo, nullptr);
  ServerRun run(server, &TcpServer::run_v2);
  TcpClient talking[128];
  for (TcpClient& client : talking) {
    ASSERT_TRUE(client.connect(run.port()));
    ASSERT_TRUE(talk(client, "hello"));
  }
  TcpClient surplus(run.port());
  ASSERT_TRUE(surplus.send("hello?"));
  ASSERT_TRUE(wait_until([&] { return calls.accepts == 130; }));
  for (int round = 0; round < 3; ++round) {
    for (TcpClient& client : talking) ASSERT_TRUE(talk(client, "still there"));
  }
  EXPECT_TRUE(surplus.is_open_and_silent());

  // One that ends makes no place.
  talking[5].finish_sending();
  ASSERT_TRUE(talking[5].wait_for_end());
  TcpClient another(run.port());
  ASSERT_TRUE(wait_until([&] { return calls.accepts == 131; }));
  EXPECT_TRUE(another.is_open_and_silent());

  EXPECT_EQ(run.stop(), 0);
  EXPECT_TRUE(server.cleanup_client_threads());
  EXPECT_TRUE(surplus.is_open_and_silent());
  EXPECT_TRUE(another.is_open_and_silent());
  const std::string line =
      "ORV::TcpServer::run() - unable to handle new TCP connection: max client threads (128) "
      "reached.";
  EXPECT_EQ(log.lines(), std::vector<std::string>({line, line}));
}

/// Heap in use, and what the system counts.
struct Holdings {
  Holdings()
      : bytes(static_cast<long>(mallinfo2().uordblks + mallinfo2().hblkhd)),
        descriptors(count_own("fd")),
        threads(count_own("task")) {}
  long bytes;
  long descriptors;
  long threads;
};

// Each stop leaves the port open and, when the loop had to wake up for it, the connection that
// brought it; and nothing else.
TEST(TcpLoad, FiftyRoundsOfCleanUpLeaveTheDescribedSocketsAlone) {
  constexpr int rounds = 50;
  const long open_before = count_own("fd");
  {
    TcpServer server;
    server.threaded_client_callback(true);
    server.set_client_proc_v2(&echo, nullptr);
    const auto play_round = [&] {
      ServerRun run(server, &TcpServer::run_v2);
      TcpClient talking[24];
      for (TcpClient& client : talking) {
        ASSERT_TRUE(client.connect(run.port()));
        ASSERT_TRUE(talk(client, "hello"));
      }
      EXPECT_EQ(run.stop(), 0);
      EXPECT_TRUE(server.cleanup_client_threads());
    };
    for (int i = 0; i < 5; ++i) play_round();
    const Holdings before;
    for (int i = 0; i < rounds; ++i) play_round();
    const Holdings after;
    const long left = after.descriptors - before.descriptors;
    EXPECT_GE(left, rounds);
    EXPECT_LE(left, rounds * 2);
    // The system lists a thread for a moment after it was waited for.
    EXPECT_TRUE(wait_until([&] { return count_own("task") <= before.threads; }));
#ifndef ORV_TEST_SANITIZED_ALLOCATION
    // A record for each open socket, its place in a list, and what the allocator's threads keep.
    EXPECT_LT(after.bytes - before.bytes, left * static_cast<long>(sizeof(Socket) + 64) + 65'536);
#endif
  }
  EXPECT_EQ(count_own("fd"), open_before);
}

// ---- stopping under load -----------------------------------------------------------------------

/// Clients that knock at a port without pause: they talk, reset, or only look in.
class Crowd {
 public:
  Crowd() {
    for (int i = 0; i < 6; ++i) threads_.emplace_back([this, i] { knock(i); });
  }
  ~Crowd() {
    enough_ = true;
    for (std::thread& thread : threads_) thread.join();
  }
  Crowd(const Crowd&) = delete;
  Crowd& operator=(const Crowd&) = delete;

  /// Turns to another port, and waits until some have been there.
  void go_to(int port) {
    const int before = visits_;
    port_ = port;
    EXPECT_TRUE(wait_until([&] { return visits_ - before >= 8; }));
  }

 private:
  void knock(int manner) {
    while (!enough_) {
      TcpClient client;
      client.set_limit(10);  // nobody answers where a loop has ended
      if (!client.connect(port_)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        continue;
      }
      if (manner % 3 != 2) client.send("me too");
      if (manner % 3 == 1) client.reset();
      ++visits_;
    }
  }

  std::atomic<bool> enough_{false};
  std::atomic<int> port_{0};
  std::atomic<int> visits_{0};
  std::vector<std::thread> threads_;
};

/// The longest time for which this machine did not let a thread go on.
class Stall {
 public:
  Stall()
      : thread_([this] {
          while (!enough_) {
            const auto begin = Clock::now();
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
            worst_ = std::max(worst_, Clock::now() - begin);
          }
        }) {}
  ~Stall() {
    if (thread_.joinable()) end();
  }
  Stall(const Stall&) = delete;
  Stall& operator=(const Stall&) = delete;
  Clock::duration end() {
    enough_ = true;
    thread_.join();
    return worst_;
  }

 private:
  std::atomic<bool> enough_{false};
  Clock::duration worst_{};
  std::thread thread_;
};

// A second each; on a machine that is busy with something else ten of its own hitches more.
TEST(TcpLoad, AStopEndsTheLoopInASecond100TimesOf100) {
  Crowd crowd;
  Clock::duration worst{};
  for (int attempt = 0; attempt < 100; ++attempt) {
    TcpServer server;
    server.threaded_client_callback(attempt % 3 != 0);
    server.set_client_proc_v2(&echo, nullptr);
    ServerRun run(server, attempt % 3 == 2 ? &TcpServer::run_v2 : &TcpServer::run);
    crowd.go_to(run.port());
    TcpClient silent;
    silent.set_limit(10);
    if (attempt % 2 == 0) {  // it keeps run() from the others
      silent.connect(run.port());
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    Stall stall;
    const auto begin = Clock::now();
    ASSERT_EQ(run.stop(), 0);
    ASSERT_TRUE(server.cleanup_client_threads());
    const auto taken = Clock::now() - begin;
    EXPECT_LT(taken, std::chrono::seconds(1) + 10 * stall.end()) << "attempt " << attempt;
    worst = std::max(worst, taken);
    server.get_socket_core()->close_socket(server.get_server_socket());
  }
  RecordProperty("worst_milliseconds", static_cast<int>(worst / std::chrono::milliseconds(1)));
}

// ---- clients that misbehave --------------------------------------------------------------------

TEST(TcpLoad, MisbehavingClientsCostNobodyElseAMessage) {
  constexpr int numbers = 600;
  const auto tally = std::make_unique<Tally>();
  CoreCalls calls;
  TcpServer server;
  server.set_socket_core(new CountingCore(calls));
  server.set_client_proc(&Tally::receive, tally.get());
  ServerRun run(server, &TcpServer::run);
  const int port = run.port();
  std::atomic<bool> enough{false};
  const std::vector<void (*)(TcpClient&)> manners = {
      [](TcpClient&) { std::this_thread::sleep_for(std::chrono::milliseconds(1)); },  // silent
      [](TcpClient& slow) {
        for (int i = 0; i < 20 && slow.send("s"); ++i) {
          std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
      },
      [](TcpClient& resetting) { resetting.reset(); },
      [](TcpClient& resetting) {
        resetting.send("never mind");
        resetting.reset();
      },
      [](TcpClient& flooding) { flooding.send(std::string(1 << 20, 'f')); },
  };
  std::vector<std::thread> bad;
  for (const auto manner : manners) {
    bad.emplace_back([&, manner] {
      // Silent and resetting ones leave a descriptor each time, and there may be 1,024 in all.
      for (int visit = 0; visit < 150 && !enough; ++visit) {
        TcpClient client;
        client.set_limit(1000);
        if (client.connect(port)) manner(client);
      }
    });
  }
  std::atomic<int> next{0};
  in_parallel(4, [&](int) {
    for (int number = next++; number < numbers; number = next++) {
      TcpClient client;
      EXPECT_TRUE(client.connect(port) && client.send(message_of(number)) && client.wait_for_end());
    }
  });
  enough = true;
  for (std::thread& thread : bad) thread.join();
  EXPECT_EQ(run.stop(), 0);
  EXPECT_EQ(std::count(tally->came, tally->came + numbers, 1), numbers);
}

TEST(TcpLoad, MisbehavingClientsHoldUpNoOtherConversation) {
  TcpServer server;
  server.threaded_client_callback(true);
  server.set_client_proc_v2(&echo, nullptr);
  ServerRun run(server, &TcpServer::run_v2);
  const int port = run.port();

  TcpClient silent[20];
  for (TcpClient& client : silent) ASSERT_TRUE(client.connect(port));
  TcpClient slow(port);
  std::atomic<bool> enough{false};
  std::vector<std::thread> bad;
  bad.emplace_back([&] {
    while (!enough && talk(slow, "s")) {
      std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
  });
  for (int i = 0; i < 3; ++i) {
    bad.emplace_back([&] {  // sends on and on and never reads
      TcpClient flooding;
      flooding.set_limit(100);
      flooding.connect(port);
      while (!enough && flooding.send(std::string(1 << 16, 'f'))) {
      }
      while (!enough) std::this_thread::sleep_for(std::chrono::milliseconds(1));
    });
  }
  bad.emplace_back([&] {
    for (int i = 0; i < 40; ++i) {
      TcpClient resetting(port);
      resetting.send("r");
      resetting.reset();
    }
  });
  in_parallel(20, [&](int number) {
    TcpClient client(port);
    for (int i = 0; i < 50; ++i) {
      ASSERT_TRUE(talk(client, "word " + std::to_string(number * 100 + i)));
    }
  });
  enough = true;
  for (std::thread& thread : bad) thread.join();
  for (TcpClient& client : silent) EXPECT_TRUE(client.is_open_and_silent());
  EXPECT_EQ(run.stop(), 0);
  EXPECT_TRUE(server.cleanup_client_threads());
  for (TcpClient& client : silent) EXPECT_TRUE(client.wait_for_end());
}

}  // namespace
}  // namespace orv
