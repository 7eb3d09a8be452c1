// Random lessons: whatever a storage has written, a page's log and its snapshot are in step, and
// they are again once a board has been recovered.
#include <cstdint>
#include <deque>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/storage/vector_storage.h"
#include "VelWhiteBoard/vectors/commands.h"

#include "inspection.h"
#include "recovery.h"
#include "report.h"
#include "tests/support/dice.h"
#include "tests/support/temporary_folder.h"

namespace board_check {
namespace {

namespace fs = std::filesystem;
using namespace VelWhiteBoard;

/// A lesson in which vectors are saved and appended, late and twice, over several sessions.
class Lesson {
 public:
  Lesson(const std::string& directory, std::uint64_t seed) : directory_(directory), dice_(seed) {
    open();
  }

  void play(int steps) {
    for (int i = 0; i < steps; ++i) step();
    storage_->saveFile(true);
    settle();
  }

  void settle() { storage_->saveQueue()->waitUntilAllOperationsAreFinished(); }
  Dice& dice() { return dice_; }

 private:
  void open() {
    if (storage_) settle();
    storage_ = VWBVectorStorage::initWithPath(directory_);
    storage_->setIgnoreChanges(false);
    storage_->switchPage(anyPage());
    past_.clear();
  }

  void step() {
    const int chance = dice_.below(100);
    if (chance < 60) {
      storage_->saveVector(arrival());
    } else if (chance < 80) {
      append();
    } else if (chance < 90) {
      storage_->switchPage(anyPage());
      past_.clear();
    } else if (chance < 96) {
      storage_->saveFile(true);
    } else if (chance < 98) {
      storage_->saveFile(true);
      open();
    } else {
      settle();
      storage_->clearPage(*anyPage());
      settle();
    }
  }

  void append() {
    VectorList vectors;
    for (int i = dice_.below(5); i > 0; --i)
      vectors.push_back(modelWithDictionary<VelWbBaseVector>(form()));
    storage_->appendVectors(vectors, anyPage());
  }

  std::shared_ptr<VelWbVecSwitchPage> anyPage() {
    const auto page = VelWbVecSwitchPage::initWithType("switchPage");
    page->WBID = 1;
    page->curPage = 1 + static_cast<std::uint64_t>(dice_.below(3));
    page->ts = ++time_;
    return page;
  }

  VectorPtr arrival() {
    // A vector that arrives twice, as the same object.
    if (!past_.empty() && dice_.oneIn(20)) {
      return past_[static_cast<std::size_t>(dice_.below(static_cast<int>(past_.size())))];
    }
    auto vector = modelWithDictionary<VelWbBaseVector>(form());
    past_.push_back(vector);
    if (past_.size() > 20) past_.pop_front();
    return vector;
  }

  Dictionary form() {
    static const std::vector<std::string> kTypes{"line",      "markerPen", "eraser", "text",
                                                 "image",     "line",      "offset", "media",
                                                 "mediaList", "?"};
    static const std::vector<std::string> kCommands{"remove", "remove", "clear",
                                                    "cursor", "camera", "magnifier"};
    // Mostly an identifier belongs to one type.
    const int number = dice_.below(30);
    const auto type = static_cast<std::size_t>(dice_.oneIn(50) ? dice_.below(10) : number % 10);
    Dictionary form;
    form["type"] = kTypes[type];
    form["ID"] = "i" + std::to_string(number);
    // Late pieces and pieces of the same time occur.
    time_ += dice_.below(3);
    form["ts"] = time_ - (dice_.oneIn(5) ? dice_.below(40) : 0);
    if (dice_.oneIn(8)) {
      form["type"] = kCommands[static_cast<std::size_t>(dice_.below(6))];
      if (form["type"] == "clear" && !dice_.oneIn(8)) form["type"] = "remove";
      form["ID"] = "c" + std::to_string(dice_.below(3));
      form["rmID"] = "i" + std::to_string(dice_.below(30));
    }
    if (dice_.oneIn(25)) form.erase("ID");
    if (type != 6 && type != 8) addShape(form);
    return form;
  }

  void addShape(Dictionary& form) {
    form["x"] = dice_.below(9) / 4.0;
    form["y"] = dice_.below(9) / 4.0;
    if (form["type"] == "image" || form["type"] == "text" || dice_.oneIn(20)) {
      form["w"] = dice_.below(3);
      form["h"] = dice_.below(3);
    }
    if (dice_.oneIn(10)) form["offset"] = Array{Value(1), Value("right")};
    if (dice_.oneIn(3)) return;
    Array path;
    for (int i = dice_.below(4); i > 0; --i) {
      Array position{Value(dice_.below(5)), Value(dice_.below(5))};
      if (!dice_.oneIn(6)) position.emplace_back(time_ - i);
      path.push_back(position);
    }
    form["path"] = path;
  }

  std::string directory_;
  Dice dice_;
  std::shared_ptr<VWBVectorStorage> storage_;
  std::deque<VectorPtr> past_;
  double time_ = 100;
};

std::string reportOf(const BoardFiles& board) {
  std::ostringstream out;
  printReport(board, out);
  return out.str();
}

std::string contentsOf(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

class ALessonOfChances : public ::testing::TestWithParam<std::uint64_t> {
 protected:
  std::string home() const { return folder_.path() + "/board"; }

  TemporaryFolder folder_{TemporaryFolder::Volume::kMemory};
};

TEST_P(ALessonOfChances, LeavesEveryLogInStepWithItsSnapshot) {
  Lesson lesson(home(), GetParam());
  for (int round = 0; round < 10; ++round) {
    lesson.play(60);
    const BoardFiles board = inspectBoard(home());
    ASSERT_FALSE(board.pages.empty());
    for (const auto& [key, page] : board.pages) {
      ASSERT_TRUE(!page.isKnown() || page.comparison.isInStep()) << reportOf(board);
    }
  }
}

TEST_P(ALessonOfChances, IsFineAfterItWasDamagedAndRecovered) {
  Lesson lesson(home(), GetParam() + 1000);
  lesson.play(200);
  const fs::path target = fs::path(folder_.path()) / "recovered";
  for (int round = 0; round < 10; ++round) {
    std::map<fs::path, std::string> originals;
    for (const auto& entry : fs::directory_iterator(fs::path(home()) / "whiteBoard")) {
      std::string contents = contentsOf(entry.path());
      originals[entry.path()] = contents;
      if (lesson.dice().oneIn(2)) continue;
      const auto place =
          static_cast<std::size_t>(lesson.dice().below(static_cast<int>(contents.size())));
      if (lesson.dice().oneIn(3)) {
        contents.resize(place);
      } else {
        contents[place] = static_cast<char>(lesson.dice().below(256));
      }
      std::ofstream(entry.path(), std::ios::binary) << contents;
    }
    const BoardFiles damaged = inspectBoard(home());
    std::ostringstream told;
    ASSERT_TRUE(recover(damaged, target, told));
    const BoardFiles recovered = inspectBoard(target);
    ASSERT_TRUE(recovered.isAllFine()) << reportOf(damaged) << told.str() << reportOf(recovered);
    fs::remove_all(target);
    for (const auto& [path, contents] : originals) {
      std::ofstream(path, std::ios::binary) << contents;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ALessonOfChances, ::testing::Range<std::uint64_t>(1, 7));

}  // namespace
}  // namespace board_check
