// Work on a thread with little stack: what recurses on its input dies there.
#pragma once

#include <functional>
#include <pthread.h>

#include <gtest/gtest.h>

namespace VelWhiteBoard {

inline void onSmallStack(const std::function<void()>& work) {
  constexpr std::size_t kStack = 256 * 1024;
  pthread_attr_t attributes;
  ASSERT_EQ(pthread_attr_init(&attributes), 0);
  ASSERT_EQ(pthread_attr_setstacksize(&attributes, kStack), 0);
  pthread_t thread{};
  const auto run = [](void* argument) -> void* {
    (*static_cast<const std::function<void()>*>(argument))();
    return nullptr;
  };
  ASSERT_EQ(pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work)),
            0);
  pthread_join(thread, nullptr);
  pthread_attr_destroy(&attributes);
}

}  // namespace VelWhiteBoard
