#pragma once

namespace orv::detail {

/// Marks, for as long as one lives on this thread, that the same thing is tried in the same way as
/// just before: why it fails has been told then.
class RepeatedAttempt {
 public:
  explicit RepeatedAttempt(bool is_repeated) : before_(active_) {
    active_ = active_ || is_repeated;
  }
  ~RepeatedAttempt() { active_ = before_; }
  RepeatedAttempt(const RepeatedAttempt&) = delete;
  RepeatedAttempt& operator=(const RepeatedAttempt&) = delete;

  static bool is_active() { return active_; }

 private:
  static inline thread_local bool active_ = false;

  bool before_;
};

}  // namespace orv::detail
