/// @file
/// A small TCP server for control messages.
#pragma once

#include <orv/core/api.h>
#include <orv/fwd.h>
#include <orv/services/tcp_server_client_thread_params.h>

namespace orv {

struct TcpServerData;

/// A blocking server of one port: run() takes one message from each connection, run_v2() gives each
/// connection a thread of its own.
///
/// The host calls run() or run_v2() on a thread that it makes for it, since they return when the
/// server is stopped. To end cleanly: send_stop_message(), wait for that thread, stop().
///
/// All operations may be called from any thread while the server runs, but for stop() and
/// cleanup_client_threads(), whose time is after the loop's end. Callbacks run at the same time as
/// each other and guard their `user_data` themselves.
///
/// Sockets that the loops leave open (each says which) stay open until the server and its last
/// client thread are gone.
class ORV_API TcpServer {
 public:
  /// Idle, with an id of utils::gen_id() and the stop message "STOP_ORV_TCP_SERVER".
  TcpServer();
  /// Stops nothing: a loop or a client thread that still runs goes on, and what it works with is
  /// freed when it ends.
  ~TcpServer();
  TcpServer(const TcpServer&) = delete;
  TcpServer& operator=(const TcpServer&) = delete;

  /// Makes the socket core if there is none, and starts it. False, with an error in the log, when
  /// it does not start. The loops do this when there is no socket core yet.
  bool init();
  /// @{
  /// Another socket core to work with, which the server owns from then on; it is not started. Not
  /// while a loop runs. Null takes the present one away.
  void set_socket_core(SocketCore* core);
  /// Null before init(), run() and run_v2() and after stop().
  SocketCore* get_socket_core() const;
  /// @}

  /// Takes one message from each connection, 1,023 bytes at most: what a client sends beyond is
  /// lost. The callback of set_client_proc() answers it on this thread or, after
  /// threaded_client_callback(true), on one of its own; then the connection is closed.
  ///
  /// A client is waited for until it sends something or closes, and nobody else is heard meanwhile.
  /// One that closes without a message leaves its socket open here.
  ///
  /// Returns 1 when a message begins with the stop message: the port is closed then. Returns 0
  /// after send_stop_message(): the port stays open and is_running() true. Returns 0, with an error
  /// in the log, when it cannot start.
  ///
  /// @param port  0 lets the system choose; get_server_socket() knows the number then
  int run(unsigned short port);
  /// Gives each connection a thread with the callback of set_client_proc_v2(). It needs
  /// threaded_client_callback(true): otherwise clients are left open and unheard.
  ///
  /// 128 connections are taken until cleanup_client_threads(), even when some have ended; a further
  /// one is an error in the log and is left open and unheard. The stop message means nothing here.
  ///
  /// Returns 0 after send_stop_message(): the port stays open and is_running() true; a client that
  /// came with the stop is left open. Returns 0, with an error in the log, when it cannot start.
  int run_v2(unsigned short port);

  /// @{
  /// What answers clients in run() and in run_v2(); null for nothing. There is one `user_data` for
  /// both: the last call sets it.
  void set_client_proc(TcpServerClientProc proc, void* user_data);
  void set_client_proc_v2(TcpServerClientProcV2 proc, void* user_data);
  /// @}
  /// Whether clients are answered on threads of their own (off at first).
  void threaded_client_callback(bool state);

  /// @{
  /// Text that ends run() when a message begins with it, cut at 127 bytes; any message ends it when
  /// the text is empty. Null is ignored. The text of the getter is the server's own and changes
  /// with the next one that is set.
  void set_stop_message(const char* message);
  const char* get_stop_message() const;
  /// @}

  /// Ends the loop from another thread: wakes the client threads and the client that run() waits
  /// for by shutting their sockets down, and the loop by a connection to its port. Returns without
  /// waiting for the loop. False without a socket core, when no socket can be made, and when no
  /// loop has opened its port yet.
  bool send_stop_message();
  /// cleanup_client_threads(), then stops the socket core and lets go of it. Always true.
  bool stop();
  /// Shuts the sockets of run_v2()'s clients down, waits for their threads however long they take,
  /// and makes all 128 places free. Called by a client thread it leaves that one alone. False
  /// without a socket core.
  bool cleanup_client_threads();

  /// True once a loop has opened its port, until the stop message ends run(). It does not tell that
  /// a loop is alive: after send_stop_message() it stays true.
  bool is_running() const;
  /// From utils::gen_id().
  int getid() const;
  /// The listening socket: the present loop's, or what the last one left open. It may be closed
  /// when no loop runs, so that its port can be had again, but not killed. Null before the first
  /// loop and after the stop message.
  Socket* get_server_socket() const;
  /// The record in one of run_v2()'s 128 places. Null for a free place and for other numbers. Its
  /// fields are the thread's; it is freed by cleanup_client_threads().
  const TcpServerClientThreadParams* get_client_thread(int place) const;

 private:
  TcpServerData* data_;
};

}  // namespace orv
