// A list whose copies share their entries, and the index by identifier above it.
#include "VelWhiteBoard/storage/shared_vector_list.h"

#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/storage/snap_list.h"
#include "VelWhiteBoard/vectors/vector_defines.h"

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
  list.pack();
  EXPECT_FALSE(list.isSparse());
  EXPECT_EQ(list.size(), expected.size());
  EXPECT_EQ(list.endPlace(), expected.size());
  EXPECT_EQ(list.vectors(), expected);
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

/// Searches in a plain list, as the index must find them.
struct PlainSnap {
  VectorList entries;

  VectorPtr first(const std::string& identifier) const {
    for (const auto& entry : entries) {
      if (entry->ID == identifier) return entry;
    }
    return nullptr;
  }
  VectorPtr last(const std::string& identifier) const {
    for (auto each = entries.rbegin(); each != entries.rend(); ++each) {
      if ((*each)->ID == identifier) return *each;
    }
    return nullptr;
  }
};

VectorPtr entryAt(const SnapList& snap, SnapList::Place place) {
  return place == SnapList::kNowhere ? nullptr : snap.list().at(place);
}

// Few identifiers, many of each; entries without one that are named later; many gaps.
TEST(SnapLists, FindWhatAPlainSearchFindsWhateverWasPushedErasedAndNamed) {
  for (std::uint32_t seed = 1; seed <= 10; ++seed) {
    SCOPED_TRACE("seed " + std::to_string(seed));
    std::mt19937 random(seed);
    UnnamedEntries unnamed;
    SnapList snap;
    snap.attach(unnamed);
    PlainSnap plain;
    VectorList nameless;
    for (int step = 0; step < 4000; ++step) {
      const auto identifier = std::to_string(random() % 5);
      const bool shrinks = step % 1000 > 500;
      switch (const auto choice = random() % 8; choice) {
        case 0: {
          auto vector = VelWbBaseVector::initWithType("instruction");
          snap.push_back(vector);
          plain.entries.push_back(vector);
          nameless.push_back(vector);
          break;
        }
        case 1:
          if (!nameless.empty()) {
            const VectorPtr vector = nameless.back();
            nameless.pop_back();
            EXPECT_TRUE(unnamed.contains(vector.get()) ||
                        std::find(plain.entries.begin(), plain.entries.end(), vector) ==
                            plain.entries.end());
            vector->ID = identifier;
            snap.hasBeenNamed(*vector);
          }
          break;
        case 2: {
          const SharedVectorList before = snap.list();
          snap.push_back(named("x"));
          snap.rollBack(before);
          snap.ensureIndex();
          break;
        }
        default:
          if (choice < (shrinks ? 7U : 4U)) {
            const auto place = snap.findFirst(identifier);
            if (place == SnapList::kNowhere) break;
            const VectorPtr erased = snap.list().at(place);
            snap.reserveErase({place});
            snap.eraseReserved({place});
            plain.entries.erase(std::find(plain.entries.begin(), plain.entries.end(), erased));
          } else {
            const VectorPtr vector = random() % 4 == 0 && plain.first(identifier)
                                         ? plain.first(identifier)
                                         : named(identifier);
            snap.push_back(vector);
            plain.entries.push_back(vector);
          }
      }
      ASSERT_EQ(entryAt(snap, snap.findFirst(identifier)), plain.first(identifier));
      ASSERT_EQ(entryAt(snap, snap.findLast(identifier)), plain.last(identifier));
    }
    EXPECT_EQ(snap.list().vectors(), plain.entries);
    snap.detach();
    EXPECT_TRUE(unnamed.empty());
  }
}

TEST(SnapLists, KnowTheFirstMagnifier) {
  SnapList snap;
  EXPECT_EQ(snap.firstMagnifier(), SnapList::kNowhere);
  const VectorPtr first = VelWbBaseVector::initWithType(std::string(VelWBVectorStrMagnifier));
  const VectorPtr second = VelWbBaseVector::initWithType(std::string(VelWBVectorStrMagnifier));
  snap.push_back(named("a"));
  snap.push_back(first);
  snap.push_back(second);
  EXPECT_EQ(entryAt(snap, snap.firstMagnifier()), first);
  snap.reserveErase({1});
  snap.eraseReserved({1});
  EXPECT_EQ(entryAt(snap, snap.firstMagnifier()), second);
}

TEST(SnapLists, FindAllEntriesThatAreEqualAndNoOthers) {
  SnapList snap;
  const VectorPtr entry = named("a");
  const VectorPtr equal = entry->copyWithZone();
  const VectorPtr different = entry->copyWithZone();
  different->ts = 5;
  for (const VectorPtr& each : {entry, named("b"), different, equal, entry}) snap.push_back(each);
  EXPECT_EQ(snap.findEqual(*entry), (std::vector<SnapList::Place>{0, 3, 4}));
}

TEST(SnapLists, FindWhatStillHasAnIdentifierThatAClientTookFromTheOthers) {
  for (const std::size_t left : {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{3}}) {
    SnapList snap;
    for (int i = 0; i < 4; ++i) snap.push_back(named("a"));
    for (std::size_t place = 0; place < 4; ++place) {
      if (place != left) snap.list().at(place)->ID = "b";
    }
    EXPECT_EQ(snap.findFirst("a"), left);
    EXPECT_EQ(snap.findLast("a"), left);
    EXPECT_EQ(snap.findEqual(*snap.list().at(left)), std::vector<SnapList::Place>{left});
    snap.list().at(left)->ID = "b";
    EXPECT_EQ(snap.findFirst("a"), SnapList::kNowhere);
    EXPECT_EQ(snap.findLast("a"), SnapList::kNowhere);
  }
}

TEST(SnapLists, FindNothingAtAPlaceThatIsNoLongerThere) {
  SnapList snap;
  const VectorPtr last = named("b");
  for (const VectorPtr& each : {named("a"), last}) snap.push_back(each);
  last->ID = "c";  // by a client: the index still has the identifier that it had
  snap.reserveErase({1});
  snap.eraseReserved({1});
  EXPECT_EQ(snap.findFirst("b"), SnapList::kNowhere);
  EXPECT_EQ(snap.findLast("b"), SnapList::kNowhere);
}

TEST(SnapLists, FindAnEntryOnceThatWasTakenOutAndCameBack) {
  SnapList snap;
  const VectorPtr entry = named("a");
  for (int i = 0; i < 2; ++i) {
    snap.push_back(entry);
    EXPECT_EQ(snap.findEqual(*entry), std::vector<SnapList::Place>{0});
    snap.pop_back();
    EXPECT_EQ(snap.findFirst("a"), SnapList::kNowhere);
  }
}

TEST(SnapLists, KnowAnEntryWhoseIdentifierWasTakenBackAsOneWithoutIt) {
  UnnamedEntries unnamed;
  SnapList snap;
  snap.attach(unnamed);
  const VectorPtr vector = VelWbBaseVector::initWithType("instruction");
  snap.push_back(vector);
  for (const char* const identifier : {"a", "b"}) {
    vector->ID = identifier;
    snap.hasBeenNamed(*vector);
    EXPECT_EQ(snap.findFirst(identifier), 0U);
    EXPECT_FALSE(unnamed.contains(vector.get()));
    vector->ID.reset();
    snap.hasBeenNamed(*vector);
    snap.ensureIndex();
    EXPECT_EQ(snap.findFirst(identifier), SnapList::kNowhere);
    EXPECT_TRUE(unnamed.contains(vector.get()));
  }
}

TEST(SnapLists, TakeTheLastEntryOutAtTheEndOfAChunkToo) {
  for (const int count : {255, 256, 257}) {
    SnapList snap;
    for (int i = 0; i < count; ++i) snap.push_back(named("a"));
    const SharedVectorList copy = snap.list();
    const VectorList before = copy.vectors();
    snap.pop_back();
    EXPECT_EQ(snap.list().vectors(), without(before, before.size() - 1));
    EXPECT_EQ(copy.vectors(), before);
  }
}

TEST(SnapLists, ForgetWhatTheyHeldWhenTheyAreCleared) {
  UnnamedEntries unnamed;
  SnapList snap;
  snap.attach(unnamed);
  const VectorPtr vector = VelWbBaseVector::initWithType("instruction");
  const VectorPtr other = VelWbBaseVector::initWithType(std::string(VelWBVectorStrMagnifier));
  for (const VectorPtr& each : {named("a"), named("a"), vector, other}) snap.push_back(each);
  snap.clear();
  EXPECT_TRUE(snap.empty());
  EXPECT_TRUE(unnamed.empty());
  EXPECT_EQ(snap.findFirst("a"), SnapList::kNowhere);
  EXPECT_EQ(snap.firstMagnifier(), SnapList::kNowhere);
  for (const VectorPtr& each : {named("c"), named("a"), vector}) snap.push_back(each);
  vector->ID = "b";
  snap.hasBeenNamed(*vector);
  EXPECT_EQ(snap.findEqual(*vector), std::vector<SnapList::Place>{2});
  EXPECT_EQ(snap.findEqual(*snap.list().at(1)), std::vector<SnapList::Place>{1});
  EXPECT_TRUE(unnamed.empty());
}

TEST(SnapLists, KeepTheirPlacesWhileTheGapsAreFew) {
  SnapList snap;
  for (const char* const each : {"a", "b", "c"}) snap.push_back(named(each));
  snap.reserveErase({0});
  snap.eraseReserved({0});
  EXPECT_EQ(snap.findFirst("c"), 2U);
}

TEST(SnapLists, PackThemselvesWithoutLosingAnEntry) {
  SnapList snap;
  VectorList kept;
  for (int i = 0; i < 3000; ++i) {
    const VectorPtr vector = named(std::to_string(i));
    snap.push_back(vector);
    if (i % 4 == 0) kept.push_back(vector);
  }
  for (int i = 0; i < 3000; ++i) {
    if (i % 4 == 0) continue;
    const auto place = snap.findFirst(std::to_string(i));
    ASSERT_NE(place, SnapList::kNowhere);
    snap.reserveErase({place});
    snap.eraseReserved({place});
  }
  EXPECT_LT(snap.list().endPlace(), 2000U) << "packed";
  EXPECT_EQ(snap.list().vectors(), kept);
  for (const VectorPtr& vector : kept) {
    const auto place = snap.findFirst(*vector->ID);
    EXPECT_EQ(entryAt(snap, place), vector);
    EXPECT_EQ(snap.findEqual(*vector), std::vector<SnapList::Place>{place});
  }
}

}  // namespace
}  // namespace VelWhiteBoard
