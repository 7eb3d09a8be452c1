/// @file
/// The root of all vectors.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "VelWhiteBoard/foundation/export.h"
#include "VelWhiteBoard/foundation/records/coder.h"
#include "VelWhiteBoard/foundation/records/model_mapping.h"
#include "VelWhiteBoard/foundation/records/record.h"
#include "VelWhiteBoard/foundation/values/value.h"
#include "VelWhiteBoard/vectors/vector_defines.h"

namespace VelWhiteBoard {

/// @addtogroup vectors
/// @{

class VelWbBaseVector;
/// Shared reference to a vector of any class.
using VectorPtr = std::shared_ptr<VelWbBaseVector>;
/// Vectors in order; the vectors are shared, not owned alone.
using VectorList = std::vector<VectorPtr>;

/// The class that the decoding rule chooses for a dictionary when `asked` was asked for: the type
/// name decides; an unknown or missing type name leaves it to the keys ("w" makes a box, "x" a
/// positioned record); otherwise it is `asked`.
VELWHITEBOARD_EXPORT const RecordClass& vectorClassForDictionary(const DictionaryKeys& keys,
                                                                 const RecordClass& asked);
/// The same for a `Dictionary`.
VELWHITEBOARD_EXPORT const RecordClass& vectorClassForDictionary(const Dictionary& dictionary,
                                                                 const RecordClass& asked);
/// The property of that name, of any vector class that has one; null when no class has.
VELWHITEBOARD_EXPORT const Property* propertyOfAnyVector(std::string_view name);

/// Provides the common operations to a class declared as `class Self : public VectorOf<Self,
/// Base>`.
template <class Self, class Base>
class VectorOf : public RecordOf<Self, Base> {
 public:
  /// A new vector in its initial state, with `type` set to the argument.
  static std::shared_ptr<Self> initWithType(std::optional<std::string> type) {
    auto vector = std::make_shared<Self>();
    vector->type = std::move(type);
    return vector;
  }
  /// The same for one of the type names of `vector_defines.h`, any other `std::string_view`, or a C
  /// string; for a null pointer `type` is absent.
  template <vector_names::Unowned Name>
  static std::shared_ptr<Self> initWithType(Name type) {
    return initWithType(vector_names::owned(type));
  }

  /// The decoding rule: the class for `dictionary` when this class is asked for.
  static const RecordClass& modelCustomClassForDictionary(const Dictionary& dictionary) {
    return vectorClassForDictionary(dictionary, Self::ownClass());
  }

  /// The field-by-field copy, of the class of this very object. Unlike `copyWithZone()` it leaves
  /// some fields at their defaults; each class says which.
  std::shared_ptr<Self> mutableCopyWithZone() const {
    return std::static_pointer_cast<Self>(this->makeMutableCopy());
  }
};

/// Any whiteboard operation: a type name, a time and an identifier.
///
/// Threads: a vector takes no lock. A vector that was given to a storage belongs to it, and the
/// storage may change it. Callers read it on the thread that saves, or while they hold the
/// storage's `semphore`, or they copy it before they save it.
///
/// Clients do not derive classes from it: generic operations support the library's own classes
/// only.
class VELWHITEBOARD_EXPORT VelWbBaseVector : public RecordOf<VelWbBaseVector, Record> {
 public:
  /// The model mapping returns a pointer to this class for every vector class.
  using ModelRoot = VelWbBaseVector;

  /// The type name, see `VelWbVectorDefines`; absent or unknown names are allowed.
  std::optional<std::string> type;
  /// Seconds on the clock of the lesson's server, see `VelWbVectorManager::genTs`. Any number.
  double ts = 0;
  /// The identifier. A later vector that continues or edits an earlier one has the same `ID` and
  /// `type`.
  std::optional<std::string> ID;

  static const RecordClass& ownClass();  ///< What describes this class to generic code.
  /// A new vector in its initial state, with `type` set to the argument, which is given as for
  /// every vector class, see `VectorOf`.
  static std::shared_ptr<VelWbBaseVector> initWithType(std::optional<std::string> type);
  /// The same for a type name of `vector_defines.h`, another view, or a C string.
  template <vector_names::Unowned Name>
  static std::shared_ptr<VelWbBaseVector> initWithType(Name type) {
    return initWithType(vector_names::owned(type));
  }
  /// The decoding rule: the class for `dictionary` when any vector is asked for.
  static const RecordClass& modelCustomClassForDictionary(const Dictionary& dictionary);

  /// The field-by-field copy, of the class of this very object; see each class for what it leaves
  /// out.
  std::shared_ptr<VelWbBaseVector> mutableCopyWithZone() const {
    return std::static_pointer_cast<VelWbBaseVector>(makeMutableCopy());
  }

  /// Whether `update` continues or edits this vector: its `type` and its `ID` both equal this
  /// vector's. An absent one never matches, an empty one does.
  bool isSameStroke(const VelWbBaseVector& update) const;

  /// Calls `visit` with each property in turn.
  template <class Visitor>
  static constexpr void properties(Visitor&& visit) {
    visit(property<&VelWbBaseVector::type>("type"));
    visit(property<&VelWbBaseVector::ts>("ts"));
    visit(property<&VelWbBaseVector::ID>("ID"));
  }

 protected:
  /// The implementation of `mutableCopyWithZone`. Leaves nothing out.
  virtual std::shared_ptr<Record> makeMutableCopy() const;
};

/// The dictionary forms of the vectors, in order; null pointers are left out.
VELWHITEBOARD_EXPORT Array modelToJSONObject(const VectorList& vectors);
/// The dictionary forms of the vectors as one line of JSON; null pointers are left out.
VELWHITEBOARD_EXPORT std::string modelToJSONString(const VectorList& vectors);

/// @}

}  // namespace VelWhiteBoard
