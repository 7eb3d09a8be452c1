#include "benchmarks/counted_memory.h"

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <malloc.h>
#include <new>

namespace {

std::atomic<std::size_t> inUse{0};
std::atomic<std::size_t> peak{0};

/// What stands before each block.
constexpr std::size_t kHeader = sizeof(std::size_t);

void* counted(void* memory) {
  if (memory == nullptr) return nullptr;
  const std::size_t now = inUse += malloc_usable_size(memory) + kHeader;
  std::size_t highest = peak;
  while (now > highest && !peak.compare_exchange_weak(highest, now)) {
  }
  return memory;
}

void uncount(void* memory) {
  if (memory != nullptr) inUse -= malloc_usable_size(memory) + kHeader;
}

}  // namespace

namespace benchmarks {

std::size_t memoryInUse() { return inUse; }
std::size_t peakMemory() { return peak; }
void forgetPeakMemory() { peak = inUse.load(); }

}  // namespace benchmarks

#ifdef __GLIBC__

// The C library allows a program to replace these as a whole; operator new comes through here.
extern "C" {

void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* memory);

void* malloc(std::size_t size) noexcept { return counted(__libc_malloc(size)); }
void* calloc(std::size_t count, std::size_t size) noexcept {
  return counted(__libc_calloc(count, size));
}
void* realloc(void* memory, std::size_t size) noexcept {
  const std::size_t before = memory == nullptr ? 0 : malloc_usable_size(memory) + kHeader;
  void* const moved = __libc_realloc(memory, size);
  if (moved != nullptr || size == 0) inUse -= before;
  return counted(moved);
}
void free(void* memory) noexcept {
  uncount(memory);
  __libc_free(memory);
}
void* memalign(std::size_t alignment, std::size_t size) noexcept {
  return counted(__libc_memalign(alignment, size));
}
void* aligned_alloc(std::size_t alignment, std::size_t size) noexcept {
  return counted(__libc_memalign(alignment, size));
}
int posix_memalign(void** memory, std::size_t alignment, std::size_t size) noexcept {
  void* const block = __libc_memalign(alignment, size);
  if (block == nullptr) return ENOMEM;
  *memory = counted(block);
  return 0;
}

}  // extern "C"

#else

void* operator new(std::size_t size) {
  void* const memory = counted(std::malloc(size == 0 ? 1 : size));
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
void* operator new[](std::size_t size) { return operator new(size); }
void operator delete(void* memory) noexcept {
  uncount(memory);
  std::free(memory);
}
void operator delete[](void* memory) noexcept { operator delete(memory); }
void operator delete(void* memory, std::size_t) noexcept { operator delete(memory); }
void operator delete[](void* memory, std::size_t) noexcept { operator delete(memory); }

#endif
