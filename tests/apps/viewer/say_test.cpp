#include "viewer/say.h"

#include <gtest/gtest.h>

namespace viewer {
namespace {

TEST(InOneLine, ControlCharactersBecomeQuestionMarks) {
  EXPECT_EQ(in_one_line("a\nb\r\t\x1b[31m\x7f.obj"), "a?b???[31m?.obj");
  EXPECT_EQ(in_one_line(std::string("a\0b", 3)), "a?b");
  EXPECT_EQ(in_one_line("a\xc2\x9b"
                        "b\xc2\x80"),
            "a?b?");
}

TEST(InOneLine, OtherTextStays) {
  for (const char* text : {"", " ~", "\xc3\xa4\xe2\x82\xac", "\xc2\xa0", "\xc2", "\xff\x9b"}) {
    EXPECT_EQ(in_one_line(text), text);
  }
}

TEST(PrintProblem, IsOneLineThatNamesTheProgram) {
  testing::internal::CaptureStderr();
  print_problem("a\nb: broken");
  EXPECT_EQ(testing::internal::GetCapturedStderr(), "orv-viewer: a?b: broken\n");
}

}  // namespace
}  // namespace viewer
