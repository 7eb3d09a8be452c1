// Every single system call of a lesson fails, and the next day the same call of the next lesson
// again. What was on the disk, and what was drawn in either lesson, can be read afterwards: in the
// file, or in what it was set aside as.
#include <filesystem>
#include <iostream>
#include <map>
#include <string>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"

#include "tests/reliability/board_on_disk.h"
#include "tests/reliability/faulty_lesson.h"
#include "tests/support/manual_clock.h"

namespace VelWhiteBoard {
namespace {

class ARepeatedFault : public ::testing::Test {
 protected:
  ARepeatedFault() { playTheFirstDay(firstDay_.parent()); }

  void copyTheFirstDay(const BoardOnDisk& board) const {
    std::filesystem::copy(firstDay_.folder(), board.folder(),
                          std::filesystem::copy_options::recursive);
  }

  std::map<Call, int> callsOfALesson() {
    const BoardOnDisk board;
    copyTheFirstDay(board);
    FaultyCalls calls;
    DiskFileSystem disk(calls);
    const ScopedFileSystem scope(disk);
    {
      Lesson lesson(board.parent());
      playTheSecondDay(lesson);
    }
    std::map<Call, int> counts;
    for (const Call call : kAllCalls) counts[call] = calls.count(call);
    return counts;
  }

  /// Plays a day with the fault; then what the files held before and what was drawn is there.
  void playADay(const BoardOnDisk& board, const Fault& fault, const std::string& day) {
    std::map<std::string, Strings> before;
    for (const std::string& name : listNames()) before[name] = board.kept(name);
    FaultyCalls calls;
    DiskFileSystem disk(calls);
    const ScopedFileSystem scope(disk);
    calls.inject(fault);
    Lesson lesson(board.parent());
    playTheSecondDay(lesson);
    faults_ += calls.faultsMet();
    calls.heal();
    for (std::uint64_t number = 1; number <= kKeys.size(); ++number) {
      lesson.show(number);
      lesson.draw(day);
      lesson.save();
    }
    for (const std::string& name : listNames()) {
      // The one page is cleared by the lesson.
      if (name == wholeName("1_3") || name == snapName("1_3")) continue;
      const Names held(before[name].begin(), before[name].end());
      EXPECT_EQ(missing(held, board.kept(name)), Names()) << name;
      if (name == kPagesName) continue;
      EXPECT_EQ(missing({day, day + " text"}, board.kept(name)), Names()) << name;
    }
  }

  int faults() const { return faults_; }

 private:
  BoardOnDisk firstDay_;
  ManualClock clock_;
  ScopedClock clockScope_{clock_};
  int faults_ = 0;
};

TEST_F(ARepeatedFault, OfAnySystemCallLosesNothing) {
  int lessons = 0;
  for (const auto& [call, count] : callsOfALesson()) {
    for (int nth = 1; nth <= count; ++nth) {
      for (const Trouble& trouble : troublesOf(call, nth)) {
        // What is interrupted or short is tried again at once; that is another test's.
        if (!trouble.name.starts_with("fails") && !trouble.name.starts_with("finds")) continue;
        SCOPED_TRACE(std::string(callName(call)) + " " + std::to_string(nth) + " of " +
                     std::to_string(count) + " " + trouble.name);
        const BoardOnDisk board;
        copyTheFirstDay(board);
        for (const std::string day : {"second day", "third day"}) {
          playADay(board, trouble.fault, day);
          ++lessons;
        }
        if (HasFailure()) return;
      }
    }
  }
  std::cout << lessons << " lessons with " << faults() << " faults" << std::endl;
  EXPECT_GT(lessons, 500);
}

}  // namespace
}  // namespace VelWhiteBoard
