/// @file
/// Records of sockets and of their addresses.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {

/// Kind of a socket; any other value counts as a stream.
enum SOCKET_TYPE : int {
  SOCKET_TYPE_STREAM = 1,   ///< bytes over a connection
  SOCKET_TYPE_RAW = 2,      ///< whole packets; for privileged programs
  SOCKET_TYPE_DATAGRAM = 3  ///< messages without a connection
};

/// Protocol of a socket; any other value counts as TCP.
enum SOCKET_PROTOCOL : int {
  SOCKET_PROTOCOL_TCP = 1,  ///< for streams
  SOCKET_PROTOCOL_RAW = 2,  ///< headers are the program's own
  SOCKET_PROTOCOL_UDP = 3   ///< for datagrams
};

/// What SocketCore::set_socket_option() switches on; nothing switches it off again.
enum SOCKET_OPTION : int {
  SOCKET_OPTION_REUSEADDR = 1,    ///< bind to a port that an earlier server has just left
  SOCKET_OPTION_TCPNODELAY = 2,   ///< send small pieces without waiting for more
  SOCKET_OPTION_NONBLOCKING = 3,  ///< operations fail where they would block
  SOCKET_OPTION_BROADCAST = 4     ///< send datagrams to broadcast addresses
};

/// Where a socket is, or with whom it talks.
class SockAddr {
 public:
  unsigned short port = 0;  ///< in the host's byte order
  unsigned int addr = 0;    ///< kept for hosts; no operation reads or writes it
  char host[128] = {};      ///< name or dotted address, ended by a zero
};

/// A socket of the system. SocketCore makes and frees these records, the caller owns them.
class Socket {
 public:
  int handle = 0;  ///< the system's; 0 when closed, negative when accepting it failed
  SOCKET_TYPE type = SOCKET_TYPE_STREAM;           ///< as it was made, or as its server's
  SOCKET_PROTOCOL protocol = SOCKET_PROTOCOL_TCP;  ///< as it was made, or as its server's
  SockAddr local{0, 0, "localhost"};               ///< its port is set by SocketCore::bind_socket()
  SockAddr remote;                                 ///< stays empty
};

}  // namespace orv
