#include <orv/core/log_mgr.h>

#include <orv/core/log.h>

#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace orv {
namespace {

using test::TempFolder;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> received;

void receive(const char* text, void*) { received.emplace_back(text); }

class LogMgrTest : public testing::Test {
 protected:
  LogMgrTest() {
    manager.stop();
    received.clear();
  }
  ~LogMgrTest() override { manager.stop(); }

  void start_with_callback() {
    manager.start(nullptr, true);
    manager.get_default_log()->set_trace_callback(receive, nullptr);
  }

  LogMgr& manager = LogMgr::get();
  TempFolder folder;
};

TEST_F(LogMgrTest, IsOneObject) { EXPECT_EQ(&LogMgr::get(), LogMgr::getptr()); }

TEST_F(LogMgrTest, HasNoDefaultLogWhileStopped) {
  EXPECT_EQ(manager.get_default_log(), nullptr);
  EXPECT_FALSE(manager.is_started());
  EXPECT_TRUE(manager.stop());
}

TEST_F(LogMgrTest, StartWithANameWritesThere) {
  EXPECT_TRUE(manager.start(folder.file("log.txt").c_str(), true));
  manager.get_default_log()->set_trace_header_mode(2);
  manager.trace("text");
  EXPECT_EQ(folder.read("log.txt"), "text\n");
}

TEST_F(LogMgrTest, StartWithoutANameHasACallbackAndNoFile) {
  start_with_callback();
  manager.trace("text");
  EXPECT_THAT(received, ElementsAre("text"));
  EXPECT_STREQ(manager.get_default_log()->get_filename(), "");
}

TEST_F(LogMgrTest, SecondStartIgnoresItsName) {
  manager.start(folder.file("first.txt").c_str(), true);
  Log* log = manager.get_default_log();
  EXPECT_TRUE(manager.start(folder.file("second.txt").c_str(), false));
  EXPECT_EQ(manager.get_default_log(), log);
  EXPECT_TRUE(log->is_enabled());
  manager.trace("text");
  EXPECT_TRUE(folder.has("first.txt"));
  EXPECT_FALSE(folder.has("second.txt"));
}

TEST_F(LogMgrTest, LevelsOfTheDefaultLogUseSquareTags) {
  manager.start(folder.file("log.txt").c_str(), true);
  manager.get_default_log()->set_trace_level_threshold(LOG_LEVEL_DEBUG);
  manager.trace("1");
  manager.trace_warning("2");
  manager.trace_error("3");
  manager.trace_debug("4");
  manager.tracef("%d", 5);
  manager.tracef_warning("%d", 6);
  manager.tracef_error("%d", 7);
  manager.tracef_debug("%d", 8);
  std::vector<std::string> tails;
  std::string text = folder.read("log.txt");
  for (size_t end = text.find('\n'); end != std::string::npos; end = text.find('\n')) {
    tails.push_back(text.substr(text.find(')', 0) + 1, end - text.find(')', 0) - 1));
    text.erase(0, end + 1);
  }
  EXPECT_THAT(tails, ElementsAre("[ ]1", "[!]2", "[*]3", "[d]4", "[ ]5", "[!]6", "[*]7", "[d]8"));
}

TEST_F(LogMgrTest, CallbackOfFormattedLinesReceivesTheTextAlone) {
  start_with_callback();
  manager.tracef("%s", "text");
  manager.simple_trace("simple");
  manager.simple_tracef("%d", 3);
  EXPECT_THAT(received, ElementsAre("text", "simple\n", "3\n"));
}

TEST_F(LogMgrTest, DebugLinesReachNoOutletAtFirst) {
  start_with_callback();
  manager.trace_debug("a");
  manager.tracef_debug("b");
  EXPECT_THAT(received, IsEmpty());
}

TEST_F(LogMgrTest, AllTraceOperationsIgnoreNullAndAMissingLog) {
  const char* null = nullptr;
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
  const auto call_all = [&](const char* text) {
    manager.trace(text);
    manager.trace_warning(text);
    manager.trace_error(text);
    manager.trace_debug(text);
    manager.tracef(text);
    manager.tracef_warning(text);
    manager.tracef_error(text);
    manager.tracef_debug(text);
    manager.simple_trace(text);
    manager.simple_tracef(text);
  };
#pragma GCC diagnostic pop
  call_all("no log");
  call_all(null);
  start_with_callback();
  call_all(null);
  EXPECT_THAT(received, IsEmpty());
  call_all("x");
  EXPECT_EQ(received.size(), 8u);  // the two debug lines are below the threshold
}

TEST_F(LogMgrTest, LongTextIsCutAt65535Bytes) {
  start_with_callback();
  manager.tracef("%s", std::string(70000, 'x').c_str());
  ASSERT_EQ(received.size(), 1u);
  EXPECT_EQ(received[0].size(), 65535u);
}

TEST_F(LogMgrTest, StopDestroysAllLogsAndStartMakesANewOne) {
  manager.start(folder.file("log.txt").c_str(), true);
  manager.create_log(folder.file("other.txt").c_str(), true);
  EXPECT_TRUE(manager.stop());
  EXPECT_EQ(manager.get_default_log(), nullptr);
  start_with_callback();
  EXPECT_STREQ(manager.get_default_log()->get_filename(), "");
}

TEST_F(LogMgrTest, CreateLogWithoutANameReturnsTheDefaultLogAndChangesNothing) {
  EXPECT_EQ(manager.create_log(nullptr, true), nullptr);
  manager.start(nullptr, false);
  EXPECT_EQ(manager.create_log(nullptr, true), manager.get_default_log());
  EXPECT_FALSE(manager.get_default_log()->is_enabled());
}

TEST_F(LogMgrTest, CreatedLogIsOpenedByItsFirstLine) {
  const std::string path = folder.file("own.txt");
  Log* log = manager.create_log(path.c_str(), true);
  EXPECT_FALSE(folder.has("own.txt"));
  log->simple_trace(LOG_LEVEL_INFO, "text");
  EXPECT_EQ(folder.read("own.txt"), "text\n");
  EXPECT_TRUE(manager.kill_log(log));
}

TEST_F(LogMgrTest, SecondLogOfANameTakesTheEntry) {
  Log* first = manager.create_log("name", true);
  Log* second = manager.create_log("name", true);
  EXPECT_NE(first, second);
  EXPECT_TRUE(manager.kill_log(second));
  // The first one is the host's to use and stands in no list.
  first->set_trace_callback(receive, nullptr);
  first->write_to_file(false);
  first->set_filename("");
  first->trace(LOG_LEVEL_INFO, "alive");
  EXPECT_THAT(received, ElementsAre("alive"));
  EXPECT_FALSE(manager.kill_log(first));
}

TEST_F(LogMgrTest, KillLogGoesByTheName) {
  EXPECT_FALSE(manager.kill_log(nullptr));
  Log* log = manager.create_log("name", true);
  log->set_filename("another name");
  EXPECT_FALSE(manager.kill_log(log));
  log->set_filename("name");
  EXPECT_TRUE(manager.kill_log(log));
}

TEST_F(LogMgrTest, KillingTheDefaultLogLeavesNoneBehind) {
  start_with_callback();
  EXPECT_TRUE(manager.kill_log(manager.get_default_log()));
  EXPECT_EQ(manager.get_default_log(), nullptr);
  manager.trace("nobody listens");
  EXPECT_TRUE(manager.is_started());
  EXPECT_TRUE(manager.start(nullptr, true));
  EXPECT_EQ(manager.get_default_log(), nullptr);
}

TEST_F(LogMgrTest, KillingAnOrphanTakesItsNamesakeOutOfTheList) {
  Log* first = manager.create_log("name", true);
  Log* second = manager.create_log("name", true);
  EXPECT_TRUE(manager.kill_log(first));
  EXPECT_FALSE(manager.kill_log(second));
  EXPECT_TRUE(second->is_enabled());
}

}  // namespace
}  // namespace orv
