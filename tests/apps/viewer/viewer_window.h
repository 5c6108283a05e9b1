#pragma once

#include <fcntl.h>
#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>

#include "support/read_picture.h"
#include "support/temp_folder.h"

namespace orv::test {

/// How the program is started in a window. The toolkit's libraries leak a little, some of it from
/// modules that are unloaded by then; runs off screen look for leaks.
inline constexpr const char* start_in_window =
    "ASAN_OPTIONS=detect_leaks=0 exec '" VIEWER_PROGRAM "' ";

/// The viewer in a window on the screen of DISPLAY, run in a folder, with hands on mouse and keys.
class ViewerWindow {
 public:
  /// Arguments are words of the shell.
  ViewerWindow(const TempFolder& folder, const std::string& arguments) : folder_(folder) {
    std::remove(folder_.file("out.txt").c_str());
    const std::string command =
        "cd '" + folder.path() + "' && " + start_in_window + arguments + " >out.txt 2>err.txt";
    process_ = fork();
    if (process_ == 0) {
      execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
      _exit(127);
    }
    window_ = ask("timeout 60 xdotool search --sync --onlyvisible --pid " +
                  std::to_string(process_) + " --name orv-viewer | head -n 1");
    do_tool("mousemove --window " + window_ + " 150 100");
  }
  ~ViewerWindow() {
    if (process_ <= 0) return;
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
  }
  ViewerWindow(const ViewerWindow&) = delete;
  ViewerWindow& operator=(const ViewerWindow&) = delete;

  bool is_open() const { return !window_.empty(); }
  std::string out() const { return folder_.read("out.txt"); }
  std::string err() const { return folder_.read("err.txt"); }

  void press(const std::string& key) { do_tool("key " + key); }
  /// Holds the key until it has repeated a few times.
  void hold(const std::string& key) {
    do_tool("keydown " + key);
    std::this_thread::sleep_for(std::chrono::milliseconds(1200));
    do_tool("keyup " + key);
  }
  void drag(int x, int y) {
    do_tool("mousedown 1");
    for (int i = 0; i < 8; ++i) {
      do_tool("mousemove_relative -- " + std::to_string(x / 8) + " " + std::to_string(y / 8));
    }
    do_tool("mouseup 1");
  }
  void turn_wheel(bool forth) { do_tool(forth ? "click 4" : "click 5"); }
  void resize(int width, int height) {
    do_tool("windowsize --sync " + window_ + " " + std::to_string(width) + " " +
            std::to_string(height));
  }

  /// Has the viewer save what it shows now, which ends all that was asked for before.
  Picture shoot() {
    const std::size_t before = count_saved();
    press("s");
    if (!wait_until([&] { return count_saved() > before; })) return {};
    const std::string said = out();
    const std::size_t begin = said.rfind("saved ") + 6;
    return read_picture(folder_.file(said.substr(begin, said.find('\n', begin) - begin)));
  }

  /// Waits for a text on the standard output.
  bool wait_for(const std::string& text) {
    return wait_until([&] { return out().find(text) != std::string::npos; });
  }
  bool wait_for_error(const std::string& text) {
    return wait_until([&] { return err().find(text) != std::string::npos; });
  }
  /// The exit code; -1 when it does not end.
  int wait_for_end() {
    int status = 0;
    if (!wait_until([&] { return waitpid(process_, &status, WNOHANG) == process_; })) return -1;
    process_ = 0;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

 private:
  static std::string ask(const std::string& command) {
    std::string answer;
    std::FILE* pipe = popen(command.c_str(), "r");
    if (!pipe) return answer;
    char text[64];
    while (std::fgets(text, sizeof(text), pipe)) answer += text;
    pclose(pipe);
    while (!answer.empty() && answer.back() == '\n') answer.pop_back();
    return answer;
  }
  static void do_tool(const std::string& arguments) {
    if (std::system(("xdotool " + arguments).c_str()) != 0)
      std::fprintf(stderr, "xdotool %s failed\n", arguments.c_str());
    std::this_thread::sleep_for(std::chrono::milliseconds(30));
  }
  static bool wait_until(const std::function<bool()>& done) {
    for (int tenths = 0; tenths < 600; ++tenths) {
      if (done()) return true;
      std::this_thread::sleep_for(std::chrono::milliseconds(100));
    }
    return false;
  }
  std::size_t count_saved() const {
    const std::string said = out();
    std::size_t count = 0;
    for (std::size_t at = said.find("saved "); at != std::string::npos;
         at = said.find("saved ", at + 1))
      ++count;
    return count;
  }

  const TempFolder& folder_;
  pid_t process_ = 0;
  std::string window_;
};

}  // namespace orv::test
