#pragma once

// Replaces the global operator new and delete of the including program to count every allocation of
// the process, the library's included (it calls the replaced operators of the program). Include it in
// exactly one source file of a test program. The library allocates through operator new alone, so
// these operators see all of its memory. The nothrow and array forms are replaced too, so that no
// block is made by a sanitizer's allocator and freed by this one; the aligned forms are not (nothing
// uses them).

#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <new>

namespace CountingAllocator {
inline std::atomic<std::uint64_t> allocations{0}, releases{0}, lastSize{0}, largestSize{0};

// Failure injection on the calling thread: while failCountdown is non-zero, each allocation counts it
// down and the one that reaches zero throws std::bad_alloc and sets injected.
inline thread_local std::uint64_t failCountdown = 0;
inline thread_local bool injected = false;

inline void release(void *memory) noexcept {
  if (memory) releases.fetch_add(1);
  std::free(memory);
}

// The allocations and releases since construction, and the largest size asked for meanwhile.
struct Counter {
  std::uint64_t allocations0 = CountingAllocator::allocations.load(),
                releases0 = CountingAllocator::releases.load();
  Counter() { largestSize.store(0); }
  std::uint64_t allocations() const { return CountingAllocator::allocations.load() - allocations0; }
  std::uint64_t releases() const { return CountingAllocator::releases.load() - releases0; }
  std::uint64_t largest() const { return largestSize.load(); }
};
}  // namespace CountingAllocator

void *operator new(std::size_t size) {
  if (CountingAllocator::failCountdown != 0 && --CountingAllocator::failCountdown == 0) {
    CountingAllocator::injected = true;
    throw std::bad_alloc();
  }
  CountingAllocator::allocations.fetch_add(1);
  CountingAllocator::lastSize.store(size);
  std::uint64_t largest = CountingAllocator::largestSize.load();
  while (size > largest && !CountingAllocator::largestSize.compare_exchange_weak(largest, size)) {
  }
  if (void *memory = std::malloc(size ? size : 1)) return memory;
  throw std::bad_alloc();
}
void operator delete(void *memory) noexcept {
  CountingAllocator::release(memory);
}
void operator delete(void *memory, std::size_t) noexcept {
  CountingAllocator::release(memory);
}
void *operator new(std::size_t size, std::nothrow_t const &) noexcept {
  try {
    return ::operator new(size);
  } catch (...) {
    return nullptr;
  }
}
void *operator new[](std::size_t size) {
  return ::operator new(size);
}
void *operator new[](std::size_t size, std::nothrow_t const &tag) noexcept {
  return ::operator new(size, tag);
}
void operator delete(void *memory, std::nothrow_t const &) noexcept {
  CountingAllocator::release(memory);
}
void operator delete[](void *memory) noexcept {
  CountingAllocator::release(memory);
}
void operator delete[](void *memory, std::size_t) noexcept {
  CountingAllocator::release(memory);
}
void operator delete[](void *memory, std::nothrow_t const &) noexcept {
  CountingAllocator::release(memory);
}
