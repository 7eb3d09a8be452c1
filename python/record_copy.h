// Copies that share no record with the original.
#pragma once

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <memory>

namespace bindings {

/// Unlike `copyWithZone` it copies the elements of a list of records, too. No other thread may
/// change the record meanwhile.
std::shared_ptr<VelWhiteBoard::Record> copyOfRecord(const VelWhiteBoard::Record& record);

template <class T>
std::shared_ptr<T> independentCopy(const T& record) {
  return std::static_pointer_cast<T>(copyOfRecord(record));
}

/// Copies of a storage's entries, made while `semphore`, the storage's, is held: so no other thread
/// changes them meanwhile. A null pointer stays null.
VelWhiteBoard::VectorList independentCopies(
    const VelWhiteBoard::VectorList& entries,
    const std::shared_ptr<VelWhiteBoard::Semaphore>& semphore);

}  // namespace bindings
