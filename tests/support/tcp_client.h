#pragma once

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <string>

namespace orv::test {

/// A client of a TCP server on this machine. No call waits for longer than half a minute.
class TcpClient {
 public:
  TcpClient() = default;
  explicit TcpClient(int port) { connect(port); }
  /// Another limit for what follows the next connect(), and for that one.
  void set_limit(int milliseconds) { limit_ms_ = milliseconds; }
  ~TcpClient() { close(); }
  TcpClient(const TcpClient&) = delete;
  TcpClient& operator=(const TcpClient&) = delete;

  bool connect(int port) {
    close();
    handle_ = socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const timeval limit{limit_ms_ / 1000, limit_ms_ % 1000 * 1000};
    setsockopt(handle_, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
    setsockopt(handle_, SOL_SOCKET, SO_SNDTIMEO, &limit, sizeof(limit));
    sockaddr_in to{};
    to.sin_family = AF_INET;
    to.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    to.sin_port = htons(static_cast<unsigned short>(port));
    if (::connect(handle_, reinterpret_cast<const sockaddr*>(&to), sizeof(to)) == 0) return true;
    close();
    return false;
  }

  /// Sends all of it, unless the server is gone.
  bool send(const std::string& text) {
    for (std::size_t at = 0; at < text.size();) {
      const ssize_t sent = ::send(handle_, text.data() + at, text.size() - at, MSG_NOSIGNAL);
      if (sent <= 0) return false;
      at += static_cast<std::size_t>(sent);
    }
    return true;
  }

  /// Waits for so many bytes; fewer when the connection ends or the time is over.
  std::string receive(std::size_t size) {
    std::string text(size, '\0');
    std::size_t at = 0;
    while (at < size) {
      const ssize_t received = recv(handle_, text.data() + at, size - at, 0);
      if (received <= 0) break;
      at += static_cast<std::size_t>(received);
    }
    text.resize(at);
    return text;
  }

  /// Whether the server ends the connection in time; what it sends before is dropped.
  bool wait_for_end() {
    char text[1024];
    ssize_t received = 1;
    while (received > 0) received = recv(handle_, text, sizeof(text), 0);
    return received == 0 || errno == ECONNRESET;
  }

  /// Whether the server has left the connection open and sent nothing so far.
  bool is_open_and_silent() const {
    char byte;
    return handle_ >= 0 && recv(handle_, &byte, 1, MSG_PEEK | MSG_DONTWAIT) < 0 &&
           (errno == EAGAIN || errno == EWOULDBLOCK);
  }

  /// No more is sent; receiving goes on.
  void finish_sending() { shutdown(handle_, SHUT_WR); }

  /// Tears the connection down at once, as a program that crashes.
  void reset() {
    const linger now{1, 0};
    setsockopt(handle_, SOL_SOCKET, SO_LINGER, &now, sizeof(now));
    close();
  }

  void close() {
    if (handle_ >= 0) ::close(handle_);
    handle_ = -1;
  }

 private:
  int handle_ = -1;
  int limit_ms_ = 30'000;
};

}  // namespace orv::test
