#include <orv/services/socket_core.h>

#include <orv/core/log_mgr.h>

#include <atomic>
#include <cstring>

#include "services/platform/sockets.h"

namespace orv {

namespace {

/// The longest message that receive_socket_get_data_len() tells of.
constexpr int PEEK_SIZE = 1023;

/// A socket may be shut down on one thread while another one closes it.
std::atomic_ref<int> shared_handle(Socket* socket) { return std::atomic_ref<int>(socket->handle); }

/// The handle for the system, which knows 0 as the standard input.
int open_handle(Socket* socket) {
  const int handle = shared_handle(socket).load(std::memory_order_relaxed);
  return handle != 0 ? handle : -1;
}

/// Closes and returns what the handle was.
int close_handle(Socket* socket) {
  const int handle = shared_handle(socket).exchange(0);
  platform::close_socket(handle);
  return handle;
}

}  // namespace

// ---- life --------------------------------------------------------------------------------------

SocketCore::SocketCore() : started_(false) {}

SocketCore::~SocketCore() = default;

bool SocketCore::start() {
  started_ = true;
  return true;
}

bool SocketCore::stop() {
  if (!started_) return false;
  started_ = false;
  return true;
}

// ---- records -----------------------------------------------------------------------------------

Socket* SocketCore::create_socket(SOCKET_TYPE type, SOCKET_PROTOCOL protocol) {
  const int handle = platform::open_socket(type, protocol);
  if (handle < 0) {
    LogMgr::get().tracef_error("ORV::SocketCore::create_socket() - socket creation failed.");
    return nullptr;
  }
  Socket* socket = new Socket;
  socket->handle = handle;
  socket->type = type;
  socket->protocol = protocol;
  LogMgr::get().tracef_debug("ORV::SocketCore::create_socket() - socket %d: creation ok.", handle);
  return socket;
}

bool SocketCore::close_socket(Socket* socket) {
  if (!socket) return false;
  close_handle(socket);
  return true;
}

bool SocketCore::shutdown_socket(Socket* socket) {
  if (!socket) return false;
  const int handle = shared_handle(socket).load(std::memory_order_relaxed);
  if (handle == 0) return false;
  platform::shut_down_socket(handle);
  return true;
}

bool SocketCore::kill_socket(Socket* socket) {
  if (!socket) return false;
  shutdown_socket(socket);
  close_socket(socket);
  delete socket;
  return true;
}

// ---- servers -----------------------------------------------------------------------------------

bool SocketCore::bind_socket(Socket* socket, SockAddr* address) {
  if (!socket || !address) return false;
  unsigned short port = address->port;
  if (!platform::bind_socket(open_handle(socket), &port)) {
    LogMgr::get().tracef_error("ORV::SocketCore::bind_socket() - bind socket %d to port %d failed.",
                               socket->handle, port);
    return false;
  }
  socket->local.port = port;
  LogMgr::get().tracef_debug("ORV::SocketCore::bind_socket() - bind socket %d to port %d ok.",
                             socket->handle, port);
  return true;
}

bool SocketCore::listen_socket(Socket* socket, int backlog) {
  if (!socket) return false;
  if (!platform::listen_socket(open_handle(socket), backlog)) {
    LogMgr::get().tracef_error("ORV::SocketCore::listen_socket() - listen on port %d failed.",
                               socket->local.port);
    return false;
  }
  LogMgr::get().tracef_debug("ORV::SocketCore::listen_socket() - listen on port %d ok.",
                             socket->local.port);
  return true;
}

Socket* SocketCore::create_tcp_server_socket(unsigned short port) {
  SockAddr address;
  address.port = port;
  Socket* socket = create_socket(SOCKET_TYPE_STREAM, SOCKET_PROTOCOL_TCP);
  if (socket) {
    set_socket_option(socket, SOCKET_OPTION_REUSEADDR);
    if (bind_socket(socket, &address) && listen_socket(socket, 10)) {
      LogMgr::get().tracef_debug(
          "ORV::SocketCore::create_tcp_server_socket() - listening on port %d ok.",
          socket->local.port);
      return socket;
    }
    kill_socket(socket);
  }
  LogMgr::get().tracef_error(
      "ORV::SocketCore::create_tcp_server_socket() - create server socket on port [%d] failed.",
      port);
  return nullptr;
}

Socket* SocketCore::create_udp_server_socket(unsigned short port) {
  SockAddr address;
  address.port = port;
  Socket* socket = create_socket(SOCKET_TYPE_DATAGRAM, SOCKET_PROTOCOL_UDP);
  if (socket && bind_socket(socket, &address)) {
    LogMgr::get().tracef_debug(
        "ORV::SocketCore::create_udp_server_socket() - bind server socket [%d] to port [%d] ok.",
        socket->handle, socket->local.port);
    return socket;
  }
  kill_socket(socket);
  LogMgr::get().tracef_error(
      "ORV::SocketCore::create_udp_server_socket() - create server socket on port [%d] failed.",
      port);
  return nullptr;
}

Socket* SocketCore::accept_connection(Socket* server) {
  if (!server) return nullptr;
  const int handle = platform::accept_socket(open_handle(server));
  Socket* client = new Socket;
  client->handle = handle;
  client->type = server->type;
  client->protocol = server->protocol;
  LogMgr::get().tracef_debug(
      "ORV::SocketCore::accept_connection() - accept client socket %d on port %d ok.", handle,
      server->local.port);
  return client;
}

// ---- clients -----------------------------------------------------------------------------------

bool SocketCore::connect_socket(Socket* socket, SockAddr* address) {
  if (!socket || !address) return false;
  char host[sizeof(address->host)];
  std::memcpy(host, address->host, sizeof(host));
  host[sizeof(host) - 1] = 0;
  return connect_socket(socket, host, address->port);
}

bool SocketCore::connect_socket(Socket* socket, const char* host, unsigned short port) {
  if (!socket || !host) return false;
  std::uint32_t address = 0;
  if (!platform::find_host(host, &address) ||
      !platform::connect_socket(open_handle(socket), address, port)) {
    LogMgr::get().tracef_error(
        "ORV::SocketCore::connect_socket() - socket connection to server %s on port %d failed.",
        host, port);
    return false;
  }
  LogMgr::get().tracef_debug(
      "ORV::SocketCore::connect_socket() - socket connection to server %s on port %d ok.", host,
      port);
  return true;
}

bool SocketCore::close_connection(Socket* socket) {
  if (!socket) return false;
  LogMgr::get().tracef_debug("ORV::SocketCore::close_connection() - socket %d closed ok.",
                             close_handle(socket));
  return true;
}

// ---- streams -----------------------------------------------------------------------------------

int SocketCore::send_socket(Socket* socket, unsigned char* data, int size) {
  if (!socket || !data || size <= 0) return 0;
  return platform::send_bytes(open_handle(socket), data, size);
}

int SocketCore::receive_socket_get_data_len(Socket* socket) {
  if (!socket) return 0;
  unsigned char pending[PEEK_SIZE];
  return platform::receive_bytes(open_handle(socket), pending, PEEK_SIZE, true);
}

int SocketCore::receive_socket(Socket* socket, unsigned char* data, int size) {
  if (!socket || !data || size <= 0) return 0;
  const int handle = open_handle(socket);
  const int received = platform::receive_bytes(handle, data, size, false);
  if (received >= 1) {
    LogMgr::get().tracef_debug(
        "ORV::SocketCore::receive_socket() - received %d bytes on socket %d - buffer: %.*s",
        received, handle, received, reinterpret_cast<const char*>(data));
  }
  return received;
}

// ---- datagrams ---------------------------------------------------------------------------------

int SocketCore::send_udp(Socket* socket, const char* host, unsigned short port, unsigned char* data,
                         int size) {
  if (!socket || !host || !data || size <= 0) return 0;
  std::uint32_t address = 0;
  if (!platform::find_host(host, &address)) {
    LogMgr::get().tracef_error("ORV::SocketCore::send_udp() - host %s not found.", host);
    return -1;
  }
  const int sent = platform::send_datagram(open_handle(socket), address, port, data, size);
  LogMgr::get().tracef_debug("ORV::SocketCore::send_udp() - sent %d bytes on socket %d.", sent,
                             socket->handle);
  return sent;
}

int SocketCore::receive_udp(Socket* socket, SockAddr* from, unsigned char* data, int size) {
  if (!socket || !data || size <= 0) return 0;
  if (from) {
    std::memset(from->host, 0, sizeof(from->host));
    from->port = 0;
  }
  const int received = platform::receive_datagram(open_handle(socket), data, size, from);
  if (!from) {
    LogMgr::get().tracef_debug("ORV::SocketCore::receive_udp() - socket %d - received %d bytes.",
                               socket->handle, received);
  } else {
    LogMgr::get().tracef_debug(
        "ORV::SocketCore::receive_udp() - socket %d - received %d bytes from %s.", socket->handle,
        received, from->host);
  }
  return received;
}

// ---- options -----------------------------------------------------------------------------------

void SocketCore::set_socket_option(Socket* socket, SOCKET_OPTION option) {
  if (!socket) return;
  static const char* const names[] = {"SOCKET_OPTION_REUSEADDR", "SOCKET_OPTION_TCPNODELAY",
                                      "SOCKET_OPTION_NONBLOCKING", "SOCKET_OPTION_BROADCAST"};
  if (option < SOCKET_OPTION_REUSEADDR || option > SOCKET_OPTION_BROADCAST) {
    LogMgr::get().tracef_error(
        "ORV::SocketCore::set_socket_option() - socket %d - unknown option (%d).", socket->handle,
        option);
    return;
  }
  if (platform::switch_on(open_handle(socket), option)) return;
  constexpr const char* text =
      "ORV::SocketCore::set_socket_option() - socket %d - unable to set socket option %s.";
  const char* name = names[option - SOCKET_OPTION_REUSEADDR];
  if (option == SOCKET_OPTION_BROADCAST) {
    LogMgr::get().tracef_error(text, socket->handle, name);
  } else {
    LogMgr::get().tracef_debug(text, socket->handle, name);
  }
}

}  // namespace orv
