/// @file
/// Record of a client's thread, and what a host plugs into a TCP server.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>

namespace orv {

/// Answers one message of a client: `size` counts the bytes of `data` with the zero that is added
/// behind the message. Socket and data belong to the server, which frees both afterwards.
using TcpServerClientProc = void (*)(SocketCore* core, Socket* client, unsigned char* data,
                                     int size, void* user_data);

/// Leads a whole conversation, on a thread of its own. `params` is the thread's
/// TcpServerClientThreadParams. The socket belongs to the server, which kills it afterwards; it may
/// be closed here, but not killed.
using TcpServerClientProcV2 = void (*)(SocketCore* core, Socket* client, void* params,
                                       void* user_data);

/// What the thread of a client works on.
class TcpServerClientThreadParams {
 public:
  TcpServer* server = nullptr;                ///< null for a thread of TcpServer::run()
  SocketCore* core = nullptr;                 ///< reads and writes the client's socket
  Socket* server_socket = nullptr;            ///< that the client came through
  unsigned short port = 0;                    ///< that the server listens on
  unsigned char flags[2] = {};                ///< unused
  unsigned int reserved = 0;                  ///< unused
  unsigned long thread = 0;                   ///< the system's handle, set by the thread itself
  Socket* client_socket = nullptr;            ///< null when the connection is gone
  TcpServerClientProc client_proc = nullptr;  ///< set by TcpServer::run()
  TcpServerClientProcV2 client_proc_v2 = nullptr;  ///< set by TcpServer::run_v2()
  void* user_data = nullptr;                       ///< for the callback
  int size = 0;                   ///< of data with the added zero; 0 in a conversation
  unsigned char* data = nullptr;  ///< the message; null in a conversation
};

}  // namespace orv
