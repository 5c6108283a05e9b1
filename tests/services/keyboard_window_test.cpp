// Keys pressed at a real X server.
#include <orv/services/keyboard.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <signal.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "services/key_rows.h"
#include "services/keyboard_data.h"
#include "support/log_capture.h"
#include "support/x11_keys.h"

namespace orv::test {
namespace {

using Keys = std::vector<int>;

constexpr int CAPS = 66, NUM = 77;  // at the X server
constexpr int CHANGED = 255;        // carries nothing by itself
constexpr unsigned long SLEEP = 0x1008ff2f;

void do_tool(const std::string& arguments) {
  ASSERT_EQ(std::system(("timeout 30 xdotool " + arguments).c_str()), 0) << arguments;
}

// Three digits, since a single one would be the key that carries it.
std::string name_of(int x11) {
  char text[8];
  std::snprintf(text, sizeof(text), "%03d", x11);
  return text;
}

void press(int x11) { do_tool("keydown " + name_of(x11)); }
void release(int x11) { do_tool("keyup " + name_of(x11)); }

class KeyboardWindow : public testing::Test {
 protected:
  void SetUp() override {
    if (!x11.ok()) GTEST_SKIP() << "no X server";
    if (std::system("xdotool version >/dev/null 2>&1") != 0) GTEST_SKIP() << "no xdotool";
    keyboard.init();
    ASSERT_EQ(keys_down(), Keys{}) << "a key was left down";
  }

  int byte(int vk) { return KeyboardData::of(keyboard).key_buffer[vk]; }
  Keys keys_down() {
    Keys down;
    keyboard.update_key_buffer();
    for (int vk = 0; vk < 256; ++vk) {
      if (keyboard.is_key_down_raw(static_cast<unsigned int>(vk))) down.push_back(vk);
    }
    return down;
  }
  // The server hears of a key a moment after the tool has ended.
  Keys wait_for_keys(Keys expected) {
    std::sort(expected.begin(), expected.end());
    for (int i = 0; i < 500 && keys_down() != expected; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return keys_down();
  }
  bool wait_for_lock(int vk, int on) {
    for (int i = 0; i < 500 && (byte(vk) & 1) != on; ++i) {
      std::this_thread::sleep_for(std::chrono::milliseconds(10));
      keyboard.update_key_buffer();
    }
    return (byte(vk) & 1) == on;
  }

  X11Keys x11;
  Keyboard keyboard;
};

// ---- every key -------------------------------------------------------------------------------

TEST_F(KeyboardWindow, SeesEveryMappedKeyComeAndGo) {
  for (const KeyRow& row : key_rows) {
    Keys expected = {row.vk};
    if (second_vk(row.vk)) expected.insert(expected.begin(), second_vk(row.vk));
    std::sort(expected.begin(), expected.end());
    press(row.x11);
    EXPECT_EQ(wait_for_keys(expected), expected) << row.name;
    EXPECT_TRUE(keyboard.is_key_down(row.key)) << row.name;
    release(row.x11);
    EXPECT_EQ(wait_for_keys({}), Keys{}) << row.name;
    EXPECT_FALSE(keyboard.is_key_down(row.key)) << row.name;
  }
  // The locks are as before after a second press.
  for (const int lock : {CAPS, NUM}) do_tool("key " + name_of(lock));
}

TEST_F(KeyboardWindow, EitherSideSetsTheKeyOfBoth) {
  const int sides[][5] = {{50, 62, 160, 161, 16}, {37, 105, 162, 163, 17}, {64, 108, 164, 165, 18}};
  for (const auto& [left, right, vk_left, vk_right, vk] : sides) {
    press(left);
    press(right);
    EXPECT_EQ(wait_for_keys({vk, vk_left, vk_right}), (Keys{vk, vk_left, vk_right}));
    release(left);
    EXPECT_EQ(wait_for_keys({vk, vk_right}), (Keys{vk, vk_right}));
    release(right);
    EXPECT_EQ(wait_for_keys({}), Keys{});
  }
}

TEST_F(KeyboardWindow, SeesManyKeysAtOnce) {
  Keys expected;
  for (int i = 0; i < 36; ++i) press(key_rows[i].x11);
  for (int i = 0; i < 36; ++i) expected.push_back(key_rows[i].vk);
  EXPECT_EQ(wait_for_keys(expected), expected);
  for (int i = 0; i < 36; ++i) release(key_rows[i].x11);
  EXPECT_EQ(wait_for_keys({}), Keys{});
}

TEST_F(KeyboardWindow, PadKeepsItsNumbersUnderNumLock) {
  do_tool("key " + name_of(NUM));
  EXPECT_TRUE(wait_for_lock(144, 1));
  press(90);
  EXPECT_EQ(wait_for_keys({96}), Keys{96});
  release(90);
  EXPECT_EQ(wait_for_keys({}), Keys{});
  do_tool("key " + name_of(NUM));
  EXPECT_TRUE(wait_for_lock(144, 0));
}

// ---- locks -----------------------------------------------------------------------------------

TEST_F(KeyboardWindow, LockKeysTurnTheirLowBitOnAndOff) {
  const int locks[][2] = {{CAPS, 20}, {NUM, 144}};
  for (const auto& [key, vk] : locks) {
    EXPECT_EQ(byte(vk), 0);
    do_tool("key " + name_of(key));
    EXPECT_TRUE(wait_for_lock(vk, 1)) << vk;
    EXPECT_EQ(byte(vk), 1);
    press(key);
    EXPECT_EQ(wait_for_keys({vk}), Keys{vk});
    EXPECT_EQ(byte(vk) & 0x80, 0x80);
    release(key);
    EXPECT_EQ(wait_for_keys({}), Keys{});
    EXPECT_TRUE(wait_for_lock(vk, 0)) << vk;
  }
}

// Common keyboards have the light of scroll lock, but no modifier that turns it on.
TEST_F(KeyboardWindow, LightsAreTheStatesOfTheLocks) {
  const int locks[] = {20, 144, 145};
  x11.set_light(3, true);
  EXPECT_TRUE(wait_for_lock(145, 1));
  for (const int vk : locks) EXPECT_EQ(byte(vk), vk == 145);
  x11.set_light(3, false);
  EXPECT_TRUE(wait_for_lock(145, 0));
}

// ---- other keyboards -------------------------------------------------------------------------

TEST_F(KeyboardWindow, FollowsChangesOfTheKeyboardsMap) {
  const std::vector<unsigned long> before = x11.symbols(CHANGED);
  for (const unsigned long symbol : {static_cast<unsigned long>('j'), 0xff8dul, SLEEP}) {
    x11.carry(CHANGED, {symbol});
    const int vk = symbol == 'j' ? 'J' : symbol == SLEEP ? 95 : 156;
    Keys expected = {vk};
    if (second_vk(vk)) expected.insert(expected.begin(), second_vk(vk));
    press(CHANGED);
    EXPECT_EQ(wait_for_keys(expected), expected) << symbol;
    release(CHANGED);
    EXPECT_EQ(wait_for_keys({}), Keys{});
  }
  x11.carry(CHANGED, before);
}

TEST_F(KeyboardWindow, KeysOfAnotherScriptCountByPlace) {
  const std::vector<unsigned long> before = x11.symbols(38);
  press(38);
  x11.carry(38, {'j'});
  EXPECT_EQ(wait_for_keys({74}), Keys{74});
  x11.carry(38, {0x6c6, 0x6e6});  // Cyrillic ef
  EXPECT_EQ(wait_for_keys({65}), Keys{65});
  release(38);
  x11.carry(38, before);
  EXPECT_EQ(wait_for_keys({}), Keys{});
}

// ---- presses since last asked ----------------------------------------------------------------

TEST_F(KeyboardWindow, VirtualKeyStateTellsOfAPressOnce) {
  keyboard.set_virtual_key_state(65, 0);
  EXPECT_EQ(byte(65), 0);
  press(38);
  EXPECT_EQ(wait_for_keys({65}), Keys{65});
  EXPECT_TRUE(keyboard.set_virtual_key_state(65, 0));
  EXPECT_EQ(byte(65), 1);
  EXPECT_FALSE(keyboard.is_key_down(KEY_A));
  EXPECT_TRUE(keyboard.set_virtual_key_state(65, 1));
  EXPECT_EQ(byte(65), 0);
  release(38);
  EXPECT_EQ(wait_for_keys({}), Keys{});
}

// ---- servers that come and go ----------------------------------------------------------------

// An X server of the test's own, with DISPLAY pointing at it.
class OwnServer {
 public:
  OwnServer() {
    if (const char* old = std::getenv("DISPLAY")) old_ = old;
    int ends[2];
    if (pipe(ends) != 0) return;
    process_ = fork();
    if (process_ == 0) {
      const std::string command = "exec Xvfb -displayfd " + std::to_string(ends[1]) +
                                  " -screen 0 64x64x24 -nolisten tcp -noreset 2>/dev/null";
      execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
      _exit(127);
    }
    close(ends[1]);
    char text[16] = {};
    const ssize_t size = read(ends[0], text, sizeof(text) - 1);
    close(ends[0]);
    if (size > 0) setenv("DISPLAY", (":" + std::to_string(std::atoi(text))).c_str(), 1);
    ok_ = size > 0;
  }
  ~OwnServer() {
    end();
    if (old_.empty()) {
      unsetenv("DISPLAY");
    } else {
      setenv("DISPLAY", old_.c_str(), 1);
    }
  }
  OwnServer(const OwnServer&) = delete;
  OwnServer& operator=(const OwnServer&) = delete;

  bool ok() const { return ok_; }
  void end() {
    if (process_ <= 0) return;
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
    process_ = 0;
  }

 private:
  std::string old_;
  pid_t process_ = 0;
  bool ok_ = false;
};

TEST_F(KeyboardWindow, ServerThatGoesAwayLeavesTheBuffer) {
  OwnServer server;
  if (!server.ok()) GTEST_SKIP() << "no Xvfb";
  LogCapture log;
  Keyboard lonely;
  lonely.init();
  press(38);
  for (int i = 0; i < 500 && !lonely.is_key_down(KEY_A); ++i) {
    std::this_thread::sleep_for(std::chrono::milliseconds(10));
    lonely.update_key_buffer();
  }
  ASSERT_TRUE(lonely.is_key_down(KEY_A));
  server.end();
  for (int i = 0; i < 3; ++i) EXPECT_TRUE(lonely.update_key_buffer());
  EXPECT_TRUE(lonely.is_key_down(KEY_A));
  EXPECT_TRUE(lonely.set_virtual_key_state(66, 0));
  EXPECT_EQ(log.count("the X server went away"), 1) << log.text();
}

TEST_F(KeyboardWindow, EachKeyboardHasItsOwnConnection) {
  press(38);
  EXPECT_EQ(wait_for_keys({65}), Keys{65});
  for (int i = 0; i < 300; ++i) {
    Keyboard other;
    other.init();
    other.update_key_buffer();
    ASSERT_TRUE(other.is_key_down(KEY_A)) << i;
  }
  release(38);
  EXPECT_EQ(wait_for_keys({}), Keys{});
}

}  // namespace
}  // namespace orv::test
