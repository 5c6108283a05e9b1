#include "core/platform/platform.h"

#include <gtest/gtest.h>

#include <climits>
#include <ctime>
#include <string>

namespace orv::platform {
namespace {

TEST(Platform, ReleaseNumbersAreTheFirstThree) {
  struct {
    const char* release;
    int numbers[3];
  } const cases[] = {{"6.1.0-13-amd64", {6, 1, 0}},
                     {"5.15.167", {5, 15, 167}},
                     {"4.4-custom", {4, 4, 0}},
                     {"7", {7, 0, 0}},
                     {"", {0, 0, 0}},
                     {"rolling", {0, 0, 0}},
                     {"6..2", {6, 0, 0}},
                     {"-1.2.3", {0, 0, 0}},
                     {"99999999999.1", {INT_MAX, 1, 0}}};
  for (const auto& c : cases) {
    int numbers[3] = {-1, -1, -1};
    parse_release(c.release, numbers[0], numbers[1], numbers[2]);
    EXPECT_EQ(numbers[0], c.numbers[0]) << c.release;
    EXPECT_EQ(numbers[1], c.numbers[1]) << c.release;
    EXPECT_EQ(numbers[2], c.numbers[2]) << c.release;
  }
}

TEST(Platform, DistributionNameStandsUnderName) {
  EXPECT_EQ(parse_os_release("PRETTY_NAME=\"x\"\nNAME=\"Debian GNU/Linux\"\nID=debian\n"),
            "Debian GNU/Linux");
  EXPECT_EQ(parse_os_release("NAME=Fedora"), "Fedora");
  EXPECT_EQ(parse_os_release("NAME='A B'\n"), "A B");
  EXPECT_EQ(parse_os_release("NAME=\"\n"), "\"");
  EXPECT_EQ(parse_os_release("VERSION_NAME=no\n"), "");
  EXPECT_EQ(parse_os_release(""), "");
  EXPECT_EQ(parse_os_release("NAME="), "");
}

TEST(Platform, LocalTimeIsThatOfTheCalendar) {
  const std::time_t before = std::time(nullptr);
  const LocalTime now = read_local_time();
  std::tm parts{};
  parts.tm_year = now.year - 1900;
  parts.tm_mon = now.month - 1;
  parts.tm_mday = now.day;
  parts.tm_hour = now.hour;
  parts.tm_min = now.minute;
  parts.tm_sec = now.second;
  parts.tm_isdst = -1;
  EXPECT_NEAR(static_cast<double>(std::mktime(&parts)), static_cast<double>(before), 2.0);
  EXPECT_GE(now.millisecond, 0);
  EXPECT_LT(now.millisecond, 1000);
}

TEST(Platform, CounterAndTickAgree) {
  const std::uint32_t tick = read_tick();
  const std::uint64_t counter = read_counter();
  sleep_milliseconds(20);
  const auto by_tick = static_cast<double>(read_tick() - tick);
  const auto by_counter = static_cast<double>(read_counter() - counter) * 1000.0 /
                          static_cast<double>(COUNTER_FREQUENCY);
  EXPECT_GE(by_counter, 20.0);
  EXPECT_NEAR(by_tick, by_counter, 50.0);
}

TEST(Platform, OpensLibrariesByNameAndTellsWhyNot) {
  std::string error;
  void* library = open_library("libm.so.6", &error);
  ASSERT_NE(library, nullptr) << error;
  EXPECT_NE(find_symbol(library, "cos"), nullptr);
  EXPECT_EQ(find_symbol(library, "orv_no_such_symbol"), nullptr);
  close_library(library);
  EXPECT_EQ(open_library("liborv_no_such_library.so", &error), nullptr);
  EXPECT_NE(error, "");
  EXPECT_EQ(find_symbol(nullptr, "cos"), nullptr);
  close_library(nullptr);
}

}  // namespace
}  // namespace orv::platform
