// How much memory is out, in a program that links counted_memory.cpp.
#pragma once

#include <cstddef>

namespace benchmarks {

/// Bytes that the process has of its allocator now, what the allocator adds to each included. All
/// threads, everything that asks `malloc`; where `malloc` cannot be replaced, only operator new.
std::size_t memoryInUse();

/// The most since the last `forgetPeakMemory()`.
std::size_t peakMemory();
void forgetPeakMemory();

}  // namespace benchmarks
