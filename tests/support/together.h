#pragma once

#include <cstddef>
#include <functional>
#include <thread>
#include <vector>

#include "tests/support/gate.h"

namespace VelWhiteBoard {

/// Runs the function on so many threads, all of which begin at the same time; each is told its
/// number, from 0.
inline void together(int count, const std::function<void(int)>& work) {
  Meeting start(count);
  std::vector<std::thread> threads;
  threads.reserve(static_cast<std::size_t>(count));
  for (int number = 0; number < count; ++number) {
    threads.emplace_back([&, number] {
      start.arrive();
      work(number);
    });
  }
  for (std::thread& thread : threads) thread.join();
}

}  // namespace VelWhiteBoard
