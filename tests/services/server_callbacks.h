#pragma once

#include <orv/services/socket_core.h>

#include <condition_variable>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "services/server_run.h"
#include "support/tcp_client.h"

namespace orv::test {

inline const std::string stop_text = "STOP_ORV_TCP_SERVER";

/// What a callback was given.
class Inbox {
 public:
  struct Message {
    std::string text;  // with the added zero
    std::thread::id thread;
  };

  static void receive(SocketCore* core, Socket* client, unsigned char* data, int size,
                      void* user_data) {
    Inbox* inbox = static_cast<Inbox*>(user_data);
    {
      const std::lock_guard<std::mutex> guard(inbox->mutex_);
      inbox->messages_.push_back(
          {std::string(reinterpret_cast<char*>(data), static_cast<std::size_t>(size)),
           std::this_thread::get_id()});
    }
    std::string answer = "got it";
    core->send_socket(client, reinterpret_cast<unsigned char*>(answer.data()), 6);
  }

  std::vector<Message> messages() const {
    const std::lock_guard<std::mutex> guard(mutex_);
    return messages_;
  }
  std::vector<std::string> texts() const {
    std::vector<std::string> all;
    for (const Message& message : messages()) all.push_back(message.text);
    return all;
  }

 private:
  mutable std::mutex mutex_;
  std::vector<Message> messages_;
};

/// Sends a message and waits until the server closes the connection. What it answered.
inline std::string tell(int port, const std::string& message) {
  TcpClient client;
  if (!client.connect(port) || !client.send(message)) return "no connection";
  return client.receive(100);
}

inline std::string zero_ended(const std::string& text) { return text + '\0'; }

/// Gives back what comes in until the client ends.
inline void echo(SocketCore* core, Socket* client, void*, void*) {
  unsigned char data[256];
  int size = 0;
  while ((size = core->receive_socket(client, data, 256)) > 0) {
    if (core->send_socket(client, data, size) != size) return;
  }
}

/// A gate that callbacks wait at.
class Gate {
 public:
  void open() {
    const std::lock_guard<std::mutex> guard(mutex_);
    open_ = true;
    moved_.notify_all();
  }
  void wait() {
    std::unique_lock<std::mutex> lock(mutex_);
    ++waiting_;
    moved_.wait_for(lock, WAIT_LIMIT, [&] { return open_; });
    --waiting_;
  }
  int waiting() {
    const std::lock_guard<std::mutex> guard(mutex_);
    return waiting_;
  }

 private:
  std::mutex mutex_;
  std::condition_variable moved_;
  bool open_ = false;
  int waiting_ = 0;
};

}  // namespace orv::test
