// The end of the interpreter: which threads may still wait for its lock.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <mutex>
#include <pybind11/pybind11.h>
#include <thread>

namespace bindings {

/// Counts the threads that want the interpreter's lock although they do not hold it: those that
/// call an observer, and those that come back from an operation of the library. When the
/// interpreter ends it is closed: it waits for these and lets no other thread in. An interpreter
/// that has ended would end such a thread in the middle of the library's code.
///
/// One object for the process, never destroyed. Any thread.
class InterpreterGate {
 public:
  static InterpreterGate& shared();
  InterpreterGate(const InterpreterGate&) = delete;
  InterpreterGate& operator=(const InterpreterGate&) = delete;

  /// Before an observer is called. False: the gate is closed; the observer is not to be called.
  /// True: `leave` is to be called afterwards.
  bool enter();
  /// Before a thread that came from Python goes back to it; `leave` is to be called afterwards.
  /// When the interpreter ends, only the thread that ends it comes back: others sleep until the
  /// process is gone, as a daemon thread may.
  void enterToReturn();
  /// After `enter` or `enterToReturn`, on the same thread.
  void leave();

  /// Waits until every thread that has entered has left. To be called without the interpreter's
  /// lock, on the thread that ends the interpreter.
  void close();

 private:
  InterpreterGate() = default;
  ~InterpreterGate() = default;

  bool tryEnter(bool isCloserWelcome);

  std::mutex mutex_;
  std::condition_variable allLeft_;
  std::size_t inside_ = 0;
  bool isClosed_ = false;
  std::thread::id closer_;
};

/// Gives the interpreter's lock back for a scope, in which the library may wait for a disk or for
/// another thread. No Python object is to be touched meanwhile.
class WithoutInterpreter {
 public:
  WithoutInterpreter() : state_(PyEval_SaveThread()) {}
  ~WithoutInterpreter();
  WithoutInterpreter(const WithoutInterpreter&) = delete;
  WithoutInterpreter& operator=(const WithoutInterpreter&) = delete;

 private:
  PyThreadState* state_;
};

/// Takes the interpreter's lock for a scope, on any thread; not when the interpreter ends.
class WithInterpreter {
 public:
  WithInterpreter();
  ~WithInterpreter();
  WithInterpreter(const WithInterpreter&) = delete;
  WithInterpreter& operator=(const WithInterpreter&) = delete;

  /// Whether it was taken. Otherwise no Python object is to be touched.
  explicit operator bool() const { return isInside_; }

 private:
  bool isInside_;
  PyGILState_STATE state_ = PyGILState_UNLOCKED;
};

}  // namespace bindings
