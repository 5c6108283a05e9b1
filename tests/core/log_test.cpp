#include <orv/core/log.h>

#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <thread>
#include <vector>

namespace orv {
namespace {

using test::TempFolder;
using testing::ElementsAre;
using testing::IsEmpty;

std::vector<std::string> received;

void receive(const char* text, void* user_data) {
  received.emplace_back(text);
  if (user_data) *static_cast<int*>(user_data) += 1;
}

/// An enabled log whose callback fills `received`.
class LogTest : public testing::Test {
 protected:
  LogTest() {
    received.clear();
    log.set_trace_callback(receive, nullptr);
    log.enable();
  }
  TempFolder folder;
  Log log;
};

constexpr const char* STAMP =
    "[0-9]+/[0-9]+/[0-9]+@[0-9][0-9]:[0-9][0-9]:[0-9][0-9]:[0-9][0-9][0-9]";

// ---- tests before a line -----------------------------------------------------------------------

TEST_F(LogTest, StartsDisabledAtInfoLevelWithoutAFile) {
  Log fresh;
  EXPECT_FALSE(fresh.is_enabled());
  EXPECT_EQ(fresh.get_trace_level_threshold(), LOG_LEVEL_INFO);
  EXPECT_STREQ(fresh.get_filename(), "");
}

TEST_F(LogTest, DropsLinesAboveTheThreshold) {
  log.trace(LOG_LEVEL_DEBUG, "debug");
  log.tracef(LOG_LEVEL_DEBUG, "debug");
  log.simple_trace(LOG_LEVEL_DEBUG, "debug");
  log.simple_tracef(LOG_LEVEL_DEBUG, "debug");
  EXPECT_THAT(received, IsEmpty());
  log.set_trace_level_threshold(LOG_LEVEL_DEBUG);
  log.trace(LOG_LEVEL_DEBUG, "debug");
  EXPECT_THAT(received, ElementsAre("debug"));
}

TEST_F(LogTest, DisabledBlocksTheCallbackAsWellAsTheFile) {
  log.set_filename(folder.file("log.txt").c_str());
  log.disable();
  log.trace(LOG_LEVEL_ERROR, "lost");
  log.simple_trace(LOG_LEVEL_ERROR, "lost");
  EXPECT_THAT(received, IsEmpty());
  EXPECT_FALSE(folder.has("log.txt"));
}

TEST_F(LogTest, IgnoresNullTexts) {
  const char* no_format = nullptr;
  log.trace(LOG_LEVEL_INFO, nullptr);
  log.simple_trace(LOG_LEVEL_INFO, nullptr);
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wformat-security"
  log.tracef(LOG_LEVEL_INFO, no_format);
  log.simple_tracef(LOG_LEVEL_INFO, no_format);
#pragma GCC diagnostic pop
  EXPECT_THAT(received, IsEmpty());
}

TEST_F(LogTest, UnknownLevelsPassByValueAndCarryNoTag) {
  log.set_filename(folder.file("log.txt").c_str());
  log.trace(static_cast<LOG_LEVEL>(0), "zero");
  log.trace(static_cast<LOG_LEVEL>(-7), "negative");
  log.trace(static_cast<LOG_LEVEL>(9), "too high");
  EXPECT_THAT(received, ElementsAre("zero", "negative"));
  EXPECT_THAT(folder.read("log.txt"), testing::HasSubstr("(0000000001)zero\n"));
}

// ---- lines -------------------------------------------------------------------------------------

TEST_F(LogTest, TraceWritesDateNumberAndSquareTagWithoutBlanks) {
  log.set_filename(folder.file("log.txt").c_str());
  log.set_trace_level_threshold(LOG_LEVEL_DEBUG);
  log.trace(LOG_LEVEL_ERROR, "a");
  log.trace(LOG_LEVEL_WARNING, "b");
  log.trace(LOG_LEVEL_INFO, "c");
  log.trace(LOG_LEVEL_DEBUG, "d");
  const std::string stamp = STAMP;
  EXPECT_TRUE(std::regex_match(
      folder.read("log.txt"),
      std::regex(stamp + R"(\(0000000001\)\[\*\]a\n)" + stamp + R"(\(0000000002\)\[!\]b\n)" +
                 stamp + R"(\(0000000003\)\[ \]c\n)" + stamp + R"(\(0000000004\)\[d\]d\n)")));
  EXPECT_THAT(received, ElementsAre("a", "b", "c", "d"));
}

TEST_F(LogTest, DateHasNoZeroPadding) {
  log.tracef(LOG_LEVEL_INFO, "x");
  ASSERT_EQ(received.size(), 1u);
  EXPECT_FALSE(std::regex_search(received[0], std::regex("/0[0-9]")));
}

TEST_F(LogTest, TracefWritesAngleTagAndHandsTheWholeLineToTheCallback) {
  log.set_filename(folder.file("log.txt").c_str());
  log.set_trace_level_threshold(LOG_LEVEL_DEBUG);
  log.tracef(LOG_LEVEL_ERROR, "%s %d", "number", 1);
  log.tracef(LOG_LEVEL_WARNING, "b");
  log.tracef(LOG_LEVEL_INFO, "c");
  log.tracef(LOG_LEVEL_DEBUG, "d");
  const std::string stamp = STAMP;
  ASSERT_EQ(received.size(), 4u);
  EXPECT_TRUE(std::regex_match(received[0], std::regex(stamp + R"(\(0000000001\) <\*> number 1)")));
  EXPECT_TRUE(std::regex_match(received[1], std::regex(stamp + R"(\(0000000002\) <!> b)")));
  EXPECT_TRUE(std::regex_match(received[2], std::regex(stamp + R"(\(0000000003\) < > c)")));
  EXPECT_TRUE(std::regex_match(received[3], std::regex(stamp + R"(\(0000000004\) <d> d)")));
  EXPECT_EQ(folder.read("log.txt"),
            received[0] + "\n" + received[1] + "\n" + received[2] + "\n" + received[3] + "\n");
}

TEST_F(LogTest, HeaderModeOneWritesTheTimeAndNoTag) {
  log.set_filename(folder.file("log.txt").c_str());
  log.set_trace_header_mode(1);
  log.trace(LOG_LEVEL_INFO, "text");
  EXPECT_TRUE(
      std::regex_match(folder.read("log.txt"), std::regex(R"(\(\d\d:\d\d:\d\d:\d\d\d\)text\n)")));
  log.tracef(LOG_LEVEL_INFO, "text");
  EXPECT_TRUE(std::regex_match(received.back(), std::regex(R"(\(\d\d:\d\d:\d\d:\d\d\d\)text)")));
}

TEST_F(LogTest, HeaderModeTwoWritesOnlyTheText) {
  log.set_filename(folder.file("log.txt").c_str());
  log.set_trace_header_mode(2);
  log.trace(LOG_LEVEL_INFO, "text");
  log.tracef(LOG_LEVEL_ERROR, "text");
  EXPECT_EQ(folder.read("log.txt"), "text\ntext\n");
  EXPECT_THAT(received, ElementsAre("text", "text"));
}

TEST_F(LogTest, SimpleLinesHaveNoHeaderAndDoNotCount) {
  log.set_filename(folder.file("log.txt").c_str());
  log.simple_trace(LOG_LEVEL_INFO, "one");
  log.simple_tracef(LOG_LEVEL_INFO, "%d", 2);
  EXPECT_EQ(folder.read("log.txt"), "one\n2\n");
  EXPECT_THAT(received, ElementsAre("one\n", "2\n"));
  log.tracef(LOG_LEVEL_INFO, "headed");
  EXPECT_THAT(received.back(), testing::HasSubstr("(0000000001)"));
}

TEST_F(LogTest, FormattedTextIsCutAt65535Bytes) {
  log.set_trace_header_mode(2);
  const std::string huge(70000, 'x');
  log.tracef(LOG_LEVEL_INFO, "%s", huge.c_str());
  log.simple_tracef(LOG_LEVEL_INFO, "%s", huge.c_str());
  log.trace(LOG_LEVEL_INFO, huge.c_str());
  ASSERT_EQ(received.size(), 3u);
  EXPECT_EQ(received[0].size(), 65535u);
  EXPECT_EQ(received[1].size(), 65536u);  // with its end of line
  EXPECT_EQ(received[2].size(), 70000u);  // not formatted
}

TEST_F(LogTest, TextIsNeverTakenForAFormat) {
  log.trace(LOG_LEVEL_INFO, "100%s %n");
  log.simple_trace(LOG_LEVEL_INFO, "%s");
  EXPECT_THAT(received, ElementsAre("100%s %n", "%s\n"));
}

TEST_F(LogTest, CallbackReceivesItsUserData) {
  int calls = 0;
  log.set_trace_callback(receive, &calls);
  log.trace(LOG_LEVEL_INFO, "a");
  log.simple_trace(LOG_LEVEL_INFO, "b");
  EXPECT_EQ(calls, 2);
}

TEST_F(LogTest, TerminalLinesBeginWithAnEndOfLineAndTheTime) {
  log.send_to_terminal(true);
  testing::internal::CaptureStdout();
  log.trace(LOG_LEVEL_INFO, "text");
  EXPECT_TRUE(std::regex_match(testing::internal::GetCapturedStdout(),
                               std::regex(R"(\n\(\d\d:\d\d:\d\d:\d\d\d\) text)")));
  testing::internal::CaptureStdout();
  log.tracef(LOG_LEVEL_INFO, "text %d", 7);
  EXPECT_TRUE(std::regex_match(testing::internal::GetCapturedStdout(),
                               std::regex(R"(\n\[\d\d:\d\d:\d\d\] text 7)")));
  testing::internal::CaptureStdout();
  log.simple_trace(LOG_LEVEL_INFO, "text");
  EXPECT_EQ(testing::internal::GetCapturedStdout(), "\ntext");
}

// ---- file --------------------------------------------------------------------------------------

TEST_F(LogTest, FileIsCreatedByTheFirstLineThatPasses) {
  log.set_filename(folder.file("log.txt").c_str());
  log.trace(LOG_LEVEL_DEBUG, "dropped");
  EXPECT_FALSE(folder.has("log.txt"));
  log.trace(LOG_LEVEL_INFO, "written");
  EXPECT_TRUE(folder.has("log.txt"));
}

TEST_F(LogTest, OpenCreatesTheFileAtOnce) {
  EXPECT_TRUE(log.open(folder.file("log.txt").c_str(), false));
  EXPECT_TRUE(folder.has("log.txt"));
  EXPECT_TRUE(Log().open(nullptr, false));
}

TEST_F(LogTest, LineAfterCloseOpensAgainAndTruncates) {
  log.set_trace_header_mode(2);
  log.open(folder.file("log.txt").c_str(), false);
  log.trace(LOG_LEVEL_INFO, "first");
  EXPECT_TRUE(log.close());
  log.trace(LOG_LEVEL_INFO, "second");
  EXPECT_EQ(folder.read("log.txt"), "second\n");
}

TEST_F(LogTest, AppendModeKeepsWhatWasWritten) {
  log.set_trace_header_mode(2);
  folder.write("log.txt", "before\n");
  log.open(folder.file("log.txt").c_str(), true);
  log.trace(LOG_LEVEL_INFO, "first");
  log.close();
  log.trace(LOG_LEVEL_INFO, "second");
  log.close();
  log.set_append_mode(false);
  EXPECT_EQ(folder.read("log.txt"), "before\nfirst\nsecond\n");
  log.trace(LOG_LEVEL_INFO, "third");
  EXPECT_EQ(folder.read("log.txt"), "third\n");
}

TEST_F(LogTest, OpenOnAnOpenLogStoresTheNameAndKeepsTheStream) {
  log.set_trace_header_mode(2);
  log.open(folder.file("old.txt").c_str(), false);
  log.open(folder.file("new.txt").c_str(), false);
  log.trace(LOG_LEVEL_INFO, "text");
  EXPECT_EQ(log.get_filename(), folder.file("new.txt"));
  EXPECT_EQ(folder.read("old.txt"), "text\n");
  EXPECT_FALSE(folder.has("new.txt"));
  log.close();
  log.trace(LOG_LEVEL_INFO, "next");
  EXPECT_EQ(folder.read("new.txt"), "next\n");
}

TEST_F(LogTest, FileThatCannotBeOpenedDropsTextInSilence) {
  EXPECT_TRUE(log.open(folder.file("no/such/folder/log.txt").c_str(), false));
  log.trace(LOG_LEVEL_INFO, "text");
  EXPECT_THAT(received, ElementsAre("text"));
  EXPECT_TRUE(log.close());
}

TEST_F(LogTest, FullDiskIsSilent) {
  log.set_filename("/dev/full");
  log.trace(LOG_LEVEL_INFO, "text");
  EXPECT_THAT(received, ElementsAre("text"));
}

TEST_F(LogTest, SwitchedOffFileIsCreatedAndStaysEmpty) {
  log.set_filename(folder.file("log.txt").c_str());
  log.write_to_file(false);
  log.trace(LOG_LEVEL_INFO, "text");
  EXPECT_TRUE(folder.has("log.txt"));
  EXPECT_EQ(folder.read("log.txt"), "");
  EXPECT_THAT(received, ElementsAre("text"));
}

TEST_F(LogTest, NullNameIsIgnored) {
  log.set_filename("name");
  log.set_filename(nullptr);
  EXPECT_STREQ(log.get_filename(), "name");
}

// ---- threads -----------------------------------------------------------------------------------

Log* nested_log = nullptr;

TEST_F(LogTest, CallbackMayTraceToTheSameLog) {
  nested_log = &log;
  log.set_filename(folder.file("log.txt").c_str());
  log.set_trace_header_mode(2);
  log.set_trace_callback(
      [](const char* text, void*) {
        if (std::string(text) == "outer") nested_log->tracef(LOG_LEVEL_INFO, "inner");
      },
      nullptr);
  log.trace(LOG_LEVEL_INFO, "outer");
  EXPECT_EQ(folder.read("log.txt"), "inner\nouter\n");
}

TEST_F(LogTest, LinesOfSeveralThreadsStayWholeAndAreAllCounted) {
  log.set_filename(folder.file("log.txt").c_str());
  log.set_trace_callback(nullptr, nullptr);
  std::vector<std::thread> threads;
  for (int t = 0; t < 4; ++t) {
    threads.emplace_back([this, t] {
      for (int i = 0; i < 50; ++i) log.tracef(LOG_LEVEL_INFO, "thread %d line %d end", t, i);
    });
  }
  for (std::thread& thread : threads) thread.join();
  const std::string text = folder.read("log.txt");
  const std::regex line(R"(\((\d{10})\) < > thread \d line \d+ end\n)");
  const auto found =
      std::distance(std::sregex_iterator(text.begin(), text.end(), line), std::sregex_iterator());
  EXPECT_EQ(found, 200);
  EXPECT_NE(text.find("(0000000200)"), std::string::npos);
}

TEST_F(LogTest, LockCanBeSwitchedOff) {
  log.use_thread_lock(false);
  log.trace(LOG_LEVEL_INFO, "a");
  log.simple_tracef(LOG_LEVEL_INFO, "b");
  EXPECT_THAT(received, ElementsAre("a", "b\n"));
}

}  // namespace
}  // namespace orv
