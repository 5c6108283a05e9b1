#include <orv/render/renderer.h>

#include <gtest/gtest.h>

#include <cstring>

namespace orv {
namespace {

// Position of each operation in the list.
enum Ordinal : int {
#define ORV_OP(result, name, parameters, arguments, null_result) ORDINAL_##name,
#include <orv/render/renderer_ops.inc>
  ORDINAL_COUNT
};

static_assert(ORDINAL_COUNT == 463, "the table of renderer operations has a fixed length");

// A pointer to a virtual member holds 1 + the byte offset of its slot (Itanium C++ ABI).
template <class Member>
long slot_of(Member member) {
  long words[2] = {};
  static_assert(sizeof(member) == sizeof(words));
  std::memcpy(words, &member, sizeof(words));
  return (words[0] - 1) / static_cast<long>(sizeof(void*));
}

// The destructor takes two slots, the eight operations of Plugin follow.
constexpr long first_slot = 2 + 8;

TEST(RendererOrder, EachOperationStandsAtItsPlaceInTheTable) {
#define ORV_OP(result, name, parameters, arguments, null_result) \
  EXPECT_EQ(slot_of(&Renderer::name), first_slot + ORDINAL_##name) << #name;
#include <orv/render/renderer_ops.inc>
}

TEST(RendererOrder, PluginOperationsComeFirst) {
  EXPECT_EQ(slot_of(&Renderer::tracef), 2);
  EXPECT_EQ(slot_of(&Renderer::tracef_debug), 5);
  EXPECT_EQ(slot_of(static_cast<bool (Renderer::*)()>(&Renderer::initialize)), 6);
  EXPECT_EQ(slot_of(static_cast<bool (Renderer::*)()>(&Renderer::terminate)), 7);
  EXPECT_EQ(slot_of(static_cast<bool (Renderer::*)()>(&Renderer::start)), 8);
  EXPECT_EQ(slot_of(static_cast<bool (Renderer::*)()>(&Renderer::stop)), 9);
}

TEST(RendererOrder, FamiliesBeginWhereOtherBackEndsExpectThem) {
  // Counted by hand along the families; the whole table has 472 operations with those of Plugin.
  EXPECT_EQ(9 + ORDINAL_COUNT, 472);
  EXPECT_EQ(ORDINAL_start_v2, 0);
  EXPECT_EQ(ORDINAL_render_window_alloc, 1);
  EXPECT_EQ(ORDINAL_extensions_load, 19);
  EXPECT_EQ(ORDINAL_gpu_create, 33);
  EXPECT_EQ(ORDINAL_apply_pipeline_state, 139);
  EXPECT_EQ(ORDINAL_gpu_render_target_alloc, 140);
  EXPECT_EQ(ORDINAL_set_radeon_workaround, ORDINAL_COUNT - 1);
}

}  // namespace
}  // namespace orv
