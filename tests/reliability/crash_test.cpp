// What a crash costs. A process plays a lesson at full speed, closes its board and opens it again
// now and then, and is killed at a random instant; then every file of its board must be one whole
// generation that the process had announced.
//
// VELWB_KILLS sets the number of kills, VELWB_SEED the seed of all chances.
#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <map>
#include <memory>
#include <random>
#include <set>
#include <sstream>
#include <string>

#include <gtest/gtest.h>

#include "VelWhiteBoard/storage/files/board_files.h"
#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/reliability/generations.h"
#include "tests/reliability/player_process.h"
#include "tests/support/temporary_folder.h"

namespace VelWhiteBoard {
namespace {

constexpr int kKillsOfABoard = 25;  // then a new board begins
constexpr std::uint32_t kMostLines = 120;
constexpr std::uint32_t kMostMicroseconds = 3000;

std::uint32_t numberFrom(const char* variable, std::uint32_t otherwise) {
  const char* const text = std::getenv(variable);
  return text ? static_cast<std::uint32_t>(std::strtoul(text, nullptr, 10)) : otherwise;
}

/// A board that is played into and crashes, again and again.
class CrashingBoard {
 public:
  explicit CrashingBoard(TemporaryFolder::Volume volume) : parent_(volume) {}

  std::string parent() const { return parent_.path(); }
  std::string folder() const { return boardFolder(parent_.path()); }
  std::string at(const std::string& name) const { return folder() + "/" + name; }

  /// Takes in what a process announced.
  void heed(const std::string& announcements) {
    std::istringstream lines(announcements);
    for (std::string line; std::getline(lines, line);) {
      std::istringstream words(line);
      std::string what, name, digest;
      words >> what >> name >> digest;
      if (what == "file") generations_.add(name, digest);
      if (what == "clear") generations_.addClear();
      if (what == "settled") generations_.settle();
      if (what == "lost") ADD_FAILURE() << name << " was not what had been queued for it";
    }
  }

  /// Checks every file; then what they hold is where the next process begins.
  void check() {
    std::set<std::string> present;
    for (const std::string& name : namesIn(folder())) {
      present.insert(name);
      if (name.ends_with(".plist.tmp")) {
        EXPECT_TRUE(isExpected(name.substr(0, name.size() - 4))) << name << " is no board's";
        ++leftovers_;
      } else {
        EXPECT_TRUE(isExpected(name)) << name << " lies in the board's folder";
      }
    }
    for (const std::string& name : generations_.names()) {
      const std::string digest = digestOfFile(at(name));
      EXPECT_TRUE(generations_.allow(name, digest)) << name << " holds " << digest << "\n"
                                                    << generations_.describe(name);
      generations_.set(name, digest);
      ++filesChecked_;
      if (digest != kAbsentFile) gather(name, digest);
    }
    checkThroughStorage();
  }

  /// What a crash left under a temporary's name goes with the next save of the same file.
  void expectNoLeftoversAfterTheNextSaves() {
    const auto storage = VWBVectorStorage::initWithPath(parent());
    storage->setIgnoreChanges(false);
    double time = 1e9;
    for (std::int64_t board = 1; board <= 2; ++board) {
      for (std::uint64_t number = 1; number <= 3; ++number) {
        const auto page = VelWbVecSwitchPage::initWithType("switchPage");
        page->WBID = board;
        page->curPage = number;
        page->ts = ++time;
        storage->switchPage(page);
        storage->saveVector(VelWbBaseVector::initWithType("mark"));
        storage->saveFile(true);
      }
    }
    storage->saveQueue()->waitUntilAllOperationsAreFinished();
    EXPECT_EQ(namesIn(folder(), ".tmp"), std::vector<std::string>());
    EXPECT_EQ(namesIn(folder()).size(), 13U);  // two a page, and the list of pages
  }

  std::size_t leftovers() const { return leftovers_; }
  std::size_t filesChecked() const { return filesChecked_; }

  /// Where the files are kept that are to be read by the second reader.
  void gatherIn(const std::string& folder) { gathered_ = folder; }

 private:
  bool isExpected(const std::string& name) const { return generations_.names().contains(name); }

  // Another storage sees just what the files hold: no page more, no page less.
  void checkThroughStorage() const {
    const auto storage = VWBVectorStorage::initWithPath(parent());
    const auto visited = vectorsOf(storage->pageArray());
    const std::string expected = digestOfFile(at(kPagesName));
    EXPECT_EQ(expected == kAbsentFile ? digestOf({}) : expected, digestOf(visited));
    std::set<std::string> seen;
    for (const auto& page : storage->pageArray()) {
      const std::string key = page->pageInfo();
      if (!seen.insert(key).second) continue;
      const std::string snap = digestOfFile(at(snapName(key)));
      EXPECT_EQ(snap == kAbsentFile ? digestOf({}) : snap, digestOf(storage->snapWithPage(*page)));
      EXPECT_EQ(storage->hasVectorsWithPage(*page),
                digestOfFile(at(wholeName(key))) != kAbsentFile);
    }
  }

  void gather(const std::string& name, const std::string& digest) {
    std::string& last = lastGathered_[name];
    if (gathered_.empty() || last == digest) return;
    last = digest;
    const std::string stem = gathered_ + "/" +
                             std::to_string(std::filesystem::hash_value(at(name))) + "-" +
                             std::to_string(gatheredFiles_++);
    std::filesystem::copy_file(at(name), stem + ".plist");
    std::ofstream(stem + ".json") << modelToJSONString(readVectors(at(name)).list);
  }

  TemporaryFolder parent_;
  Generations generations_;
  std::map<std::string, std::string> lastGathered_;
  std::string gathered_;
  std::size_t gatheredFiles_ = 0;
  std::size_t leftovers_ = 0;
  std::size_t filesChecked_ = 0;
};

/// The files that have been gathered so far, read by the other reader.
void expectThatTheSecondReaderAgrees(TemporaryFolder& gathered) {
  const std::string command =
      "'" VELWB_PYTHON "' '" VELWB_SECOND_READER "' '" + gathered.path() + "'";
  EXPECT_EQ(std::system(command.c_str()), 0);
  for (const auto& entry : std::filesystem::directory_iterator(gathered.path())) {
    std::filesystem::remove(entry.path());
  }
}

TEST(ACrash, LeavesEveryFileAWholeGeneration) {
  const std::uint32_t kills = numberFrom("VELWB_KILLS", 100);
  const std::uint32_t seed = numberFrom("VELWB_SEED", std::random_device{}());
  std::cout << kills << " kills, VELWB_SEED=" << seed << std::endl;
  std::mt19937 random(seed);
  TemporaryFolder gathered(TemporaryFolder::Volume::kMemory);
  std::unique_ptr<CrashingBoard> board;
  std::uint32_t boards = 0;
  std::size_t announcements = 0;
  std::size_t filesChecked = 0;
  std::size_t leftovers = 0;
  const auto retire = [&] {
    filesChecked += board->filesChecked();
    leftovers += board->leftovers();
    board->expectNoLeftoversAfterTheNextSaves();
    expectThatTheSecondReaderAgrees(gathered);
    board.reset();
  };
  for (std::uint32_t kill = 0; kill < kills && !::testing::Test::HasFailure(); ++kill) {
    SCOPED_TRACE("kill " + std::to_string(kill) + " of VELWB_SEED=" + std::to_string(seed));
    if (!board) {
      // On a disk most kills meet a write that waits for it; in memory they meet everything else.
      board =
          std::make_unique<CrashingBoard>(boards++ % 2 == 0 ? TemporaryFolder::Volume::kTemporary
                                                            : TemporaryFolder::Volume::kMemory);
      board->gatherIn(gathered.path());
    }
    PlayerProcess player(board->parent(), static_cast<std::uint32_t>(random()));
    ASSERT_TRUE(player.isRunning());
    ASSERT_TRUE(player.readUntil(random() % kMostLines,
                                 std::chrono::microseconds(random() % kMostMicroseconds)))
        << "the player ended by itself";
    player.kill();
    announcements += player.lines();
    board->heed(player.output());
    board->check();
    if ((kill + 1) % kKillsOfABoard == 0) retire();
  }
  if (board) retire();
  std::cout << kills << " kills survived, " << announcements << " announcements, " << filesChecked
            << " files checked, " << leftovers << " times a temporary was left" << std::endl;
}

// The harness sees what it is there for: it must not be content with just anything.
TEST(ACrash, IsNoticedWhenAFileHoldsSomethingElse) {
  CrashingBoard board(TemporaryFolder::Volume::kMemory);
  PlayerProcess player(board.parent(), 1, "400");
  ASSERT_EQ(player.finish(), 0);
  ASSERT_TRUE(player.output().ends_with("settled\nover\n"));
  Generations generations;
  board.heed(player.output());
  board.check();
  std::size_t noticed = 0;
  std::size_t files = 0;
  for (const std::string& name : namesIn(board.folder(), ".plist")) {
    ++files;
    generations.set(name, digestOfFile(board.at(name)));
    const auto size = std::filesystem::file_size(board.at(name));
    std::filesystem::resize_file(board.at(name), size - 1 - size / 3);
    if (!generations.allow(name, digestOfFile(board.at(name)))) ++noticed;
  }
  EXPECT_GT(files, 2U);
  EXPECT_EQ(noticed, files);
}

}  // namespace
}  // namespace VelWhiteBoard
