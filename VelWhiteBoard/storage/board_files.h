/// @file
/// The files of a board.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "VelWhiteBoard/foundation/file_system.h"
#include "VelWhiteBoard/foundation/property_list_writer.h"
#include "VelWhiteBoard/storage/damaged_files.h"
#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/commands.h"

namespace VelWhiteBoard {

/// The folder of the board below the path that a client gives.
std::string boardFolder(const std::string& path);
/// The file of the visited pages.
std::string pageListFile(const std::string& folder);
/// The file of a page's whole list.
std::string wholeListFile(const std::string& folder, const std::string& pageKey);
/// The file of a page's snap list.
std::string snapListFile(const std::string& folder, const std::string& pageKey);

/// Opens a list to be read now or later. False when there is none or it cannot be opened; one that
/// exists is noted in `damaged` then.
bool openList(const std::string& path, std::unique_ptr<OpenedFile>& file, DamagedFiles* damaged);

/// The vectors of an opened page file, as loadVectors() gives them.
VectorList readVectors(OpenedFile& file, const std::string& path, DamagedFiles* damaged);

/// The vectors of a page file, each of the class that the decoding rule chooses. A file that is
/// missing or cannot be read is an empty list; one that exists is noted in `damaged`.
VectorList loadVectors(const std::string& path, DamagedFiles* damaged = nullptr);

/// The page switches of "page.plist"; other records in it are dropped.
std::vector<std::shared_ptr<VelWbVecSwitchPage>> loadPages(const std::string& file,
                                                           DamagedFiles* damaged = nullptr);

/// Replaces a file by the records that `addAll` adds; a damaged one is set aside first. A write
/// that fails leaves the file that was there; nobody is told.
void writeRecords(const std::string& file, DamagedFiles& damaged,
                  const std::function<void(PropertyListWriter& writer)>& addAll);

}  // namespace VelWhiteBoard
