#include <orv/services/tcp_server.h>

#include <orv/core/log_mgr.h>
#include <orv/core/thread.h>
#include <orv/core/utils.h>

#include <algorithm>
#include <cstring>
#include <system_error>
#include <utility>

#include "services/platform/sockets.h"
#include "services/tcp_server_data.h"

namespace orv {

namespace {

using Guard = std::lock_guard<std::mutex>;

/// How many bytes of a client's message run() takes.
constexpr int MAX_MESSAGE = 1023;
/// Between two attempts to accept, so that a failure that lasts does not eat the processor.
constexpr unsigned int PAUSE_MS = 10;
/// How long a stop waits for its connection. It cannot connect when others fill the queue, and then
/// these wake the loop.
constexpr int KNOCK_MS = 25;

/// Frees a message and its client.
void end_message(SocketCore* core, TcpServerClientThreadParams* params) {
  delete[] std::exchange(params->data, nullptr);
  core->kill_socket(std::exchange(params->client_socket, nullptr));
  delete params;
}

void answer(SocketCore* core, TcpServerClientThreadParams* params) {
  if (params->client_proc) {
    params->client_proc(core, params->client_socket, params->data, params->size, params->user_data);
  }
  end_message(core, params);
}

/// Whether the caller leads it.
bool is_own(const Conversation& conversation) {
  return conversation.thread.get_id() == std::this_thread::get_id();
}

/// The thread of a client: a conversation of `data`, or one message when that is null.
void serve(const std::shared_ptr<TcpServerData>& data, const std::shared_ptr<SocketCore>& core,
           TcpServerClientThreadParams* params) {
  params->thread = Thread().get_thread_handle();
  if (data) {
    data->lead_conversation(core.get(), params);
  } else {
    answer(core.get(), params);
  }
}

/// serve() on a thread. False, with a line in the log, when none can be had.
bool start_thread(std::thread* thread, const std::shared_ptr<TcpServerData>& data,
                  const std::shared_ptr<SocketCore>& core, TcpServerClientThreadParams* params) {
  try {
    *thread = std::thread(&serve, data, core, params);
    return true;
  } catch (const std::system_error& error) {
    LogMgr::get().tracef_debug("ORV::TcpServer::run() - unable to start a client thread: %s.",
                               error.what());
    return false;
  }
}

}  // namespace

// ---- sockets of the loops ----------------------------------------------------------------------

TcpServerData::TcpServerData() : id(utils::gen_id()) {}

TcpServerData::~TcpServerData() {
  for (Conversation& conversation : conversations) {
    if (!conversation.params) continue;
    // Its thread has ended, or is the one that lets go of this last.
    if (conversation.thread.joinable()) conversation.thread.detach();
    conversation.core->kill_socket(conversation.params->client_socket);
    delete conversation.params;
  }
  for (const OpenSocket& open : left_open) open.core->kill_socket(open.socket);
  if (server.socket) server.core->kill_socket(server.socket);
}

std::shared_ptr<SocketCore> TcpServerData::get_core() {
  const Guard guard(mutex);
  return core;
}

int TcpServerData::request_stop() {
  const Guard guard(mutex);
  stop_requested = true;
  if (awaited) awaiting->shutdown_socket(awaited);
  return server.socket ? server.socket->local.port : -1;
}

std::shared_ptr<SocketCore> TcpServerData::init() {
  std::shared_ptr<SocketCore> started;
  {
    const Guard guard(mutex);
    if (!core) core.reset(new SocketCore);
    started = core;
  }
  if (!started->start()) {
    LogMgr::get().tracef_error("ORV::TcpServer::run() - unable to start the socket core.");
    started.reset();
  }
  return started;
}

bool TcpServerData::open_port(unsigned short port, OpenSocket* opened) {
  running = false;
  {
    // What the last loop left is no loop's any more: a stop must not take it for this one.
    const Guard guard(mutex);
    if (server.socket) keep(server);
    server = OpenSocket();
  }
  opened->core = get_core();
  if (!opened->core) opened->core = init();
  if (!opened->core) return false;
  opened->socket = opened->core->create_tcp_server_socket(port);
  if (!opened->socket) {
    LogMgr::get().tracef_error("ORV::TcpServer::run() - unable to create a TCP socket.");
    return false;
  }
  const Guard guard(mutex);
  running = true;
  stop_requested = false;
  server = *opened;
  return true;
}

void TcpServerData::close_port(const OpenSocket& opened) {
  bool present;
  {
    const Guard guard(mutex);
    present = server.socket == opened.socket;
    if (present) server = OpenSocket();
  }
  if (present) {
    opened.core->kill_socket(opened.socket);
  } else {
    opened.core->close_socket(opened.socket);  // a later loop has put it among those left open
  }
}

Socket* TcpServerData::accept(const OpenSocket& opened) {
  Socket* client = opened.core->accept_connection(opened.socket);
  if (client && client->handle >= 0) return client;
  opened.core->kill_socket(client);
  utils::thread_sleep(PAUSE_MS);
  return nullptr;
}

void TcpServerData::keep(const OpenSocket& open) { left_open.push_back(open); }

void TcpServerData::leave_open(const OpenSocket& opened, Socket* client) {
  const Guard guard(mutex);
  keep({opened.core, client});
}

// ---- one message a connection ------------------------------------------------------------------

int TcpServerData::wait_for_message(const OpenSocket& opened, Socket* client) {
  {
    const Guard guard(mutex);
    awaiting = opened.core.get();  // which the loop holds
    awaited = client;
    // Bytes that are there already can be read all the same.
    if (stop_requested) opened.core->shutdown_socket(client);
  }
  const int pending = opened.core->receive_socket_get_data_len(client);
  const Guard guard(mutex);
  awaited = nullptr;
  return std::min(pending, MAX_MESSAGE);
}

bool TcpServerData::take_message(const OpenSocket& opened, Socket* client) {
  const int length = wait_for_message(opened, client);
  if (length <= 0) {
    leave_open(opened, client);
    return false;
  }
  auto* params = new TcpServerClientThreadParams;
  params->core = opened.core.get();
  params->server_socket = opened.socket;
  params->port = opened.socket->local.port;
  params->client_socket = client;
  params->size = length + 1;
  params->data = new unsigned char[static_cast<std::size_t>(length) + 1]();
  opened.core->receive_socket(client, params->data, length);

  bool is_stop;
  bool own_thread;
  {
    const Guard guard(mutex);
    is_stop = std::strncmp(reinterpret_cast<const char*>(params->data), stop_message,
                           stop_message_length) == 0;
    params->client_proc = client_proc;
    params->user_data = user_data;
    own_thread = threaded;
  }
  if (!is_stop) {
    answer_message(opened, params, own_thread);
    return false;
  }
  LogMgr::get().tracef_debug(
      "ORV::TcpServer::run() - received stop message. Exit from tcp svr loop.");
  stop_requested = true;
  end_message(opened.core.get(), params);
  close_port(opened);
  running = false;
  return true;
}

void TcpServerData::answer_message(const OpenSocket& opened, TcpServerClientThreadParams* params,
                                   bool own_thread) {
  if (!own_thread) {
    answer(opened.core.get(), params);
    return;
  }
  std::thread thread;
  if (start_thread(&thread, nullptr, opened.core, params)) {
    thread.detach();
    return;
  }
  leave_open(opened, std::exchange(params->client_socket, nullptr));
  end_message(opened.core.get(), params);
}

// ---- a thread a connection ---------------------------------------------------------------------

void TcpServerData::shut_down(const Conversation& conversation) {
  if (!conversation.params || !conversation.params->client_socket) return;
  conversation.core->shutdown_socket(conversation.params->client_socket);
}

void TcpServerData::shut_down_conversations(bool own) {
  const Guard guard(mutex);
  for (const Conversation& conversation : conversations) {
    if (own || !is_own(conversation)) shut_down(conversation);
  }
}

TcpServerClientThreadParams* TcpServerData::make_conversation(const OpenSocket& opened,
                                                              Socket* client,
                                                              TcpServer* owner) const {
  auto* params = new TcpServerClientThreadParams;
  params->server = owner;
  params->core = opened.core.get();
  params->server_socket = opened.socket;
  params->port = opened.socket->local.port;
  params->client_socket = client;
  params->client_proc_v2 = client_proc_v2;
  params->user_data = user_data;
  return params;
}

bool TcpServerData::begin_conversation(const std::shared_ptr<TcpServerData>& self_held,
                                       const OpenSocket& opened, Socket* client, TcpServer* owner) {
  const Guard guard(mutex);
  Conversation* const end = conversations + MAX_CONVERSATIONS;
  Conversation* const place =
      std::find_if(conversations, end, [](const Conversation& c) { return !c.params; });
  if (!threaded || place == end) {
    keep({opened.core, client});
    return !threaded;
  }
  place->params = make_conversation(opened, client, owner);
  place->core = opened.core;
  // Without a thread the place is taken, and cleaned up, all the same.
  start_thread(&place->thread, self_held, opened.core, place->params);
  return true;
}

void TcpServerData::lead_conversation(SocketCore* leading, TcpServerClientThreadParams* params) {
  Socket* const client = params->client_socket;
  if (params->client_proc_v2) {
    params->client_proc_v2(leading, client, params, params->user_data);
  }
  {
    const Guard guard(mutex);
    params->client_socket = nullptr;
  }
  leading->kill_socket(client);
}

void TcpServerData::end_conversation(Conversation& conversation) {
  Conversation ended;
  {
    const Guard guard(mutex);
    if (!conversation.params || is_own(conversation)) return;
    shut_down(conversation);
    ended.params = std::exchange(conversation.params, nullptr);
    ended.core = std::move(conversation.core);
    ended.thread = std::move(conversation.thread);
  }
  if (ended.thread.joinable()) ended.thread.join();
  ended.core->kill_socket(ended.params->client_socket);  // when no thread could be had
  delete ended.params;
}

// ---- the server --------------------------------------------------------------------------------

TcpServer::TcpServer() {
  const auto data = std::make_shared<TcpServerData>();
  data_ = data.get();
  data_->self = data;
}

TcpServer::~TcpServer() { const std::shared_ptr<TcpServerData> last = std::move(data_->self); }

bool TcpServer::init() { return data_->init() != nullptr; }

void TcpServer::set_socket_core(SocketCore* core) {
  std::shared_ptr<SocketCore> other;
  const Guard guard(data_->mutex);
  if (data_->core.get() == core) return;
  other.reset(core);
  data_->core.swap(other);
}

SocketCore* TcpServer::get_socket_core() const { return data_->get_core().get(); }

int TcpServer::run(unsigned short port) {
  const std::shared_ptr<TcpServerData> data = data_->self;
  OpenSocket opened;
  if (!data->open_port(port, &opened)) return 0;
  do {
    Socket* client = data->accept(opened);
    if (client && data->take_message(opened, client)) return 1;
  } while (!data->stop_requested);
  return 0;
}

int TcpServer::run_v2(unsigned short port) {
  const std::shared_ptr<TcpServerData> data = data_->self;
  OpenSocket opened;
  if (!data->open_port(port, &opened)) return 0;
  for (;;) {
    Socket* client = data->accept(opened);
    if (data->stop_requested) {
      if (client) data->leave_open(opened, client);
      return 0;
    }
    if (client && !data->begin_conversation(data, opened, client, this)) {
      LogMgr::get().tracef_error(
          "ORV::TcpServer::run() - unable to handle new TCP connection: max client threads (%d) "
          "reached.",
          TcpServerData::MAX_CONVERSATIONS);
    }
    if (data->stop_requested) return 0;
  }
}

// ---- settings ----------------------------------------------------------------------------------

void TcpServer::set_client_proc(TcpServerClientProc proc, void* user_data) {
  const Guard guard(data_->mutex);
  data_->client_proc = proc;
  data_->user_data = user_data;
}

void TcpServer::set_client_proc_v2(TcpServerClientProcV2 proc, void* user_data) {
  const Guard guard(data_->mutex);
  data_->client_proc_v2 = proc;
  data_->user_data = user_data;
}

void TcpServer::threaded_client_callback(bool state) {
  const Guard guard(data_->mutex);
  data_->threaded = state;
}

void TcpServer::set_stop_message(const char* message) {
  if (!message) return;
  constexpr std::size_t room = sizeof(data_->stop_message);
  char text[room] = {};
  const auto length = static_cast<unsigned int>(strnlen(message, room - 1));
  std::memcpy(text, message, length);
  {
    const Guard guard(data_->mutex);
    std::memcpy(data_->stop_message, text, room);
    data_->stop_message_length = length;
  }
  LogMgr::get().tracef_debug(
      "ORV::TcpServer::set_stop_message() - new stop message: %s - length=%d.", text,
      static_cast<int>(length));
}

const char* TcpServer::get_stop_message() const { return data_->stop_message; }

// ---- stopping ----------------------------------------------------------------------------------

bool TcpServer::send_stop_message() {
  const std::shared_ptr<SocketCore> core = data_->get_core();
  if (!core) return false;
  data_->shut_down_conversations(true);
  Socket* const knock = core->create_socket(SOCKET_TYPE_STREAM, SOCKET_PROTOCOL_TCP);
  if (!knock) return false;
  const int port = data_->request_stop();
  if (port >= 0) {
    platform::limit_connect_time(knock->handle, KNOCK_MS);
    // The name needs a file, which cannot be opened when descriptors have run out.
    const auto number = static_cast<unsigned short>(port);
    if (!core->connect_socket(knock, "localhost", number)) {
      core->connect_socket(knock, "127.0.0.1", number);
    }
  }
  core->kill_socket(knock);
  return port >= 0;
}

bool TcpServer::stop() {
  cleanup_client_threads();
  std::shared_ptr<SocketCore> core;
  {
    const Guard guard(data_->mutex);
    core.swap(data_->core);
  }
  if (core) core->stop();
  return true;
}

bool TcpServer::cleanup_client_threads() {
  if (!data_->get_core()) return false;
  data_->shut_down_conversations(false);  // all at first: some may wait for others
  for (Conversation& conversation : data_->conversations) data_->end_conversation(conversation);
  return true;
}

// ---- state -------------------------------------------------------------------------------------

bool TcpServer::is_running() const { return data_->running; }

int TcpServer::getid() const { return data_->id; }

Socket* TcpServer::get_server_socket() const {
  const Guard guard(data_->mutex);
  return data_->server.socket;
}

const TcpServerClientThreadParams* TcpServer::get_client_thread(int place) const {
  if (place < 0 || place >= TcpServerData::MAX_CONVERSATIONS) return nullptr;
  const Guard guard(data_->mutex);
  return data_->conversations[place].params;
}

}  // namespace orv
