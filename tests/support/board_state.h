#pragma once

#include <map>
#include <string>
#include <vector>

#include "VelWhiteBoard/foundation/values/value.h"
#include "VelWhiteBoard/vectors/base_vector.h"

namespace VelWhiteBoard {

class VWBVectorStorage;

/// Lists of records as a value that can be compared with that of another board. Each object is
/// numbered where it is met first: equal values mean that the records are equal and that the same
/// places hold the same objects.
class Inventory {
 public:
  void add(const std::string& name, const VectorList& list);
  void add(const std::string& name, const VectorPtr& vector) { add(name, VectorList{vector}); }

  /// All lists of a map from page key to list.
  template <class Lists>
  void addAll(const std::string& kind, const Lists& lists) {
    const std::map<std::string, VectorList> inOrder(lists.begin(), lists.end());
    for (const auto& [key, list] : inOrder) add(kind + " " + key, list);
  }
  /// A map from identifier to vector.
  template <class Query>
  void addQuery(const std::string& name, const Query& query) {
    const std::map<std::string, VectorPtr> inOrder(query.begin(), query.end());
    for (const auto& [id, vector] : inOrder) add(name + " " + id, vector);
  }
  template <class Pages>
  void addPages(const std::string& name, const Pages& pages) {
    add(name, VectorList(pages.begin(), pages.end()));
  }
  /// Anything else.
  void note(const std::string& name, Value value) { lists_[name] = std::move(value); }

  Value value() const { return Dictionary{{"lists", lists_}, {"records", records_}}; }

 private:
  Value number(const VectorPtr& vector);

  // Kept alive, so that no later record gets the address of one that was counted.
  std::map<VectorPtr, std::size_t> numbers_;
  Value lists_ = Dictionary();
  Value records_ = Array();
};

/// Everything that a storage's getters answer, the dates and what a client put in apart. Of paths
/// the last component. `others` are numbered with it.
Value stateOf(const VWBVectorStorage& storage, const VectorList& others = {});

}  // namespace VelWhiteBoard
