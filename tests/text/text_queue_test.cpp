#include "text/text_queue.h"

#include <gtest/gtest.h>

#include <string>

namespace orv::detail {
namespace {

TEST(TextQueue, KeepsCopiesOfTexts) {
  TextQueue queue;
  std::string text = "first";
  EXPECT_TRUE(queue.add(TextItem(), text));
  text = "other";
  TextItem item;
  item.x = 4;
  EXPECT_TRUE(queue.add(item, "a longer second text"));
  EXPECT_TRUE(queue.add(item, ""));
  ASSERT_EQ(queue.count(), 3u);
  EXPECT_EQ(queue.text(queue.item(0)), "first");
  EXPECT_EQ(queue.text(queue.item(1)), "a longer second text");
  EXPECT_EQ(queue.text(queue.item(2)), "");
  EXPECT_EQ(queue.item(1).x, 4);
  EXPECT_EQ(queue.sum_chars(), 25u);
}

TEST(TextQueue, DefaultsOfAnItem) {
  const TextItem item;
  EXPECT_EQ(item.x, 0);
  EXPECT_EQ(item.y, 0);
  EXPECT_EQ(item.z, 0);
  for (const float channel : {item.r, item.g, item.b, item.a}) EXPECT_EQ(channel, 1);
  EXPECT_TRUE(item.new_line);
}

TEST(TextQueue, HoldsItsCapacityAndNoMore) {
  TextQueue queue;
  for (std::size_t i = 0; i < TextQueue::CAPACITY; ++i) EXPECT_TRUE(queue.add(TextItem(), "x"));
  EXPECT_FALSE(queue.add(TextItem(), "y"));
  EXPECT_EQ(queue.count(), 512u);
  EXPECT_EQ(queue.sum_chars(), 512u);
  queue.reset();
  EXPECT_EQ(queue.count(), 0u);
  EXPECT_EQ(queue.sum_chars(), 0u);
  EXPECT_TRUE(queue.add(TextItem(), "y"));
  EXPECT_EQ(queue.text(queue.item(0)), "y");
}

}  // namespace
}  // namespace orv::detail
