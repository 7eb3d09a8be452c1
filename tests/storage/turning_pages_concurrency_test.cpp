// One thread turns the pages while another draws or appends. Every vector ends on one page, on the
// one that it was meant for if one was named, in memory and on the disk.
//
// VELWB_VECTORS sets the number of vectors.
#include <algorithm>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/storage/vector_storage.h"

#include "tests/support/storage_story.h"
#include "tests/support/together.h"

namespace VelWhiteBoard {
namespace {

/// Many, so that hardly one is written again by a later visit.
constexpr std::uint64_t kTurnedPages = 1000;
constexpr int kVectorsOfABatch = 200;

int vectorCount() {
  const char* const count = std::getenv("VELWB_VECTORS");
  return count != nullptr ? std::atoi(count) : 20'000;
}

Tale identifiersOf(const VectorList& vectors) {
  Tale identifiers;
  for (const VectorPtr& vector : vectors) identifiers.push_back(vector->ID.value_or(""));
  return identifiers;
}

Tale identifiersOfFile(const std::string& path) {
  Tale identifiers;
  if (!std::filesystem::exists(path)) return identifiers;
  for (const auto& record : recordsOfFile(VelWbBaseVector::ownClass(), path)) {
    identifiers.push_back(static_cast<const VelWbBaseVector&>(*record).ID.value_or(""));
  }
  return identifiers;
}

class TurningPages : public ::testing::Test {
 protected:
  TurningPages() : storage_(VWBVectorStorage::initWithPath(parent_.path())) {
    storage_->setIgnoreChanges(false);
    storage_->switchPage(page(1, 1, 1));
  }

  /// Runs `work` on a thread while another turns the pages.
  template <class Work>
  void whileTurning(const Work& work) {
    std::atomic<bool> isOver{false};
    together(2, [&](int thread) {
      if (thread == 0) {
        work();
        isOver = true;
        return;
      }
      for (std::uint64_t turn = 1; !isOver; ++turn) {
        storage_->switchPage(
            page(1, 1 + turn % kTurnedPages, 2));  // one visit in the list of pages
      }
    });
    storage_->saveFile(true);
    storage_->saveQueue()->waitUntilAllOperationsAreFinished();
  }

  void expectThatMemoryAndFilesAgree() {
    const auto snap = storage_->snapVectorss();
    int lists = 0;
    int different = 0;  // counted: lists of thousands of names are not printed
    std::size_t onlyInMemory = 0;
    for (const auto& [key, whole] : storage_->wholeVectorss()) {
      const std::string file = key + ".plist";
      const Tale log = identifiersOfFile(storage_->folder() + "/whole_" + file);
      const Tale snapshot = identifiersOfFile(storage_->folder() + "/snap_" + file);
      lists += 2;
      if (log != identifiersOf(whole)) ++different;
      if (snapshot != identifiersOf(snap.at(key))) ++different;
      if (log.size() < whole.size()) onlyInMemory += whole.size() - log.size();
    }
    EXPECT_EQ(different, 0) << "of " << lists << " lists; " << onlyInMemory
                            << " vectors are in memory only";
  }

  TemporaryFolder parent_{TemporaryFolder::Volume::kMemory};
  std::shared_ptr<VWBVectorStorage> storage_;
};

TEST_F(TurningPages, LosesNoVectorThatAnotherThreadDraws) {
  const int count = vectorCount();
  whileTurning([&] {
    for (int i = 0; i < count; ++i) storage_->saveVector(text(std::to_string(i), "words"));
  });
  Tale all;
  for (const auto& [key, list] : storage_->wholeVectorss()) {
    const Tale identifiers = identifiersOf(list);
    all.insert(all.end(), identifiers.begin(), identifiers.end());
  }
  EXPECT_EQ(all.size(), static_cast<std::size_t>(count));
  std::sort(all.begin(), all.end());
  EXPECT_EQ(std::adjacent_find(all.begin(), all.end()), all.end()) << "one stands twice";
  expectThatMemoryAndFilesAgree();
}

TEST_F(TurningPages, LeavesEachAppendedVectorOnThePageThatWasNamed) {
  const int batches = vectorCount() / kVectorsOfABatch;
  whileTurning([&] {
    for (int batch = 0; batch < batches; ++batch) {
      const auto named = storage_->currentPage();
      VectorList vectors;
      for (int i = 0; i < kVectorsOfABatch; ++i) {
        const std::string number = std::to_string(batch * kVectorsOfABatch + i);
        vectors.push_back(text(named->pageInfo() + " " + number, "words"));
      }
      const auto latest = storage_->currentPage();
      if (latest->pageInfo() != named->pageInfo()) {
        // The page was turned while the batch was made; it is the latest that is appended to.
        for (const VectorPtr& vector : vectors) {
          vector->ID = latest->pageInfo() + vector->ID->substr(vector->ID->find(' '));
        }
      }
      storage_->appendVectors(vectors, latest);
    }
  });
  std::size_t strays = 0;
  std::size_t all = 0;
  for (const auto& [key, list] : storage_->wholeVectorss()) {
    for (const std::string& identifier : identifiersOf(list)) {
      ++all;
      if (!identifier.starts_with(key + " ")) ++strays;
    }
  }
  EXPECT_EQ(strays, 0U) << "of " << all;
  EXPECT_EQ(all, static_cast<std::size_t>(batches) * kVectorsOfABatch);
  expectThatMemoryAndFilesAgree();
}

// The order within a page is the order in which they came.
TEST_F(TurningPages, KeepsTheOrderInWhichVectorsWereDrawn) {
  const int count = vectorCount() / 4;
  whileTurning([&] {
    for (int i = 0; i < count; ++i) storage_->saveVector(text(std::to_string(1'000'000 + i), ""));
  });
  for (const auto& [key, list] : storage_->wholeVectorss()) {
    const Tale identifiers = identifiersOf(list);
    EXPECT_TRUE(std::is_sorted(identifiers.begin(), identifiers.end())) << key;
  }
  expectThatMemoryAndFilesAgree();
}

}  // namespace
}  // namespace VelWhiteBoard
