// A capture shows every vector as it was when the capture was taken.
#include "VelWhiteBoard/storage/lists/history.h"

#include <cstdint>
#include <map>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/vectors/boxes.h"

namespace VelWhiteBoard {
namespace {

VectorPtr numbered(double number) {
  auto box = VelWbVecSquare::initWithType("image");
  box->w = number;
  return box;
}

double numberOf(const Record& vector) { return static_cast<const VelWbVecSquare&>(vector).w; }

class AHistory : public ::testing::Test {
 protected:
  void change(const VectorPtr& vector) {
    history_->aboutToChange(vector);
    static_cast<VelWbVecSquare&>(*vector).w += 1;
  }
  double captured(const History::Capture& capture, const VectorPtr& vector) {
    std::vector<std::shared_ptr<const Record>> copies{vector};
    capture.copyAsCaptured(copies);
    EXPECT_NE(copies.front(), vector) << "a copy of its own";
    return numberOf(*copies.front());
  }

  const std::shared_ptr<History> history_ = std::make_shared<History>();
};

TEST_F(AHistory, ShowsAVectorAsItWasWhenTheCaptureWasTaken) {
  const VectorPtr vector = numbered(1);
  const auto first = History::take(history_);
  change(vector);
  const auto second = History::take(history_);
  change(vector);
  change(vector);
  const auto third = History::take(history_);
  EXPECT_EQ(captured(first, vector), 1);
  EXPECT_EQ(captured(second, vector), 2);
  EXPECT_EQ(captured(third, vector), 4);
}

TEST_F(AHistory, ShowsThatAlsoWhenAnEarlierOrLaterCaptureHasFinished) {
  const VectorPtr vector = numbered(1);
  auto first = History::take(history_);
  auto second = History::take(history_);
  change(vector);
  auto third = History::take(history_);
  change(vector);
  third = {};
  EXPECT_EQ(captured(first, vector), 1);
  EXPECT_EQ(captured(second, vector), 1);
  second = {};
  EXPECT_EQ(captured(first, vector), 1);
}

TEST_F(AHistory, KeepsAtMostOneCopyForEachVectorAndUnfinishedCapture) {
  const VectorPtr vector = numbered(1);
  EXPECT_EQ(vector.use_count(), 1);
  const auto capture = History::take(history_);
  for (int i = 0; i < 10; ++i) change(vector);
  EXPECT_EQ(vector.use_count(), 2) << "held once, beside its copy";
  {
    const auto another = History::take(history_);
    for (int i = 0; i < 10; ++i) change(vector);
    EXPECT_EQ(vector.use_count(), 3);
  }
  EXPECT_EQ(vector.use_count(), 2) << "what only the finished capture needed has gone";
  for (int i = 0; i < 100; ++i) {
    const auto another = History::take(history_);
    change(vector);
  }
  EXPECT_EQ(vector.use_count(), 2);
}

TEST_F(AHistory, KeepsNothingOnceEveryCaptureHasFinished) {
  const VectorPtr vector = numbered(1);
  {
    const auto first = History::take(history_);
    change(vector);
    const auto second = History::take(history_);
    change(vector);
  }
  EXPECT_EQ(vector.use_count(), 1);
  change(vector);
  EXPECT_EQ(vector.use_count(), 1) << "without a capture nothing is kept";
  EXPECT_EQ(numberOf(*vector), 4);
}

TEST_F(AHistory, OutlivesItsStorageAsLongAsACaptureNeedsIt) {
  auto history = std::make_shared<History>();
  const std::weak_ptr<History> watch = history;
  {
    const auto capture = History::take(history);
    history.reset();
    EXPECT_FALSE(watch.expired());
  }
  EXPECT_TRUE(watch.expired());
}

// Random changes, captures and finishes, against deep copies made at each capture.
TEST_F(AHistory, AgreesWithDeepCopiesWhateverTheOrder) {
  constexpr int kVectors = 12;
  constexpr int kSteps = 4000;
  for (std::uint32_t seed = 1; seed <= 20; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    std::vector<VectorPtr> vectors;
    for (int i = 0; i < kVectors; ++i) vectors.push_back(numbered(i));
    struct Taken {
      History::Capture capture;
      std::vector<double> numbers;
    };
    std::vector<Taken> taken;
    for (int step = 0; step < kSteps; ++step) {
      switch (below(8)) {
        case 0: {
          Taken next{History::take(history_), {}};
          for (const VectorPtr& vector : vectors) next.numbers.push_back(numberOf(*vector));
          taken.push_back(std::move(next));
          break;
        }
        case 1:
          if (!taken.empty()) {
            taken.erase(taken.begin() + static_cast<std::ptrdiff_t>(below(taken.size())));
          }
          break;
        case 2: {
          if (taken.empty()) break;
          const Taken& one = taken[below(taken.size())];
          for (std::size_t i = 0; i < vectors.size(); ++i) {
            ASSERT_EQ(captured(one.capture, vectors[i]), one.numbers[i]) << "step " << step;
          }
          break;
        }
        default:
          change(vectors[below(vectors.size())]);
      }
      for (const VectorPtr& vector : vectors) {
        ASSERT_LE(vector.use_count(), static_cast<long>(taken.size()) + 1) << "step " << step;
      }
    }
    taken.clear();
    for (const VectorPtr& vector : vectors) ASSERT_EQ(vector.use_count(), 1);
  }
}

}  // namespace
}  // namespace VelWhiteBoard
