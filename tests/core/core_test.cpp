#include <orv/core/core.h>

#include <orv/core/kernel.h>
#include <orv/core/log_mgr.h>
#include <orv/core/plugin_mgr.h>
#include <orv/core/utils.h>

#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace orv {
namespace {

using test::TempFolder;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> received;

void receive(const char* text, void* user_data) {
  received.emplace_back(text);
  if (user_data) ++*static_cast<int*>(user_data);
}

class CoreTest : public testing::Test {
 protected:
  CoreTest() {
    core::stop(nullptr);
    received.clear();
  }
  ~CoreTest() override { core::stop(nullptr); }
  TempFolder folder;
};

TEST_F(CoreTest, StartWithoutAnythingCreatesNoFile) {
  const auto old = std::filesystem::current_path();
  std::filesystem::current_path(folder.path());
  EXPECT_TRUE(core::start(nullptr, true, nullptr, nullptr));
  core::log_trace("nowhere");
  EXPECT_TRUE(core::stop("bye"));
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
  std::filesystem::current_path(old);
}

TEST_F(CoreTest, CallbackReceivesEachPassingMessage) {
  int calls = 0;
  core::start(nullptr, true, receive, &calls);
  core::log_trace("info");
  core::log_trace_warning("warning");
  core::log_trace_error("error");
  core::log_trace_debug("debug");
  core::log_trace(nullptr);
  EXPECT_THAT(received, ElementsAre("info", "warning", "error"));
  EXPECT_EQ(calls, 3);
}

TEST_F(CoreTest, StartLinesAreSilentAtTheDefaultThreshold) {
  core::start(nullptr, true, receive, nullptr);
  EXPECT_THAT(received, IsEmpty());
}

TEST_F(CoreTest, StartLinesAppearAtDebugLevel) {
  core::log_start(nullptr);
  core::log_get_default()->set_trace_level_threshold(LOG_LEVEL_DEBUG);
  core::start(nullptr, true, receive, nullptr);
  ASSERT_FALSE(received.empty());
  EXPECT_EQ(received.front(), "Orvane Core v0.26.1 (codename: Slatewing) is starting up...");
  EXPECT_EQ(received.back(), "Orvane Core started up ok.");
  received.clear();
  core::stop(nullptr);
  ASSERT_FALSE(received.empty());
  EXPECT_EQ(received.back(), "Orvane Core stopped ok.");
}

TEST_F(CoreTest, SecondStartResetsCallbackAndFlagAndKeepsTheRest) {
  const std::string first = folder.file("first.txt");
  core::start(first.c_str(), true, receive, nullptr);
  const unsigned int plugins = PluginMgr::get()->get_num_plugins();
  Log* log = core::log_get_default();
  EXPECT_TRUE(core::start(folder.file("second.txt").c_str(), false, nullptr, nullptr));
  EXPECT_EQ(PluginMgr::get()->get_num_plugins(), plugins);
  EXPECT_EQ(core::log_get_default(), log);
  EXPECT_FALSE(log->is_enabled());
  log->enable();
  core::log_trace("text");
  EXPECT_THAT(received, IsEmpty());  // the callback is gone
  EXPECT_TRUE(folder.has("first.txt"));
  EXPECT_FALSE(folder.has("second.txt"));
}

TEST_F(CoreTest, StopTracesTheLastMessageAndClosesTheLog) {
  core::start(nullptr, true, receive, nullptr);
  EXPECT_TRUE(core::stop("last words"));
  EXPECT_THAT(received, ElementsAre("last words"));
  EXPECT_EQ(core::log_get_default(), nullptr);
  EXPECT_TRUE(core::stop("nobody hears"));
  EXPECT_EQ(received.size(), 1u);
}

TEST_F(CoreTest, LogStaysDisabledUntilItIsEnabled) {
  EXPECT_TRUE(core::log_start(nullptr));
  core::log_set_callback(receive, nullptr);
  core::log_trace("lost");
  core::log_enable(true);
  core::log_trace("heard");
  core::log_enable(false);
  core::log_trace("lost");
  EXPECT_THAT(received, ElementsAre("heard"));
  EXPECT_TRUE(core::log_stop());
}

TEST_F(CoreTest, LogOperationsDoNothingWithoutALog) {
  EXPECT_EQ(core::log_get_default(), nullptr);
  core::log_enable(true);
  core::log_set_callback(receive, nullptr);
  core::log_trace("a");
  core::log_trace_warning("b");
  core::log_trace_error("c");
  core::log_trace_debug("d");
  EXPECT_THAT(received, IsEmpty());
}

TEST_F(CoreTest, NamesOfTheEngine) {
  EXPECT_STREQ(core::get_engine_codename(), "Slatewing");
  EXPECT_EQ(core::get_platform_bitness(), 64);
  core::start(nullptr, false, nullptr, nullptr);
  EXPECT_STREQ(core::get_platform_name(), "Linux");
  core::stop(nullptr);
  EXPECT_STREQ(core::get_platform_name(), "Linux");  // survives a stop
}

TEST(CoreDeathTest, PlatformNameIsEmptyBeforeTheFirstStart) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_EXIT(std::exit(*core::get_platform_name() ? 1 : 0), testing::ExitedWithCode(0), "");
}

TEST_F(CoreTest, SeveralStartsAndStopsMakeNewPluginsEachTime) {
  int last_id = 0;
  for (int i = 0; i < 4; ++i) {
    EXPECT_TRUE(core::start(nullptr, false, nullptr, nullptr));
    ASSERT_EQ(PluginMgr::get()->get_num_plugins(), 5u);
    const int id = PluginMgr::get()->get_plugin_by_index(0)->get_id();
    EXPECT_GT(id, last_id);
    last_id = id;
    EXPECT_TRUE(core::stop(nullptr));
    EXPECT_EQ(PluginMgr::get()->get_num_plugins(), 0u);
  }
}

}  // namespace
}  // namespace orv
