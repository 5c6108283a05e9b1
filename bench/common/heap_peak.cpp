#include "common/heap_peak.h"

#include <malloc.h>

#include <atomic>
#include <cstdint>

// The allocator's public names, replaced for this program: each call goes on to glibc's own.
extern "C" {
void* __libc_malloc(std::size_t size);
void __libc_free(void* memory);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
}

namespace {

std::atomic<bool> counting{false};
std::atomic<std::int64_t> used{0};
std::atomic<std::int64_t> worst{0};

void add(void* memory) {
  if (!memory || !counting.load(std::memory_order_relaxed)) return;
  const auto bytes = static_cast<std::int64_t>(malloc_usable_size(memory));
  const std::int64_t now = used.fetch_add(bytes, std::memory_order_relaxed) + bytes;
  std::int64_t before = worst.load(std::memory_order_relaxed);
  while (now > before && !worst.compare_exchange_weak(before, now)) {
  }
}

void remove(void* memory) {
  if (!memory || !counting.load(std::memory_order_relaxed)) return;
  used.fetch_sub(static_cast<std::int64_t>(malloc_usable_size(memory)), std::memory_order_relaxed);
}

}  // namespace

extern "C" {

void* malloc(std::size_t size) {
  void* memory = __libc_malloc(size);
  add(memory);
  return memory;
}

void free(void* memory) {
  remove(memory);
  __libc_free(memory);
}

void* calloc(std::size_t count, std::size_t size) {
  void* memory = __libc_calloc(count, size);
  add(memory);
  return memory;
}

void* realloc(void* memory, std::size_t size) {
  remove(memory);
  void* moved = __libc_realloc(memory, size);
  add(moved ? moved : memory);
  return moved;
}

void* memalign(std::size_t alignment, std::size_t size) {
  void* memory = __libc_memalign(alignment, size);
  add(memory);
  return memory;
}

void* aligned_alloc(std::size_t alignment, std::size_t size) { return memalign(alignment, size); }

int posix_memalign(void** memory, std::size_t alignment, std::size_t size) {
  *memory = memalign(alignment, size);
  return *memory ? 0 : 12;  // ENOMEM
}
}

namespace bench {

HeapPeak::HeapPeak() {
  used = 0;
  worst = 0;
  counting = true;
}

HeapPeak::~HeapPeak() { counting = false; }

std::size_t HeapPeak::peak() const {
  const std::int64_t bytes = worst.load();
  return bytes > 0 ? static_cast<std::size_t>(bytes) : 0;
}

std::size_t HeapPeak::in_use() const {
  const std::int64_t bytes = used.load();
  return bytes > 0 ? static_cast<std::size_t>(bytes) : 0;
}

}  // namespace bench
