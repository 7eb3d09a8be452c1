// Files that are larger than the memory.
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <new>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"

#include "tests/support/faulty_calls.h"
#include "tests/support/temporary_folder.h"

namespace VelWhiteBoard {
namespace {

bool isTooLargeAndLeavesNoHandle(const std::string& path) {
  FaultyCalls calls;
  DiskFileSystem files(calls);
  FileBytes bytes;
  try {
    static_cast<void>(files.readBytes(path, bytes));
  } catch (const std::bad_alloc&) {
    return calls.openHandles() == 0 && calls.count(Call::kRead) == 0 && bytes.size() == 0;
  }
  return false;
}

// In a process of its own, for the sake of the limit.
TEST(HostileFiles, TheBytesOfOneLargerThanTheMemoryAreAnExceptionThatLeavesNoHandle) {
  const TemporaryFolder folder;
  const std::string path = folder.at("page.plist");
  std::ofstream(path).close();
  std::filesystem::resize_file(path, std::uintmax_t{1} << 42U);  // a hole, nothing on the disk
  const pid_t child = ::fork();
  if (child == 0) {
    const rlimit limit = {rlim_t{1} << 32U, rlim_t{1} << 32U};
    const bool isLimited = ::setrlimit(RLIMIT_AS, &limit) == 0;
    ::_exit(isLimited && isTooLargeAndLeavesNoHandle(path) ? 0 : 1);
  }
  int status = 0;
  ASSERT_EQ(::waitpid(child, &status, 0), child);
  EXPECT_TRUE(WIFEXITED(status));
  EXPECT_EQ(WEXITSTATUS(status), 0);
}

}  // namespace
}  // namespace VelWhiteBoard
