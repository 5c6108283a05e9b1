#pragma once

#include <orv/services/socket_core.h>
#include <orv/services/tcp_server.h>

#include <atomic>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

namespace orv {

/// A socket and the core that kills it.
struct OpenSocket {
  std::shared_ptr<SocketCore> core;
  Socket* socket = nullptr;
};

/// A place for a conversation of run_v2().
struct Conversation {
  TcpServerClientThreadParams* params = nullptr;
  std::shared_ptr<SocketCore> core;
  std::thread thread;
};

/// What a TcpServer works with. Loops and client threads hold it, too, so that it outlives a server
/// that is destroyed under them.
struct TcpServerData {
  static constexpr int MAX_CONVERSATIONS = 128;

  TcpServerData();
  ~TcpServerData();

  // ---- sockets ----
  std::shared_ptr<SocketCore> get_core();
  /// Starts the core, which it makes when there is none. Null, with a line in the log, when it
  /// does not start.
  std::shared_ptr<SocketCore> init();
  /// Opens the port for a loop. False, with a line in the log, when it cannot be had.
  bool open_port(unsigned short port, OpenSocket* opened);
  /// After the stop message.
  void close_port(const OpenSocket& opened);
  /// Waits for a client. Null, after a pause, when there was none to be had.
  Socket* accept(const OpenSocket& opened);
  /// Asks the loop to end. Its port, or -1 when there is none.
  int request_stop();
  /// Keeps a socket that stays open. The lock is held by the caller.
  void keep(const OpenSocket& open);
  /// keep() for a client of a loop, with the lock taken here.
  void leave_open(const OpenSocket& opened, Socket* client);

  // ---- run() ----
  /// True for the stop message.
  bool take_message(const OpenSocket& opened, Socket* client);
  int wait_for_message(const OpenSocket& opened, Socket* client);
  void answer_message(const OpenSocket& opened, TcpServerClientThreadParams* params,
                      bool own_thread);

  // ---- run_v2() ----
  TcpServerClientThreadParams* make_conversation(const OpenSocket& opened, Socket* client,
                                                 TcpServer* owner) const;
  /// False when all places are taken. `self_held` is this, for the thread to hold.
  bool begin_conversation(const std::shared_ptr<TcpServerData>& self_held, const OpenSocket& opened,
                          Socket* client, TcpServer* owner);
  /// On the client's thread.
  void lead_conversation(SocketCore* leading, TcpServerClientThreadParams* params);
  /// Waits for its thread and makes the place free, unless the thread is the caller's.
  void end_conversation(Conversation& conversation);
  /// Wakes those who read or write. The lock is held by the caller.
  static void shut_down(const Conversation& conversation);
  /// `own` with the caller's own.
  void shut_down_conversations(bool own);

  std::shared_ptr<TcpServerData> self;  // held for the TcpServer
  const int id;
  std::atomic<bool> running{false};
  std::atomic<bool> stop_requested{false};

  std::mutex mutex;  // guards what follows
  std::shared_ptr<SocketCore> core;
  OpenSocket server;
  Socket* awaited = nullptr;       // client whose message run() waits for
  SocketCore* awaiting = nullptr;  // what it waits with
  Conversation conversations[MAX_CONVERSATIONS];
  std::vector<OpenSocket> left_open;
  char stop_message[128] = "STOP_ORV_TCP_SERVER";
  unsigned int stop_message_length = 19;
  TcpServerClientProc client_proc = nullptr;
  TcpServerClientProcV2 client_proc_v2 = nullptr;
  void* user_data = nullptr;
  bool threaded = false;
};

}  // namespace orv
