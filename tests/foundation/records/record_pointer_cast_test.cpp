// Shared references to records as references to their classes.
#include <memory>
#include <type_traits>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/records/record.h"
#include "VelWhiteBoard/services/resources.h"
#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/media_lists.h"
#include "VelWhiteBoard/vectors/strokes.h"

namespace VelWhiteBoard {
namespace {

TEST(RecordPointerCast, GivesTheSameRecordAsItsClassAndAsEachClassItDerivesFrom) {
  const VectorPtr vector = std::make_shared<VelWbVecCircle>();
  EXPECT_EQ(recordPointerCast<VelWbVecCircle>(vector), vector);
  EXPECT_EQ(recordPointerCast<VelWbVecDiagram>(vector), vector);
  EXPECT_EQ(recordPointerCast<VelWbVecSquare>(vector), vector);
  EXPECT_EQ(recordPointerCast<VelWbVecPoint>(vector), vector);
  EXPECT_EQ(recordPointerCast<VelWbBaseVector>(vector), vector);
}

TEST(RecordPointerCast, GivesNullForAnotherClassAndForAClassThatDerivesFromTheRecords) {
  const VectorPtr vector = std::make_shared<VelWbVecDiagram>();
  EXPECT_EQ(recordPointerCast<VelWbVecLine>(vector), nullptr);
  EXPECT_EQ(recordPointerCast<VelWbVecFile>(vector), nullptr);
  EXPECT_EQ(recordPointerCast<VelWbVecCircle>(vector), nullptr);
}

TEST(RecordPointerCast, GivesNullForNull) {
  EXPECT_EQ(recordPointerCast<VelWbVecLine>(VectorPtr()), nullptr);
  EXPECT_EQ(recordPointerCast<VelWbBaseVector>(std::shared_ptr<VelWbVecLine>()), nullptr);
}

TEST(RecordPointerCast, TakesEveryKindOfRecord) {
  const std::shared_ptr<Record> item = std::make_shared<VelWbVecMediaItem>();
  EXPECT_EQ(recordPointerCast<VelWbVecMediaItem>(item), item);
  EXPECT_EQ(recordPointerCast<VelWbBaseVector>(item), nullptr);
  const std::shared_ptr<Record> resource = std::make_shared<VelImageResource>();
  EXPECT_EQ(recordPointerCast<VelImageResource>(resource), resource);
  EXPECT_EQ(recordPointerCast<VelWbVecMediaItem>(resource), nullptr);
}

TEST(RecordPointerCast, SharesTheOwnership) {
  VectorPtr vector = std::make_shared<VelWbVecLine>();
  const std::weak_ptr<VelWbBaseVector> watched = vector;
  std::shared_ptr<VelWbVecLine> line = recordPointerCast<VelWbVecLine>(vector);
  EXPECT_EQ(line.use_count(), 2);
  EXPECT_FALSE(line.owner_before(vector) || vector.owner_before(line));
  vector.reset();
  EXPECT_FALSE(watched.expired()) << "the line alone owns the record now";
  line->pixel = 4;
  line.reset();
  EXPECT_TRUE(watched.expired());
}

TEST(RecordPointerCast, DoesNotOwnARecordOfAnotherClass) {
  const VectorPtr vector = std::make_shared<VelWbVecLine>();
  const auto text = recordPointerCast<VelWbVecText>(vector);
  EXPECT_EQ(vector.use_count(), 1);
  EXPECT_EQ(text.use_count(), 0);
}

TEST(RecordPointerCast, OfAReferenceThatNobodyElseHoldsKeepsTheRecord) {
  const auto line = recordPointerCast<VelWbVecLine>(VectorPtr(std::make_shared<VelWbVecLine>()));
  ASSERT_NE(line, nullptr);
  EXPECT_EQ(line.use_count(), 1);
}

TEST(RecordPointerCast, KeepsConstAndMayAddIt) {
  const std::shared_ptr<const VelWbBaseVector> fixed = std::make_shared<VelWbVecLine>();
  const auto line = recordPointerCast<const VelWbVecLine>(fixed);
  static_assert(std::is_same_v<decltype(line), const std::shared_ptr<const VelWbVecLine>>);
  EXPECT_EQ(line, fixed);
  const VectorPtr open = std::make_shared<VelWbVecLine>();
  const auto same = recordPointerCast<const VelWbVecLine>(open);
  static_assert(std::is_same_v<decltype(same), const std::shared_ptr<const VelWbVecLine>>);
  EXPECT_EQ(same, open);
}

}  // namespace
}  // namespace VelWhiteBoard
