#include "records.h"

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <memory>
#include <pybind11/stl.h>
#include <span>
#include <string>
#include <type_traits>

#include "properties.h"
#include "record_copy.h"
#include "values.h"

namespace bindings {

namespace py = pybind11;
namespace vwb = VelWhiteBoard;

namespace {

template <class T, class Base>
Base* baseOf(const vwb::RecordOf<T, Base>* record);
/// The class from which a record class says that it derives.
template <class T>
using BaseOf = std::remove_pointer_t<decltype(baseOf<T>(static_cast<T*>(nullptr)))>;

template <class T>
using ClassOf = py::class_<T, BaseOf<T>, std::shared_ptr<T>>;

/// The properties that the class itself declares; the table has those of its bases first.
std::span<const vwb::Property> ownProperties(const vwb::RecordClass& recordClass) {
  const std::size_t inherited = recordClass.base ? recordClass.base->properties.size() : 0;
  return recordClass.properties.subspan(inherited);
}

const vwb::Property& propertyNamed(const vwb::RecordClass& recordClass, py::handle name) {
  const std::string wanted = py::cast<std::string>(name);
  for (const vwb::Property& property : recordClass.properties) {
    if (property.name == wanted) return property;
  }
  throw py::type_error(std::string(recordClass.name) + " has no property '" + wanted + "'");
}

/// Name to kind, not to be changed.
py::object kindsOf(const vwb::RecordClass& recordClass) {
  py::dict kinds;
  for (const vwb::Property& property : recordClass.properties) {
    kinds[py::str(std::string(property.name))] = nameOfKind(property.kind);
  }
  return py::module_::import("types").attr("MappingProxyType")(kinds);
}

template <class T>
void defineProperties(ClassOf<T>& defined) {
  for (const vwb::Property& property : ownProperties(T::ownClass())) {
    const std::string name(property.name);
    const std::string text = std::string("Kind: ") + nameOfKind(property.kind) + ".";
    defined.def_property(
        name.c_str(), [&property](const T& record) { return propertyOf(record, property); },
        [&property](T& record, const py::object& value) { setProperty(record, property, value); },
        text.c_str());
  }
  defined.attr("PROPERTIES") = kindsOf(T::ownClass());
}

template <class T>
void defineForms(ClassOf<T>& defined) {
  defined.def_static(
      "from_dict",
      [](const py::dict& dictionary) {
        vwb::Dictionary converted;
        fromPython(dictionary, converted);
        return vwb::recordWithDictionary(T::ownClass(), converted);
      },
      py::arg("dictionary"),
      "The record of a dictionary form. Its type and keys may choose another class.");
  defined.def_static(
      "from_json",
      [](const py::str& text) {
        std::string converted;
        fromPython(text, converted);
        return vwb::recordWithJSON(T::ownClass(), converted);
      },
      py::arg("text"), "The record of a JSON text; None when it is no JSON object.");
  defined.def(py::pickle(
      [](const T& record) {
        vwb::Coder archive;
        record.encodeWithCoder(archive);
        return py::bytes(archive.data());
      },
      [](const py::bytes& archive) {
        return T::initWithCoder(vwb::Coder(py::cast<std::string>(archive)));
      }));
}

template <class T>
ClassOf<T> define(py::module_& module, const char* text) {
  const std::string name(T::ownClass().name);
  ClassOf<T> defined(module, name.c_str(), text);
  defined.def(py::init([](const py::kwargs& properties) {
                auto record = std::make_shared<T>();
                for (const auto& [key, value] : properties) {
                  setProperty(*record, propertyNamed(T::ownClass(), key), value);
                }
                return record;
              }),
              "A new record; the properties that are named are set.");
  defineProperties(defined);
  defineForms(defined);
  return defined;
}

void defineRoot(py::module_& module) {
  py::class_<vwb::Record, std::shared_ptr<vwb::Record>>(
      module, "Record",
      "The root of all records. The class attribute PROPERTIES has the name and the kind of each "
      "property. Records are equal when they are of one class and all properties are equal.")
      .def(
          "to_dict",
          [](const vwb::Record& record) {
            return py::dict(toPython(vwb::modelToJSONObject(record)));
          },
          "The dictionary form: without absent properties, NaN and infinities.")
      .def(
          "to_json", [](const vwb::Record& record) { return vwb::modelToJSONString(record); },
          "The dictionary form as one line of JSON, keys in the order of declaration.")
      .def(
          "copy", [](const vwb::Record& record) { return copyOfRecord(record); },
          "A copy that shares nothing with the record.")
      .def("__copy__", [](const vwb::Record& record) { return copyOfRecord(record); })
      .def(
          "__deepcopy__",
          [](const vwb::Record& record, const py::object&) { return copyOfRecord(record); },
          py::arg("memo"))
      .def(
          "__eq__", [](const vwb::Record& left, const vwb::Record& right) { return left == right; },
          py::is_operator())
      .def("__repr__", [](const vwb::Record& record) { return representationOf(record); });
}

void defineVectors(py::module_& module) {
  define<vwb::VelWbBaseVector>(module, "Any whiteboard operation.")
      .def("is_same_stroke", &vwb::VelWbBaseVector::isSameStroke, py::arg("update"),
           "Whether the update has the same type and ID.");
  define<vwb::VelWbVecPoint>(module, "A record with a position and, optionally, a path.")
      .def("append", &vwb::VelWbVecPoint::append, py::arg("update"),
           "Folds a later piece of the same stroke into this one.")
      .def("start_time_stamp", &vwb::VelWbVecPoint::startTimeStamp,
           "When the stroke began, in seconds on the clock of ts.");
  define<vwb::VelWbVecLine>(module, "A stroke of a pen, a marker or an eraser.");
  define<vwb::VelWbVecSquare>(module, "A box.")
      .def("merge", &vwb::VelWbVecSquare::merge, py::arg("update"),
           "Edits this box with what an update of the same type and ID carries.");
  define<vwb::VelWbVecFile>(module, "An image or a cursor.");
  define<vwb::VelWbVecVideo>(module, "A media item on the board.");
  define<vwb::VelWbVecText>(module, "A text box.");
  define<vwb::VelWbVecDiagram>(module, "A drawn shape.");
  define<vwb::VelWbVecCircle>(module, "A drawn shape with radii.");
  define<vwb::VelWbCaptureInfo>(module, "A camera capture.");
  define<vwb::VelWbVecRemove>(module, "Takes one entry off the page.");
  define<vwb::VelWbVecClear>(module, "Empties the page.");
  define<vwb::VelWbVecSwitchPage>(module, "Shows another page; also names a page.")
      .def("page_info", &vwb::VelWbVecSwitchPage::pageInfo, "The page key, such as '7_1'.")
      .def_static("page_from_info", &vwb::VelWbVecSwitchPage::pageFromInfo, py::arg("info"),
                  "The page that a page key names; None when it is no page key.");
  define<vwb::VelWbVecOffset>(module, "Moves the view.");
}

void defineOthers(py::module_& module) {
  define<vwb::VelWbVecMediaItem>(module, "One item of a media list.");
  define<vwb::VelWbVecMediaList>(module, "A participant's list of media.")
      .def("merge", &vwb::VelWbVecMediaList::merge, py::arg("other"),
           "Takes over the items of the other list, if it has any list.");
  define<vwb::VelImageResource>(module, "One page image of a resource.");
  define<vwb::VelWhiteBoardResource>(module, "A piece of courseware.")
      .def("display_title", &vwb::VelWhiteBoardResource::title,
           "The title, or the default one when there is none.")
      .def("resource_type", &vwb::VelWhiteBoardResource::getResourceType,
           "2 for a slide deck, 1 for a PDF document, 0 for everything else.");
}

}  // namespace

void defineRecords(py::module_& module) {
  defineRoot(module);
  defineVectors(module);
  defineOthers(module);
  module.def(
      "record_from_dict",
      [](const py::dict& dictionary) {
        vwb::Dictionary converted;
        fromPython(dictionary, converted);
        return vwb::modelWithDictionary<vwb::VelWbBaseVector>(converted);
      },
      py::arg("dictionary"),
      "The vector of a dictionary form; its type and keys choose the class. Unknown keys are "
      "ignored, values that a property cannot take leave it as it is in a new record.");
  module.def(
      "record_from_json",
      [](const py::str& text) {
        std::string converted;
        fromPython(text, converted);
        return vwb::modelWithJSON<vwb::VelWbBaseVector>(converted);
      },
      py::arg("text"), "The same from a JSON text; None when it is no JSON object.");
  module.def(
      "records_from_json",
      [](const py::str& text) {
        std::string converted;
        fromPython(text, converted);
        return vwb::modelArrayWithJSON<vwb::VelWbBaseVector>(converted);
      },
      py::arg("text"), "The vectors of the text of a JSON array; [] when it is none.");
}

}  // namespace bindings
