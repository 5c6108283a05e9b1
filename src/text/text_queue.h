/// @file
/// Texts that wait to be drawn.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

namespace orv::detail {

/// A text, and where and how it is drawn.
struct TextItem {
  float x = 0, y = 0, z = 0;
  float r = 1, g = 1, b = 1, a = 1;
  unsigned int offset = 0;  ///< of the text in the queue's block
  unsigned int length = 0;  ///< bytes
  unsigned int width = 0;   ///< pixels, once measured
  bool new_line = true;     ///< starts at its own position
};

/// A frame's texts in order, all in one block.
class TextQueue {
 public:
  static constexpr std::size_t CAPACITY = 512;

  TextQueue() { items_.reserve(CAPACITY); }

  /// Appends an item with a copy of the text. False when the queue or memory is full.
  bool add(TextItem item, std::string_view text);
  void reset();

  std::size_t count() const { return items_.size(); }
  TextItem& item(std::size_t i) { return items_[i]; }
  const TextItem& item(std::size_t i) const { return items_[i]; }
  std::string_view text(const TextItem& item) const {
    return {text_.data() + item.offset, item.length};
  }

  /// Adds up the lengths and keeps the sum.
  unsigned int sum_chars();

 private:
  std::vector<TextItem> items_;
  std::vector<char> text_;
  unsigned int total_chars_ = 0;
};

}  // namespace orv::detail
