#include "values.h"

#include <cstddef>
#include <stdexcept>
#include <utility>
#include <vector>

namespace bindings {

namespace py = pybind11;
namespace vwb = VelWhiteBoard;

namespace {

/// A new reference, or the error that Python has set.
py::object checked(PyObject* object) {
  if (object == nullptr) throw py::error_already_set();
  return py::reinterpret_steal<py::object>(object);
}

bool isSequence(py::handle value) {
  PyObject* const object = value.ptr();
  return PySequence_Check(object) != 0 && PyUnicode_Check(object) == 0 &&
         PyBytes_Check(object) == 0 && PyByteArray_Check(object) == 0;
}

/// The int that `value` is or, by `__index__`, stands for; a bool is none.
py::object integerOf(py::handle value) {
  if (PyBool_Check(value.ptr()) || PyIndex_Check(value.ptr()) == 0) refuse("int", value);
  return checked(PyNumber_Index(value.ptr()));
}

vwb::Value valueOf(py::handle value, std::size_t depth);

vwb::Array arrayOf(py::handle list, std::size_t depth) {
  if (depth > vwb::kMaximumValueDepth) {
    throw py::value_error("lists and dicts are nested deeper than 256 levels");
  }
  vwb::Array array;
  for (const py::handle element : list) array.push_back(valueOf(element, depth + 1));
  return array;
}

vwb::Dictionary dictionaryOf(py::handle dict, std::size_t depth) {
  if (depth > vwb::kMaximumValueDepth) {
    throw py::value_error("lists and dicts are nested deeper than 256 levels");
  }
  vwb::Dictionary dictionary;
  for (const auto& [key, member] : py::reinterpret_borrow<py::dict>(dict)) {
    std::string name;
    fromPython(key, name);
    dictionary.insert_or_assign(std::move(name), valueOf(member, depth + 1));
  }
  return dictionary;
}

vwb::Value integerValueOf(py::handle value) {
  int overflow = 0;
  const long long number = PyLong_AsLongLongAndOverflow(value.ptr(), &overflow);
  if (overflow == 0) return std::int64_t{number};
  std::uint64_t large = 0;
  fromPython(value, large);
  return large;
}

vwb::Value valueOf(py::handle value, std::size_t depth) {
  PyObject* const object = value.ptr();
  if (value.is_none()) return nullptr;
  if (PyBool_Check(object)) return object == Py_True;
  if (PyLong_Check(object)) return integerValueOf(value);
  if (PyFloat_Check(object)) return PyFloat_AS_DOUBLE(object);
  if (PyList_Check(object) || PyTuple_Check(object)) return arrayOf(value, depth);
  if (PyDict_Check(object)) return dictionaryOf(value, depth);
  if (PyUnicode_Check(object) == 0) {
    refuse("None, bool, int, float, str, list, tuple or dict", value);
  }
  std::string text;
  fromPython(value, text);
  return text;
}

}  // namespace

void refuse(std::string_view needed, py::handle value) {
  throw py::type_error(std::string(needed) + " is needed, not " + Py_TYPE(value.ptr())->tp_name);
}

py::object toPython(const std::string& text) {
  return checked(
      PyUnicode_DecodeUTF8(text.data(), static_cast<Py_ssize_t>(text.size()), "surrogateescape"));
}

py::object toPython(double number) { return checked(PyFloat_FromDouble(number)); }

py::object toPython(std::int64_t number) { return checked(PyLong_FromLongLong(number)); }

py::object toPython(std::uint64_t number) { return checked(PyLong_FromUnsignedLongLong(number)); }

py::object toPython(bool value) { return py::bool_(value); }

py::object toPython(const vwb::Path& path) {
  py::list positions(path.size());
  std::size_t index = 0;
  for (const vwb::Path::Position position : path) {
    py::list numbers(position.size());
    for (std::size_t place = 0; place < position.size(); ++place) {
      numbers[place] = toPython(position[place]);
    }
    positions[index++] = std::move(numbers);
  }
  return positions;
}

py::object toPython(const vwb::Value& value) {
  switch (value.type()) {
    case vwb::Value::value_t::boolean:
      return toPython(value.get<bool>());
    case vwb::Value::value_t::number_integer:
      return toPython(value.get<std::int64_t>());
    case vwb::Value::value_t::number_unsigned:
      return toPython(value.get<std::uint64_t>());
    case vwb::Value::value_t::number_float:
      return toPython(value.get<double>());
    case vwb::Value::value_t::string:
      return toPython(value.get_ref<const std::string&>());
    case vwb::Value::value_t::array:
      return toPython(value.get_ref<const vwb::Array&>());
    case vwb::Value::value_t::object:
      return toPython(value.get_ref<const vwb::Dictionary&>());
    default:
      return py::none();
  }
}

py::object toPython(const vwb::Array& array) {
  py::list list(array.size());
  std::size_t index = 0;
  for (const vwb::Value& element : array) list[index++] = toPython(element);
  return list;
}

py::object toPython(const vwb::Dictionary& dictionary) {
  py::dict dict;
  for (const auto& [key, member] : dictionary) dict[toPython(key)] = toPython(member);
  return dict;
}

void fromPython(py::handle value, std::string& text) {
  if (PyUnicode_Check(value.ptr()) == 0) refuse("str", value);
  const py::object bytes =
      checked(PyUnicode_AsEncodedString(value.ptr(), "utf-8", "surrogateescape"));
  text.assign(PyBytes_AS_STRING(bytes.ptr()),
              static_cast<std::size_t>(PyBytes_GET_SIZE(bytes.ptr())));
}

void fromPython(py::handle value, double& number) {
  if (PyFloat_Check(value.ptr())) {
    number = PyFloat_AS_DOUBLE(value.ptr());
    return;
  }
  if (PyBool_Check(value.ptr()) || PyIndex_Check(value.ptr()) == 0) refuse("float", value);
  const py::object integer = integerOf(value);
  const double nearest = PyLong_AsDouble(integer.ptr());
  if (PyErr_Occurred() != nullptr) throw py::error_already_set();
  if (!integer.equal(checked(PyLong_FromDouble(nearest)))) {
    throw std::overflow_error("no float is exactly this int");
  }
  number = nearest;
}

void fromPython(py::handle value, std::int64_t& number) {
  int overflow = 0;
  const long long result = PyLong_AsLongLongAndOverflow(integerOf(value).ptr(), &overflow);
  if (overflow != 0) throw std::overflow_error("the int does not fit 64 bits");
  number = result;
}

void fromPython(py::handle value, std::uint64_t& number) {
  const unsigned long long result = PyLong_AsUnsignedLongLong(integerOf(value).ptr());
  if (PyErr_Occurred() != nullptr) {
    PyErr_Clear();
    throw std::overflow_error("the int does not fit 64 bits without a sign");
  }
  number = result;
}

void fromPython(py::handle value, bool& result) {
  if (PyBool_Check(value.ptr()) == 0) refuse("bool", value);
  result = value.ptr() == Py_True;
}

void fromPython(py::handle value, vwb::Path& path) {
  if (!isSequence(value)) refuse("a sequence of positions", value);
  vwb::Path positions;
  std::vector<double> numbers;
  for (const py::handle position : value) {
    if (!isSequence(position)) refuse("a sequence of numbers", position);
    numbers.clear();
    for (const py::handle each : position) fromPython(each, numbers.emplace_back());
    positions.push_back(numbers);
  }
  path.swap(positions);
}

void fromPython(py::handle value, vwb::Array& array) {
  if (PyList_Check(value.ptr()) == 0 && PyTuple_Check(value.ptr()) == 0) {
    refuse("list or tuple", value);
  }
  array = arrayOf(value, 1);
}

void fromPython(py::handle value, vwb::Dictionary& dictionary) {
  if (PyDict_Check(value.ptr()) == 0) refuse("dict", value);
  dictionary = dictionaryOf(value, 0);  // the limit holds for the value of each key
}

}  // namespace bindings
