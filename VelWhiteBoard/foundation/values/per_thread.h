/// @file
/// An object for each thread, usable until the process ends.
#pragma once

#include <utility>

namespace VelWhiteBoard {

/// The calling thread's own object of a type, made when the thread first asks and destroyed when
/// the thread ends.
///
/// A plain `thread_local` object of the main thread is destroyed before the static objects, but
/// queued operations may run on the main thread after that. Here, a thread whose object is already
/// destroyed gets a new one, which is never destroyed.
template <class Object>
Object& ofThisThread() {
  static constinit thread_local Object* object = nullptr;
  struct Owner {
    ~Owner() { delete std::exchange(object, nullptr); }
  };
  if (object == nullptr) {
    // Made and destroyed once, however often this is reached.
    static thread_local const Owner owner;
    object = new Object;
  }
  return *object;
}

}  // namespace VelWhiteBoard
