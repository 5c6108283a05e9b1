#pragma once

#include <orv/services/socket.h>

#include <cstdint>

/// The system's sockets as the services need them. Each system has a file of its own that
/// implements this. Handles are positive, -1 is none; operations on it fail.
namespace orv::platform {

int open_socket(SOCKET_TYPE type, SOCKET_PROTOCOL protocol);
void close_socket(int handle);
/// Ends both directions; waiting calls return.
void shut_down_socket(int handle);

/// Binds to a port on all local addresses; port 0 becomes the one that the system chose.
bool bind_socket(int handle, unsigned short* port);
bool listen_socket(int handle, int backlog);
int accept_socket(int handle);

/// The first IPv4 address of a name or a dotted address, as the system stores it.
bool find_host(const char* host, std::uint32_t* address);
bool connect_socket(int handle, std::uint32_t address, unsigned short port);
/// A connect_socket() that waits fails after this time.
void limit_connect_time(int handle, int milliseconds);

// Bytes that were sent or received, -1 on failure.
int send_bytes(int handle, const unsigned char* data, int size);
int send_datagram(int handle, std::uint32_t address, unsigned short port, const unsigned char* data,
                  int size);
/// Waits for bytes; `peek` leaves them to be received again.
int receive_bytes(int handle, unsigned char* data, int size, bool peek);
/// `from`, when not null, receives the sender's port and dotted address.
int receive_datagram(int handle, unsigned char* data, int size, SockAddr* from);

/// False for unknown options, too.
bool switch_on(int handle, SOCKET_OPTION option);

}  // namespace orv::platform
