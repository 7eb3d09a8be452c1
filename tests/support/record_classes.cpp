#include "tests/support/record_classes.h"

#include <bit>
#include <cmath>
#include <cstdint>
#include <stdexcept>
#include <type_traits>

#include "VelWhiteBoard/foundation/records/property_visit.h"
#include "VelWhiteBoard/services/resources.h"
#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/media_lists.h"
#include "VelWhiteBoard/vectors/strokes.h"

namespace VelWhiteBoard {

namespace {

template <class T>
TestedClass tested() {
  TestedClass result{};
  result.own = &T::ownClass();
  result.copy = [](const Record& record) -> std::shared_ptr<Record> {
    return static_cast<const T&>(record).copyWithZone();
  };
  result.initWithCoder = [](const Coder& coder) -> std::shared_ptr<Record> {
    return T::initWithCoder(coder);
  };
  if constexpr (requires(const T& record) { record.mutableCopyWithZone(); }) {
    result.mutableCopy = [](const Record& record) -> std::shared_ptr<Record> {
      return static_cast<const T&>(record).mutableCopyWithZone();
    };
  }
  return result;
}

template <class... T>
std::vector<TestedClass> testedList() {
  return {tested<T>()...};
}

bool sameBits(double left, double right) {
  if (std::isnan(left) || std::isnan(right)) return std::isnan(left) && std::isnan(right);
  return std::bit_cast<std::uint64_t>(left) == std::bit_cast<std::uint64_t>(right);
}

bool sameBits(const Path& left, const Path& right) {
  if (left.size() != right.size()) return false;
  for (std::size_t index = 0; index < left.size(); ++index) {
    if (left[index].size() != right[index].size()) return false;
    for (std::size_t number = 0; number < left[index].size(); ++number) {
      if (!sameBits(left[index][number], right[index][number])) return false;
    }
  }
  return true;
}

bool sameBits(const Value& left, const Value& right) {
  if (left.is_number_float() && right.is_number_float()) {
    return sameBits(left.get<double>(), right.get<double>());
  }
  if (left.is_number_integer() && right.is_number_integer()) return left.dump() == right.dump();
  if (left.type() != right.type() || left.size() != right.size()) return false;
  if (left.is_array()) {
    for (std::size_t index = 0; index < left.size(); ++index) {
      if (!sameBits(left[index], right[index])) return false;
    }
    return true;
  }
  if (left.is_object()) {
    for (const auto& [key, member] : left.items()) {
      if (!right.contains(key) || !sameBits(member, right.at(key))) return false;
    }
    return true;
  }
  return left == right;
}

bool sameBits(const Array& left, const Array& right) { return sameBits(Value(left), Value(right)); }

bool sameBits(const RecordList& left, const RecordList& right) {
  if (left.size() != right.size()) return false;
  for (std::size_t index = 0; index < left.size(); ++index) {
    if (!left[index] || !right[index]) return !left[index] && !right[index];
    if (!differences(*left[index], *right[index]).empty()) return false;
  }
  return true;
}

template <class T>
bool sameBits(const T& left, const T& right) {
  return left == right;
}

template <class T>
bool sameBits(const std::optional<T>& left, const std::optional<T>& right) {
  if (!left || !right) return !left && !right;
  return sameBits(*left, *right);
}

}  // namespace

const std::vector<TestedClass>& testedClasses() {
  static const std::vector<TestedClass> classes =
      testedList<VelWbBaseVector, VelWbVecPoint, VelWbVecLine, VelWbVecSquare, VelWbVecFile,
                 VelWbVecVideo, VelWbVecText, VelWbVecDiagram, VelWbVecCircle, VelWbCaptureInfo,
                 VelWbVecRemove, VelWbVecClear, VelWbVecSwitchPage, VelWbVecOffset,
                 VelWbVecMediaList, VelWbVecMediaItem, VelImageResource, VelWhiteBoardResource>();
  return classes;
}

const TestedClass& testedClassOf(const Record& record) {
  for (const TestedClass& each : testedClasses()) {
    if (*each.own == record.recordClass()) return each;
  }
  throw std::logic_error("a record of a class that is not listed");
}

bool isAbsent(const Property& property, const Record& record) {
  return visitField(property, record, [](const auto& field) {
    if constexpr (requires { field.has_value(); }) {
      return !field.has_value();
    } else {
      return false;
    }
  });
}

std::string differences(const Record& left, const Record& right) {
  if (!(left.recordClass() == right.recordClass())) return "the class";
  std::string names;
  for (const Property& property : left.recordClass().properties) {
    visitField(property, left, [&](const auto& field) {
      visitField(property, right, [&](const auto& other) {
        if constexpr (std::is_same_v<decltype(field), decltype(other)>) {
          if (sameBits(field, other)) return;
        }
        names += names.empty() ? "" : ", ";
        names += property.name;
      });
    });
  }
  return names.empty() ? names : names + "\n  " + left.description() + "\n  " + right.description();
}

}  // namespace VelWhiteBoard
