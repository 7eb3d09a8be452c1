/// @file
/// Giving vectors their identifiers.
#pragma once

#include <string>
#include <utility>

#include "VelWhiteBoard/services/vector_manager.h"
#include "VelWhiteBoard/storage/lists/entry_changes.h"
#include "VelWhiteBoard/storage/page_cache.h"

namespace VelWhiteBoard {

/// Gives a vector without identifier one, and takes it back unless it is kept.
class Naming {
 public:
  Naming(const VectorPtr& vector, PageCache& cache, EntryChanges& changes)
      : vector_(*vector), cache_(cache) {
    if (vector->ID) return;
    std::string identifier = VelWbVectorManager::shareManager().genID();
    changes.aboutToChange(vector);
    // The same vector may stand on pages to which it was appended without an identifier.
    isEntry_ = cache.hasUnnamed(*vector);
    vector->ID = std::move(identifier);
    if (isEntry_) cache.hasBeenNamed(*vector);
    isOpen_ = true;
  }
  ~Naming() {
    if (!isOpen_) return;
    vector_.ID.reset();
    if (isEntry_) cache_.hasBeenNamed(vector_);
  }
  Naming(const Naming&) = delete;
  Naming& operator=(const Naming&) = delete;

  void keep() noexcept { isOpen_ = false; }
  /// Whether a list has the vector, and has been told of its identifier.
  bool isEntry() const noexcept { return isEntry_; }

 private:
  VelWbBaseVector& vector_;
  PageCache& cache_;
  bool isEntry_ = false;
  bool isOpen_ = false;
};

}  // namespace VelWhiteBoard
