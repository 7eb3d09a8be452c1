/// @file
/// The names of a board's files, and reading them.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "VelWhiteBoard/storage/files/protected_file.h"
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

/// What a file has given. A file that is missing, damaged or not given gives an empty list.
template <class T>
struct ReadList {
  std::vector<std::shared_ptr<T>> list;
  FileState found = FileState::kAbsent;
};

/// The vectors of a page file, each of the class that the decoding rule chooses.
ReadList<VelWbBaseVector> readVectors(const std::string& path);
/// The same of a page file that has been read as bytes.
ReadList<VelWbBaseVector> vectorsInBytes(std::string_view bytes);
/// The page switches of "page.plist"; other records in it are dropped.
ReadList<VelWbVecSwitchPage> readPages(const std::string& path);

/// What the result of reading a file says about it.
FileState stateAfterReading(const FileResult& result);

}  // namespace VelWhiteBoard
