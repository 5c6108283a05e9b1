// A program without a window that does what it is told over TCP, for instance by
//   printf 'camera 0 4 9' | nc localhost PORT
// "camera X Y Z" moves the camera, "screenshot" writes the picture, the stop message ends it all.
//
//   --port N             listens on this port; 0, as without options, lets the system choose
//   --output FILE.png    where screenshots go; without --port it gives the commands to itself
//   --profile core|compat
#include <orv/orv.h>

#include <atomic>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <mutex>
#include <string>
#include <thread>

#include "common/torus_scene.h"

using namespace examples;

namespace {

constexpr Size size{480, 360};

// Takes commands from the server's thread to the one that draws, and answers back. OpenGL belongs
// to the thread of its context.
class Mailbox {
 public:
  // Waits until the command is carried out.
  std::string ask(const std::string& command) {
    std::unique_lock<std::mutex> lock(mutex_);
    command_ = command;
    asked_ = true;
    answered_.wait(lock, [this] { return !asked_; });
    return answer_;
  }
  // Carries out what is asked for, if anything is.
  template <class Obey>
  void look_in(Obey obey) {
    const std::lock_guard<std::mutex> lock(mutex_);
    if (!asked_) return;
    answer_ = obey(command_);
    asked_ = false;
    answered_.notify_one();
  }

 private:
  std::mutex mutex_;
  std::condition_variable answered_;
  bool asked_ = false;
  std::string command_;
  std::string answer_;
};

void send_text(orv::SocketCore* core, orv::Socket* socket, std::string text) {
  core->send_socket(socket, reinterpret_cast<unsigned char*>(text.data()),
                    static_cast<int>(text.size()));
}

// On the server's thread. A zero stands behind the message; `size` counts it, too.
void on_message(orv::SocketCore* core, orv::Socket* client, unsigned char* data, int,
                void* mailbox) {
  const std::string command = reinterpret_cast<const char*>(data);
  send_text(core, client, static_cast<Mailbox*>(mailbox)->ask(command) + "\n");
}

std::string obey(const std::string& command, orv::Renderer* renderer, orv::Camera& camera,
                 const char* picture) {
  float x = 0.0f, y = 0.0f, z = 0.0f;
  if (std::sscanf(command.c_str(), "camera %f %f %f", &x, &y, &z) == 3) {
    camera.set_position(x, y, z);
    return "ok";
  }
  if (command.rfind("screenshot", 0) != 0) return "unknown command";
  return write_picture(renderer, picture, size) ? "ok" : "the picture cannot be written";
}

// Clients see what they have said before: each command waits for its answer and the end.
void give_commands(unsigned short port) {
  for (const char* command : {"camera 3.6 5.2 5.6", "screenshot", "STOP_ORV_TCP_SERVER"}) {
    orv::SocketCore core;
    orv::Socket* socket = core.create_socket(orv::SOCKET_TYPE_STREAM, orv::SOCKET_PROTOCOL_TCP);
    unsigned char answer[64];
    if (core.connect_socket(socket, "127.0.0.1", port)) send_text(&core, socket, command);
    while (core.receive_socket(socket, answer, sizeof(answer)) > 0) {
    }
    core.kill_socket(socket);
  }
}

// True when a client has stopped it; false when the port cannot be had.
bool serve(orv::Renderer* renderer, orv::Mesh* torus, unsigned short port, const char* picture,
           bool alone) {
  orv::Camera camera;
  camera.build_projection_persp(32.0f, 4.0f / 3.0f, 0.1f, 100.0f, true);
  camera.set_viewport(0, 0, size.width, size.height);
  camera.set_position(0.0f, 4.0f, 8.0f);

  Mailbox mailbox;
  orv::TcpServer server;
  server.set_client_proc(&on_message, &mailbox);
  std::atomic<bool> ended{false};
  bool stopped = false;
  std::thread loop([&] {
    stopped = server.run(port) == 1;
    ended = true;
  });
  std::thread guest;
  while (!server.is_running() && !ended) orv::utils::thread_sleep(1);
  if (port == 0 && !ended) {
    const unsigned short chosen = server.get_server_socket()->local.port;
    std::printf("listening on port %d\n", chosen);
    std::fflush(stdout);
    if (alone) guest = std::thread(give_commands, chosen);
  }
  while (!ended) {
    camera.set_lookat(0.0f, 0.0f, 0.0f);
    camera.bind(renderer, true, true, true, true, true);
    renderer->clear_color_depth_buffers_rgba(0.20f, 0.24f, 0.31f, 1.0f, 1.0f);
    torus->render(renderer, nullptr);
    mailbox.look_in([&](const auto& command) { return obey(command, renderer, camera, picture); });
    orv::utils::thread_sleep(5);  // no screen sets the pace
  }
  loop.join();
  if (guest.joinable()) guest.join();
  server.stop();
  return stopped;
}

}  // namespace

int main(int argc, char** argv) {
  const HostOptions options(argc, argv);
  const char* port = nullptr;
  for (int i = 1; i + 1 < argc; i += 2) {
    if (!std::strcmp(argv[i], "--port")) port = argv[i + 1];
  }
  orv::core::start(nullptr, true, nullptr, nullptr);
  orv::Renderer* renderer = orv::Kernel::get()->load_core_opengl_renderer_plugin(true);
  renderer->initialize();
  bool done = false;
  {
    orv::OffscreenWindow surface(size.width, size.height);
    orv::RenderWindowData data;
    data.native_window = surface.native_handle();
    data.gl_major = 3;  // the highest version there is
    data.core_profile = options.core;
    std::snprintf(data.msaa, sizeof(data.msaa), "4X MSAA");
    orv::RenderWindow* window = renderer->render_window_alloc();
    if (renderer->render_window_create_context(window, &data, nullptr) && renderer->start()) {
      orv::Mesh* torus = create_torus(renderer, orv::vec4(0.17f, 0.62f, 0.62f, 1.0f));
      done =
          serve(renderer, torus, static_cast<unsigned short>(port ? std::atoi(port) : 0),
                options.picture ? options.picture : "remote_control.png", options.picture && !port);
      torus->release(renderer, nullptr);
      renderer->stop();
    }
    renderer->render_window_free_all();
  }
  orv::core::stop(nullptr);
  return done ? 0 : 1;
}
