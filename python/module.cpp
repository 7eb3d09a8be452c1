// The extension module; `velwhiteboard/__init__.py` is its public name.
#include <pybind11/pybind11.h>

#include "interpreter_gate.h"
#include "observers.h"
#include "queues.h"
#include "records.h"
#include "storage.h"

namespace {

/// What waits is written, and reported, while observers can still be called; then no thread calls
/// one any more.
void endWithInterpreter() {
  if (bindings::isForkedFromUser()) return;
  {
    const bindings::WithoutInterpreter free;
    bindings::waitForOpenQueues();
    bindings::InterpreterGate::shared().close();
  }
  bindings::forgetObservers();
}

}  // namespace

PYBIND11_MODULE(_velwhiteboard, module) {
  // The classes belong to the package, which is where they are pickled from.
  const pybind11::object ownName = module.attr("__name__");
  module.attr("__name__") = "velwhiteboard";
  module.attr("__version__") = VELWHITEBOARD_VERSION_STRING;
  module.doc() = "The records and the storage of a teaching whiteboard.";
  bindings::defineRecords(module);
  bindings::defineReports(module);
  bindings::defineStorage(module);
  pybind11::module_::import("atexit").attr("register")(pybind11::cpp_function(endWithInterpreter));
  module.attr("__name__") = ownName;
}
