/// @file
/// The system's sockets.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/services/socket.h>

namespace orv {

/// A thin layer over the system's sockets, IPv4 alone.
///
/// It keeps no list: the caller owns the Socket records and frees them with kill_socket(). Each
/// operation may be replaced by a derived class. Operations may be called from any thread, at the
/// same time on different sockets; shutdown_socket() wakes a thread that is blocked on a socket.
/// Calls that a signal interrupts go on; nothing else is repeated. An operation on a closed socket
/// fails as the system's call does.
class ORV_API SocketCore {
 public:
  SocketCore();
  /// Ends the socket layer if start() was called.
  virtual ~SocketCore();
  SocketCore(const SocketCore&) = delete;
  SocketCore& operator=(const SocketCore&) = delete;

  /// Starts the socket layer. It needs nothing on this system and cannot fail; sockets work without
  /// it, too.
  virtual bool start();
  /// False when not started.
  virtual bool stop();

  /// Makes an unbound socket. Null, with an error in the log, when the system gives none.
  virtual Socket* create_socket(SOCKET_TYPE type, SOCKET_PROTOCOL protocol);
  /// Closes the socket and keeps the record. True for a closed one too, false for null.
  virtual bool close_socket(Socket* socket);
  /// Ends both directions and wakes whoever is blocked on the socket. False for null and for a
  /// closed socket, else true whatever the system says.
  virtual bool shutdown_socket(Socket* socket);
  /// Ends both directions, closes the socket and frees the record. False for null.
  virtual bool kill_socket(Socket* socket);

  /// Binds to the port of `address` on all local addresses; its `host` and `addr` are not looked
  /// at. The port, with 0 the one that the system has chosen, goes to `local.port`. False for null
  /// and, with an error in the log, when the port cannot be had.
  virtual bool bind_socket(Socket* socket, SockAddr* address);
  /// Lets clients connect; `backlog` of them may wait. False for null and, with an error in the
  /// log, on failure.
  virtual bool listen_socket(Socket* socket, int backlog);
  /// A listening TCP socket with 10 places to wait. Null, with an error in the log, on failure.
  virtual Socket* create_tcp_server_socket(unsigned short port);
  /// A bound UDP socket. Null, with an error in the log, on failure.
  virtual Socket* create_udp_server_socket(unsigned short port);
  /// Waits for a client. The new record has the type and protocol of the server and no addresses;
  /// when the system fails its handle is negative. Null for null.
  virtual Socket* accept_connection(Socket* server);

  /// connect_socket() with the host and port of `address`. False for a null argument.
  virtual bool connect_socket(Socket* socket, SockAddr* address);
  /// Looks `host` up, a name or a dotted address, and connects to the first address found. False
  /// for a null socket or host and, with an error in the log, on failure.
  virtual bool connect_socket(Socket* socket, const char* host, unsigned short port);
  /// close_socket() with a line in the log.
  virtual bool close_connection(Socket* socket);

  /// Sends once; returns how many of the `size` bytes were taken, or -1. 0 for null arguments and
  /// when there is nothing to send. A peer that is gone gives -1, not a signal.
  virtual int send_socket(Socket* socket, unsigned char* data, int size);
  /// Waits for bytes or for the end of the connection. Returns how many bytes can be read, 1,023 at
  /// most, and leaves them; 0 at the end and for null, -1 on failure.
  virtual int receive_socket_get_data_len(Socket* socket);
  /// Waits for bytes and reads at most `size` of them. Returns how many; 0 at the end of the
  /// connection, for null arguments and when `size` is not above 0; -1 on failure.
  virtual int receive_socket(Socket* socket, unsigned char* data, int size);

  /// Looks `host` up and sends a datagram. Returns the bytes sent, -1 on failure; 0 for null
  /// arguments and when there is nothing to send.
  virtual int send_udp(Socket* socket, const char* host, unsigned short port, unsigned char* data,
                       int size);
  /// Waits for a datagram and reads at most `size` bytes of it. `from`, which may be null, receives
  /// the sender's dotted address and port; they are empty after a failure. Returns the bytes read
  /// or -1; 0 for a null socket or `data` and when `size` is not above 0.
  virtual int receive_udp(Socket* socket, SockAddr* from, unsigned char* data, int size);

  /// Switches an option on. Failures are lines in the log: errors for SOCKET_OPTION_BROADCAST and
  /// for unknown options, else debug lines. Null is ignored.
  virtual void set_socket_option(Socket* socket, SOCKET_OPTION option);

 private:
  bool started_;
};

}  // namespace orv
