// The lists of the pages that a storage has at hand.
#include "VelWhiteBoard/storage/page_cache.h"

#include <memory>
#include <utility>

#include <gtest/gtest.h>

namespace VelWhiteBoard {
namespace {

/// A cache with one page, "1_1", on which a vector without identifier stands.
class APageCache : public ::testing::Test {
 protected:
  APageCache() {
    auto snap = std::make_unique<SnapList>();
    snap->push_back(nameless_);
    cache_.setSnap(cache_.at("1_1"), std::move(snap));
  }

  const VectorPtr nameless_ = VelWbBaseVector::initWithType("instruction");
  PageCache cache_;
};

TEST_F(APageCache, KnowsTheVectorsWithoutIdentifierOfItsPages) {
  EXPECT_TRUE(cache_.hasUnnamed(*nameless_));
}

TEST_F(APageCache, HasNothingMoreToDoWithAPageThatWasTakenOut) {
  const auto page = cache_.take("1_1");
  EXPECT_FALSE(cache_.hasUnnamed(*nameless_));
  EXPECT_EQ(cache_.find("1_1"), nullptr);
  EXPECT_FALSE(cache_.at("1_1").snap);
  EXPECT_TRUE(page.mapped().snap);
}

TEST_F(APageCache, HasNothingMoreToDoWithPagesThatWereAllTakenOut) {
  const auto pages = cache_.takeAll();
  EXPECT_FALSE(cache_.hasUnnamed(*nameless_));
  EXPECT_TRUE(cache_.pages().empty());
  EXPECT_FALSE(cache_.at("1_1").snap);
  EXPECT_TRUE(pages.at("1_1").snap);
}

TEST_F(APageCache, HasNothingMoreToDoWithAListThatWasReplaced) {
  cache_.setSnap(cache_.at("1_1"), cache_.newSnap());
  EXPECT_FALSE(cache_.hasUnnamed(*nameless_));
}

}  // namespace
}  // namespace VelWhiteBoard
