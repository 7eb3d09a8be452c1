// What a real disk has and the contract of FileSystem does not mention.
#include "VelWhiteBoard/foundation/files/disk_file_system.h"

#include <cerrno>
#include <csignal>
#include <filesystem>
#include <functional>
#include <string>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/faulty_calls.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/write_all.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;
namespace fs = std::filesystem;

class DiskFiles : public ::testing::Test {
 protected:
  std::string contents(const std::string& path) {
    FileBytes found;
    const FileResult result = files_.readBytes(path, found);
    return result ? std::string(found.view()) : "(" + result.describe() + ")";
  }

  TemporaryFolder folder_;
  FaultyCalls calls_;
  DiskFileSystem files_{calls_};
};

// Runs `work` in a process of its own; true when it answered true.
bool inChild(const std::function<bool()>& work, pid_t* id = nullptr) {
  const pid_t child = ::fork();
  if (child == 0) ::_exit(work() ? 0 : 1);
  if (id != nullptr) {
    *id = child;
    return child > 0;
  }
  int status = 0;
  return child > 0 && ::waitpid(child, &status, 0) == child && WIFEXITED(status) &&
         WEXITSTATUS(status) == 0;
}

TEST_F(DiskFiles, APipeIsNeitherReadNorEmptiedNorWaitedFor) {
  const std::string pipe = folder_.at("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(files_.kind(pipe), FileKind::kOther);
  FileBytes ignored;
  EXPECT_EQ(files_.readBytes(pipe, ignored).step, FileStep::kOpen);
  EXPECT_EQ(files_.createEmptyFile(pipe).step, FileStep::kOpen);
  std::vector<std::string> names;
  EXPECT_EQ(files_.list(pipe, names).step, FileStep::kList);
  EXPECT_TRUE(files_.removeRecursively(pipe));
  EXPECT_EQ(files_.kind(pipe), FileKind::kAbsent);
}

TEST_F(DiskFiles, ADeviceIsNoFile) {
  FileBytes ignored;
  EXPECT_EQ(files_.kind("/dev/null"), FileKind::kOther);
  EXPECT_EQ(files_.readBytes("/dev/zero", ignored).step, FileStep::kOpen);
  EXPECT_EQ(files_.createEmptyFile("/dev/null").step, FileStep::kOpen);
}

TEST_F(DiskFiles, ALinkCountsAsWhatItLeadsToAndADanglingOneAsNothing) {
  ASSERT_TRUE(writeAll(files_, folder_.at("f"), "12345"));
  fs::create_symlink("f", folder_.at("link"));
  fs::create_symlink(".", folder_.at("up"));
  fs::create_symlink("missing", folder_.at("dangling"));
  fs::create_symlink("loop", folder_.at("loop"));
  FileStatus status;
  EXPECT_TRUE(files_.status(folder_.at("link"), status));
  EXPECT_EQ(status.kind, FileKind::kFile);
  EXPECT_EQ(status.size, 5U);
  EXPECT_EQ(files_.kind(folder_.at("up")), FileKind::kFolder);
  EXPECT_EQ(files_.kind(folder_.at("dangling")), FileKind::kAbsent);
  EXPECT_EQ(files_.status(folder_.at("loop"), status).error, ELOOP);
  EXPECT_EQ(files_.kind(folder_.at("loop")), FileKind::kAbsent);
  EXPECT_TRUE(files_.makeFolders(folder_.at("up/up")));
  EXPECT_FALSE(files_.makeFolders(folder_.at("dangling")).ok());
}

TEST_F(DiskFiles, APathThatIsTooLongIsAFailureAndNamesNothing) {
  const std::string name = folder_.at(std::string(5000, 'x'));
  FileStatus status;
  EXPECT_EQ(files_.status(name, status).error, ENAMETOOLONG);
  EXPECT_FALSE(files_.exists(name));
  EXPECT_EQ(files_.makeFolders(name).error, ENAMETOOLONG);
  EXPECT_EQ(writeAll(files_, name, "x").error, ENAMETOOLONG);
}

TEST_F(DiskFiles, ASignalDuringAnyCallCostsNothing) {
  const auto interrupt = [&] {
    calls_.heal();
    for (const Call call : kAllCalls) calls_.inject(Fault::failing(call, 1, EINTR));
  };
  const auto check = [](const FileResult& result) { EXPECT_TRUE(result) << result.describe(); };
  std::string read;
  FileBytes bytes;
  std::vector<std::string> names;
  FileStatus status;
  interrupt();
  check(files_.makeFolder(folder_.at("d")));
  interrupt();
  check(files_.makeFolders(folder_.at("d/a/b")));
  interrupt();
  check(files_.createEmptyFile(folder_.at("d/empty")));
  interrupt();
  check(writeAll(files_, folder_.at("d/f"), "contents"));
  interrupt();
  check(files_.read(folder_.at("d/f"), [&read](std::string_view block) {
    read += block;
    return true;
  }));
  interrupt();
  check(files_.status(folder_.at("d/f"), status));
  interrupt();
  check(files_.list(folder_.at("d"), names));
  interrupt();
  check(files_.readBytes(folder_.at("d/f"), bytes));
  interrupt();
  check(files_.rename(folder_.at("d"), folder_.at("c")));
  interrupt();
  check(files_.renameToNew(folder_.at("c"), folder_.at("e")));
  interrupt();
  check(files_.removeRecursively(folder_.at("e")));
  EXPECT_EQ(read, "contents");
  EXPECT_EQ(bytes.view(), "contents");
  EXPECT_EQ(status.kind, FileKind::kFile);
  EXPECT_THAT(names, ::testing::UnorderedElementsAre("a", "empty", "f"));
  EXPECT_TRUE(fs::is_empty(folder_.path()));
}

TEST_F(DiskFiles, AReadThatFailsHalfwaySaysSo) {
  ASSERT_TRUE(writeAll(files_, folder_.at("f"), std::string(2 * kFileBlockSize, 'x')));
  calls_.inject(Fault::failing(Call::kRead, 2, EIO));
  std::string read;
  const FileResult result = files_.read(folder_.at("f"), [&read](std::string_view block) {
    read += block;
    return true;
  });
  EXPECT_EQ(result.step, FileStep::kRead);
  EXPECT_EQ(result.error, EIO);
  EXPECT_EQ(read.size(), kFileBlockSize) << "what was read before is the caller's";
  EXPECT_EQ(calls_.openHandles(), 0U);
}

TEST_F(DiskFiles, RenamingToANewNameMovesALinkItselfAndIsRefusedByADanglingOne) {
  ASSERT_TRUE(writeAll(files_, folder_.at("f"), "x"));
  fs::create_symlink("f", folder_.at("link"));
  fs::create_symlink("missing", folder_.at("dangling"));
  EXPECT_EQ(files_.renameToNew(folder_.at("f"), folder_.at("dangling")).error, EEXIST);
  EXPECT_EQ(files_.renameToNew(folder_.at("f"), folder_.at("link")).error, EEXIST);
  EXPECT_TRUE(files_.renameToNew(folder_.at("link"), folder_.at("moved")));
  EXPECT_TRUE(fs::is_symlink(folder_.at("moved")));
  EXPECT_TRUE(files_.renameToNew(folder_.at("dangling"), folder_.at("moved too")));
  EXPECT_EQ(contents(folder_.at("f")), "x");
}

TEST_F(DiskFiles, AVolumeThatCannotRefuseToReplaceIsLookedAtFirst) {
  for (const int error : {EINVAL, ENOSYS, EOPNOTSUPP}) {
    SCOPED_TRACE(error);
    calls_.heal();
    calls_.inject(Fault::failingFrom(Call::kRenameToNew, 1, error));
    ASSERT_TRUE(writeAll(files_, folder_.at("f"), "new"));
    ASSERT_TRUE(writeAll(files_, folder_.at("g"), "old"));
    fs::create_symlink("missing", folder_.at("dangling"));
    EXPECT_EQ(files_.renameToNew(folder_.at("f"), folder_.at("g")).error, EEXIST);
    EXPECT_EQ(files_.renameToNew(folder_.at("f"), folder_.at("dangling")).error, EEXIST);
    EXPECT_EQ(contents(folder_.at("g")), "old");
    EXPECT_TRUE(files_.renameToNew(folder_.at("f"), folder_.at("h")));
    EXPECT_EQ(contents(folder_.at("h")), "new");
    EXPECT_FALSE(files_.exists(folder_.at("f")));
    for (const char* name : {"g", "h", "dangling"}) fs::remove(folder_.at(name));
  }
}

TEST_F(DiskFiles, RenamingToANewNameThatFailsMovesNothing) {
  ASSERT_TRUE(writeAll(files_, folder_.at("f"), "x"));
  const auto expectFailed = [&](int error) {
    const FileResult result = files_.renameToNew(folder_.at("f"), folder_.at("g"));
    EXPECT_EQ(fileStepName(result.step), fileStepName(FileStep::kRename));
    EXPECT_EQ(result.error, error);
    EXPECT_EQ(contents(folder_.at("f")), "x");
    EXPECT_FALSE(files_.exists(folder_.at("g")));
    calls_.heal();
  };
  calls_.inject(Fault::failing(Call::kRenameToNew, 1, EACCES));
  expectFailed(EACCES);
  for (const Call call : {Call::kStatus, Call::kRename}) {
    calls_.inject(Fault::failing(Call::kRenameToNew, 1, ENOSYS));
    calls_.inject(Fault::failing(call, 1, EIO));
    expectFailed(EIO);
  }
}

TEST_F(DiskFiles, AListThatFailsLeavesTheNamesAsTheyWere) {
  std::vector<std::string> names = {"before"};
  calls_.inject(Fault::failing(Call::kList, 1, EIO));
  EXPECT_EQ(files_.list(folder_.path(), names).error, EIO);
  EXPECT_THAT(names, ElementsAre("before"));
  EXPECT_EQ(calls_.openHandles(), 0U);
}

TEST_F(DiskFiles, AFolderOnAReadOnlyVolumeCountsAsMade) {
  calls_.inject(Fault::failing(Call::kMakeFolder, 1, EROFS));
  EXPECT_TRUE(files_.makeFolders(folder_.path()));
  calls_.inject(Fault::failing(Call::kMakeFolder, 1, EROFS));
  EXPECT_EQ(files_.makeFolders(folder_.at("new")).error, EROFS);
}

TEST_F(DiskFiles, AnyFailedCallOfMakingFoldersIsReported) {
  for (int nth = 1; nth <= 5; ++nth) {
    SCOPED_TRACE(nth);
    calls_.heal();
    // a/b/c upwards fails twice with "not there", then a, a/b, a/b/c are made.
    calls_.inject(Fault::failing(Call::kMakeFolder, nth, EIO));
    EXPECT_EQ(files_.makeFolders(folder_.at("a/b/c")).error, EIO);
    calls_.heal();
    EXPECT_TRUE(files_.removeRecursively(folder_.at("a")));
  }
}

TEST_F(DiskFiles, ARealLimitOfTheDiskLeavesTheOldFileAndNoTemporary) {
  const std::string target = folder_.at("page.plist");
  ASSERT_TRUE(writeAll(files_, target, "old"));
  EXPECT_TRUE(inChild([&] {
    std::signal(SIGXFSZ, SIG_IGN);
    const rlimit limit = {100'000, 100'000};
    if (::setrlimit(RLIMIT_FSIZE, &limit) != 0) return false;
    const FileResult result = writeAll(files_, target, std::string(1'000'000, 'x'));
    return result.step == FileStep::kWrite && result.error == EFBIG;
  }));
  EXPECT_EQ(contents(target), "old");
  EXPECT_FALSE(files_.exists(target + std::string(kTemporarySuffix)));
}

TEST_F(DiskFiles, ATemporaryThatAKilledProcessLeavesIsUsedUp) {
  const std::string target = folder_.at("page.plist");
  ASSERT_TRUE(writeAll(files_, target, "old"));
  EXPECT_FALSE(inChild([&] {
    calls_.before(Call::kSync, 1, [] { ::raise(SIGKILL); });
    return writeAll(files_, target, std::string(1000, 'x')).ok();
  }));
  EXPECT_EQ(contents(target), "old");
  EXPECT_EQ(contents(target + std::string(kTemporarySuffix)).size(), 1000U);
  EXPECT_TRUE(writeAll(files_, target, "new"));
  EXPECT_EQ(contents(target), "new");
  EXPECT_FALSE(files_.exists(target + std::string(kTemporarySuffix)));
}

TEST_F(DiskFiles, ProcessesThatWriteOneFileLeaveOneWholeGeneration) {
  constexpr int kWriters = 3;
  constexpr int kWrites = 40;
  const std::string target = folder_.at("page.plist");
  const auto isWhole = [](const std::string& text) {
    return text.size() == 200'000 && text.find_first_not_of(text[0]) == std::string::npos;
  };
  ASSERT_TRUE(writeAll(files_, target, std::string(200'000, 'a')));
  std::vector<pid_t> children(kWriters);
  for (int writer = 0; writer < kWriters; ++writer) {
    const char letter = static_cast<char>('b' + writer);
    ASSERT_TRUE(inChild(
        [&] {
          for (int i = 0; i < kWrites; ++i) {
            if (!writeAll(files_, target, std::string(200'000, letter))) return false;
            if (!isWhole(contents(target))) return false;
          }
          return true;
        },
        &children[static_cast<std::size_t>(writer)]));
  }
  for (const pid_t child : children) {
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0);
  }
  EXPECT_TRUE(isWhole(contents(target)));
  EXPECT_FALSE(files_.exists(target + std::string(kTemporarySuffix)));
}

}  // namespace
}  // namespace VelWhiteBoard
