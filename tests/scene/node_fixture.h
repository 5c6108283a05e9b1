#pragma once

#include <gtest/gtest.h>
#include <orv/scene/node.h>

#include <string>
#include <utility>
#include <vector>

namespace orv::test {

using Events = std::vector<std::string>;

/// Writes down the workers it runs and its end.
class Recorder : public Node {
 public:
  Recorder(const char* name, Events* events) : events_(events) { set_name(name); }
  ~Recorder() override { note("~"); }

  bool _init(Renderer* renderer) override {
    last_renderer = renderer;
    return note("init");
  }
  bool _cleanup(Renderer* renderer) override {
    last_renderer = renderer;
    return note("cleanup");
  }
  bool _update(float dt) override {
    last_dt = dt;
    return note("update");
  }
  bool _build() override { return note("build"); }
  void _render(Renderer*) override { note("render"); }

  using Node::set_type;

  Renderer* last_renderer = nullptr;
  float last_dt = 0;
  bool result = true;

 private:
  bool note(const char* what) {
    events_->push_back(std::string(what) + " " + get_name());
    return result;
  }

  Events* events_;
};

/// root with the children a and b, and c below a.
class NodeTree : public ::testing::Test {
 protected:
  NodeTree() {
    root->add_child(a);
    root->add_child(b);
    a->add_child(c);
  }
  ~NodeTree() override {
    for (Node* node : {root, a, b, c}) {
      if (!gone(node)) delete node;
    }
  }

  Recorder* make(const char* name) { return new Recorder(name, &events); }
  bool gone(const Node* node) const {
    for (const auto& [known, name] : names) {
      if (known != node) continue;
      for (const std::string& event : events) {
        if (event == "~ " + name) return true;
      }
    }
    return false;
  }

  Events events;
  Recorder* root = make("root");
  Recorder* a = make("a");
  Recorder* b = make("b");
  Recorder* c = make("c");
  const std::vector<std::pair<const Node*, std::string>> names{
      {root, "root"}, {a, "a"}, {b, "b"}, {c, "c"}};
  Renderer* const renderer = reinterpret_cast<Renderer*>(0x1234);
};

}  // namespace orv::test
