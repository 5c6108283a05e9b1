#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <orv/render/offscreen_window.h>
#include <orv/render/render_window.h>

#include <cstdio>
#include <string>
#include <thread>

#include "render/opengl/renderer_opengl.h"
#include "support/fake_back_end.h"
#include "support/fake_gl.h"
#include "support/log_capture.h"

namespace orv::test {
namespace {

using testing::ElementsAre;

class Windows : public testing::Test {
 protected:
  void SetUp() override { renderer_.use_context_back_end(&back_end_); }

  RenderWindowData make_data(int gl_major = 2) {
    RenderWindowData data;
    data.native_window = this;
    data.gl_major = gl_major;
    return data;
  }
  RenderWindow* make_window(int gl_major = 2, RenderWindow* shared = nullptr) {
    RenderWindow* window = renderer_.render_window_alloc();
    const RenderWindowData data = make_data(gl_major);
    EXPECT_TRUE(renderer_.render_window_create_context(window, &data, shared));
    return window;
  }
  static RenderWindowContextRecord* record_of(RenderWindow* window) {
    return static_cast<RenderWindowContextRecord*>(window->getrdata());
  }
  static void set_msaa(RenderWindowData* data, const char* text) {
    std::snprintf(data->msaa, sizeof(data->msaa), "%s", text);
  }

  // The fake numbers all kinds of objects together, drivers each kind from 1.
  void number_textures_alone() {
    gl_.remove_function("glGenBuffers");
    gl_.remove_function("glCreateShader");
  }

  FakeGl gl_;
  FakeBackEnd back_end_{gl_};
  RendererOpenGL renderer_;
};

// ---- the list --------------------------------------------------------------------------------

TEST_F(Windows, AllocatedWindowIsCurrentWithAZeroedRecord) {
  RenderWindow* window = renderer_.render_window_alloc();
  ASSERT_NE(window, nullptr);
  EXPECT_EQ(renderer_.get_current_render_window(), window);
  const auto* record =
      static_cast<RenderWindowContextRecord*>(renderer_.render_window_get_context_record(window));
  ASSERT_NE(record, nullptr);
  EXPECT_EQ(record, window->getrdata());
  EXPECT_EQ(record->context, nullptr);
  EXPECT_EQ(record->spare, nullptr);
  EXPECT_EQ(record->saved_context, nullptr);
  EXPECT_EQ(sizeof(*record), 24u);
}

TEST_F(Windows, FreeingTheLastOneClearsTheCurrentOne) {
  RenderWindow* window = renderer_.render_window_alloc();
  EXPECT_TRUE(renderer_.render_window_free(window));
  EXPECT_EQ(renderer_.get_current_render_window(), nullptr);
}

TEST_F(Windows, FreeingTheCurrentOneMakesTheLastRemainingOneCurrent) {
  RenderWindow* first = renderer_.render_window_alloc();
  RenderWindow* second = renderer_.render_window_alloc();
  EXPECT_TRUE(renderer_.render_window_free(second));
  EXPECT_EQ(renderer_.get_current_render_window(), first);
}

TEST_F(Windows, FreeingAnotherOneLeavesTheCurrentOne) {
  RenderWindow* first = renderer_.render_window_alloc();
  RenderWindow* second = renderer_.render_window_alloc();
  EXPECT_TRUE(renderer_.render_window_free(first));
  EXPECT_EQ(renderer_.get_current_render_window(), second);
}

TEST_F(Windows, FreeLeavesTheContextAlone) {
  RenderWindow* window = make_window();
  back_end_.calls.clear();
  EXPECT_TRUE(renderer_.render_window_free(window));
  EXPECT_THAT(back_end_.calls, ElementsAre());
  EXPECT_EQ(back_end_.contexts.size(), 1u);
}

TEST_F(Windows, FreeRefusesNullAndStrangers) {
  EXPECT_FALSE(renderer_.render_window_free(nullptr));
  RenderWindow stranger;
  EXPECT_FALSE(renderer_.render_window_free(&stranger));
}

TEST_F(Windows, FreeAllDestroysTheContexts) {
  make_window();
  make_window();
  EXPECT_EQ(back_end_.contexts.size(), 2u);
  EXPECT_TRUE(renderer_.render_window_free_all());
  EXPECT_TRUE(back_end_.contexts.empty());
  EXPECT_EQ(back_end_.num_open, 0);
  EXPECT_EQ(renderer_.get_current_render_window(), nullptr);
  EXPECT_TRUE(renderer_.render_window_free_all());
}

TEST_F(Windows, NullWindowIsRefusedEverywhere) {
  const RenderWindowData data = make_data();
  RenderWindow* window = renderer_.render_window_alloc();
  int interval = 0;
  EXPECT_FALSE(renderer_.render_window_create_context(nullptr, &data, nullptr));
  EXPECT_FALSE(renderer_.render_window_create_context(window, nullptr, nullptr));
  EXPECT_FALSE(renderer_.render_window_destroy_context(nullptr));
  EXPECT_FALSE(renderer_.render_window_make_current(nullptr, true));
  EXPECT_FALSE(renderer_.render_window_set_swap_interval(nullptr, true));
  EXPECT_FALSE(renderer_.render_window_get_swap_interval(nullptr, &interval));
  EXPECT_FALSE(renderer_.render_window_swap_buffers(nullptr));
  EXPECT_FALSE(renderer_.render_window_mark_context_created(nullptr));
  EXPECT_FALSE(renderer_.render_window_share_lists(nullptr, window));
  EXPECT_FALSE(renderer_.render_window_share_lists(window, nullptr));
  EXPECT_FALSE(renderer_.render_window_delay_before_swap(nullptr, 0.0f));
  EXPECT_FALSE(renderer_.render_window_save_current_context(nullptr));
  EXPECT_FALSE(renderer_.render_window_restore_saved_context(nullptr));
  EXPECT_EQ(renderer_.render_window_get_context_record(nullptr), nullptr);
}

TEST_F(Windows, WindowWithoutAContextDoesNothing) {
  RenderWindow* window = renderer_.render_window_alloc();
  int interval = 0;
  EXPECT_TRUE(renderer_.render_window_destroy_context(window));
  EXPECT_FALSE(renderer_.render_window_make_current(window, true));
  EXPECT_FALSE(renderer_.render_window_make_current(window, false));
  EXPECT_FALSE(renderer_.render_window_set_swap_interval(window, true));
  EXPECT_FALSE(renderer_.render_window_get_swap_interval(window, &interval));
  EXPECT_FALSE(renderer_.render_window_swap_buffers(window));
  EXPECT_FALSE(renderer_.render_window_restore_saved_context(window));
}

// ---- creation --------------------------------------------------------------------------------

TEST_F(Windows, CreatedWindowIsBoundAndHasItsExtensions) {
  RenderWindow* window = make_window();
  EXPECT_TRUE(window->context_created);
  EXPECT_NE(window->device, nullptr);
  EXPECT_EQ(window->native_handle, this);
  EXPECT_EQ(back_end_.current, record_of(window)->context);
  EXPECT_GT(renderer_.get_num_extensions(), 0u);
}

TEST_F(Windows, CreatingACreatedWindowDoesNothingAndIsTrue) {
  RenderWindow* window = make_window();
  void* context = record_of(window)->context;
  back_end_.calls.clear();
  RenderWindowData data = make_data(4);
  data.width = 99;
  EXPECT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
  EXPECT_TRUE(back_end_.calls.empty());
  EXPECT_EQ(record_of(window)->context, context);
  EXPECT_EQ(window->get_width(), 0);
}

TEST_F(Windows, MajorVersionOfTheDriverGoesIntoTheWindow) {
  EXPECT_EQ(make_window(2)->data.gl_major, 4);
}

TEST_F(Windows, LegacyContextStaysForVersionTwo) {
  RenderWindow* window = make_window(2);
  EXPECT_THAT(back_end_.calls,
              ElementsAre("choose 0", "set format", "create legacy", "bind", "bind"));
  EXPECT_FALSE(window->core_profile_granted);
}

TEST_F(Windows, RequestAboveTwoAsksForTheDriversOwnVersion) {
  gl_.set_version(4, 5);
  make_window(3);
  EXPECT_THAT(back_end_.calls, ElementsAre("choose 0", "set format", "create legacy", "bind",
                                           "unbind", "destroy", "create 4.5", "bind"));
  EXPECT_EQ(back_end_.last_request.major, 4);
  EXPECT_EQ(back_end_.last_request.minor, 5);
  EXPECT_TRUE(back_end_.last_request.with_profile);
  EXPECT_FALSE(back_end_.last_request.core);
  EXPECT_FALSE(back_end_.last_request.debug);
  EXPECT_EQ(back_end_.contexts.size(), 1u);
}

TEST_F(Windows, ProfileAndDebugArePassedOn) {
  RenderWindow* window = renderer_.render_window_alloc();
  RenderWindowData data = make_data(3);
  data.core_profile = true;
  data.debug_context = true;
  ASSERT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
  EXPECT_TRUE(back_end_.last_request.core);
  EXPECT_TRUE(back_end_.last_request.debug);
  EXPECT_TRUE(window->core_profile_granted);
}

TEST_F(Windows, ThreeZeroAndThreeOneHaveNoProfiles) {
  for (const int minor : {0, 1}) {
    gl_.set_version(3, minor);
    make_window(3);
    EXPECT_FALSE(back_end_.last_request.with_profile) << minor;
  }
  gl_.set_version(3, 2);
  make_window(3);
  EXPECT_TRUE(back_end_.last_request.with_profile);
}

TEST_F(Windows, RefusedCoreContextFallsBackToALegacyOne) {
  back_end_.refuses_attributes = true;
  RenderWindow* window = renderer_.render_window_alloc();
  RenderWindowData data = make_data(3);
  data.core_profile = true;
  LogCapture log;
  EXPECT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
  EXPECT_TRUE(window->context_created);
  EXPECT_FALSE(window->core_profile_granted);
  EXPECT_THAT(back_end_.calls,
              ElementsAre("choose 0", "set format", "create legacy", "bind", "unbind", "destroy",
                          "create 4.5", "create legacy", "bind"));
  EXPECT_EQ(back_end_.contexts.size(), 1u);
  EXPECT_TRUE(log.contains("refused"));
}

TEST_F(Windows, WithoutAttributesTheLegacyContextStays) {
  back_end_.attributes = false;
  RenderWindow* window = renderer_.render_window_alloc();
  RenderWindowData data = make_data(3);
  data.core_profile = true;
  EXPECT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
  EXPECT_FALSE(window->core_profile_granted);
  EXPECT_THAT(back_end_.calls,
              ElementsAre("choose 0", "set format", "create legacy", "bind", "bind"));
}

// ---- failures --------------------------------------------------------------------------------

struct Fault {
  const char* name;
  void (*apply)(FakeBackEnd*);
};

class WindowFaults : public Windows, public testing::WithParamInterface<Fault> {};

TEST_P(WindowFaults, LeaveTheWindowWithoutAContext) {
  GetParam().apply(&back_end_);
  RenderWindow* window = renderer_.render_window_alloc();
  const RenderWindowData data = make_data(3);
  EXPECT_FALSE(renderer_.render_window_create_context(window, &data, nullptr));
  EXPECT_FALSE(window->context_created);
  EXPECT_EQ(window->device, nullptr);
  EXPECT_EQ(record_of(window)->context, nullptr);
  EXPECT_TRUE(back_end_.contexts.empty());
  EXPECT_EQ(back_end_.num_open, 0);
  EXPECT_FALSE(renderer_.render_window_make_current(window, true));
}

INSTANTIATE_TEST_SUITE_P(
    All, WindowFaults,
    testing::Values(Fault{"NoDevice", [](FakeBackEnd* b) { b->opens = false; }},
                    Fault{"NoFormat", [](FakeBackEnd* b) { b->has_format = false; }},
                    Fault{"FormatNotSet", [](FakeBackEnd* b) { b->sets_format = false; }},
                    Fault{"NoLegacyContext", [](FakeBackEnd* b) { b->refuses_legacy = true; }},
                    Fault{"NotBound", [](FakeBackEnd* b) { b->binds = false; }}),
    [](const auto& one) { return std::string(one.param.name); });

TEST_F(Windows, NoNativeWindowIsAnErrorLine) {
  RenderWindow* window = renderer_.render_window_alloc();
  const RenderWindowData data;
  LogCapture log(LOG_LEVEL_ERROR);
  EXPECT_FALSE(renderer_.render_window_create_context(window, &data, nullptr));
  EXPECT_EQ(log.lines().size(), 1u);
}

// ---- multisampling ---------------------------------------------------------------------------

struct MsaaCase {
  const char* name;
  const char* text;
  int most_samples;
  std::vector<std::string> choices;
};

class WindowMsaa : public Windows, public testing::WithParamInterface<MsaaCase> {};

TEST_P(WindowMsaa, SearchGoesDown) {
  back_end_.most_samples = GetParam().most_samples;
  RenderWindow* window = renderer_.render_window_alloc();
  RenderWindowData data = make_data();
  set_msaa(&data, GetParam().text);
  EXPECT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
  std::vector<std::string> choices;
  for (const std::string& call : back_end_.calls) {
    if (call.rfind("choose", 0) == 0) choices.push_back(call);
  }
  EXPECT_EQ(choices, GetParam().choices);
}

INSTANTIATE_TEST_SUITE_P(
    Texts, WindowMsaa,
    testing::Values(MsaaCase{"Off", "Off", 8, {"choose 0"}},
                    MsaaCase{"Two", "2X MSAA", 8, {"choose 2"}},
                    MsaaCase{"Four", "4X MSAA", 8, {"choose 4"}},
                    MsaaCase{"EightEndsAtFour", "8X MSAA", 4, {"choose 8", "choose 4"}},
                    MsaaCase{"EightEndsAtTwo", "8X MSAA", 2, {"choose 8", "choose 4", "choose 2"}},
                    MsaaCase{"NoneIsPlain", "4X MSAA", 0, {"choose 4", "choose 2", "choose 0"}},
                    MsaaCase{"ThreeIsOff", "3X MSAA", 8, {"choose 0"}},
                    MsaaCase{"LowerCaseIsOff", "4x msaa", 8, {"choose 0"}},
                    MsaaCase{"LongerIsOff", "4X MSAA ", 8, {"choose 0"}},
                    MsaaCase{"EmptyIsOff", "", 8, {"choose 0"}}),
    [](const auto& one) { return std::string(one.param.name); });

TEST_F(Windows, EightSamplesWithoutMultisamplingContinuePlain) {
  back_end_.multisample = false;
  RenderWindow* window = renderer_.render_window_alloc();
  RenderWindowData data = make_data();
  set_msaa(&data, "8X MSAA");
  EXPECT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
  EXPECT_EQ(back_end_.calls[0], "choose 0");
}

TEST_F(Windows, ExistingFormatIsNotSearched) {
  RenderWindow* window = renderer_.render_window_alloc();
  RenderWindowData data = make_data();
  set_msaa(&data, "8X MSAA");
  data.use_existing_pixel_format = true;
  EXPECT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
  EXPECT_EQ(back_end_.calls[0], "choose 0 existing");
}

TEST_F(Windows, TextWithoutAnEndIsCut) {
  RenderWindow* window = renderer_.render_window_alloc();
  RenderWindowData data = make_data();
  for (char& c : data.msaa) c = 'x';
  EXPECT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
  EXPECT_EQ(window->data.msaa[63], '\0');
}

// ---- sharing ---------------------------------------------------------------------------------

TEST_F(Windows, SecondWindowSharesWithTheFirst) {
  RenderWindow* first = make_window();
  make_window(2, first);
  EXPECT_EQ(back_end_.last_shared, record_of(first)->context);
  EXPECT_EQ(back_end_.last_request.major, 4);
}

TEST_F(Windows, SharingBelowThreeWarnsAndKeepsTheLegacyContext) {
  gl_.set_version(2, 1);
  RenderWindow* first = make_window();
  back_end_.calls.clear();
  LogCapture log(LOG_LEVEL_WARNING);
  make_window(3, first);
  EXPECT_TRUE(log.contains(
      "OpenGL context sharing based on wglShareLists no longer supported. Context sharing requires "
      "OpenGL3+ support and wglCreateContextAttribsARB()."));
  EXPECT_THAT(back_end_.calls,
              ElementsAre("choose 0", "set format", "create legacy", "bind", "bind"));
  EXPECT_EQ(back_end_.last_shared, nullptr);
}

TEST_F(Windows, SharingWithAWindowWithoutAContextSharesNothing) {
  RenderWindow* empty = renderer_.render_window_alloc();
  make_window(3, empty);
  EXPECT_EQ(back_end_.last_shared, nullptr);
}

TEST_F(Windows, ShareListsRecreatesAFreshContext) {
  number_textures_alone();
  RenderWindow* a = make_window();
  RenderWindow* b = make_window();
  void* old_context = record_of(b)->context;
  EXPECT_TRUE(renderer_.render_window_share_lists(a, b));
  EXPECT_EQ(back_end_.last_shared, record_of(a)->context);
  EXPECT_NE(record_of(b)->context, old_context);
  EXPECT_EQ(back_end_.contexts.count(old_context), 0u);
  EXPECT_EQ(back_end_.current, record_of(b)->context);
}

TEST_F(Windows, ShareListsKeepsTheKindOfContext) {
  number_textures_alone();
  RenderWindow* a = make_window(3);
  RenderWindow* b = make_window(2);
  EXPECT_TRUE(renderer_.render_window_share_lists(a, b));
  EXPECT_EQ(back_end_.last_request.major, 0);
}

TEST_F(Windows, ShareListsRefusesAContextWithObjects) {
  RenderWindow* a = make_window();
  RenderWindow* b = make_window();
  unsigned int texture = 0;
  ASSERT_TRUE(gl_.start(renderer_));
  renderer_.core_functions().glGenTextures(1, &texture);
  void* context = record_of(b)->context;
  EXPECT_FALSE(renderer_.render_window_share_lists(a, b));
  EXPECT_EQ(record_of(b)->context, context);
  EXPECT_EQ(back_end_.current, context);
}

TEST_F(Windows, ShareListsRefusesAContextOnAnotherThread) {
  RenderWindow* a = make_window();
  RenderWindow* b = make_window();
  back_end_.current = nullptr;
  std::thread([&] { EXPECT_TRUE(renderer_.render_window_make_current(b, true)); }).join();
  back_end_.current = nullptr;
  void* context = record_of(b)->context;
  EXPECT_FALSE(renderer_.render_window_share_lists(a, b));
  EXPECT_EQ(record_of(b)->context, context);
}

TEST_F(Windows, ShareListsKeepsTheContextWhenTheDriverRefuses) {
  RenderWindow* a = make_window();
  RenderWindow* b = make_window();
  void* context = record_of(b)->context;
  back_end_.refuses_legacy = true;
  EXPECT_FALSE(renderer_.render_window_share_lists(a, b));
  EXPECT_EQ(record_of(b)->context, context);
  EXPECT_EQ(back_end_.current, context);
}

TEST_F(Windows, ShareListsLeavesWhatElseIsCurrent) {
  number_textures_alone();
  RenderWindow* a = make_window();
  RenderWindow* b = make_window();
  ASSERT_TRUE(renderer_.render_window_make_current(a, true));
  EXPECT_TRUE(renderer_.render_window_share_lists(a, b));
  EXPECT_EQ(back_end_.last_shared, record_of(a)->context);
  EXPECT_EQ(back_end_.current, record_of(a)->context);
  EXPECT_TRUE(renderer_.render_window_make_current(b, true));
  EXPECT_EQ(back_end_.current, record_of(b)->context);
  ASSERT_TRUE(renderer_.render_window_make_current(a, true));
  back_end_.refuses_legacy = true;
  EXPECT_FALSE(renderer_.render_window_share_lists(a, b));
  EXPECT_EQ(back_end_.current, record_of(a)->context) << "when the driver refuses, too";
}

TEST_F(Windows, ShareListsNeedsBothContexts) {
  RenderWindow* a = make_window();
  RenderWindow* b = renderer_.render_window_alloc();
  EXPECT_FALSE(renderer_.render_window_share_lists(a, b));
  EXPECT_FALSE(renderer_.render_window_share_lists(b, a));
  EXPECT_FALSE(renderer_.render_window_share_lists(a, a));
}

// ---- binding and destruction -----------------------------------------------------------------

TEST_F(Windows, MakeCurrentBindsAndUnbinds) {
  RenderWindow* first = make_window();
  RenderWindow* second = make_window();
  EXPECT_TRUE(renderer_.render_window_make_current(first, true));
  EXPECT_EQ(back_end_.current, record_of(first)->context);
  EXPECT_TRUE(renderer_.render_window_make_current(second, false));
  EXPECT_EQ(back_end_.current, record_of(first)->context);
  EXPECT_TRUE(renderer_.render_window_make_current(first, false));
  EXPECT_EQ(back_end_.current, nullptr);
}

TEST_F(Windows, DestroyedWindowCanBeCreatedAgain) {
  RenderWindow* window = make_window(3);
  EXPECT_TRUE(renderer_.render_window_destroy_context(window));
  EXPECT_FALSE(window->context_created);
  EXPECT_EQ(window->device, nullptr);
  EXPECT_EQ(record_of(window)->context, nullptr);
  EXPECT_TRUE(back_end_.contexts.empty());
  EXPECT_EQ(back_end_.num_open, 0);
  EXPECT_EQ(back_end_.current, nullptr);
  EXPECT_TRUE(renderer_.render_window_destroy_context(window));
  const RenderWindowData data = make_data(3);
  EXPECT_TRUE(renderer_.render_window_create_context(window, &data, nullptr));
  EXPECT_TRUE(window->context_created);
}

TEST_F(Windows, DestroyingAContextThatIsNotCurrentLeavesTheCurrentOne) {
  RenderWindow* first = make_window();
  RenderWindow* second = make_window();
  EXPECT_TRUE(renderer_.render_window_destroy_context(first));
  EXPECT_EQ(back_end_.current, record_of(second)->context);
}

// ---- contexts of the host --------------------------------------------------------------------

TEST_F(Windows, HostMadeContextIsTakenFromTheThread) {
  void* host_context = reinterpret_cast<void*>(0x77);
  back_end_.current = host_context;
  RenderWindow* window = renderer_.render_window_alloc();
  EXPECT_TRUE(renderer_.render_window_mark_context_created(window));
  EXPECT_TRUE(window->context_created);
  EXPECT_NE(window->device, nullptr);
  EXPECT_EQ(record_of(window)->context, host_context);
  EXPECT_TRUE(renderer_.start());
  EXPECT_TRUE(renderer_.render_window_swap_buffers(window));
  back_end_.current = nullptr;
  EXPECT_TRUE(renderer_.render_window_make_current(window, true));
  EXPECT_EQ(back_end_.current, host_context);
}

TEST_F(Windows, HostMadeContextIsNeverDestroyed) {
  back_end_.current = reinterpret_cast<void*>(0x77);
  RenderWindow* window = renderer_.render_window_alloc();
  renderer_.render_window_mark_context_created(window);
  back_end_.calls.clear();
  EXPECT_TRUE(renderer_.render_window_destroy_context(window));
  EXPECT_THAT(back_end_.calls, ElementsAre("unbind"));
  EXPECT_FALSE(window->context_created);
}

TEST_F(Windows, MarkingWithoutACurrentContextOnlySetsTheFlag) {
  RenderWindow* window = renderer_.render_window_alloc();
  EXPECT_TRUE(renderer_.render_window_mark_context_created(window));
  EXPECT_TRUE(window->context_created);
  EXPECT_FALSE(renderer_.render_window_swap_buffers(window));
  EXPECT_TRUE(renderer_.render_window_destroy_context(window));
}

TEST_F(Windows, ForeignContextIsSavedAndRestored) {
  RenderWindow* window = make_window();
  void* foreign = reinterpret_cast<void*>(0x88);
  back_end_.current = foreign;
  EXPECT_TRUE(renderer_.render_window_save_current_context(window));
  EXPECT_EQ(record_of(window)->saved_context, foreign);
  EXPECT_NE(window->saved_device, nullptr);
  EXPECT_TRUE(renderer_.render_window_make_current(window, true));
  EXPECT_EQ(back_end_.current, record_of(window)->context);
  EXPECT_TRUE(renderer_.render_window_restore_saved_context(window));
  EXPECT_EQ(back_end_.current, foreign);
}

TEST_F(Windows, SavingNothingCannotBeRestored) {
  RenderWindow* window = make_window();
  back_end_.current = nullptr;
  EXPECT_TRUE(renderer_.render_window_save_current_context(window));
  EXPECT_EQ(record_of(window)->saved_context, nullptr);
  EXPECT_FALSE(renderer_.render_window_restore_saved_context(window));
}

// ---- swapping and size -----------------------------------------------------------------------

TEST_F(Windows, SwapInterval) {
  RenderWindow* window = make_window();
  int interval = -1;
  EXPECT_TRUE(renderer_.render_window_set_swap_interval(window, false));
  EXPECT_TRUE(renderer_.render_window_get_swap_interval(window, &interval));
  EXPECT_EQ(interval, 0);
  EXPECT_TRUE(renderer_.render_window_set_swap_interval(window, true));
  EXPECT_TRUE(renderer_.render_window_get_swap_interval(window, &interval));
  EXPECT_EQ(interval, 1);
  EXPECT_FALSE(renderer_.render_window_get_swap_interval(window, nullptr));
}

TEST_F(Windows, AbsentSwapControlIsFalse) {
  back_end_.intervals = false;
  RenderWindow* window = make_window();
  int interval = 5;
  EXPECT_FALSE(renderer_.render_window_set_swap_interval(window, true));
  EXPECT_FALSE(renderer_.render_window_get_swap_interval(window, &interval));
  EXPECT_EQ(interval, 5);
}

TEST_F(Windows, DelayBeforeSwapIsFalse) {
  EXPECT_FALSE(renderer_.render_window_delay_before_swap(make_window(), 0.01f));
}

TEST_F(Windows, SwapFollowsTheSizeOfFollowedWindows) {
  back_end_.followed_width = 30;
  back_end_.followed_height = 20;
  RenderWindow* window = make_window();
  EXPECT_EQ(window->get_width(), 30);
  back_end_.followed_width = 50;
  EXPECT_TRUE(renderer_.render_window_swap_buffers(window));
  EXPECT_EQ(window->get_width(), 50);
  EXPECT_EQ(window->get_height(), 20);
}

TEST_F(Windows, SizeOfOtherWindowsIsTheHosts) {
  RenderWindow* window = renderer_.render_window_alloc();
  RenderWindowData data = make_data();
  data.width = 640;
  data.height = 480;
  renderer_.render_window_create_context(window, &data, nullptr);
  EXPECT_EQ(window->get_width(), 640);
  window->update_size(800, 600);
  EXPECT_TRUE(renderer_.render_window_swap_buffers(window));
  EXPECT_EQ(window->get_width(), 800);
  EXPECT_EQ(window->get_height(), 600);
}

}  // namespace
}  // namespace orv::test
