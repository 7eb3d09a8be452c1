#include "VelWhiteBoard/services/path_manager.h"

#include <algorithm>
#include <utility>

#include "VelWhiteBoard/foundation/files/file_system.h"
#include "VelWhiteBoard/foundation/files/standard_directories.h"
#include "VelWhiteBoard/foundation/queue/mutex.h"

namespace VelWhiteBoard {
namespace {

// The directory codes, which are the platform's numbers.
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

// Makes a folder that only its user may enter, and all missing folders above it with the usual
// permissions. A folder that exists stays as it is. A failure shows when the folder is used.
void makePrivateFolders(const std::string& path) {
  FileSystem& files = FileSystem::current();
  if (files.exists(path)) return;
  const std::string above = path.substr(0, path.find_last_of('/'));
  if (!above.empty()) static_cast<void>(files.makeFolders(above));
  static_cast<void>(files.makePrivateFolder(path));
}

// By convention no name has the empty suffix, although every string ends in it.
bool passes(const std::string& name, const std::optional<std::string>& suffix) {
  return !suffix || (!suffix->empty() && name.ends_with(*suffix));
}

}  // namespace

struct VWBPathManager::Fields {
  std::string documentDirectory;
  std::string libraryDirectory;
  std::string cacheDirectory;
  std::string tempDirectory;
  std::string rootFolder;
};

// No file is touched while the lock is held.
struct VWBPathManager::State {
  Mutex mutex;
  Fields fields VELWHITEBOARD_GUARDED_BY(mutex);
};

VWBPathManager::VWBPathManager() : state_(std::make_unique<State>()) { initConfigure(); }

VWBPathManager::~VWBPathManager() = default;

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
  Fields fresh;
  fresh.documentDirectory = searchPath(kDocumentsCode).value_or("");
  fresh.libraryDirectory = searchPath(kLibraryCode).value_or("");
  fresh.cacheDirectory = searchPath(kCachesCode).value_or("");
  fresh.tempDirectory = temporaryDirectory();
  // All at once: no thread sees a directory of the old environment beside one of the new.
  const MutexHold hold(state_->mutex);
  state_->fields = std::move(fresh);
}

std::string VWBPathManager::read(std::string Fields::*field) const {
  const MutexHold hold(state_->mutex);
  return state_->fields.*field;
}

std::string VWBPathManager::rootFolder() const { return read(&Fields::rootFolder); }

void VWBPathManager::setRootFolder(const std::string& rootFolder) {
  const MutexHold hold(state_->mutex);
  state_->fields.rootFolder = rootFolder;
}

std::string VWBPathManager::documentDirectory() const { return read(&Fields::documentDirectory); }

std::string VWBPathManager::libraryDirectory() const { return read(&Fields::libraryDirectory); }

std::string VWBPathManager::cacheDirectory() const { return read(&Fields::cacheDirectory); }

std::string VWBPathManager::tempDirectory() const { return read(&Fields::tempDirectory); }

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
  const std::string caches = cacheDirectory();
  makePrivateFolders(caches);
  const std::string folder = caches + relativePath;
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
  // The names first: comparing them is cheap, the status of a file is not.
  std::erase_if(names, [&](const std::string& name) {
    return !passes(name, hasSuffix) || !isFileExist(appendPathComponent(folder, name));
  });
  // Compares bytes as unsigned, whatever the sign of `char` and the locale are.
  std::sort(names.begin(), names.end());
  return names;
}

}  // namespace VelWhiteBoard
