// What becomes of queued operations when the process ends. Each test starts a process that ends in
// one of the ways, and looks at the files that the operations were to write.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <sys/wait.h>

#include <gtest/gtest.h>

#include "tests/support/temporary_folder.h"

namespace VelWhiteBoard {
namespace {

class QueueExit : public ::testing::Test {
 protected:
  /// Answers the exit code of the process, -1 when it crashed.
  int endBy(const std::string& way) {
    // A forked child has its parent's memory but not the threads that refer to it, so a sanitizer
    // that looks for leaks there hangs or finds some.
    const std::string sanitizer = way == "fork" ? "ASAN_OPTIONS=detect_leaks=0 " : "";
    const std::string command =
        sanitizer + "\"" + VELWB_QUEUE_EXIT_PROGRAM + "\" " + way + " \"" + folder_.path() + "\"";
    const int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  }

  std::string textOf(const std::string& name) const {
    std::ifstream file(folder_.at(name));
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  }

  std::size_t fileCount() const {
    std::size_t count = 0;
    for (const auto& entry : std::filesystem::directory_iterator(folder_.path())) {
      if (entry.is_regular_file()) ++count;
    }
    return count;
  }

  /// The files of the program's 20 queues with 25 operations each.
  void expectAllFilesOfTheQueues() const {
    for (int queue = 0; queue < 20; ++queue) {
      for (int i = 0; i < 25; ++i) {
        const std::string name = std::to_string(queue) + "-" + std::to_string(i);
        EXPECT_EQ(textOf(name), name);
      }
    }
  }

 private:
  TemporaryFolder folder_;
};

TEST_F(QueueExit, ReturningFromMainLosesNothing) {
  EXPECT_EQ(endBy("return"), 0);
  expectAllFilesOfTheQueues();
}

TEST_F(QueueExit, StdExitLosesNothing) {
  EXPECT_EQ(endBy("exit"), 0);
  expectAllFilesOfTheQueues();
}

TEST_F(QueueExit, NothingOfADroppedQueueIsLost) {
  EXPECT_EQ(endBy("dropped"), 0);
  expectAllFilesOfTheQueues();
}

TEST_F(QueueExit, WhatOperationsAddMeanwhileRunsToo) {
  EXPECT_EQ(endBy("chain"), 0);
  EXPECT_EQ(fileCount(), 100U);
}

TEST_F(QueueExit, WhatDestructorsOfStaticObjectsAddRunsAtOnceOnTheirThread) {
  EXPECT_EQ(endBy("late"), 0);
  EXPECT_EQ(textOf("early"), "early");
  EXPECT_EQ(textOf("at-once"), "yes");
  EXPECT_EQ(textOf("late"), "late");
}

TEST_F(QueueExit, AnOperationThatEndsTheProcessLosesNeitherItsOwnQueueNorTheOthers) {
  EXPECT_EQ(endBy("inside"), 0);
  expectAllFilesOfTheQueues();
  for (int i = 0; i < 20; ++i) {
    const std::string name = "behind-" + std::to_string(i);
    EXPECT_EQ(textOf(name), name);
  }
}

TEST_F(QueueExit, AnAwaitedOperationThatEndsTheProcessLosesNothingOfEitherQueue) {
  EXPECT_EQ(endBy("inside-awaited"), 0);
  EXPECT_EQ(textOf("behind"), "behind");
  EXPECT_EQ(textOf("behind-both"), "behind-both");
  EXPECT_EQ(textOf("at-once"), "yes");  // the awaited queue works to the very end
  EXPECT_EQ(textOf("late"), "late");
}

TEST_F(QueueExit, ComesWhileOtherThreadsGoOnAddingAndWaiting) {
  EXPECT_EQ(endBy("others"), 0);
  expectAllFilesOfTheQueues();
  EXPECT_EQ(textOf("behind"), "behind");
}

TEST_F(QueueExit, ComesThoughAnOperationAddsItselfForEver) {
  EXPECT_EQ(endBy("forever"), 0);
  expectAllFilesOfTheQueues();
}

TEST_F(QueueExit, AnOperationThatRunsOnTheMainThreadAtTheEndReadsJSON) {
  EXPECT_EQ(endBy("text"), 0);
  EXPECT_EQ(textOf("parsed"), "yes");
}

TEST_F(QueueExit, AForkedChildEndsWithoutWaitingForOperationsThatAreItsParents) {
  EXPECT_EQ(endBy("fork"), 0);
  expectAllFilesOfTheQueues();
}

}  // namespace
}  // namespace VelWhiteBoard
