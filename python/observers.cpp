#include "observers.h"

#include <mutex>
#include <pybind11/stl.h>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "interpreter_gate.h"
#include "record_copy.h"
#include "values.h"

namespace bindings {

namespace py = pybind11;
namespace vwb = VelWhiteBoard;

namespace {

class Callback;

/// All callbacks there are; never destroyed.
struct Callbacks {
  std::mutex mutex;
  std::set<Callback*> all;

  static Callbacks& shared() {
    static Callbacks* const callbacks = new Callbacks;
    return *callbacks;
  }
};

/// A Python function that any thread calls and lets go of. Made with the interpreter's lock.
class Callback {
 public:
  explicit Callback(py::object function) : function_(std::move(function)) {
    Callbacks& callbacks = Callbacks::shared();
    const std::lock_guard<std::mutex> hold(callbacks.mutex);
    callbacks.all.insert(this);
  }
  ~Callback() {
    {
      Callbacks& callbacks = Callbacks::shared();
      const std::lock_guard<std::mutex> hold(callbacks.mutex);
      callbacks.all.erase(this);
    }
    if (!function_) return;
    const WithInterpreter python;
    // An interpreter that has ended has no use for its objects.
    if (!python) function_.release();
    function_ = py::object();
  }
  Callback(const Callback&) = delete;
  Callback& operator=(const Callback&) = delete;

  /// Does nothing when the interpreter ends.
  template <class Report>
  void operator()(const Report& report) const {
    const WithInterpreter python;
    if (!python || !function_) return;
    try {
      function_(py::cast(report));
    } catch (py::error_already_set& error) {
      error.discard_as_unraisable(function_);
    }
  }

  /// What it called; from now on it calls nothing.
  py::object forget() { return std::exchange(function_, py::object()); }

 private:
  py::object function_;
};

std::shared_ptr<Callback> callback(const py::object& function) {
  if (function.is_none()) return nullptr;
  if (PyCallable_Check(function.ptr()) == 0) refuse("a function or None", function);
  return std::make_shared<Callback>(function);
}

const char* nameOf(vwb::EntryChange::Kind kind) {
  switch (kind) {
    case vwb::EntryChange::Kind::kAdded:
      return "added";
    case vwb::EntryChange::Kind::kExtended:
      return "extended";
    case vwb::EntryChange::Kind::kEdited:
      return "edited";
    case vwb::EntryChange::Kind::kRaised:
      return "raised";
    case vwb::EntryChange::Kind::kRemoved:
      return "removed";
    case vwb::EntryChange::Kind::kRemovedTop:
      return "removed_top";
    case vwb::EntryChange::Kind::kCleared:
      break;
  }
  return "cleared";
}

const char* nameOf(vwb::ChangeReport::Kind kind) {
  switch (kind) {
    case vwb::ChangeReport::Kind::kEntries:
      return "entries";
    case vwb::ChangeReport::Kind::kSwitched:
      return "switched";
    case vwb::ChangeReport::Kind::kReloaded:
      break;
  }
  return "reloaded";
}

}  // namespace

void forgetObservers() {
  std::vector<py::object> functions;  // dropped without the lock: each may drop other observers
  Callbacks& callbacks = Callbacks::shared();
  const std::lock_guard<std::mutex> hold(callbacks.mutex);
  for (Callback* const each : callbacks.all) functions.push_back(each->forget());
}

vwb::ChangeObserver changeObserver(const py::object& function,
                                   std::shared_ptr<vwb::Semaphore> semphore) {
  const std::shared_ptr<Callback> called = callback(function);
  if (!called) return {};
  return [called, semphore = std::move(semphore)](const vwb::ChangeReport& report) {
    vwb::VectorList entries;
    for (const vwb::EntryChange& change : report.changes) entries.push_back(change.entry);
    entries = independentCopies(entries, semphore);
    vwb::ChangeReport told = report;
    for (std::size_t index = 0; index < entries.size(); ++index) {
      told.changes[index].entry = std::move(entries[index]);
    }
    (*called)(told);
  };
}

vwb::WriteObserver writeObserver(const py::object& function) {
  const std::shared_ptr<Callback> called = callback(function);
  if (!called) return {};
  return [called](const vwb::WriteReport& report) { (*called)(report); };
}

void defineReports(py::module_& module) {
  py::class_<vwb::EntryChange>(module, "EntryChange", "One change of a page's entries.")
      .def_property_readonly(
          "kind", [](const vwb::EntryChange& change) -> std::string { return nameOf(change.kind); },
          "'added', 'extended', 'edited', 'raised', 'removed', 'removed_top' or 'cleared', as "
          "docs/client.md describes them.")
      .def_property_readonly(
          "entry", [](const vwb::EntryChange& change) { return change.entry; },
          "A copy of the entry as it is now; None when all entries were cleared.")
      .def_property_readonly(
          "first_new", [](const vwb::EntryChange& change) { return change.firstNew; },
          "Of an extended stroke: the index of its first new position.");
  py::class_<vwb::ChangeReport>(module, "ChangeReport", "What one operation has changed.")
      .def_property_readonly(
          "kind",
          [](const vwb::ChangeReport& report) -> std::string { return nameOf(report.kind); },
          "'entries', 'switched' (another page is current) or 'reloaded' (the board was cleared).")
      .def_property_readonly(
          "number", [](const vwb::ChangeReport& report) { return report.number; },
          "1 for a storage's first report, one more for each that follows.")
      .def_property_readonly(
          "page", [](const vwb::ChangeReport& report) { return report.page; },
          "The page key, such as '7_1'.")
      .def_property_readonly(
          "is_current", [](const vwb::ChangeReport& report) { return report.isCurrent; },
          "Whether that page was current.")
      .def_property_readonly(
          "changes", [](const vwb::ChangeReport& report) { return report.changes; },
          "The changes of the entries, in order.");
  py::class_<vwb::WriteReport>(module, "WriteReport", "What became of one file.")
      .def_property_readonly(
          "kind",
          [](const vwb::WriteReport& report) -> std::string {
            return report.kind == vwb::WriteReport::Kind::kWritten ? "written" : "removed";
          },
          "'written' or 'removed'.")
      .def_property_readonly(
          "path", [](const vwb::WriteReport& report) { return py::str(toPython(report.path)); },
          "The file.")
      .def_property_readonly(
          "ok", [](const vwb::WriteReport& report) { return report.result.ok(); },
          "Whether it was done.")
      .def_property_readonly(
          "error", [](const vwb::WriteReport& report) { return report.result.error; },
          "The system's error number, see the module errno; 0 when it was done.")
      .def_property_readonly(
          "text",
          [](const vwb::WriteReport& report) {
            return py::str(toPython(report.result.describe()));
          },
          "One line for a person.");
}

}  // namespace bindings
