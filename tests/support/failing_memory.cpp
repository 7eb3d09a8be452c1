#include "tests/support/failing_memory.h"

#include <atomic>
#include <cstdlib>
#include <stdexcept>

namespace VelWhiteBoard {

namespace {

/// What to do with the requests of one thread, or of all. Never destroyed and never allocated: it
/// is asked inside every request.
struct Plan {
  std::atomic<bool> active{false};
  std::atomic<bool> countsMalloc{false};
  std::atomic<std::size_t> first{0};
  std::atomic<std::size_t> times{0};
  std::atomic<std::size_t> count{0};
  std::atomic<std::size_t> bytes{0};
  std::atomic<bool> failed{false};

  /// Counts a request; whether it fails.
  bool fails(std::size_t size, bool isMalloc) {
    if (!active || (isMalloc && !countsMalloc)) return false;
    const std::size_t number = ++count;
    bytes += size;
    if (number < first || number - first >= times) return false;
    failed = true;
    return true;
  }
};

thread_local Plan ofThisThread;
Plan ofAllThreads;

Plan& planFor(Requests requests) {
  return requests == Requests::kOfAllThreads ? ofAllThreads : ofThisThread;
}

bool fails(std::size_t size, bool isMalloc) {
  const bool here = ofThisThread.fails(size, isMalloc);
  const bool anywhere = ofAllThreads.fails(size, isMalloc);
  return here || anywhere;
}

}  // namespace

FailingAllocations::FailingAllocations(std::size_t first, Requests requests, std::size_t times)
    : requests_(requests) {
  Plan& plan = planFor(requests);
  if (plan.active) throw std::logic_error("two scopes of failing memory at a time");
  plan.countsMalloc = requests == Requests::kOfCLibraryToo;
  plan.first = first;
  plan.times = times;
  plan.count = 0;
  plan.bytes = 0;
  plan.failed = false;
  plan.active = true;
}

FailingAllocations::~FailingAllocations() { planFor(requests_).active = false; }

std::size_t FailingAllocations::count() const { return planFor(requests_).count; }
std::size_t FailingAllocations::bytes() const { return planFor(requests_).bytes; }
bool FailingAllocations::hasFailed() const { return planFor(requests_).failed; }

}  // namespace VelWhiteBoard

// The C library's own names for its allocator, under which it can be reached from a replacement.
// NOLINTBEGIN(bugprone-reserved-identifier, cert-dcl37-c, cert-dcl51-cpp)
#ifdef VELWB_MALLOC_FAILS  // set where the C library's allocator can be replaced
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);

void* malloc(std::size_t size) noexcept {
  return VelWhiteBoard::fails(size, true) ? nullptr : __libc_malloc(size);
}
void* calloc(std::size_t count, std::size_t size) noexcept {
  return VelWhiteBoard::fails(count * size, true) ? nullptr : __libc_calloc(count, size);
}
void* realloc(void* memory, std::size_t size) noexcept {
  return VelWhiteBoard::fails(size, true) ? nullptr : __libc_realloc(memory, size);
}
}
#define VELWB_MALLOC __libc_malloc
#else
#define VELWB_MALLOC std::malloc
#endif

namespace {

void* take(std::size_t size) {
  void* const memory =
      VelWhiteBoard::fails(size, false) ? nullptr : VELWB_MALLOC(size == 0 ? 1 : size);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}
// NOLINTEND(bugprone-reserved-identifier, cert-dcl37-c, cert-dcl51-cpp)

void* takeAligned(std::size_t size, std::align_val_t alignment) {
  const auto step = static_cast<std::size_t>(alignment);
  const std::size_t whole = (size + step - 1) / step * step;
  void* const memory = VelWhiteBoard::fails(size, false)
                           ? nullptr
                           : std::aligned_alloc(step, whole == 0 ? step : whole);
  if (memory == nullptr) throw std::bad_alloc();
  return memory;
}

void* takeOrNull(std::size_t size) noexcept {
  try {
    return take(size);
  } catch (const std::bad_alloc&) {
    return nullptr;
  }
}

}  // namespace

void* operator new(std::size_t size) { return take(size); }
void* operator new[](std::size_t size) { return take(size); }
void* operator new(std::size_t size, std::align_val_t alignment) {
  return takeAligned(size, alignment);
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
  return takeAligned(size, alignment);
}
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return takeOrNull(size);
}
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return takeOrNull(size);
}
void operator delete(void* memory) noexcept { std::free(memory); }
void operator delete[](void* memory) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::align_val_t) noexcept { std::free(memory); }
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept { std::free(memory); }
