#include "storage.h"

#include <memory>
#include <pybind11/stl.h>
#include <string>
#include <utility>
#include <vector>

#include "board.h"
#include "interpreter_gate.h"
#include "observers.h"
#include "record_copy.h"
#include "values.h"

namespace bindings {

namespace py = pybind11;
namespace vwb = VelWhiteBoard;

namespace {

using BoardPtr = std::shared_ptr<Board>;
using OptionalPage = const vwb::VelWbVecSwitchPage*;

/// What `function` answers; the interpreter is free meanwhile.
template <class Function>
auto released(Function&& function) {
  const WithoutInterpreter free;
  return function();
}

/// A str, bytes or path object as the system takes it.
std::string fileName(const py::object& path) {
  PyObject* bytes = nullptr;
  if (PyUnicode_FSConverter(path.ptr(), &bytes) == 0) throw py::error_already_set();
  return py::cast<std::string>(py::reinterpret_steal<py::bytes>(bytes));
}

BoardPtr openBoard(const py::object& path) {
  const std::string name = fileName(path);
  return released([&] { return Board::open(name); });
}

BoardPtr openExisting(const py::object& path) {
  const std::string name = fileName(path);
  BoardPtr board = released([&] { return Board::openExisting(name); });
  if (!board) {
    PyErr_SetObject(PyExc_FileNotFoundError, toPython("there is no board below " + name).ptr());
    throw py::error_already_set();
  }
  return board;
}

/// Copies, which the storage may keep.
vwb::VectorList copiesToKeep(const vwb::VectorList& vectors) {
  vwb::VectorList copies;
  for (const vwb::VectorPtr& vector : vectors) {
    if (!vector) throw py::type_error("a vector is needed, not None");
    copies.push_back(independentCopy(*vector));
  }
  return copies;
}

/// A copy of the page or, when it is null, of the current one; null when there is none.
PagePtr pageOrCurrent(Board& board, OptionalPage page) {
  if (page != nullptr) return independentCopy(*page);
  return released([&] { return board.currentPage(); });
}

vwb::VectorList entriesOf(Board& board, OptionalPage asked) {
  const PagePtr page = pageOrCurrent(board, asked);
  if (!page) return {};
  return released([&] { return board.entries(*page); });
}

vwb::VectorList logOf(Board& board, OptionalPage asked) {
  const PagePtr page = pageOrCurrent(board, asked);
  if (!page) return {};
  return released([&] { return board.log(*page); });
}

bool save(Board& board, bool wait) {
  return released([&] {
    board.save();
    if (wait) board.waitUntilFinished();
    return board.failedFiles().empty();
  });
}

/// How many of the texts were records.
std::size_t replay(Board& board, const py::iterable& texts) {
  std::size_t count = 0;
  for (const py::handle each : texts) {
    std::string text;
    fromPython(each, text);
    const bool isRecord = released([&] {
      const vwb::VectorPtr vector = vwb::modelWithJSON<vwb::VelWbBaseVector>(text);
      if (vector) board.receive(vector);
      return vector != nullptr;
    });
    if (isRecord) ++count;
  }
  return count;
}

void close(Board& board) {
  released([&] {
    board.save();
    board.waitUntilFinished();
    board.setChangeObserver({});
    board.setWriteObserver({});
  });
}

using StorageClass = py::class_<Board, BoardPtr>;

void defineReading(StorageClass& storage) {
  storage.def_property_readonly(
      "folder", [](Board& board) { return py::str(toPython(board.storage().folder())); },
      "The board's folder, 'whiteBoard' below the path that was opened.");
  storage.def_property_readonly(
      "pages", [](Board& board) { return released([&] { return board.pages(); }); },
      "The pages that were visited, each once, in the order of the first visit; behind them those "
      "that only have files.");
  storage.def_property_readonly(
      "visited_pages", [](Board& board) { return released([&] { return board.visitedPages(); }); },
      "Every recorded page switch, oldest first.");
  storage.def_property_readonly(
      "current_page", [](Board& board) { return released([&] { return board.currentPage(); }); },
      "The page that is current; None before the first switch.");
  storage.def_property_readonly(
      "has_new_change", [](Board& board) { return board.storage().hasNewChange(); },
      "Whether a vector was accepted since the page became current.");
  storage.def("entries", &entriesOf, py::arg("page") = py::none(),
              "Copies of what is on a page, to be drawn in this order; of the current page when "
              "none is named.");
  storage.def("log", &logOf, py::arg("page") = py::none(),
              "Copies of every vector that a page has accepted, in the order of arrival.");
  storage.def(
      "entry",
      [](Board& board, const std::string& ID) { return released([&] { return board.entry(ID); }); },
      py::arg("ID"), "A copy of the current page's entry with this ID; None when there is none.");
}

void defineSaving(StorageClass& storage) {
  storage.def_property(
      "ignore_changes", [](Board& board) { return board.storage().ignoreChanges(); },
      [](Board& board, const py::object& ignore) {
        bool value = true;
        fromPython(ignore, value);
        board.storage().setIgnoreChanges(value);
      },
      "While True, vectors are dropped and page switches are not recorded. True at first.");
  storage.def(
      "switch_page",
      [](Board& board, const vwb::VelWbVecSwitchPage& page) {
        const PagePtr copy = independentCopy(page);
        return released([&] { return board.switchPage(copy); });
      },
      py::arg("page"),
      "Saves the current page and makes another one current. Copies of its entries; [] when it is "
      "current already.");
  storage.def(
      "save_vector",
      [](Board& board, const vwb::VelWbBaseVector& vector) {
        const vwb::VectorPtr copy = independentCopy(vector);
        released([&] { board.saveVector(copy); });
      },
      py::arg("vector"), "Saves a copy of the vector on the current page.");
  storage.def(
      "save_vectors",
      [](Board& board, const vwb::VectorList& vectors, const vwb::VelWbVecSwitchPage& page) {
        const vwb::VectorList copies = copiesToKeep(vectors);
        const PagePtr copy = independentCopy(page);
        released([&] { board.saveVectors(copies, copy); });
      },
      py::arg("vectors"), py::arg("page"),
      "Saves copies on any page, by the rules of save_vector, and queues its writing.");
  storage.def(
      "append_vectors",
      [](Board& board, const vwb::VectorList& vectors, const vwb::VelWbVecSwitchPage& page) {
        const vwb::VectorList copies = copiesToKeep(vectors);
        const PagePtr copy = independentCopy(page);
        released([&] { board.appendVectors(copies, copy); });
      },
      py::arg("vectors"), py::arg("page"),
      "Adds copies to any page; on another than the current one a box that is edited keeps its "
      "size. "
      "Works while changes are ignored.");
  storage.def("replay", &replay, py::arg("texts"),
              "Plays JSON texts in their order: a page switch switches the page, every other "
              "record is saved on the current page, what is no JSON object is passed over. How "
              "many were records.");
  storage.def(
      "clear_page",
      [](Board& board, const vwb::VelWbVecSwitchPage& page) {
        const PagePtr copy = independentCopy(page);
        released([&] { board.clearPage(*copy); });
      },
      py::arg("page"), "Forgets a page and queues the removal of its files.");
  storage.def(
      "clear", [](Board& board) { released([&] { board.clear(); }); },
      "Deletes the board's folder and starts afresh. Not beside other operations.");
}

void defineFiles(StorageClass& storage) {
  storage.def("save", &save, py::arg("wait") = true,
              "Queues the writing of the current page, if it has changed, and of what could not be "
              "written before; waits for it. False when a file is known not to be written.");
  storage.def(
      "save_when_due", [](Board& board) { released([&] { board.saveWhenDue(); }); },
      "Queues the writing of the current page when 20 seconds have passed since the last save.");
  storage.def(
      "wait_until_finished", [](Board& board) { released([&] { board.waitUntilFinished(); }); },
      "Waits until everything that was queued is written. Returns at once in a write observer.");
  storage.def_property_readonly(
      "failed_files",
      [](Board& board) {
        py::list names;
        for (const std::string& name : board.failedFiles()) names.append(toPython(name));
        return names;
      },
      "The files whose last write or removal has failed.");
  storage.def(
      "set_change_observer",
      [](Board& board, const py::object& function) {
        vwb::ChangeObserver observer = changeObserver(function, board.storage().semphore());
        board.setChangeObserver(std::move(observer));
      },
      py::arg("function"),
      "Has function(ChangeReport) called after each change, on the thread that made it. None takes "
      "the observer away.");
  storage.def(
      "set_write_observer",
      [](Board& board, const py::object& function) {
        board.setWriteObserver(writeObserver(function));
      },
      py::arg("function"),
      "Has function(WriteReport) called for each file that was written or removed, on the thread "
      "that writes. None takes the observer away.");
  storage.def("close", &close,
              "Saves, waits until everything is written, and takes the observers away. The storage "
              "stays usable.");
  storage.def("__enter__", [](const BoardPtr& board) { return board; });
  storage.def(
      "__exit__", [](Board& board, const py::args&) { close(board); }, "Closes the storage.");
}

}  // namespace

void defineStorage(py::module_& module) {
  StorageClass storage(module, "Storage",
                       "One board: its pages, in memory and in files. It keeps copies of what it "
                       "is given and answers copies. Any thread may call anything but clear.");
  storage.def(py::init(&openBoard), py::arg("path"),
              "Opens, or creates, the board in the folder 'whiteBoard' below the path. It ignores "
              "changes until ignore_changes is False.");
  defineReading(storage);
  defineSaving(storage);
  defineFiles(storage);

  module.def(
      "pages",
      [](const py::object& path) {
        const BoardPtr board = openExisting(path);
        return released([&] { return board->pages(); });
      },
      py::arg("path"), "The pages of the board below the path; FileNotFoundError without a board.");
  module.def(
      "read_entries",
      [](const py::object& path, const vwb::VelWbVecSwitchPage& page) {
        return entriesOf(*openExisting(path), &page);
      },
      py::arg("path"), py::arg("page"), "What is on a page, read from its file.");
  module.def(
      "read_log",
      [](const py::object& path, const vwb::VelWbVecSwitchPage& page) {
        return logOf(*openExisting(path), &page);
      },
      py::arg("path"), py::arg("page"),
      "Every vector that a page has accepted, read from its file.");
}

}  // namespace bindings
