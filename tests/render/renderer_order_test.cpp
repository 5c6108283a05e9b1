#include <orv/render/renderer.h>

#include <gtest/gtest.h>

#include <cstddef>

#include "support/vtable_slot.h"

namespace orv {
namespace {

// Position of each operation in the list.
enum Ordinal : int {
#define ORV_OP(result, name, parameters, arguments, null_result) ORDINAL_##name,
#include <orv/render/renderer_ops.inc>
  ORDINAL_COUNT
};

static_assert(ORDINAL_COUNT == 463, "the table of renderer operations has a fixed length");

// The destructor takes two slots, the eight operations of Plugin follow.
constexpr std::size_t FIRST_SLOT = 2 + 8;

TEST(RendererOrder, EachOperationStandsAtItsPlaceInTheTable) {
#define ORV_OP(result, name, parameters, arguments, null_result) \
  EXPECT_EQ(test::vtable_slot(&Renderer::name), FIRST_SLOT + ORDINAL_##name) << #name;
#include <orv/render/renderer_ops.inc>
}

TEST(RendererOrder, PluginOperationsComeFirst) {
  EXPECT_EQ(test::vtable_slot(&Renderer::tracef), 2u);
  EXPECT_EQ(test::vtable_slot(&Renderer::tracef_debug), 5u);
  EXPECT_EQ(test::vtable_slot_of<bool()>(&Renderer::initialize), 6u);
  EXPECT_EQ(test::vtable_slot_of<bool()>(&Renderer::terminate), 7u);
  EXPECT_EQ(test::vtable_slot_of<bool()>(&Renderer::start), 8u);
  EXPECT_EQ(test::vtable_slot_of<bool()>(&Renderer::stop), 9u);
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
