/// @file
/// Records to and from their dictionary form and JSON text.
///
/// The dictionary form of a record is an object whose keys are the names of its properties. Absent
/// strings and arrays are left out, numbers and booleans are always written; a number that JSON
/// cannot carry (NaN, infinities) is left out, and is 0 inside a path.
///
/// Strings are UTF-8: in both forms U+FFFD takes the place of bytes that are not. The record itself
/// is not changed.
///
/// Reading never fails because of a value; the property keeps its default instead. Values are
/// converted where that takes no guessing: for a string property a number becomes its shortest
/// decimal text; for a number property a string that is a JSON number becomes that number and a
/// boolean 0 or 1; a boolean property takes a number (not 0 is true) and "true" or "false"; null is
/// null, 0 or false. An integer property cuts a fraction off toward zero and stops at the ends of
/// its range. A position of a path that is not an array of numbers is dropped. Keys that name no
/// property are ignored. A property's value that nests arrays and objects deeper than 256 levels is
/// ignored, and so is everything under an unknown key. In a list of records each element is checked
/// separately.
///
/// An integer in a JSON text that does not fit 64 bits, signed or unsigned, is read as the nearest
/// real number; a number beyond the range of a double is read as null. A leading byte order mark is
/// skipped. Half a pair of surrogates is read as U+FFFD.
///
/// The class that is read back is chosen by the keys that are present. So a number that was left
/// out because JSON cannot express it may change the class: a diagram whose `radiusX` is NaN comes
/// back as one without radii, a box of unknown type whose `w` is NaN as a point.
///
/// Memory: an operation that runs out of memory throws std::bad_alloc; it never reports a text or
/// dictionary as damaged for that reason.
///
/// Threads: all functions may be called from any thread, on distinct records.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "VelWhiteBoard/foundation/export.h"
#include "VelWhiteBoard/foundation/records/record.h"
#include "VelWhiteBoard/foundation/values/value.h"

namespace VelWhiteBoard {

/// @addtogroup mapping
/// @{

/// A record from its dictionary form. The decoding rule of `asked` chooses its class.
VELWHITEBOARD_EXPORT std::shared_ptr<Record> recordWithDictionary(const RecordClass& asked,
                                                                  const Dictionary& dictionary);
/// The same from the text of a JSON object; null when `text` is not one.
VELWHITEBOARD_EXPORT std::shared_ptr<Record> recordWithJSON(const RecordClass& asked,
                                                            std::string_view text);
/// The records of an array, in order; an element that is not a dictionary is skipped.
VELWHITEBOARD_EXPORT RecordList recordsWithArray(const RecordClass& asked, const Array& array);
/// The same from the text of a JSON array; empty when `text` is not one.
VELWHITEBOARD_EXPORT RecordList recordsWithJSON(const RecordClass& asked, std::string_view text);

/// The dictionary form of any record.
VELWHITEBOARD_EXPORT Dictionary modelToJSONObject(const Record& record);
/// The dictionary form as one line of JSON, keys in the order in which the class declares them.
VELWHITEBOARD_EXPORT std::string modelToJSONString(const Record& record);
/// The same, added at the end of `text`.
VELWHITEBOARD_EXPORT void appendJSON(const Record& record, std::string& text);

/// Finds the type of the pointer that `modelWithJSON` and its like return.
namespace model_mapping {

/// The class that the pointer returned for a `T` refers to. The rule may have chosen another class
/// of the family, so a family names its root by declaring `ModelRoot`.
template <class T>
struct Root {
  using Type = T;  ///< Without `ModelRoot`: the class itself.
};
/// For a class whose family names its root.
template <class T>
requires requires { typename T::ModelRoot; }
struct Root<T> {
  using Type = typename T::ModelRoot;  ///< The root of the family.
};

/// The same records, as pointers to the root of `T`. Each must be of that root's family.
template <class T>
std::vector<std::shared_ptr<typename Root<T>::Type>> cast(const RecordList& records) {
  std::vector<std::shared_ptr<typename Root<T>::Type>> list;
  list.reserve(records.size());
  for (const auto& record : records) {
    list.push_back(std::static_pointer_cast<typename Root<T>::Type>(record));
  }
  return list;
}

}  // namespace model_mapping

/// The type that is returned for a `T`: `VectorPtr` for every vector class, otherwise
/// `shared_ptr<T>`.
template <class T>
using ModelPointer = std::shared_ptr<typename model_mapping::Root<T>::Type>;

/// A record from its dictionary form; never null.
template <class T>
ModelPointer<T> modelWithDictionary(const Dictionary& dictionary) {
  using Root = typename model_mapping::Root<T>::Type;
  return std::static_pointer_cast<Root>(recordWithDictionary(T::ownClass(), dictionary));
}

/// A record from the text of a JSON object; null when `text` is not a JSON object.
template <class T>
ModelPointer<T> modelWithJSON(std::string_view text) {
  using Root = typename model_mapping::Root<T>::Type;
  return std::static_pointer_cast<Root>(recordWithJSON(T::ownClass(), text));
}

/// The records of an array, in order; an element that is not a dictionary is skipped.
template <class T>
std::vector<ModelPointer<T>> modelArrayWithClass(const Array& array) {
  return model_mapping::cast<T>(recordsWithArray(T::ownClass(), array));
}

/// The records of the text of a JSON array; empty when `text` is not a JSON array.
template <class T>
std::vector<ModelPointer<T>> modelArrayWithJSON(std::string_view text) {
  return model_mapping::cast<T>(recordsWithJSON(T::ownClass(), text));
}

/// @}

}  // namespace VelWhiteBoard
