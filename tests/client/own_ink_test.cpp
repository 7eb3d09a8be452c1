// Own changes that are shown before they come back.
#include "lesson/own_ink.h"

#include <string>

#include <gtest/gtest.h>

namespace whiteboard {
namespace {

namespace vwb = VelWhiteBoard;

constexpr const char* kPage = "1_1";

std::shared_ptr<vwb::VelWbVecLine> piece(const std::string& ID, double from, double to) {
  auto made = vwb::VelWbVecLine::initWithType("line");
  made->ID = ID;
  made->path.emplace();
  for (double ts = from; ts <= to; ++ts) made->path->push_back({0.1, 0.01 * ts, ts});
  made->ts = to;
  return made;
}

std::shared_ptr<vwb::VelWbVecText> text(const std::string& ID, double ts, double x = 0.1) {
  auto made = vwb::VelWbVecText::initWithType("text");
  made->ID = ID;
  made->ts = ts;
  made->x = x;
  made->w = made->h = 0.1;
  return made;
}

std::shared_ptr<vwb::VelWbVecRemove> removeOf(const std::string& ID, double ts) {
  auto made = vwb::VelWbVecRemove::initWithType("remove");
  made->ID = "remove of " + ID;
  made->rmID = ID;
  made->ts = ts;
  return made;
}

std::shared_ptr<vwb::VelWbBaseVector> clearNamed(const std::string& ID) {
  auto made = vwb::VelWbBaseVector::initWithType("clear");
  made->ID = ID;
  return made;
}

class AnInk : public testing::Test {
 protected:
  OwnInk::Change draw(const vwb::VelWbBaseVector& change, const vwb::VectorPtr& entry = nullptr) {
    const OwnInk::Change shown = ink_.show(kPage, change, entry);
    ink_.sent(change);
    return shown;
  }
  std::size_t positionsOf(const std::string& ID) const {
    const OwnInk::Ink* ink = ink_.find(ID);
    const auto* line = ink == nullptr || !ink->shown
                           ? nullptr
                           : vwb::recordCast<const vwb::VelWbVecLine>(ink->shown.get());
    return line != nullptr && line->path ? line->path->size() : 0;
  }

  OwnInk ink_;
};

TEST_F(AnInk, GrowsWithThePiecesOfAStroke) {
  EXPECT_EQ(draw(*piece("a", 1, 3)).firstNew, 0U);
  const OwnInk::Change grown = draw(*piece("a", 4, 8));
  EXPECT_EQ(grown.ID, "a");
  EXPECT_EQ(grown.firstNew, 3U);
  EXPECT_EQ(positionsOf("a"), 8U);
}

TEST_F(AnInk, IsACopyOfTheEntryThatItChanges) {
  const auto entry = text("a", 1, 0.1);
  entry->text = "words";
  const auto update = text("a", 2, 0.5);
  EXPECT_EQ(draw(*update, entry).ID, "a");
  const auto* shown = vwb::recordCast<const vwb::VelWbVecText>(ink_.find("a")->shown.get());
  ASSERT_NE(shown, nullptr);
  EXPECT_EQ(shown->x, 0.5);
  EXPECT_EQ(shown->text, "words");
  EXPECT_EQ(entry->x, 0.1);
}

TEST_F(AnInk, StaysUntilTheLastThatWasSentComesBack) {
  draw(*text("a", 1));
  draw(*text("a", 2));
  EXPECT_EQ(ink_.received(*text("a", 1)).ID, "");
  EXPECT_NE(ink_.find("a"), nullptr);
  EXPECT_EQ(ink_.received(*text("a", 2)).ID, "a");
  EXPECT_EQ(ink_.find("a"), nullptr);
  EXPECT_EQ(ink_.received(*text("a", 2)).ID, "");
}

TEST_F(AnInk, StaysWhileThePenDrawsIt) {
  ink_.hold("a");
  draw(*piece("a", 1, 3));
  EXPECT_EQ(ink_.received(*piece("a", 1, 3)).ID, "");
  EXPECT_EQ(positionsOf("a"), 3U);
  ink_.hold("");
  EXPECT_EQ(ink_.received(*piece("a", 1, 3)).ID, "a");
  EXPECT_EQ(ink_.find("a"), nullptr);
}

TEST_F(AnInk, HidesWhatIsRemovedUntilTheRemoveComesBack) {
  draw(*text("a", 1));
  EXPECT_EQ(draw(*removeOf("a", 2)).ID, "a");
  ASSERT_NE(ink_.find("a"), nullptr);
  EXPECT_EQ(ink_.find("a")->shown, nullptr);
  ink_.received(*text("a", 1));
  ASSERT_NE(ink_.find("a"), nullptr) << "the entry would be seen again";
  ink_.received(*removeOf("a", 2));
  EXPECT_EQ(ink_.find("a"), nullptr);
}

TEST_F(AnInk, HidesARemovedEntryOfTheSameInstant) {
  draw(*text("a", 1));
  draw(*removeOf("a", 1));
  ink_.received(*text("a", 1));
  EXPECT_NE(ink_.find("a"), nullptr);
}

TEST_F(AnInk, ShowsWhatIsBroughtBackThoughItIsOlderThanTheRemove) {
  draw(*removeOf("a", 5), text("a", 1));
  draw(*text("a", 1));
  ink_.received(*removeOf("a", 5));
  ASSERT_NE(ink_.find("a"), nullptr) << "it would vanish until it comes back";
  EXPECT_NE(ink_.find("a")->shown, nullptr);
  ink_.received(*text("a", 1));
  EXPECT_EQ(ink_.find("a"), nullptr);
}

TEST_F(AnInk, IsBroughtBackAsItWas) {
  draw(*text("a", 1, 0.1));
  const auto before = ink_.copyOf("a");
  ASSERT_TRUE(before.has_value());
  ink_.show(kPage, *text("a", 2, 0.5), nullptr);
  EXPECT_EQ(ink_.restore("a", before).ID, "a");
  EXPECT_EQ(vwb::recordCast<const vwb::VelWbVecText>(ink_.find("a")->shown.get())->x, 0.1);
  EXPECT_EQ(ink_.restore("a", std::nullopt).ID, "a");
  EXPECT_EQ(ink_.find("a"), nullptr);
  EXPECT_FALSE(ink_.copyOf("a").has_value());
  EXPECT_EQ(ink_.forget("a").ID, "");
}

TEST_F(AnInk, OfAClearHidesThePageUntilItComesBack) {
  draw(*text("before", 1));
  const OwnInk::Change cleared = draw(*clearNamed("c"));
  EXPECT_TRUE(cleared.isOfPage);
  EXPECT_TRUE(ink_.isCleared(kPage));
  EXPECT_FALSE(ink_.isCleared("1_2"));
  EXPECT_EQ(ink_.find("before"), nullptr);
  draw(*text("after", 2));
  EXPECT_FALSE(ink_.received(*clearNamed("of somebody else")).isOfPage);
  EXPECT_TRUE(ink_.isCleared(kPage));
  EXPECT_TRUE(ink_.received(*clearNamed("c")).isOfPage);
  EXPECT_FALSE(ink_.isCleared(kPage));
  EXPECT_NE(ink_.find("after"), nullptr);
}

TEST_F(AnInk, OfTwoClearsHidesThePageUntilTheSecond) {
  draw(*clearNamed("c1"));
  draw(*text("between", 1));
  draw(*clearNamed("c2"));
  EXPECT_EQ(ink_.find("between"), nullptr);
  EXPECT_FALSE(ink_.received(*clearNamed("c1")).isOfPage);
  EXPECT_TRUE(ink_.isCleared(kPage));
  EXPECT_TRUE(ink_.received(*clearNamed("c2")).isOfPage);
}

TEST_F(AnInk, OfAClearLeavesTheStrokeThatIsDrawnAndOtherPages) {
  ink_.show("1_2", *text("other", 1), nullptr);
  ink_.hold("drawn");
  draw(*piece("drawn", 1, 3));
  draw(*clearNamed("c"));
  EXPECT_EQ(positionsOf("drawn"), 3U);
  EXPECT_NE(ink_.find("other"), nullptr);
}

TEST_F(AnInk, LiesOverAPage) {
  const vwb::VectorList entries{text("covered", 1, 0.1), text("kept", 1), text("hidden", 1)};
  draw(*text("covered", 2, 0.7), entries[0]);
  draw(*removeOf("hidden", 2), entries[2]);
  draw(*text("new", 3));
  ink_.show("1_2", *text("elsewhere", 3), nullptr);
  const auto IDsOf = [](const vwb::VectorList& list) {
    std::vector<std::string> all;
    for (const auto& each : list) all.push_back(each->ID.value());
    return all;
  };
  EXPECT_EQ(IDsOf(ink_.over(kPage, entries)), (std::vector<std::string>{"kept", "covered", "new"}));
  draw(*clearNamed("c"));
  draw(*text("after", 4));
  EXPECT_EQ(IDsOf(ink_.over(kPage, entries)), std::vector<std::string>{"after"});
}

TEST_F(AnInk, IsNoneForAVectorWithoutAnIdentifier) {
  EXPECT_EQ(draw(*vwb::VelWbVecText::initWithType("text")).ID, "");
  EXPECT_EQ(draw(*vwb::VelWbVecRemove::initWithType("remove")).ID, "");
  EXPECT_TRUE(ink_.inks().empty());
}

}  // namespace
}  // namespace whiteboard
