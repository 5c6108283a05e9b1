#pragma once

#include <gtest/gtest.h>
#include <orv/services/socket_core.h>

#include <memory>

#include "support/tcp_client.h"

namespace orv::test {

struct KillSocket {
  void operator()(Socket* socket) const { SocketCore().kill_socket(socket); }
};
/// A socket that is killed at the end.
using HeldSocket = std::unique_ptr<Socket, KillSocket>;

/// A server's side of a connection and its client.
class SocketCorePair : public testing::Test {
 protected:
  void SetUp() override {
    server_.reset(core_.create_tcp_server_socket(0));
    ASSERT_TRUE(server_);
    ASSERT_TRUE(client_.connect(server_->local.port));
    peer_.reset(core_.accept_connection(server_.get()));
    ASSERT_TRUE(peer_);
    ASSERT_GT(peer_->handle, 0);
  }

  SocketCore core_;
  HeldSocket server_;
  HeldSocket peer_;
  TcpClient client_;
};

}  // namespace orv::test
