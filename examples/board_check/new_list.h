// The lists of a recovered board, written while their sources are being read.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/commands.h"

#include "inspection.h"

namespace board_check {

/// Adds one record to a list that is being written.
using AddRecord = std::function<void(const VelWhiteBoard::Record& record)>;

/// Writes the records that `addAll` adds, and answers how many those are. Throws CannotRecover.
std::uint64_t writeList(const std::filesystem::path& path,
                        const std::function<void(const AddRecord& add)>& addAll);

/// Reads files one after the other, as one list.
void readAll(const std::vector<const ListFile*>& files, const VelWhiteBoard::RecordClass& asked,
             ListVisitor& visitor);

/// Reads vectors, and calls `take` with each.
void forEachVector(const std::vector<const ListFile*>& files,
                   const std::function<void(const VelWhiteBoard::VelWbBaseVector& vector)>& take);

/// The same for the list of pages.
void forEachVisit(const std::vector<const ListFile*>& files,
                  const std::function<void(const VelWhiteBoard::VelWbVecSwitchPage& visit)>& take);

}  // namespace board_check
