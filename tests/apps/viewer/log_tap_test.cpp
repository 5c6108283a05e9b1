#include "viewer/log_tap.h"

#include <gtest/gtest.h>
#include <orv/orv.h>

namespace viewer {
namespace {

class LogTapTest : public testing::Test {
 protected:
  LogTapTest() { tap_.start(false); }
  ~LogTapTest() override { orv::core::stop(nullptr); }

  LogTap tap_;
};

TEST_F(LogTapTest, FindsTheLastLineAboutTheFileWithoutItsName) {
  tap_.begin_keeping();
  orv::core::log_trace_debug("first reason: ./a.obj");
  orv::core::log_trace_debug("[plugin X] last reason: ./a.obj");
  orv::core::log_trace("about something else");
  EXPECT_EQ(tap_.end_keeping("./a.obj"), "last reason");
}

TEST_F(LogTapTest, TakesWhatStandsBehindTheName) {
  tap_.begin_keeping();
  orv::core::log_trace_debug("[plugin X] cannot read ./a.obj: too short");
  EXPECT_EQ(tap_.end_keeping("./a.obj"), "too short");
}

TEST_F(LogTapTest, PrefersTheErrorBeforeTheLineThatNamesTheFile) {
  tap_.begin_keeping();
  orv::core::log_trace_error("[plugin X] error: line 4 is bad\nand more");
  orv::core::log_trace_error("[plugin X] failed to load ./a.obj");
  EXPECT_EQ(tap_.end_keeping("./a.obj"), "line 4 is bad");
}

TEST_F(LogTapTest, ForgetsWhatWasSaidBeforeAndIsEmptyWithoutALine) {
  orv::core::log_trace_error("reason: ./a.obj");
  tap_.begin_keeping();
  EXPECT_EQ(tap_.end_keeping("./a.obj"), "");
  orv::core::log_trace_error("reason: ./a.obj");
  EXPECT_EQ(tap_.end_keeping("./a.obj"), "");
}

TEST_F(LogTapTest, DebugLinesAreMadeOnlyWhileSomebodyReadsThem) {
  EXPECT_EQ(orv::core::log_get_default()->get_trace_level_threshold(), orv::LOG_LEVEL_ERROR);
  tap_.begin_keeping();
  EXPECT_EQ(orv::core::log_get_default()->get_trace_level_threshold(), orv::LOG_LEVEL_DEBUG);
  tap_.end_keeping("");
  EXPECT_EQ(orv::core::log_get_default()->get_trace_level_threshold(), orv::LOG_LEVEL_ERROR);
}

}  // namespace
}  // namespace viewer
