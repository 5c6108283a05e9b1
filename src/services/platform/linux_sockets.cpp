#include "services/platform/sockets.h"

#include <arpa/inet.h>
#include <fcntl.h>
#include <netdb.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace orv::platform {

namespace {

/// Calls again when a signal came first.
template <class Call>
auto uninterrupted(Call call) {
  auto result = call();
  while (result < 0 && errno == EINTR) result = call();
  return result;
}

/// Records hold 0 for closed sockets, and a program may have closed its standard input.
int above_zero(int handle) {
  if (handle != 0) return handle;
  const int other = fcntl(handle, F_DUPFD_CLOEXEC, 3);
  close(handle);
  return other;
}

sockaddr_in make_address(std::uint32_t address, unsigned short port) {
  sockaddr_in made{};
  made.sin_family = AF_INET;
  made.sin_addr.s_addr = address;
  made.sin_port = htons(port);
  return made;
}

const sockaddr* plain(const sockaddr_in* address) {
  return reinterpret_cast<const sockaddr*>(address);
}

/// A connection goes on being made when a signal interrupts the call; so does a limit to its time.
bool finish_connect(int handle) {
  timeval limit{};
  socklen_t size = sizeof(limit);
  getsockopt(handle, SOL_SOCKET, SO_SNDTIMEO, &limit, &size);
  const auto milliseconds = static_cast<int>(limit.tv_sec * 1000 + limit.tv_usec / 1000);
  pollfd wait{handle, POLLOUT, 0};
  if (uninterrupted([&] { return poll(&wait, 1, milliseconds > 0 ? milliseconds : -1); }) <= 0) {
    return false;
  }
  int error = 0;
  size = sizeof(error);
  return getsockopt(handle, SOL_SOCKET, SO_ERROR, &error, &size) == 0 && error == 0;
}

}  // namespace

// ---- life --------------------------------------------------------------------------------------

int open_socket(SOCKET_TYPE type, SOCKET_PROTOCOL protocol) {
  const int kind = type == SOCKET_TYPE_RAW        ? SOCK_RAW
                   : type == SOCKET_TYPE_DATAGRAM ? SOCK_DGRAM
                                                  : SOCK_STREAM;
  const int number = protocol == SOCKET_PROTOCOL_RAW   ? IPPROTO_RAW
                     : protocol == SOCKET_PROTOCOL_UDP ? IPPROTO_UDP
                                                       : IPPROTO_TCP;
  return above_zero(socket(AF_INET, kind | SOCK_CLOEXEC, number));
}

void close_socket(int handle) {
  if (handle > 0) close(handle);  // closed even when a signal interrupts it
}

void shut_down_socket(int handle) { shutdown(handle, SHUT_RDWR); }

// ---- servers -----------------------------------------------------------------------------------

bool bind_socket(int handle, unsigned short* port) {
  sockaddr_in address = make_address(htonl(INADDR_ANY), *port);
  if (bind(handle, plain(&address), sizeof(address)) != 0) return false;
  socklen_t size = sizeof(address);
  if (*port == 0 && getsockname(handle, reinterpret_cast<sockaddr*>(&address), &size) == 0) {
    *port = ntohs(address.sin_port);
  }
  return true;
}

bool listen_socket(int handle, int backlog) { return listen(handle, backlog) == 0; }

int accept_socket(int handle) {
  return above_zero(uninterrupted([&] { return accept4(handle, nullptr, nullptr, SOCK_CLOEXEC); }));
}

// ---- clients -----------------------------------------------------------------------------------

bool find_host(const char* host, std::uint32_t* address) {
  addrinfo wanted{};
  wanted.ai_family = AF_INET;
  wanted.ai_socktype = SOCK_STREAM;  // each address once
  addrinfo* found = nullptr;
  if (getaddrinfo(host, nullptr, &wanted, &found) != 0 || !found) return false;
  sockaddr_in first;
  std::memcpy(&first, found->ai_addr, sizeof(first));
  freeaddrinfo(found);
  *address = first.sin_addr.s_addr;
  return true;
}

bool connect_socket(int handle, std::uint32_t address, unsigned short port) {
  const sockaddr_in to = make_address(address, port);
  if (connect(handle, plain(&to), sizeof(to)) == 0) return true;
  return errno == EINTR && finish_connect(handle);
}

void limit_connect_time(int handle, int milliseconds) {
  const timeval time{milliseconds / 1000, milliseconds % 1000 * 1000};
  setsockopt(handle, SOL_SOCKET, SO_SNDTIMEO, &time, sizeof(time));
}

// ---- bytes -------------------------------------------------------------------------------------

int send_bytes(int handle, const unsigned char* data, int size) {
  const auto count = static_cast<std::size_t>(size);
  return static_cast<int>(uninterrupted([&] { return send(handle, data, count, MSG_NOSIGNAL); }));
}

int send_datagram(int handle, std::uint32_t address, unsigned short port, const unsigned char* data,
                  int size) {
  const sockaddr_in to = make_address(address, port);
  const auto count = static_cast<std::size_t>(size);
  return static_cast<int>(uninterrupted(
      [&] { return sendto(handle, data, count, MSG_NOSIGNAL, plain(&to), sizeof(to)); }));
}

int receive_bytes(int handle, unsigned char* data, int size, bool peek) {
  const auto count = static_cast<std::size_t>(size);
  return static_cast<int>(
      uninterrupted([&] { return recv(handle, data, count, peek ? MSG_PEEK : 0); }));
}

int receive_datagram(int handle, unsigned char* data, int size, SockAddr* from) {
  sockaddr_in sender{};
  socklen_t length = sizeof(sender);
  const auto count = static_cast<std::size_t>(size);
  const int received = static_cast<int>(uninterrupted([&] {
    return recvfrom(handle, data, count, 0, reinterpret_cast<sockaddr*>(&sender), &length);
  }));
  if (received >= 0 && from) {
    inet_ntop(AF_INET, &sender.sin_addr, from->host, sizeof(from->host));
    from->port = ntohs(sender.sin_port);
  }
  return received;
}

// ---- options -----------------------------------------------------------------------------------

bool switch_on(int handle, SOCKET_OPTION option) {
  const int on = 1;
  if (option == SOCKET_OPTION_NONBLOCKING) {
    const int flags = fcntl(handle, F_GETFL);
    return flags >= 0 && fcntl(handle, F_SETFL, flags | O_NONBLOCK) == 0;
  }
  const bool tcp = option == SOCKET_OPTION_TCPNODELAY;
  const int name = tcp                                 ? TCP_NODELAY
                   : option == SOCKET_OPTION_REUSEADDR ? SO_REUSEADDR
                   : option == SOCKET_OPTION_BROADCAST ? SO_BROADCAST
                                                       : -1;
  return setsockopt(handle, tcp ? int{IPPROTO_TCP} : SOL_SOCKET, name, &on, sizeof(on)) == 0;
}

}  // namespace orv::platform
