#include <orv/core/utils.h>

#include <orv/gpu/gpu_enums.h>
#include <orv/image/pixel_format.h>

#include "support/temp_folder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/utsname.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace orv {
namespace {

using std::chrono::steady_clock;

double seconds_since(steady_clock::time_point start) {
  return std::chrono::duration<double>(steady_clock::now() - start).count();
}

// ---- identifiers -------------------------------------------------------------------------------

TEST(UtilsDeathTest, FirstIdIsTwoAndFirstIndexOne) {
  // Run in a process of its own, which starts from nothing.
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_EXIT(
      {
        const bool right = utils::gen_id() == 2 && utils::gen_id() == 3 && GenId() == 4 &&
                           utils::gen_index() == 1 && utils::gen_index() == 2;
        std::exit(right ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

TEST(UtilsDeathTest, PlatformTextsAreEmptyBeforeTheyAreGathered) {
  testing::GTEST_FLAG(death_test_style) = "threadsafe";
  EXPECT_EXIT(
      {
        const bool empty = !*utils::get_platform_name() && !*utils::get_linux_sysname() &&
                           !*utils::get_linux_machine();
        std::exit(empty && *utils::get_os_name() ? 0 : 1);
      },
      testing::ExitedWithCode(0), "");
}

TEST(Utils, IdsOfSeveralThreadsAreUnique) {
  std::vector<std::vector<int>> ids(4);
  std::vector<std::thread> threads;
  for (std::vector<int>& own : ids) {
    threads.emplace_back([&own] {
      for (int i = 0; i < 1000; ++i) own.push_back(utils::gen_id());
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::set<int> all;
  for (const std::vector<int>& own : ids) all.insert(own.begin(), own.end());
  EXPECT_EQ(all.size(), 4000u);
}

// ---- threads and clocks ------------------------------------------------------------------------

TEST(Utils, SleepTakesItsTime) {
  const auto start = steady_clock::now();
  utils::thread_sleep(30);
  EXPECT_GE(seconds_since(start), 0.029);
  ThreadSleep(0);
}

TEST(Utils, MicroAndNanoSleepsReturnAtOnce) {
  const auto start = steady_clock::now();
  utils::thread_sleep_micro(1000000);
  utils::thread_sleep_nano(4000000000u);
  ThreadSleep_micro(1000000);
  ThreadSleep_nano(4000000000u);
  EXPECT_LT(seconds_since(start), 0.5);
}

TEST(Utils, ThreadExitEndsTheCallingThread) {
  bool went_on = false;
  std::thread([&went_on] {
    const volatile bool leave = true;
    if (leave) utils::thread_exit();
    went_on = true;
  }).join();
  EXPECT_FALSE(went_on);
}

TEST(Utils, CpuClockCountsTheProcessorTime) {
  const float before = utils::cpu_clock_get_msec();
  const auto start = steady_clock::now();
  while (utils::cpu_clock_get_msec() < before + 20.0f && seconds_since(start) < 20.0) {
  }
  EXPECT_GE(utils::cpu_clock_get_msec(), before + 20.0f);
  EXPECT_NEAR(static_cast<double>(utils::cpu_clock_get_sec()),
              static_cast<double>(utils::cpu_clock_get_msec()) / 1000.0, 0.02);
}

// ---- platform ----------------------------------------------------------------------------------

TEST(Utils, PlatformIsSixtyFourBitLinux) {
  EXPECT_TRUE(utils::init_platform_information());
  EXPECT_TRUE(utils::init_platform_information());
  EXPECT_STREQ(utils::get_platform_name(), "Linux");
  EXPECT_EQ(utils::get_platform_bitness(), 64);
  EXPECT_TRUE(utils::is_64_bit_app());
  EXPECT_TRUE(Is64BitApp());
  EXPECT_EQ(utils::get_platform_type(), ORV_PLATFORM_TYPE_LINUX);
  EXPECT_EQ(ORV_PLATFORM_TYPE_WINDOWS, 1);
  EXPECT_EQ(ORV_PLATFORM_TYPE_OSX, 2);
  EXPECT_EQ(ORV_PLATFORM_TYPE_LINUX, 3);
}

TEST(Utils, SystemTextsAreThoseOfUname) {
  utils::init_platform_information();
  utsname names{};
  ASSERT_EQ(uname(&names), 0);
  EXPECT_STREQ(utils::get_linux_sysname(), names.sysname);
  EXPECT_STREQ(utils::get_linux_release(), names.release);
  EXPECT_STREQ(utils::get_linux_version(), names.version);
  EXPECT_STREQ(utils::get_linux_machine(), names.machine);
  EXPECT_STRNE(utils::get_os_name(), "");
  EXPECT_EQ(std::to_string(utils::get_os_version_major()) + "." +
                std::to_string(utils::get_os_version_minor()),
            std::string(names.release)
                .substr(0, std::strcspn(std::strchr(names.release, '.') + 1, ".-") + 1 +
                               std::strcspn(names.release, ".")));
  EXPECT_GE(utils::get_os_version_build(), 0);
  EXPECT_STREQ(utils::get_osx_codename(), "");
  EXPECT_STREQ(utils::get_osx_kern_osrelease(), "");
}

TEST(Utils, AppDirectoryHoldsTheProgramAndEndsInItsSeparator) {
  char path[4096] = {};
  ASSERT_GT(readlink("/proc/self/exe", path, sizeof path - 1), 0);
  const std::string directory = utils::get_app_directory();
  ASSERT_FALSE(directory.empty());
  EXPECT_EQ(directory.back(), '/');
  EXPECT_EQ(std::string(path).substr(0, directory.size()), directory);
  EXPECT_EQ(std::string(path).find('/', directory.size()), std::string::npos);
  EXPECT_EQ(utils::get_app_directory(), utils::get_app_directory());
}

TEST(Utils, OpenClCheckLeavesNothingLoaded) {
  EXPECT_EQ(utils::check_opencl_dylib(), utils::check_opencl_dylib());
}

TEST(Utils, OpenUrlRefusesNullAndEmptyText) {
  EXPECT_FALSE(utils::open_url(nullptr));
  EXPECT_FALSE(utils::open_url(""));
}

TEST(Utils, OpenUrlHandsTheTextOverAsOneArgumentAndIsTrueWhateverHappens) {
  test::TempFolder folder;
  // A stand-in for the desktop's program, first in the search path.
  const std::string program = folder.write("xdg-open",
                                           "#!/bin/sh\nprintf '%s|%s' \"$#\" \"$1\" > \"$0.tmp\"\n"
                                           "mv \"$0.tmp\" \"$0.out\"\n");
  ASSERT_EQ(system(("chmod 755 " + program).c_str()), 0);
  const std::string old_path = getenv("PATH");
  setenv("PATH", (folder.path() + ":" + old_path).c_str(), 1);
  const char* url = "http://example.com/?a=1&b=$(id); touch x";
  EXPECT_TRUE(utils::open_url(url));
  const auto start = steady_clock::now();
  while (!folder.has("xdg-open.out") && seconds_since(start) < 20.0) utils::thread_sleep(5);
  EXPECT_EQ(folder.read("xdg-open.out"), std::string("1|") + url);

  setenv("PATH", "/no/such/folder", 1);
  EXPECT_TRUE(utils::open_url("http://example.com"));
  setenv("PATH", old_path.c_str(), 1);
  // No child is left for the host to wait for.
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1);
}

TEST(Utils, RendererModulesAreNotThere) {
  EXPECT_FALSE(utils::check_vulkan_support());
  EXPECT_FALSE(utils::check_d3d12_support());
  EXPECT_EQ(utils::load_plugin(nullptr), nullptr);
  EXPECT_EQ(utils::load_plugin("plugin_orv_test_missing"), nullptr);
  EXPECT_EQ(utils::unload_plugin(nullptr), 0);
}

// ---- texts -------------------------------------------------------------------------------------

struct CleanupCase {
  const char* name;
  std::string before;
  std::string after;
};

std::string with_crs(std::string text) {
  for (char& c : text) c = c == '\n' ? '\r' : c;
  return text;
}

TEST(Utils, CleanupTurnsLineEndsIntoBlanks) {
  const CleanupCase cases[] = {
      {"lone line feed", "a\nb", "a b"},
      {"first character", "\nab", " ab"},
      {"backslash before it moves up", "a\\\nb", "a \\b"},
      {"moved backslash counts for the next", "\\\n\nb", "  \\b"},
      {"several", "\n\n\n", "   "},
      {"backslash first", "\\\n", " \\"},
      {"only a backslash", "\\", "\\"},
      {"nothing to do", "abc", "abc"},
      {"empty", "", ""},
  };
  for (const CleanupCase& c : cases) {
    std::string lf = c.before;
    utils::cleanup_lf(lf.data());
    EXPECT_EQ(lf, c.after) << c.name;
    std::string cr = with_crs(c.before);
    utils::cleanup_crlf(cr.data());
    EXPECT_EQ(cr, c.after) << c.name;
  }
  utils::cleanup_lf(nullptr);
  utils::cleanup_crlf(nullptr);
}

TEST(Utils, CleanupTouchesOnlyItsOwnCharacter) {
  char text[] = "a\r\nb";
  utils::cleanup_crlf(text);
  EXPECT_STREQ(text, "a \nb");
  char other[] = "a\r\nb";
  utils::cleanup_lf(other);
  EXPECT_STREQ(other, "a\r b");
}

TEST(ExtractFilenameFromPath, SplitsBehindTheLastSeparator) {
  char dir[32] = {};
  char name[32] = {};
  EXPECT_TRUE(ExtractFilenameFromPath("a/b/c.txt", dir, sizeof dir, name, sizeof name));
  EXPECT_STREQ(dir, "a/b/");
  EXPECT_STREQ(name, "c.txt");
  std::memset(dir, 0, sizeof dir);
  EXPECT_TRUE(ExtractFilenameFromPath("a/b\\c.txt", dir, sizeof dir, name, sizeof name));
  EXPECT_STREQ(dir, "a/b\\");
  EXPECT_STREQ(name, "c.txt");
}

TEST(ExtractFilenameFromPath, NullPathIsTrueAndWritesNothing) {
  char name[4] = "xyz";
  EXPECT_TRUE(ExtractFilenameFromPath(nullptr, name, 4, name, 4));
  EXPECT_STREQ(name, "xyz");
}

TEST(ExtractFilenameFromPath, EmptyPathAndPathWithoutSeparatorAreFalse) {
  char name[4] = "xyz";
  EXPECT_FALSE(ExtractFilenameFromPath("", nullptr, 0, name, 4));
  EXPECT_FALSE(ExtractFilenameFromPath("file.txt", nullptr, 0, name, 4));
  EXPECT_STREQ(name, "xyz");
}

TEST(ExtractFilenameFromPath, DirIsLeftAloneWhenItWouldNotLeaveRoom) {
  char dir[8] = "xxxxxxx";
  char name[16] = {};
  EXPECT_TRUE(ExtractFilenameFromPath("a/b/c.txt", dir, 2, name, sizeof name));
  EXPECT_STREQ(dir, "xxxxxxx");
  EXPECT_STREQ(name, "c.txt");
  EXPECT_TRUE(ExtractFilenameFromPath("a/b/c.txt", dir, 4, nullptr, 0));
  EXPECT_STREQ(dir, "xxxxxxx");
  EXPECT_TRUE(ExtractFilenameFromPath("a/b/c.txt", dir, 5, nullptr, 0));
  EXPECT_STREQ(dir, "a/b/xxx");  // no terminator of its own
}

TEST(ExtractFilenameFromPath, NameIsCutWithoutTerminatorOrPaddedWithZeros) {
  char name[8] = "xxxxxxx";
  EXPECT_TRUE(ExtractFilenameFromPath("d/abcdef", nullptr, 0, name, 3));
  EXPECT_EQ(std::string(name, 8), std::string("abcxxxx\0", 8));
  EXPECT_TRUE(ExtractFilenameFromPath("d/", nullptr, 0, name, 7));
  EXPECT_EQ(std::string(name, 8), std::string(8, '\0'));
}

TEST(ConvertInt2Pf, KnowsOneToTwelve) {
  for (int i = 1; i <= 12; ++i) EXPECT_EQ(ConvertInt2Pf(i), i);
  for (const int other : {0, 13, 30, -1, 1000}) EXPECT_EQ(ConvertInt2Pf(other), PF_UNKNOWN);
}

TEST(ShaderTypeToString, NamesTheStages) {
  const char* names[][2] = {{"vertex", "Vertex"},       {"pixel", "Pixel"},
                            {"geometry", "Geometry"},   {"tess control", "Tess control"},
                            {"tess eval", "Tess eval"}, {"compute", "Compute"}};
  for (int i = 0; i < 6; ++i) {
    EXPECT_STREQ(Shader_Type_To_String(static_cast<GPU_SHADER_TYPE>(i), false), names[i][0]);
    EXPECT_STREQ(Shader_Type_To_String(static_cast<GPU_SHADER_TYPE>(i), true), names[i][1]);
  }
  for (const int other : {-1, 6, 7, 100}) {
    EXPECT_STREQ(Shader_Type_To_String(static_cast<GPU_SHADER_TYPE>(other), true), "");
  }
}

}  // namespace
}  // namespace orv
