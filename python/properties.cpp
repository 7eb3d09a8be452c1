#include "properties.h"

#include <optional>
#include <stdexcept>
#include <type_traits>
#include <utility>

#include "property_kinds.h"
#include "values.h"

namespace bindings {

namespace py = pybind11;
namespace vwb = VelWhiteBoard;

namespace {

py::object listOf(const vwb::RecordList& records) {
  py::list list(records.size());
  std::size_t index = 0;
  for (const auto& record : records) list[index++] = py::cast(record);
  return list;
}

template <class T>
py::object fieldToPython(const T& field) {
  return toPython(field);
}

template <class T>
py::object fieldToPython(const std::optional<T>& field) {
  if (!field) return py::none();
  return toPython(*field);
}

template <class T>
void fieldFromPython(py::handle value, T& field) {
  fromPython(value, field);
}

template <class T>
void fieldFromPython(py::handle value, std::optional<T>& field) {
  if (value.is_none()) {
    field.reset();
    return;
  }
  T content;
  fromPython(value, content);
  field = std::move(content);
}

std::optional<vwb::RecordList> recordsOf(py::handle value, const vwb::RecordClass& wanted) {
  if (value.is_none()) return std::nullopt;
  if (PyList_Check(value.ptr()) == 0 && PyTuple_Check(value.ptr()) == 0) {
    refuse("list or tuple", value);
  }
  vwb::RecordList records;
  for (const py::handle element : value) {
    std::shared_ptr<vwb::Record> record;
    if (py::isinstance<vwb::Record>(element))
      record = py::cast<std::shared_ptr<vwb::Record>>(element);
    if (!record || !record->recordClass().isKindOf(wanted)) refuse(wanted.name, element);
    records.push_back(std::move(record));
  }
  return records;
}

void assign(vwb::Record& record, const vwb::Property& property, py::handle value) {
  withKind(property, record, [&](auto* field) {
    if constexpr (std::is_same_v<decltype(field), std::optional<vwb::RecordList>*>) {
      property.list->set(record, recordsOf(value, property.list->elementClass()));
    } else {
      fieldFromPython(value, *field);
    }
  });
}

/// Whether a property that is not absent has the value of a new record.
bool isInitial(py::handle value) {
  return PyBool_Check(value.ptr()) || PyLong_Check(value.ptr()) || PyFloat_Check(value.ptr())
             ? PyObject_IsTrue(value.ptr()) == 0
             : value.is_none();
}

}  // namespace

const char* nameOfKind(vwb::PropertyKind kind) {
  switch (kind) {
    case vwb::PropertyKind::text:
      return "text";
    case vwb::PropertyKind::real:
      return "real";
    case vwb::PropertyKind::signedInteger:
      return "signed";
    case vwb::PropertyKind::unsignedInteger:
      return "unsigned";
    case vwb::PropertyKind::boolean:
      return "boolean";
    case vwb::PropertyKind::path:
      return "path";
    case vwb::PropertyKind::array:
      return "free";
    case vwb::PropertyKind::records:
      break;
  }
  return "items";
}

py::object propertyOf(const vwb::Record& record, const vwb::Property& property) {
  // Only read: the table hands out the members of a record that may be changed.
  return withKind(property, const_cast<vwb::Record&>(record), [&](const auto* field) {
    if constexpr (std::is_same_v<decltype(field), const std::optional<vwb::RecordList>*>) {
      const auto records = property.list->get(record);
      return records ? listOf(*records) : py::none();
    } else {
      return fieldToPython(*field);
    }
  });
}

void setProperty(vwb::Record& record, const vwb::Property& property, py::handle value) {
  const auto named = [&](const std::exception& error) {
    return std::string(record.recordClass().name) + "." + std::string(property.name) + ": " +
           error.what();
  };
  try {
    assign(record, property, value);
  } catch (const py::type_error& error) {
    throw py::type_error(named(error));
  } catch (const py::value_error& error) {
    throw py::value_error(named(error));
  } catch (const std::overflow_error& error) {
    throw std::overflow_error(named(error));
  }
}

std::string representationOf(const vwb::Record& record) {
  const vwb::RecordClass& recordClass = record.recordClass();
  std::string text(recordClass.name);
  const char* separator = "(";
  for (const vwb::Property& property : recordClass.properties) {
    const py::object value = propertyOf(record, property);
    if (isInitial(value)) continue;
    text += separator + std::string(property.name) + "=";
    if (property.kind == vwb::PropertyKind::path && py::len(value) > 2) {
      text += "<" + std::to_string(py::len(value)) + " positions>";
    } else {
      text += py::cast<std::string>(py::str(
          py::repr(value).attr("encode")("utf-8", "backslashreplace").attr("decode")("utf-8")));
    }
    separator = ", ";
  }
  return text + (*separator == '(' ? "()" : ")");
}

}  // namespace bindings
