#pragma once

#include <gtest/gtest.h>
#include <orv/services/socket_core.h>
#include <orv/services/tcp_server.h>

#include <atomic>
#include <chrono>
#include <filesystem>
#include <future>
#include <iterator>
#include <thread>
#include <utility>

namespace orv::test {

constexpr std::chrono::seconds WAIT_LIMIT{30};

/// Waits until something is so; false when it does not come about in time.
template <class Condition>
bool wait_until(Condition condition) {
  const auto end = std::chrono::steady_clock::now() + WAIT_LIMIT;
  while (!condition()) {
    if (std::chrono::steady_clock::now() > end) return false;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  return true;
}

/// Entries of a folder of /proc/self: "fd" or "task".
inline long count_own(const char* what) {
  // The folder itself is open meanwhile, each time alike.
  return std::distance(std::filesystem::directory_iterator("/proc/self/" + std::string(what)),
                       std::filesystem::directory_iterator());
}

/// What a server has asked its CountingCore for so far. Made before the server, it waits at its end
/// for threads that still use the core.
struct CoreCalls {
  ~CoreCalls() {
    EXPECT_TRUE(wait_until([this] { return cores == 0; }));
  }
  std::atomic<int> accepts{0};  ///< begun
  std::atomic<int> peeks{0};    ///< begun
  std::atomic<int> kills{0};    ///< done
  std::atomic<int> cores{0};    ///< alive
};

class CountingCore : public SocketCore {
 public:
  explicit CountingCore(CoreCalls& calls) : calls_(calls) { ++calls_.cores; }
  ~CountingCore() override { --calls_.cores; }
  Socket* accept_connection(Socket* server) override {
    ++calls_.accepts;
    return SocketCore::accept_connection(server);
  }
  int receive_socket_get_data_len(Socket* socket) override {
    ++calls_.peeks;
    return SocketCore::receive_socket_get_data_len(socket);
  }
  bool kill_socket(Socket* socket) override {
    const bool killed = SocketCore::kill_socket(socket);
    ++calls_.kills;
    return killed;
  }

 private:
  CoreCalls& calls_;
};

/// A loop of a server on a thread of its own, on a port that the system chooses.
class ServerRun {
 public:
  using Loop = int (TcpServer::*)(unsigned short port);

  ServerRun(TcpServer& server, Loop loop) : server_(server) {
    const Socket* before = server.get_server_socket();  // which an earlier loop has left
    std::packaged_task<int()> task([&server, loop] { return (server.*loop)(0); });
    result_ = task.get_future();
    thread_ = std::thread(std::move(task));
    const Socket* socket = nullptr;
    EXPECT_TRUE(wait_until([&] {
      socket = server.get_server_socket();
      return socket && socket != before;
    }));
    if (socket) port_ = socket->local.port;
  }
  /// Stops and cleans up, unless the loop was waited for before.
  ~ServerRun() {
    if (!thread_.joinable()) return;
    stop();
    EXPECT_TRUE(server_.cleanup_client_threads());
  }
  ServerRun(const ServerRun&) = delete;
  ServerRun& operator=(const ServerRun&) = delete;

  int port() const { return port_; }

  /// What the loop returned; -1 with a failure when it goes on for too long.
  int wait() {
    if (result_.wait_for(WAIT_LIMIT) == std::future_status::ready) {
      thread_.join();
      return result_.get();
    }
    ADD_FAILURE() << "the loop goes on";
    thread_.detach();
    return -1;
  }
  int stop() {
    EXPECT_TRUE(server_.send_stop_message());
    return wait();
  }

 private:
  TcpServer& server_;
  std::future<int> result_;
  std::thread thread_;
  int port_ = 0;
};

}  // namespace orv::test
