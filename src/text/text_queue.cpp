#include "text/text_queue.h"

#include <orv/core/log_mgr.h>

#include <climits>
#include <exception>

namespace orv::detail {

bool TextQueue::add(TextItem item, std::string_view text) {
  if (items_.size() >= CAPACITY || text.size() > INT_MAX - text_.size()) return false;
  try {
    item.offset = static_cast<unsigned int>(text_.size());
    item.length = static_cast<unsigned int>(text.size());
    text_.insert(text_.end(), text.begin(), text.end());
    items_.push_back(item);
    return true;
  } catch (const std::exception&) {
    LogMgr::get().tracef_debug("text of %zu bytes not queued: out of memory", text.size());
    return false;
  }
}

void TextQueue::reset() {
  items_.clear();
  text_.clear();
  total_chars_ = 0;
}

unsigned int TextQueue::sum_chars() {
  total_chars_ = 0;
  for (const TextItem& item : items_) total_chars_ += item.length;
  return total_chars_;
}

}  // namespace orv::detail
