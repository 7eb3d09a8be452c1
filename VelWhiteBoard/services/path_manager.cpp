#include "VelWhiteBoard/services/path_manager.h"

#include <algorithm>
#include <utility>

#include "VelWhiteBoard/foundation/file_system.h"
#include "VelWhiteBoard/foundation/standard_directories.h"

namespace VelWhiteBoard {
namespace {

// The platform numbers that callers ask by.
constexpr std::uint64_t kLibraryCode = 5;
constexpr std::uint64_t kDocumentsCode = 9;
constexpr std::uint64_t kCachesCode = 13;

// The list of places that a directory code stands for.
std::vector<std::string> directoriesOfCode(std::uint64_t code) {
  switch (code) {
    case kDocumentsCode:
      return standardDirectories(StandardDirectory::kDocuments);
    case kLibraryCode:
      return standardDirectories(StandardDirectory::kLibrary);
    case kCachesCode:
      return standardDirectories(StandardDirectory::kCaches);
    default:
      return {};
  }
}

// An empty suffix is a suffix that no name has, though every text ends in it.
bool passes(const std::string& name, const std::optional<std::string>& suffix) {
  return !suffix || (!suffix->empty() && name.ends_with(*suffix));
}

}  // namespace

VWBPathManager::VWBPathManager() { initConfigure(); }

VWBPathManager& VWBPathManager::sharedManager() {
  // Never destroyed: a storage that outlives `main` may still ask it.
  static VWBPathManager& manager = *new VWBPathManager;
  return manager;
}

VWBPathManager& VWBPathManager::init() {
  initConfigure();
  return *this;
}

void VWBPathManager::initConfigure() {
  State fresh;
  fresh.documentDirectory = searchPath(kDocumentsCode).value_or("");
  fresh.libraryDirectory = searchPath(kLibraryCode).value_or("");
  fresh.cacheDirectory = searchPath(kCachesCode).value_or("");
  fresh.tempDirectory = temporaryDirectory();
  // All at once: nobody sees one directory of the old environment beside one of the new.
  const std::lock_guard<std::mutex> lock(mutex_);
  state_ = std::move(fresh);
}

std::string VWBPathManager::read(std::string State::*field) const {
  const std::lock_guard<std::mutex> lock(mutex_);
  return state_.*field;
}

std::string VWBPathManager::rootFolder() const { return read(&State::rootFolder); }

void VWBPathManager::setRootFolder(const std::string& rootFolder) {
  const std::lock_guard<std::mutex> lock(mutex_);
  state_.rootFolder = rootFolder;
}

std::string VWBPathManager::documentDirectory() const { return read(&State::documentDirectory); }

std::string VWBPathManager::libraryDirectory() const { return read(&State::libraryDirectory); }

std::string VWBPathManager::cacheDirectory() const { return read(&State::cacheDirectory); }

std::string VWBPathManager::tempDirectory() const { return read(&State::tempDirectory); }

std::optional<std::string> VWBPathManager::searchPath(std::uint64_t directory) {
  std::vector<std::string> places = directoriesOfCode(directory);
  if (places.empty()) return std::nullopt;
  return std::move(places.back());
}

// Not const, like its neighbours: the interface is fixed.
// NOLINTNEXTLINE(readability-make-member-function-const)
std::string VWBPathManager::directoryPath(std::uint64_t directory) {
  switch (directory) {
    case 0:
      return documentDirectory();
    case 1:
      return libraryDirectory();
    case 2:
      return cacheDirectory();
    default:
      return tempDirectory();
  }
}

std::string VWBPathManager::storePathWithRelativePath(const std::string& relativePath,
                                                      const std::string& fileName) {
  const std::string folder = cacheDirectory() + relativePath;
  checkShouldCreateDirectoryWithPath(folder);
  return folder + fileName;
}

bool VWBPathManager::checkShouldCreateDirectoryWithPath(const std::string& path) {
  FileSystem& files = FileSystem::current();
  return !files.exists(path) && files.makeFolder(path).ok();
}

bool VWBPathManager::isFolderExistWithSuffix(const std::string& suffix) {
  return isFolderExistWithSuffix(suffix, kDocumentsCode);
}

bool VWBPathManager::isFolderExistWithSuffix(const std::string& suffix, std::uint64_t domain) {
  const std::vector<std::string> places = directoriesOfCode(domain);
  return !places.empty() && isFolderExist(places.front() + suffix);
}

bool VWBPathManager::isFolderExist(const std::string& path) {
  return FileSystem::current().kind(path) == FileKind::kFolder;
}

bool VWBPathManager::isFileExistWithSuffix(const std::string& suffix) {
  return isFileExistWithSuffix(suffix, kDocumentsCode);
}

bool VWBPathManager::isFileExistWithSuffix(const std::string& suffix, std::uint64_t domain) {
  const std::vector<std::string> places = directoriesOfCode(domain);
  return !places.empty() && isFileExist(appendPathComponent(places.front(), suffix));
}

bool VWBPathManager::isFileExist(const std::string& path) {
  const FileKind kind = FileSystem::current().kind(path);
  return kind != FileKind::kAbsent && kind != FileKind::kFolder;
}

std::optional<std::string> VWBPathManager::createFolderWithSuffix(const std::string& suffix) {
  return createFolderWithSuffix(suffix, kDocumentsCode);
}

std::optional<std::string> VWBPathManager::createFolderWithSuffix(const std::string& suffix,
                                                                  std::uint64_t domain) {
  const std::vector<std::string> places = directoriesOfCode(domain);
  if (places.empty()) return std::nullopt;
  std::string folder = appendPathComponent(places.front(), rootFolder());
  folder = appendPathComponent(folder, suffix);
  if (!createFolderWithPath(folder)) return std::nullopt;
  return folder;
}

bool VWBPathManager::createFolderWithPath(const std::string& path) {
  return FileSystem::current().makeFolders(path).ok();
}

bool VWBPathManager::createFile(const std::string& path) {
  return FileSystem::current().createEmptyFile(path).ok();
}

bool VWBPathManager::removeFolderOrFile(const std::string& path) {
  FileSystem& files = FileSystem::current();
  return !files.exists(path) || files.removeRecursively(path).ok();
}

std::optional<std::vector<std::string>> VWBPathManager::filesAtPath(const std::string& folder) {
  return filesAtPath(folder, std::nullopt);
}

std::optional<std::vector<std::string>> VWBPathManager::filesAtPath(
    const std::string& folder, const std::optional<std::string>& hasSuffix) {
  if (!isFolderExist(folder)) return std::nullopt;
  std::vector<std::string> names;
  if (!FileSystem::current().list(folder, names)) return std::nullopt;
  // The names first: they cost nothing, a look at the file does.
  std::erase_if(names, [&](const std::string& name) {
    return !passes(name, hasSuffix) || !isFileExist(appendPathComponent(folder, name));
  });
  // Compares bytes as unsigned, whatever the sign of `char` and the locale are.
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace VelWhiteBoard
