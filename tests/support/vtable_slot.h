#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace orv::test {

/// Place of a virtual operation in its class's table, 0 being the first. A destructor takes two
/// places. Gives NOT_VIRTUAL for any other member function.
///
/// In the Itanium C++ ABI a pointer to a virtual member holds 1 + the byte offset of the entry.
inline constexpr std::size_t NOT_VIRTUAL = SIZE_MAX;

template <class Member>
std::size_t vtable_slot(Member member) {
  std::uintptr_t words[2] = {};
  static_assert(sizeof(member) == sizeof(words), "not a pointer to a member function");
  std::memcpy(words, &member, sizeof(words));
  if (words[0] % 2 == 0) return NOT_VIRTUAL;
  return (words[0] - 1) / sizeof(void*);
}

/// The same for one of several operations of a name: vtable_slot_of<void(int)>(&Class::work).
template <class Signature, class Class>
std::size_t vtable_slot_of(Signature Class::*member) {
  return vtable_slot(member);
}

}  // namespace orv::test
