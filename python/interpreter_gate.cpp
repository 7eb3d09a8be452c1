#include "interpreter_gate.h"

#include <chrono>

namespace bindings {

namespace {

/// How often this thread has entered: an observer may call the library, which comes back.
thread_local std::size_t depth = 0;

}  // namespace

InterpreterGate& InterpreterGate::shared() {
  static InterpreterGate* const gate = new InterpreterGate;
  return *gate;
}

bool InterpreterGate::tryEnter(bool isCloserWelcome) {
  const std::lock_guard<std::mutex> hold(mutex_);
  if (isClosed_ && depth == 0 && !(isCloserWelcome && std::this_thread::get_id() == closer_)) {
    return false;
  }
  ++inside_;
  ++depth;
  return true;
}

bool InterpreterGate::enter() { return tryEnter(false); }

void InterpreterGate::enterToReturn() {
  while (!tryEnter(true)) std::this_thread::sleep_for(std::chrono::hours(1));
}

void InterpreterGate::leave() {
  const std::lock_guard<std::mutex> hold(mutex_);
  --depth;
  if (--inside_ == 0) allLeft_.notify_all();
}

void InterpreterGate::close() {
  std::unique_lock<std::mutex> hold(mutex_);
  isClosed_ = true;
  closer_ = std::this_thread::get_id();
  allLeft_.wait(hold, [this] { return inside_ == 0; });
}

WithoutInterpreter::~WithoutInterpreter() {
  InterpreterGate& gate = InterpreterGate::shared();
  gate.enterToReturn();
  PyEval_RestoreThread(state_);
  gate.leave();
}

WithInterpreter::WithInterpreter() : isInside_(InterpreterGate::shared().enter()) {
  if (isInside_) state_ = PyGILState_Ensure();
}

WithInterpreter::~WithInterpreter() {
  if (!isInside_) return;
  PyGILState_Release(state_);
  InterpreterGate::shared().leave();
}

}  // namespace bindings
