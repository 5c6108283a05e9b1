// Messages over connections of their own to TcpServer::run() and to an accept loop that does the
// same with the system's calls alone.
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <orv/core/log.h>
#include <orv/core/log_mgr.h>
#include <orv/core/utils.h>
#include <orv/services/socket_core.h>
#include <orv/services/tcp_server.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <thread>
#include <vector>

namespace {

constexpr int CONNECTIONS = 2000;
constexpr int CLIENTS = 4;
constexpr char MESSAGE[] = "camera 0 4 9";
constexpr char STOP[] = "STOP_ORV_TCP_SERVER";

/// Bytes that callbacks were given.
std::atomic<long> bytes_served{0};

sockaddr_in address_of(unsigned short port) {
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  address.sin_port = htons(port);
  return address;
}

/// Sends a message and waits until the server closes.
bool send_message(unsigned short port, const char* message) {
  const int handle = socket(AF_INET, SOCK_STREAM, 0);
  const sockaddr_in to = address_of(port);
  char byte;
  const bool done = connect(handle, reinterpret_cast<const sockaddr*>(&to), sizeof(to)) == 0 &&
                    send(handle, message, std::strlen(message), MSG_NOSIGNAL) > 0 &&
                    recv(handle, &byte, 1, 0) == 0;
  close(handle);
  return done;
}

/// False when a client was not served.
bool send_all(unsigned short port) {
  std::atomic<bool> good{true};
  std::vector<std::thread> clients;
  for (int i = 0; i < CLIENTS; ++i) {
    clients.emplace_back([&] {
      for (int k = 0; k < CONNECTIONS / CLIENTS; ++k) {
        if (!send_message(port, MESSAGE)) good = false;
      }
    });
  }
  for (std::thread& client : clients) client.join();
  return good;
}

// ---- ours --------------------------------------------------------------------------------------

void count_ours(orv::SocketCore*, orv::Socket*, unsigned char*, int size, void*) {
  bytes_served += size;
}

class OurServer {
 public:
  OurServer() {
    server_.set_client_proc(&count_ours, nullptr);
    loop_ = std::thread([this] { server_.run(0); });
    while (!server_.is_running()) orv::utils::thread_sleep(1);
    port_ = server_.get_server_socket()->local.port;
  }
  ~OurServer() {
    send_message(port_, STOP);
    loop_.join();
    server_.stop();
  }
  unsigned short port() const { return port_; }

 private:
  orv::TcpServer server_;
  std::thread loop_;
  unsigned short port_ = 0;
};

// ---- the accept loop ---------------------------------------------------------------------------

void count_theirs(int, unsigned char*, int size, void*) { bytes_served += size; }

class AcceptLoop {
 public:
  AcceptLoop() {
    const int on = 1;
    handle_ = socket(AF_INET, SOCK_STREAM, 0);
    setsockopt(handle_, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    sockaddr_in address = address_of(0);
    socklen_t size = sizeof(address);
    if (bind(handle_, reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
        listen(handle_, 10) != 0 ||
        getsockname(handle_, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
      std::exit(1);
    }
    port_ = ntohs(address.sin_port);
    loop_ = std::thread([this] { run(); });
  }
  ~AcceptLoop() {
    send_message(port_, STOP);
    loop_.join();
    close(handle_);
  }
  unsigned short port() const { return port_; }

 private:
  void run() {
    for (bool stopped = false; !stopped;) {
      const int client = accept4(handle_, nullptr, nullptr, SOCK_CLOEXEC);
      char pending[1023];
      const ssize_t length = recv(client, pending, sizeof(pending), MSG_PEEK);
      if (length > 0) {
        const auto size = static_cast<std::size_t>(length);
        auto* data = static_cast<unsigned char*>(std::calloc(size + 1, 1));
        if (recv(client, data, size, 0) <= 0) std::exit(1);
        stopped = std::strncmp(reinterpret_cast<char*>(data), STOP, sizeof(STOP) - 1) == 0;
        if (!stopped) count_theirs(client, data, static_cast<int>(length) + 1, nullptr);
        std::free(data);
      }
      shutdown(client, SHUT_RDWR);
      close(client);
    }
  }

  int handle_;
  unsigned short port_;
  std::thread loop_;
};

// ---- measuring ---------------------------------------------------------------------------------

template <class Server>
void serve(benchmark::State& state) {
  Server server;
  const auto begin = std::chrono::steady_clock::now();
  for (auto _ : state) {
    bytes_served = 0;
    if (!send_all(server.port()) || bytes_served != CONNECTIONS * long{sizeof(MESSAGE)}) {
      state.SkipWithError("a message is missing");
      return;
    }
  }
  const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - begin;
  const double batch = taken.count() / static_cast<double>(state.iterations());
  state.counters["seconds"] = batch / CONNECTIONS;
  state.counters["connections_per_second"] = CONNECTIONS / batch;
}

}  // namespace

int main(int argc, char** argv) {
  // As a host has it: debug lines are dropped.
  orv::LogMgr::get().start(nullptr, true);
  orv::LogMgr::get().get_default_log()->send_to_terminal(false);
  benchmark::RegisterBenchmark("connection to a TCP server/ours", serve<OurServer>)->Iterations(5);
  benchmark::RegisterBenchmark("connection to a TCP server/accept loop", serve<AcceptLoop>)
      ->Iterations(5);
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  orv::LogMgr::get().stop();
  return 0;
}
