#include "tests/support/temporary_folder.h"

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <system_error>
#include <unistd.h>

namespace VelWhiteBoard {
namespace {

std::filesystem::path baseOf(TemporaryFolder::Volume volume) {
  constexpr const char* kMemoryVolume = "/dev/shm";
  const bool inMemory =
      volume == TemporaryFolder::Volume::kMemory && ::access(kMemoryVolume, W_OK | X_OK) == 0;
  return inMemory ? kMemoryVolume : std::filesystem::temp_directory_path();
}

}  // namespace

TemporaryFolder::TemporaryFolder(Volume volume)
    : path_((baseOf(volume) / "velwb-test-XXXXXX").string()) {
  if (::mkdtemp(path_.data()) == nullptr) {
    throw std::system_error(errno, std::generic_category(), "mkdtemp " + path_);
  }
}

TemporaryFolder::~TemporaryFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

}  // namespace VelWhiteBoard
