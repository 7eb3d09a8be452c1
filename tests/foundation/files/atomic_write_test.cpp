// What can go wrong while a file is replaced, call by call.
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"

#include "tests/support/faulty_calls.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/write_all.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;
namespace fs = std::filesystem;

class AtomicWriting : public ::testing::Test {
 protected:
  // Three blocks and a bit, so that every write takes several calls.
  static std::string generation(char letter) {
    return std::string(3 * kFileBlockSize + 100, letter);
  }

  FileResult write(std::string_view contents) { return write(files_, contents); }
  FileResult write(FileSystem& files, std::string_view contents) {
    return files.writeAtomically(target_, [&](const BlockConsumer& out) {
      // Pieces that do not fit the blocks, from a producer that never looks at what `out` answers.
      constexpr std::size_t kPiece = 50'000;
      for (std::string_view rest = contents; !rest.empty();) {
        out(rest.substr(0, kPiece));
        rest.remove_prefix(std::min(kPiece, rest.size()));
      }
      return true;
    });
  }

  std::string contents(const std::string& name = "page.plist") {
    FileBytes found;
    DiskFileSystem plain(SystemCalls::posix());
    const FileResult result = plain.readBytes(folder_.at(name), found);
    return result ? std::string(found.view()) : "(" + result.describe() + ")";
  }

  std::vector<std::string> entries() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_.path())) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }

  mode_t permissions() const {
    struct stat info = {};
    EXPECT_EQ(::stat(target_.c_str(), &info), 0);
    return info.st_mode & 07777U;
  }

  TemporaryFolder folder_;
  FaultyCalls calls_;
  DiskFileSystem files_{calls_};
  const std::string target_ = folder_.at("page.plist");
  const std::string temporary_ = target_ + std::string(kTemporarySuffix);
};

// Errors after which a write need not fail: the contents got where they belong.
bool mayBeForgiven(Call call) {
  switch (call) {
    case Call::kClose:
    case Call::kUnlock:
    case Call::kTryLock:
    case Call::kSetPermissions:
    case Call::kStatus:  // the one that asks for the old file's permissions
      return true;
    default:
      return false;
  }
}

TEST_F(AtomicWriting, WhateverCallFailsTheOldFileOrTheNewOneIsThereWhole) {
  const std::string old = generation('o');
  const std::string fresh = generation('n');
  ASSERT_TRUE(write(old));
  calls_.resetCounts();
  ASSERT_TRUE(write(old));
  int tried = 0;
  for (const Call call : kAllCalls) {
    const int made = calls_.count(call);
    for (int nth = 1; nth <= made; ++nth) {
      SCOPED_TRACE(std::string(callName(call)) + " " + std::to_string(nth));
      FaultyCalls faulty;
      DiskFileSystem failing(faulty);
      ASSERT_TRUE(write(failing, old));
      faulty.inject(Fault::failing(call, nth, EIO));
      const FileResult result = write(failing, fresh);
      EXPECT_EQ(faulty.faultsMet(), 1);
      EXPECT_TRUE(!result.ok() || mayBeForgiven(call));
      const bool replaced = result.ok() || result.step == FileStep::kSyncFolder;
      EXPECT_TRUE(contents() == (replaced ? fresh : old)) << result.describe();
      EXPECT_THAT(entries(), ElementsAre("page.plist")) << result.describe();
      EXPECT_EQ(faulty.openHandles(), 0U);
      faulty.heal();
      EXPECT_TRUE(write(failing, "after the fault"));
      EXPECT_EQ(contents(), "after the fault");
      ++tried;
    }
  }
  EXPECT_GE(tried, 15) << "the loop must have met the calls of a write";
}

TEST_F(AtomicWriting, AFailureNamesItsStep) {
  const struct {
    Call call;
    FileStep step;
  } rows[] = {{Call::kOpen, FileStep::kOpen},     {Call::kTruncate, FileStep::kWrite},
              {Call::kWrite, FileStep::kWrite},   {Call::kSync, FileStep::kSync},
              {Call::kRename, FileStep::kRename}, {Call::kSyncFolder, FileStep::kSyncFolder},
              {Call::kStatus, FileStep::kStatus}};
  for (const auto& row : rows) {
    SCOPED_TRACE(callName(row.call));
    calls_.heal();
    calls_.inject(Fault::failing(row.call, 1, EIO));
    const FileResult result = write(generation('x'));
    EXPECT_EQ(fileStepName(result.step), fileStepName(row.step));
    EXPECT_EQ(result.error, EIO);
  }
}

TEST_F(AtomicWriting, ASignalDuringAnyCallCostsNothing) {
  ASSERT_TRUE(write(generation('o')));
  for (const Call call : kAllCalls) calls_.inject(Fault::failing(call, 1, EINTR));
  const FileResult result = write(generation('n'));
  EXPECT_TRUE(result) << result.describe();
  EXPECT_GE(calls_.faultsMet(), 9);
  EXPECT_TRUE(contents() == generation('n'));
  EXPECT_THAT(entries(), ElementsAre("page.plist"));
}

TEST_F(AtomicWriting, AShortWriteIsContinued) {
  for (int nth = 1; nth <= 4; ++nth) calls_.inject(Fault::shortWrite(nth));
  EXPECT_TRUE(write(generation('n')));
  EXPECT_EQ(calls_.faultsMet(), 4);
  EXPECT_TRUE(contents() == generation('n'));
}

TEST_F(AtomicWriting, ADiskThatFillsUpLeavesTheOldFileAndNoTemporary) {
  ASSERT_TRUE(write(generation('o')));
  for (int nth = 1; nth <= 4; ++nth) {
    calls_.heal();
    calls_.inject(Fault::noSpace(nth));
    const FileResult result = write(generation('n'));
    EXPECT_EQ(result.step, FileStep::kWrite);
    EXPECT_EQ(result.error, ENOSPC);
    EXPECT_TRUE(contents() == generation('o'));
    EXPECT_THAT(entries(), ElementsAre("page.plist"));
  }
}

TEST_F(AtomicWriting, AWriteThatTakesNothingFailsInsteadOfHanging) {
  ASSERT_TRUE(write("old"));
  calls_.inject(Fault::writingNothing(1));
  EXPECT_EQ(write("new").error, EIO);
  EXPECT_EQ(contents(), "old");
}

TEST_F(AtomicWriting, AProducerIsToldThatTheDiskIsFull) {
  calls_.inject(Fault::noSpace(1));
  int taken = 0;
  const FileResult result = files_.writeAtomically(target_, [&](const BlockConsumer& out) {
    while (taken < 1000 && out(std::string(kFileBlockSize, 'x'))) ++taken;
    return taken == 1000;
  });
  EXPECT_EQ(taken, 0);
  EXPECT_EQ(result.error, ENOSPC) << "the disk's failure counts, not the producer's answer";
}

TEST_F(AtomicWriting, TheContentsAreSyncedBeforeTheRenameAndTheFolderAfterIt) {
  calls_.before(Call::kRename, 1, [&] {
    EXPECT_EQ(calls_.count(Call::kSync), 1);
    EXPECT_EQ(calls_.count(Call::kSyncFolder), 0);
    EXPECT_EQ(contents("page.plist.tmp"), "new");
  });
  calls_.before(Call::kSyncFolder, 1, [&] { EXPECT_EQ(calls_.count(Call::kRename), 1); });
  EXPECT_TRUE(write("new"));
  EXPECT_EQ(calls_.count(Call::kSyncFolder), 1);
}

TEST_F(AtomicWriting, AFolderThatCannotBeSyncedIsNoFailure) {
  for (const int error : {EINVAL, EOPNOTSUPP, EACCES}) {
    calls_.heal();
    calls_.inject(Fault::failing(Call::kSyncFolder, 1, error));
    EXPECT_TRUE(write("new")) << error;
  }
}

TEST_F(AtomicWriting, AVolumeWithoutLocksIsWrittenWithoutThem) {
  calls_.inject(Fault::failingFrom(Call::kTryLock, 1, ENOLCK));
  EXPECT_TRUE(write("new"));
  EXPECT_EQ(contents(), "new");
  EXPECT_THAT(entries(), ElementsAre("page.plist"));
}

TEST_F(AtomicWriting, TheReplacedFilesPermissionsAreKept) {
  ASSERT_TRUE(write("old"));
  for (const mode_t mode : {0600U, 0640U, 0444U, 0755U}) {
    ASSERT_EQ(::chmod(target_.c_str(), mode), 0);
    EXPECT_TRUE(write("new"));
    EXPECT_EQ(permissions(), mode);
  }
}

TEST_F(AtomicWriting, ANewFilesPermissionsAreWhatTheUserGrants) {
  const mode_t before = ::umask(027);
  EXPECT_TRUE(write("new"));
  ::umask(before);
  EXPECT_EQ(permissions(), 0640U);
}

TEST_F(AtomicWriting, ASymbolicLinkAtTheTargetIsReplacedNotFollowed) {
  ASSERT_TRUE(writeAll(files_, folder_.at("elsewhere"), "kept"));
  fs::create_symlink(folder_.at("elsewhere"), target_);
  EXPECT_TRUE(write("new"));
  EXPECT_EQ(contents("elsewhere"), "kept");
  EXPECT_EQ(contents(), "new");
  EXPECT_FALSE(fs::is_symlink(target_));
}

TEST_F(AtomicWriting, NothingUnderTheTemporarysNameIsWrittenThrough) {
  ASSERT_TRUE(writeAll(files_, folder_.at("elsewhere"), "kept"));
  const struct {
    const char* what;
    std::function<void()> put;
  } rows[] = {{"symbolic link", [&] { fs::create_symlink(folder_.at("elsewhere"), temporary_); }},
              {"dangling link", [&] { fs::create_symlink(folder_.at("nowhere"), temporary_); }},
              {"second name", [&] { fs::create_hard_link(folder_.at("elsewhere"), temporary_); }},
              {"pipe", [&] { ASSERT_EQ(::mkfifo(temporary_.c_str(), 0600), 0); }}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    row.put();
    const FileResult result = write("new");
    EXPECT_TRUE(result) << result.describe();
    EXPECT_EQ(contents(), "new");
    EXPECT_EQ(contents("elsewhere"), "kept");
    EXPECT_THAT(entries(), UnorderedElementsAre("page.plist", "elsewhere"));
  }
}

TEST_F(AtomicWriting, ATemporaryOfAnotherUserIsClearedAway) {
  ASSERT_TRUE(writeAll(files_, temporary_, "leftover"));
  calls_.inject(Fault::failing(Call::kOpen, 1, EACCES));
  EXPECT_TRUE(write("new"));
  EXPECT_EQ(calls_.faultsMet(), 1);
  EXPECT_EQ(contents(), "new");
}

TEST_F(AtomicWriting, AnObstacleThatStaysIsWrittenAround) {
  ASSERT_TRUE(write("old"));
  fs::create_directory(temporary_);
  EXPECT_TRUE(write("around a folder"));
  EXPECT_EQ(contents(), "around a folder");
  EXPECT_TRUE(fs::is_directory(temporary_));
  EXPECT_THAT(entries(), UnorderedElementsAre("page.plist", "page.plist.tmp"));
  fs::remove(temporary_);
  ASSERT_TRUE(writeAll(files_, temporary_, "of another user"));
  calls_.inject(Fault::failing(Call::kOpen, 1, EACCES));
  calls_.inject(Fault::failing(Call::kRemove, 1, EPERM));
  EXPECT_TRUE(write("around a file"));
  EXPECT_EQ(contents(), "around a file");
  EXPECT_EQ(contents("page.plist.tmp"), "of another user");
}

TEST_F(AtomicWriting, AFolderThatMayNotBeWrittenIsAFailure) {
  ASSERT_TRUE(write("old"));
  calls_.inject(Fault::failingFrom(Call::kOpen, 1, EACCES));
  const FileResult result = write("new");
  EXPECT_EQ(result.step, FileStep::kOpen);
  EXPECT_EQ(result.error, EACCES);
  EXPECT_EQ(contents(), "old");
}

TEST_F(AtomicWriting, AWriterThatWaitedForAnotherStartsAgainWithATemporaryOfItsOwn) {
  DiskFileSystem other(SystemCalls::posix());
  // Between our opening of the temporary and our lock, the other writer finishes: what we opened
  // has become the page.
  calls_.before(Call::kTryLock, 1, [&] { EXPECT_TRUE(writeAll(other, target_, "theirs")); });
  calls_.before(Call::kTruncate, 1, [&] { EXPECT_EQ(contents(), "theirs"); });
  EXPECT_TRUE(write("ours"));
  EXPECT_EQ(calls_.count(Call::kTryLock), 2);
  EXPECT_EQ(contents(), "ours");
  EXPECT_THAT(entries(), ElementsAre("page.plist"));
}

TEST_F(AtomicWriting, ATemporaryThatWasExchangedDoesNotBecomeThePage) {
  ASSERT_TRUE(write("old"));
  DiskFileSystem other(SystemCalls::posix());
  calls_.before(Call::kSync, 1, [&] {
    EXPECT_TRUE(other.removeRecursively(temporary_));
    EXPECT_TRUE(writeAll(other, temporary_, "somebody else's half"));
  });
  const FileResult result = write("new");
  EXPECT_EQ(result.step, FileStep::kRename);
  EXPECT_EQ(contents(), "old");
  EXPECT_EQ(contents("page.plist.tmp"), "somebody else's half") << "not ours to remove";
}

TEST_F(AtomicWriting, ANameThatNeverLeadsToTheOpenFileEndsTheSearch) {
  ASSERT_TRUE(write("old"));
  calls_.inject(Fault{Call::kStatus, 1, ENOENT, Fault::Way::kError, Fault::kForEver});
  EXPECT_FALSE(write("new").ok());
  EXPECT_EQ(contents(), "old");
  EXPECT_EQ(calls_.openHandles(), 0U);
}

}  // namespace
}  // namespace VelWhiteBoard
