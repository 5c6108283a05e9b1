// What the test modules that fill an interface have in common.
#pragma once

#include <orv/core/api.h>
#include <orv/core/plugin.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <memory>
#include <utility>
#include <vector>

/// The exports of a module with a plugin of this class.
#define ORV_TEST_MODULE(Class)                                             \
  ORV_PLUGIN_EXPORT orv::Plugin* orv_plugin_create() { return new Class; } \
  ORV_PLUGIN_EXPORT void orv_plugin_destroy(orv::Plugin* plugin) {         \
    delete static_cast<Class*>(plugin);                                    \
  }

namespace orv::test {

/// An interface whose plugin has told who it is.
template <class Interface>
class Module : public Interface {
 protected:
  explicit Module(const char* name) {
    this->set_name(name);
    this->set_description("Fills an interface in memory.");
    this->set_author("The tests");
    this->set_version(1, 0, 0);
  }

  /// A number that was not given before.
  int& last_number() { return last_number_; }

 private:
  int last_number_ = 0;
};

/// Things of one kind by their numbers, in order of making.
template <class Thing>
class Numbered {
 public:
  /// The last number given, of all kinds.
  explicit Numbered(int& last_number) : last_number_(last_number) {}

  int add(Thing thing) {
    const int number = ++last_number_;
    entries_.push_back({number, std::make_unique<Thing>(std::move(thing))});
    return number;
  }
  Thing* find(int number) const {
    for (const Entry& entry : entries_) {
      if (entry.number == number) return entry.thing.get();
    }
    return nullptr;
  }
  bool remove(int number) {
    return remove_if([number](int candidate, const Thing&) { return candidate == number; }) != 0;
  }
  /// Removes those for which the condition holds; gives their number.
  template <class Condition>
  std::size_t remove_if(Condition condition) {
    const auto keep = std::stable_partition(
        entries_.begin(), entries_.end(),
        [&](const Entry& entry) { return !condition(entry.number, *entry.thing); });
    const auto removed = static_cast<std::size_t>(entries_.end() - keep);
    entries_.erase(keep, entries_.end());
    return removed;
  }
  template <class Work>
  void for_each(Work work) const {
    for (const Entry& entry : entries_) work(entry.number, *entry.thing);
  }
  void clear() { entries_.clear(); }

 private:
  struct Entry {
    int number;
    std::unique_ptr<Thing> thing;
  };
  int& last_number_;
  std::vector<Entry> entries_;
};

/// Copies a text, cut where it does not fit.
template <std::size_t size>
void copy_text(char (&to)[size], const char* text) {
  std::snprintf(to, size, "%s", text);
}

/// Writes a result through a pointer that may be null.
template <class Value, class Result>
void tell(Value* to, const Result& result) {
  if (to) *to = static_cast<Value>(result);
}

}  // namespace orv::test
