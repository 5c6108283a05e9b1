#pragma once

#include <utility>

namespace orv::test {

/// A node on the heap with one reference held by the test, released without a renderer at the end.
template <class T>
class Held {
 public:
  template <class... Args>
  explicit Held(Args&&... args) : node_(new T(std::forward<Args>(args)...)) {
    node_->add_ref();
  }
  ~Held() { node_->release(nullptr, nullptr); }
  Held(const Held&) = delete;
  Held& operator=(const Held&) = delete;

  T* get() const { return node_; }
  T* operator->() const { return node_; }
  T& operator*() const { return *node_; }
  operator T*() const { return node_; }

 private:
  T* node_;
};

}  // namespace orv::test
