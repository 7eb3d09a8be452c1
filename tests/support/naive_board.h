#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/commands.h"

namespace VelWhiteBoard {

/// The storage's rules told in the plainest way: lists that are walked, files that are arrays of
/// dictionaries, writes that happen at once. Slow and obvious; shares nothing with the storage but
/// the records.
///
/// "At once" is what the queue must look like from outside: what is queued is the state of that
/// instant, in order.
class NaiveBoard {
 public:
  using Page = std::shared_ptr<VelWbVecSwitchPage>;
  using Lists = std::map<std::string, VectorList>;

  bool ignoreChanges = false;
  bool hasNewChange = false;
  Page currentPage;
  std::vector<Page> pageArray;
  Lists wholeVectorss;
  Lists snapVectorss;
  std::map<std::string, VectorPtr> snapQuery;
  /// Milliseconds.
  std::int64_t now = 0;
  std::int64_t lastSaveDate = 0;
  /// File name -> dictionary forms.
  std::map<std::string, Array> files;

  void reload();
  void saveFile(bool force);
  void saveVector(const VectorPtr& vector);
  void appendVectors(const VectorList& vectors, const Page& page);
  bool hasVectorsWithPage(const VelWbVecSwitchPage& page) const;
  VectorList switchPage(const Page& page);
  VectorList snapWithPage(const VelWbVecSwitchPage& page) const;
  void clear();
  void clearPage(const VelWbVecSwitchPage& page);

 private:
  void applySaved(const VectorPtr& vector, VectorList& snap);
  void continueEntry(const VectorPtr& entry, const VectorPtr& vector, VectorList& snap);
  void applyNew(const VectorPtr& vector, VectorList& snap);
  static void applyAppended(const VectorPtr& vector, VectorList& snap);
  VectorList load(const std::string& name) const;
  void write(const std::string& key);
};

}  // namespace VelWhiteBoard
