// A list whose copies share their entries.
#include "VelWhiteBoard/storage/lists/shared_vector_list.h"

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace VelWhiteBoard {
namespace {

VectorPtr named(const std::string& identifier) {
  auto vector = VelWbBaseVector::initWithType("instruction");
  vector->ID = identifier;
  return vector;
}

VectorList without(VectorList vectors, std::size_t index) {
  vectors.erase(vectors.begin() + static_cast<std::ptrdiff_t>(index));
  return vectors;
}

TEST(SharedLists, ReachAcrossChunksAndBlocks) {
  constexpr std::size_t kEntries = 65536 + 600;
  SharedVectorList list;
  VectorList expected;
  for (std::size_t i = 0; i < kEntries; ++i) {
    expected.push_back(named("x"));
    EXPECT_EQ(list.push_back(expected.back()), i);
  }
  EXPECT_EQ(list.size(), kEntries);
  EXPECT_EQ(list.vectors(), expected);
  for (const std::size_t place : {std::size_t{0}, std::size_t{255}, std::size_t{256},
                                  std::size_t{65535}, std::size_t{65536}, kEntries - 1}) {
    EXPECT_EQ(list.at(place), expected[place]);
  }
}

TEST(SharedLists, KeepTheirEntriesWhateverHappensToACopy) {
  SharedVectorList list;
  VectorList expected;
  for (int i = 0; i < 700; ++i) {
    expected.push_back(named("x"));
    list.push_back(expected.back());
  }
  SharedVectorList copy = list;
  copy.replace(3, named("other"));
  copy.reserveErase(500);
  copy.eraseReserved(500);
  copy.push_back(named("new"));
  EXPECT_EQ(list.vectors(), expected);
  EXPECT_EQ(copy.size(), 700U);

  const VectorList ofCopy = copy.vectors();
  list.push_back(named("y"));
  list.replace(0, named("z"));
  EXPECT_EQ(copy.vectors(), ofCopy);
}

TEST(SharedLists, CloseTheirGapsWithoutLosingAnEntry) {
  SharedVectorList list;
  VectorList expected;
  for (int i = 0; i < 2000; ++i) {
    const VectorPtr vector = named(std::to_string(i));
    list.push_back(vector);
    if (i % 3 == 0) expected.push_back(vector);
  }
  EXPECT_FALSE(list.isSparse());
  for (SharedVectorList::Place place = 0; place < 2000; ++place) {
    if (place % 3 == 0) continue;
    list.reserveErase(place);
    list.eraseReserved(place);
  }
  EXPECT_TRUE(list.isSparse());
  EXPECT_EQ(list.vectors(), expected);
  SharedVectorList::Place to = 0;
  for (SharedVectorList::Place from = 0; from < 2000; from += 3) {
    if (from != to) list.moveToGap(from, to);
    ++to;
  }
  list.dropUnused();
  EXPECT_FALSE(list.isSparse());
  EXPECT_EQ(list.size(), expected.size());
  EXPECT_EQ(list.endPlace(), expected.size());
  EXPECT_EQ(list.vectors(), expected);
}

TEST(SharedLists, GrowAgainAfterTheirUnusedMemoryHasGone) {
  constexpr SharedVectorList::Place kMany = 70'000;  // more than one block
  SharedVectorList list;
  for (SharedVectorList::Place place = 0; place < kMany; ++place) list.push_back(named("x"));
  for (SharedVectorList::Place place = kMany - 1; place >= 300; --place) {
    list.reserveErase(place);
    list.eraseReserved(place);
  }
  const SharedVectorList copy = list;
  list.dropUnused();
  VectorList expected = list.vectors();
  for (int i = 0; i < 600; ++i) {
    expected.push_back(named(std::to_string(i)));
    list.push_back(expected.back());
  }
  EXPECT_EQ(list.vectors(), expected);
  EXPECT_EQ(copy.size(), 300U);
}

TEST(SharedLists, AreSparseOnlyWithManyGapsAndMoreGapsThanEntries) {
  SharedVectorList list;
  for (int i = 0; i < 600; ++i) list.push_back(named("x"));
  const auto erase = [&list](SharedVectorList::Place first, SharedVectorList::Place last) {
    for (auto place = first; place < last; ++place) {
      list.reserveErase(place);
      list.eraseReserved(place);
    }
  };
  erase(0, 300);
  EXPECT_FALSE(list.isSparse()) << "as many gaps as entries";
  erase(300, 301);
  EXPECT_TRUE(list.isSparse());

  SharedVectorList shorter;
  for (int i = 0; i < 258; ++i) shorter.push_back(named("x"));
  std::swap(list, shorter);
  erase(0, 256);
  EXPECT_FALSE(list.isSparse()) << "256 gaps are not worth it";
  erase(256, 257);
  EXPECT_TRUE(list.isSparse());
}

TEST(SharedLists, EndWithAnEntryHoweverManyGapsWereBeforeTheEnd) {
  SharedVectorList list;
  for (int i = 0; i < 600; ++i) list.push_back(named("x"));
  for (SharedVectorList::Place place = 10; place < 600; ++place) {
    list.reserveErase(place);
    list.eraseReserved(place);
  }
  EXPECT_EQ(list.endPlace(), 10U);
  const VectorPtr last = named("last");
  EXPECT_EQ(list.push_back(last), 10U);
  EXPECT_EQ(list.back(), last);
}

TEST(SharedLists, TakeAnEntryBackToTheEndThatWasJustTakenFromIt) {
  SharedVectorList list;
  for (int i = 0; i < 300; ++i) list.push_back(named(std::to_string(i)));
  const VectorList expected = list.vectors();
  list.reserveErase(298);
  list.eraseReserved(298);
  const VectorPtr last = list.back();
  list.reserveErase(299);
  list.eraseReserved(299);
  EXPECT_EQ(list.endPlace(), 298U);
  list.putBack(299, last);
  EXPECT_EQ(list.size(), 299U);
  EXPECT_EQ(list.vectors(), without(expected, 298));
}

TEST(SharedLists, TakeAnEntryBackAfterRoomWasMadeForAnother) {
  SharedVectorList list;
  for (int i = 0; i < 300; ++i) list.push_back(named(std::to_string(i)));
  const auto erase = [&list](SharedVectorList::Place place) {
    list.reserveErase(place);
    list.eraseReserved(place);
  };
  for (SharedVectorList::Place place = 200; place < 299; ++place) erase(place);
  const VectorPtr last = list.back();
  erase(299);
  ASSERT_EQ(list.endPlace(), 200U) << "in the chunk before that of the last entry";
  list.reserveBack();
  list.putBack(299, last);
  const VectorPtr next = named("next");
  EXPECT_EQ(list.push_back(next), 300U);
  EXPECT_EQ(list.back(), next);
  EXPECT_EQ(list.size(), 202U);
}

TEST(SharedLists, LeaveAGapAGapThatIsTakenOutOnceMore) {
  SharedVectorList list;
  for (const char* const each : {"a", "b", "c"}) list.push_back(named(each));
  for (int i = 0; i < 2; ++i) {
    list.reserveErase(1);
    list.eraseReserved(1);
  }
  EXPECT_EQ(list.size(), 2U);
  EXPECT_EQ(list.endPlace(), 3U);
}

TEST(SharedLists, EndWhereTheyBeginOnceNothingIsLeft) {
  SharedVectorList list;
  for (const char* const each : {"a", "b", "c"}) list.push_back(named(each));
  for (const SharedVectorList::Place place : {1U, 2U, 0U}) {
    list.reserveErase(place);
    list.eraseReserved(place);
  }
  EXPECT_TRUE(list.empty());
  EXPECT_EQ(list.endPlace(), 0U);
}

}  // namespace
}  // namespace VelWhiteBoard
