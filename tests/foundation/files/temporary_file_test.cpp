// Who uses which temporary: writers of one target in many threads and processes, and leftovers.
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>
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
using ::testing::UnorderedElementsAreArray;
namespace fs = std::filesystem;

// A lock of a program that does nothing any more, as a stopped one or a forked helper holds it.
class ForeignLock {
 public:
  explicit ForeignLock(const std::string& path)
      : handle_(::open(path.c_str(), O_RDWR | O_CREAT, 0600)) {
    EXPECT_EQ(::flock(handle_, LOCK_EX), 0);
  }
  ~ForeignLock() { release(); }
  ForeignLock(const ForeignLock&) = delete;
  ForeignLock& operator=(const ForeignLock&) = delete;
  void release() {
    if (handle_ >= 0) ::close(handle_);
    handle_ = -1;
  }

 private:
  int handle_;
};

// A process that was forked at some moment and does nothing, with every handle of ours open.
class ForkedHelper {
 public:
  ~ForkedHelper() {
    if (id_ <= 0) return;
    ::kill(id_, SIGKILL);
    ::waitpid(id_, nullptr, 0);
  }
  void start() {
    id_ = ::fork();
    if (id_ == 0) {
      for (;;) ::pause();
    }
  }
  bool isRunning() const { return id_ > 0; }

 private:
  pid_t id_ = -1;
};

class Temporaries : public ::testing::Test {
 protected:
  static std::string read(const std::string& path) {
    FileBytes bytes;
    DiskFileSystem plain(SystemCalls::posix());
    const FileResult result = plain.readBytes(path, bytes);
    return result ? std::string(bytes.view()) : "(" + result.describe() + ")";
  }
  std::string contents() const { return read(target_); }
  std::vector<std::string> entries() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder_.path())) {
      names.push_back(entry.path().filename().string());
    }
    return names;
  }
  void put(const std::string& name, const std::string& bytes = "x") {
    std::ofstream(folder_.at(name)) << bytes;
  }
  FileResult write(std::string_view bytes) { return writeAll(files_, target_, bytes); }
  FileResult clean(FileSystem& files) {
    return files.removeUnusedTemporaries(folder_.path(), ".plist");
  }

  TemporaryFolder folder_;
  FaultyCalls calls_;
  DiskFileSystem files_{calls_};
  DiskFileSystem other_{SystemCalls::posix()};
  const std::string target_ = folder_.at("page.plist");
  const std::string temporary_ = target_ + std::string(kTemporarySuffix);
};

TEST_F(Temporaries, OneThatAnotherProgramKeepsLockedIsWrittenAround) {
  ASSERT_TRUE(write("old"));
  put("page.plist.tmp", "half");
  const ForeignLock lock(temporary_);
  const FileResult result = write("new");
  EXPECT_TRUE(result) << result.describe();
  EXPECT_EQ(contents(), "new");
  EXPECT_EQ(read(temporary_), "half") << "it belongs to the other program";
  EXPECT_THAT(entries(), UnorderedElementsAre("page.plist", "page.plist.tmp"));
  EXPECT_EQ(calls_.openHandles(), 0U);
}

TEST_F(Temporaries, AWriterTakesItsTurnWhenTheLockBecomesFree) {
  ForeignLock lock(temporary_);
  calls_.before(Call::kTryLock, 4, [&] { lock.release(); });
  calls_.before(Call::kSync, 1, [&] { EXPECT_EQ(read(temporary_), "new"); });
  EXPECT_TRUE(write("new"));
  EXPECT_EQ(calls_.count(Call::kTryLock), 4);
  EXPECT_EQ(calls_.count(Call::kSync), 1);
  EXPECT_EQ(contents(), "new");
  EXPECT_THAT(entries(), ElementsAre("page.plist"));
}

TEST_F(Temporaries, OfTwoWritersAtOnceTheContentsThatAreRenamedLastStay) {
  const FileResult slow = files_.writeAtomically(target_, [&](const BlockConsumer& out) {
    EXPECT_TRUE(out("first "));
    EXPECT_TRUE(writeAll(other_, target_, "while the other one was at work"));
    EXPECT_EQ(contents(), "while the other one was at work");
    return out("and last");
  });
  EXPECT_TRUE(slow) << slow.describe();
  EXPECT_EQ(contents(), "first and last");
  EXPECT_THAT(entries(), ElementsAre("page.plist"));
}

TEST_F(Temporaries, OwnNamesThatAreTakenArePassedOver) {
  fs::create_directory(temporary_);
  put("page.plist.tmp-1", "a leftover");
  fs::create_directory(folder_.at("page.plist.tmp-2"));
  fs::create_symlink("missing", folder_.at("page.plist.tmp-3"));
  calls_.before(Call::kSync, 1, [&] { EXPECT_EQ(read(folder_.at("page.plist.tmp-4")), "new"); });
  EXPECT_TRUE(write("new"));
  EXPECT_EQ(calls_.count(Call::kSync), 1);
  EXPECT_EQ(contents(), "new");
  EXPECT_EQ(read(folder_.at("page.plist.tmp-1")), "a leftover");
  EXPECT_THAT(entries(), UnorderedElementsAre("page.plist", "page.plist.tmp", "page.plist.tmp-1",
                                              "page.plist.tmp-2", "page.plist.tmp-3"));
}

TEST_F(Temporaries, OneWithAnOwnNameIsRemovedWhateverFails) {
  ASSERT_TRUE(write("old"));
  fs::create_directory(temporary_);
  calls_.resetCounts();
  ASSERT_TRUE(write("old"));
  int failures = 0;
  for (const Call call : kAllCalls) {
    for (int nth = 1, made = calls_.count(call); nth <= made; ++nth) {
      SCOPED_TRACE(std::string(callName(call)) + " " + std::to_string(nth));
      FaultyCalls faulty;
      DiskFileSystem failing(faulty);
      faulty.inject(Fault::failing(call, nth, EIO));
      const FileResult result = writeAll(failing, target_, "new");
      EXPECT_EQ(faulty.faultsMet(), 1);
      const bool replaced = result.ok() || result.step == FileStep::kSyncFolder;
      EXPECT_EQ(contents(), replaced ? "new" : "old") << result.describe();
      EXPECT_THAT(entries(), UnorderedElementsAre("page.plist", "page.plist.tmp"));
      EXPECT_EQ(faulty.openHandles(), 0U);
      failures += result.ok() ? 0 : 1;
      ASSERT_TRUE(writeAll(other_, target_, "old"));
    }
  }
  EXPECT_GE(failures, 7) << "the loop must have met the calls of a write";
}

TEST_F(Temporaries, AnObstacleThatReturnsIsRemovedOnceAndThenWrittenAround) {
  for (int nth = 1; nth <= 5; ++nth) {
    calls_.before(Call::kOpen, nth, [&] {
      if (!fs::is_symlink(temporary_)) fs::create_symlink("missing", temporary_);
    });
  }
  EXPECT_TRUE(write("new"));
  EXPECT_EQ(calls_.count(Call::kRemove), 1);
  EXPECT_EQ(contents(), "new");
}

TEST_F(Temporaries, AForkedHelperDoesNotGoOnHoldingTheLockOfAWriter) {
  ForkedHelper helper;
  calls_.before(Call::kSync, 1, [&] { helper.start(); });
  calls_.inject(Fault::failing(Call::kRename, 1, EIO));
  calls_.inject(Fault::failing(Call::kRemove, 1, EACCES));
  EXPECT_FALSE(write("new"));
  ASSERT_TRUE(helper.isRunning());
  ASSERT_THAT(entries(), ElementsAre("page.plist.tmp"));
  EXPECT_TRUE(clean(other_));
  EXPECT_THAT(entries(), ElementsAre());
}

TEST_F(Temporaries, AForkedHelperDoesNotGoOnHoldingTheLockOfACleaner) {
  ForkedHelper helper;
  put("page.plist.tmp");
  calls_.before(Call::kTryLock, 1, [&] { helper.start(); });
  calls_.inject(Fault::failing(Call::kRemove, 1, EACCES));
  EXPECT_FALSE(clean(files_));
  ASSERT_TRUE(helper.isRunning());
  EXPECT_TRUE(clean(other_));
  EXPECT_THAT(entries(), ElementsAre());
}

TEST_F(Temporaries, AFolderWithoutRoomForAnyNameIsAFailure) {
  ASSERT_TRUE(write("old"));
  // Whatever the writer opens is gone before it has the lock, as if names led nowhere.
  for (int nth = 1; nth <= 2000; ++nth) {
    calls_.before(Call::kTryLock, nth, [&] {
      for (const auto& entry : fs::directory_iterator(folder_.path())) {
        if (entry.path().string() != target_) fs::remove(entry.path());
      }
    });
  }
  const FileResult result = write("new");
  EXPECT_EQ(result.step, FileStep::kLock);
  EXPECT_EQ(result.error, EBUSY);
  EXPECT_LT(calls_.count(Call::kTryLock), 1100) << "the search ends";
  EXPECT_EQ(contents(), "old");
  EXPECT_THAT(entries(), ElementsAre("page.plist"));
}

TEST_F(Temporaries, CleaningRemovesLeftoversAndNothingElse) {
  const std::vector<std::string> kept = {
      "page.plist",        "notes.tmp",       "a.plist.tmp-", "a.plist.tmp-x",
      "a.plist.tmp-1x",    "a.plist.tmpx",    "a.plist.tmp1", "a.tmp.plist",
      "a.plist.tmp-1.tmp", "a.plist.damaged", "tmp",          "123"};
  for (const std::string& name : kept) put(name);
  for (const char* name : {"page.plist.tmp", "whole_1_2.plist.tmp", "page.plist.tmp-1",
                           "page.plist.tmp-123", ".plist.tmp"}) {
    put(name);
  }
  EXPECT_TRUE(clean(files_));
  EXPECT_THAT(entries(), UnorderedElementsAreArray(kept));
  EXPECT_EQ(calls_.openHandles(), 0U);
}

TEST_F(Temporaries, CleaningLeavesWhatIsNoFile) {
  put("elsewhere");
  fs::create_directory(folder_.at("a.plist.tmp"));
  fs::create_symlink("elsewhere", folder_.at("b.plist.tmp"));
  ASSERT_EQ(::mkfifo(folder_.at("c.plist.tmp").c_str(), 0600), 0);
  EXPECT_TRUE(clean(files_));
  EXPECT_THAT(entries(),
              UnorderedElementsAre("a.plist.tmp", "b.plist.tmp", "c.plist.tmp", "elsewhere"));
}

TEST_F(Temporaries, CleaningLeavesWhatAnotherProgramHasLocked) {
  put("page.plist.tmp", "half");
  ForeignLock lock(temporary_);
  EXPECT_TRUE(clean(files_));
  EXPECT_EQ(read(temporary_), "half");
  lock.release();
  EXPECT_TRUE(clean(files_));
  EXPECT_THAT(entries(), ElementsAre());
}

TEST_F(Temporaries, CleaningNeverCostsAWriterItsContents) {
  // At every call that the writer makes, under the shared name and under one of its own.
  for (const bool isOwnName : {false, true}) {
    if (isOwnName) fs::create_directory(temporary_);
    calls_.resetCounts();
    ASSERT_TRUE(write("old"));
    for (const Call call : kAllCalls) {
      for (int nth = 1, made = calls_.count(call); nth <= made; ++nth) {
        const std::string moment = std::string(callName(call)) + " " + std::to_string(nth);
        SCOPED_TRACE(moment + (isOwnName ? ", own name" : ", shared name"));
        FaultyCalls calls;
        DiskFileSystem files(calls);
        bool isCleaned = false;
        calls.before(call, nth, [&] {
          EXPECT_TRUE(clean(other_));
          isCleaned = true;
        });
        const FileResult result = writeAll(files, target_, moment);
        EXPECT_TRUE(result) << result.describe();
        EXPECT_TRUE(isCleaned);
        EXPECT_EQ(contents(), moment);
      }
    }
  }
  EXPECT_THAT(entries(), UnorderedElementsAre("page.plist", "page.plist.tmp"));
}

TEST_F(Temporaries, CleaningLeavesATemporaryThatHasTakenTheLeftoversPlace) {
  put("page.plist.tmp", "leftover");
  calls_.before(Call::kTryLock, 1, [&] {
    EXPECT_TRUE(writeAll(other_, target_, "used the leftover up"));
    put("page.plist.tmp", "of the next writer");
  });
  EXPECT_TRUE(clean(files_));
  EXPECT_EQ(contents(), "used the leftover up");
  EXPECT_EQ(read(temporary_), "of the next writer");
}

TEST_F(Temporaries, CleaningRemovesNothingOnAVolumeWithoutLocks) {
  put("page.plist.tmp", "half");
  calls_.inject(Fault::failingFrom(Call::kTryLock, 1, ENOLCK));
  const FileResult result = clean(files_);
  EXPECT_EQ(result.step, FileStep::kLock);
  EXPECT_EQ(result.error, ENOLCK);
  EXPECT_EQ(read(temporary_), "half");
}

TEST_F(Temporaries, CleaningAFolderWithoutLeftoversIsOneListing) {
  for (int page = 0; page < 100; ++page) put("whole_1_" + std::to_string(page) + ".plist");
  EXPECT_TRUE(clean(files_));
  EXPECT_EQ(calls_.count(Call::kList), 1);
  EXPECT_EQ(calls_.count(Call::kOpen), 1);
  EXPECT_EQ(calls_.count(Call::kStatus), 0);
}

TEST_F(Temporaries, CleaningReportsTheFirstFailureAndGoesOn) {
  const struct {
    Call call;
    int nth;
    FileStep step;
  } rows[] = {{Call::kOpen, 2, FileStep::kOpen},  // the first one opens the folder
              {Call::kStatus, 1, FileStep::kStatus},
              {Call::kStatus, 2, FileStep::kStatus},
              {Call::kTryLock, 1, FileStep::kLock},
              {Call::kRemove, 1, FileStep::kRemove}};
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(callName(row.call)) + " " + std::to_string(row.nth));
    for (const char* name : {"a.plist.tmp", "b.plist.tmp", "c.plist.tmp"}) put(name);
    calls_.inject(Fault::failing(row.call, row.nth, EIO));
    const FileResult result = clean(files_);
    EXPECT_EQ(fileStepName(result.step), fileStepName(row.step));
    EXPECT_EQ(result.error, EIO);
    EXPECT_EQ(entries().size(), 1U) << "the one that could not be removed";
    EXPECT_EQ(calls_.openHandles(), 0U);
  }
}

}  // namespace
}  // namespace VelWhiteBoard
