#include "text/text_mesh.h"

#include <orv/geometry/mesh.h>
#include <orv/math/mat4.h>

#include <algorithm>

#include "support/log_capture.h"
#include "text/font_fixture.h"
#include "text/text_rows.h"

namespace orv::test {
namespace {

using detail::FLOATS_PER_CHAR;
using detail::TextMesh;

class TextMeshTest : public ::testing::Test {
 protected:
  ~TextMeshTest() override { text.free(&renderer); }

  bool update(unsigned int num_chars, TextMesh::Mapping mapping, float value) {
    return text.update(&renderer, num_chars, mapping, [&](float* rows) {
      ++writes;
      std::fill_n(rows, num_chars * FLOATS_PER_CHAR, value);
    });
  }

  FontRenderer renderer;
  TextMesh text;
  int writes = 0;
};

TEST_F(TextMeshTest, NothingIsWrittenWithoutRoom) {
  EXPECT_FALSE(update(0, TextMesh::OFF, 1));
  EXPECT_FALSE(text.render(&renderer, mat4()));
  ASSERT_TRUE(text.reserve(&renderer, 5, 10));
  EXPECT_EQ(text.capacity(), 10u);
  EXPECT_FALSE(update(11, TextMesh::OFF, 1));
  EXPECT_TRUE(update(10, TextMesh::OFF, 1));
  EXPECT_EQ(writes, 1);
  ASSERT_TRUE(text.reserve(&renderer, 11, 10));
  EXPECT_EQ(text.capacity(), 21u);
  text.free(&renderer);
  EXPECT_EQ(text.capacity(), 0u);
  EXPECT_FALSE(update(1, TextMesh::OFF, 1));
}

TEST_F(TextMeshTest, TooManyCharactersAreToldInTheLog) {
  ASSERT_TRUE(text.reserve(&renderer, 5, 10));
  const LogCapture log;
  EXPECT_FALSE(text.reserve(&renderer, 4000000000u, 10));
  EXPECT_THAT(log.lines(), ::testing::ElementsAre("text mesh: 4000000000 characters are too many"));
  EXPECT_EQ(text.capacity(), 0u);
}

TEST_F(TextMeshTest, FreshRoomDrawsNothing) {
  ASSERT_TRUE(text.reserve(&renderer, 5, 10));
  ASSERT_TRUE(text.render(&renderer, mat4()));
  EXPECT_EQ(renderer.drawn_count, 0);
}

TEST_F(TextMeshTest, BufferThatIsToBeFilledYetGetsBoth) {
  ASSERT_TRUE(text.reserve(&renderer, 5, 10));
  renderer.geometry_vbo_create(nullptr, text.mesh()->get_data());
  ASSERT_TRUE(update(2, TextMesh::REQUIRED, 3));
  EXPECT_EQ(renderer.drawn()[0], 3.0f);
  EXPECT_EQ(renderer.drawn()[2 * FLOATS_PER_CHAR - 1], 3.0f);
  ASSERT_TRUE(text.render(&renderer, mat4()));
  EXPECT_TRUE(renderer.uploaded());
  EXPECT_EQ(renderer.drawn()[0], 3.0f) << "what is sent is what was written";
}

TEST_F(TextMeshTest, BufferOfAnEarlierMeshIsNotWrittenPastItsEnd) {
  ASSERT_TRUE(text.reserve(&renderer, 5, 10));
  ASSERT_TRUE(update(10, TextMesh::OFF, 1));
  ASSERT_TRUE(text.render(&renderer, mat4()));
  renderer.keeps_buffers = true;  // as from another thread
  ASSERT_TRUE(text.reserve(&renderer, 50, 10));
  renderer.clear();
  EXPECT_FALSE(update(11, TextMesh::REQUIRED, 2));
  EXPECT_TRUE(update(11, TextMesh::WHERE_POSSIBLE, 2));
  EXPECT_EQ(renderer.count("vertex_buffer_map"), 0);
  EXPECT_TRUE(update(10, TextMesh::REQUIRED, 2)) << "as many as it holds";
}

TEST_F(TextMeshTest, OnlyWhatIsUsedIsMarked) {
  ASSERT_TRUE(text.reserve(&renderer, 5, 10));
  ASSERT_TRUE(update(3, TextMesh::OFF, 1));
  ASSERT_TRUE(text.render(&renderer, mat4()));
  ASSERT_TRUE(update(2, TextMesh::OFF, 1));
  unsigned int begin = 9, end = 9;
  text.mesh()->get_data()->get_dirty_interleaved_vertices(&begin, &end);
  EXPECT_EQ(begin, 0u);
  EXPECT_EQ(end, 12u);
}

}  // namespace
}  // namespace orv::test
