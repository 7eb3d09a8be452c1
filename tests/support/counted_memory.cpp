#include "tests/support/counted_memory.h"

#include <algorithm>
#include <atomic>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {

std::atomic<std::size_t> inUse{0};
std::atomic<std::size_t> peak{0};

void* take(std::size_t size) {
  void* const memory = std::malloc(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  const std::size_t now = inUse += malloc_usable_size(memory);
  std::size_t highest = peak;
  while (now > highest && !peak.compare_exchange_weak(highest, now)) {
  }
  return memory;
}

void giveBack(void* memory) {
  if (memory == nullptr) return;
  inUse -= malloc_usable_size(memory);
  std::free(memory);
}

}  // namespace

void* operator new(std::size_t size) { return take(size); }
void* operator new[](std::size_t size) { return take(size); }
void operator delete(void* memory) noexcept { giveBack(memory); }
void operator delete[](void* memory) noexcept { giveBack(memory); }
void operator delete(void* memory, std::size_t) noexcept { giveBack(memory); }
void operator delete[](void* memory, std::size_t) noexcept { giveBack(memory); }

namespace VelWhiteBoard {

PeakMemory::PeakMemory() : before_(inUse) { peak = before_; }

std::size_t PeakMemory::bytes() const { return peak - before_; }

}  // namespace VelWhiteBoard
