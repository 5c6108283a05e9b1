#include <gtest/gtest.h>

#include <string>
#include <type_traits>

#include "render/opengl/renderer_opengl.h"
#include "support/vtable_slot.h"

namespace orv::test {
namespace {

template <class Result, class... Args>
std::string answer(RendererOpenGL& renderer, Result (RendererOpenGL::*operation)(Args...)) {
  if constexpr (std::is_void_v<Result>) {
    (renderer.*operation)(Args()...);
    return "nothing";
  } else if constexpr (std::is_same_v<Result, bool>) {
    return (renderer.*operation)(Args()...) ? "true" : "false";
  } else if constexpr (std::is_pointer_v<Result>) {
    return (renderer.*operation)(Args()...) ? "pointer" : "0";
  } else {
    return std::to_string((renderer.*operation)(Args()...));
  }
}

template <class Result, class... Args>
int arity(Result (RendererOpenGL::*)(Args...)) {
  return static_cast<int>(sizeof...(Args));
}

struct Slot {
  const char* name;
  int arity;
  const char* result;
};

// Arguments and answers of the slots, in order.
const Slot SLOTS[] = {
    {"reserved_op_01", 1, "false"},   {"reserved_op_02", 1, "0"},
    {"reserved_op_03", 2, "false"},   {"reserved_op_04", 1, "0"},
    {"reserved_op_05", 2, "false"},   {"reserved_op_06", 1, "false"},
    {"reserved_op_07", 1, "0"},       {"reserved_op_08", 1, "0"},
    {"reserved_op_09", 1, "0"},       {"reserved_op_10", 3, "false"},
    {"reserved_op_11", 4, "false"},   {"reserved_op_12", 1, "0"},
    {"reserved_op_13", 1, "0"},       {"reserved_op_14", 1, "false"},
    {"reserved_op_15", 6, "true"},    {"reserved_op_16", 1, "true"},
    {"reserved_op_17", 1, "true"},    {"reserved_op_18", 2, "true"},
    {"reserved_op_19", 1, "true"},    {"reserved_op_20", 2, "true"},
    {"reserved_op_21", 1, "true"},    {"reserved_op_22", 1, "-1"},
    {"reserved_op_23", 1, "true"},    {"reserved_op_24", 4, "0"},
    {"reserved_op_25", 5, "true"},    {"reserved_op_26", 5, "0"},
    {"reserved_op_27", 6, "true"},    {"reserved_op_28", 6, "1"},
    {"reserved_op_29", 7, "true"},    {"reserved_op_30", 1, "true"},
    {"reserved_op_31", 1, "true"},    {"reserved_op_32", 1, "true"},
    {"reserved_op_33", 4, "true"},    {"reserved_op_34", 5, "nothing"},
    {"reserved_op_35", 2, "true"},    {"reserved_op_36", 1, "0"},
    {"reserved_op_37", 2, "0"},       {"reserved_op_38", 1, "0"},
    {"reserved_op_39", 2, "0"},       {"reserved_op_40", 2, "0"},
    {"reserved_op_41", 2, "0"},       {"reserved_op_42", 2, "0"},
    {"reserved_op_43", 3, "0"},       {"reserved_op_44", 2, "0"},
    {"reserved_op_45", 3, "0"},       {"reserved_op_46", 6, "true"},
    {"reserved_op_47", 2, "true"},    {"reserved_op_48", 2, "true"},
    {"reserved_op_49", 1, "0"},       {"reserved_op_50", 1, "true"},
    {"reserved_op_51", 1, "0"},       {"reserved_op_52", 2, "0"},
    {"reserved_op_53", 1, "0"},       {"reserved_op_54", 1, "true"},
    {"reserved_op_55", 1, "true"},    {"reserved_op_56", 1, "true"},
    {"reserved_op_57", 5, "0"},       {"reserved_op_58", 1, "true"},
    {"reserved_op_59", 1, "true"},    {"reserved_op_60", 0, "true"},
    {"reserved_op_61", 1, "0"},       {"reserved_op_62", 2, "0"},
    {"reserved_op_63", 1, "0"},       {"reserved_op_64", 2, "0"},
    {"reserved_op_65", 1, "true"},    {"reserved_op_66", 1, "true"},
    {"reserved_op_67", 1, "true"},    {"reserved_op_68", 2, "nothing"},
    {"reserved_op_69", 1, "0"},       {"reserved_op_70", 2, "0"},
    {"reserved_op_71", 1, "0"},       {"reserved_op_72", 1, "0"},
    {"reserved_op_73", 1, "true"},    {"reserved_op_74", 1, "true"},
    {"reserved_op_75", 1, "true"},    {"reserved_op_76", 1, "true"},
    {"reserved_op_77", 1, "true"},    {"reserved_op_78", 1, "nothing"},
    {"reserved_op_79", 1, "nothing"}, {"reserved_op_80", 2, "true"},
    {"reserved_op_81", 2, "nothing"}, {"reserved_op_82", 0, "true"},
    {"reserved_op_83", 4, "true"},    {"reserved_op_84", 1, "true"},
    {"reserved_op_85", 5, "0"},       {"reserved_op_86", 8, "nothing"},
    {"reserved_op_87", 0, "nothing"}, {"reserved_op_88", 1, "nothing"},
};

TEST(ReservedOperations, TakeAndAnswerWhatTheirSlotSays) {
  RendererOpenGL renderer;
  int index = 0;
#define ORV_OP(type, name, parameters, arguments, null_result)
#define ORV_RESERVED_OP(type, slot, count, null_result)                             \
  EXPECT_STREQ(SLOTS[index].name, #slot);                                           \
  EXPECT_EQ(arity(&RendererOpenGL::slot), SLOTS[index].arity) << #slot;             \
  EXPECT_EQ(answer(renderer, &RendererOpenGL::slot), SLOTS[index].result) << #slot; \
  ++index;
#include <orv/render/renderer_ops.inc>
  EXPECT_EQ(index, 88);
}

TEST(ReservedOperations, NamedOnesOfOtherBackEnds) {
  RendererOpenGL renderer;
  EXPECT_TRUE(renderer.reserved_killall_1(nullptr));
  EXPECT_TRUE(renderer.reserved_killall_2(nullptr));
  EXPECT_TRUE(renderer.reserved_killall_3(nullptr));
  EXPECT_TRUE(renderer.texture_load_direct3d(nullptr, nullptr, 0, 0));
  EXPECT_EQ(renderer.gpu_render_target_get_color_texture_handle(nullptr, 0), 0u);
  EXPECT_TRUE(renderer.render_window_reserved_1(nullptr));
  EXPECT_TRUE(renderer.render_window_reserved_2(nullptr));
  EXPECT_TRUE(renderer.render_window_reserved_3(nullptr));
}

TEST(ReservedOperations, OneOperationOfItsOwnFollowsTheTable) {
  // The destructor takes two places.
  EXPECT_EQ(vtable_slot(&RendererOpenGL::get_texture_2d_binding_current), 472u + 1u);
}

}  // namespace
}  // namespace orv::test
