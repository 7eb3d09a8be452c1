// A page's present state, against a plain list.
#include "VelWhiteBoard/storage/lists/snap_list.h"

#include <algorithm>
#include <cstdint>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/vector_defines.h"

namespace VelWhiteBoard {
namespace {

VectorPtr entryNamed(const std::string& identifier) {
  auto vector = std::make_shared<VelWbVecSquare>();
  vector->ID = identifier;
  return vector;
}

/// A snap list, and the plain list that it must agree with.
struct Both {
  SnapList snap;
  VectorList plain;

  void push(const VectorPtr& vector) {
    snap.push_back(vector);
    plain.push_back(vector);
  }
  void erase(std::size_t index) {
    const std::vector<SnapList::Place> places{placeOf(index)};
    snap.reserveErase(places);
    snap.eraseReserved(places);
    plain.erase(plain.begin() + static_cast<std::ptrdiff_t>(index));
  }
  void takeLastOutAndBringItBack() {
    const SnapList::Place place = snap.list().endPlace() - 1;
    VectorPtr last = snap.back();
    snap.pop_back();
    snap.undoPop(place, std::move(last));
  }
  void pushAndTakeBack(const VectorPtr& vector) {
    snap.push_back(vector);
    snap.undoPush();
  }
  SnapList::Place placeOf(std::size_t index) const {
    for (SnapList::Place place = 0;; ++place) {
      if (snap.list().at(place) && index-- == 0) return place;
    }
  }
  VectorPtr at(SnapList::Place place) const {
    return place == SnapList::kNowhere ? nullptr : snap.list().at(place);
  }

  void expectAgreement(const std::string& identifier) const {
    const auto isIt = [&](const VectorPtr& vector) { return vector->ID == identifier; };
    const auto first = std::find_if(plain.begin(), plain.end(), isIt);
    const auto last = std::find_if(plain.rbegin(), plain.rend(), isIt);
    ASSERT_EQ(snap.list().vectors(), plain);
    ASSERT_EQ(at(snap.findFirst(identifier)), first == plain.end() ? nullptr : *first);
    ASSERT_EQ(at(snap.findLast(identifier)), last == plain.rend() ? nullptr : *last);
    const auto magnifies = [](const VectorPtr& vector) {
      return vector->type == VelWBVectorStrMagnifier;
    };
    const auto magnifier = std::find_if(plain.begin(), plain.end(), magnifies);
    ASSERT_EQ(at(snap.firstMagnifier()), magnifier == plain.end() ? nullptr : *magnifier);
  }
};

TEST(SnapList, AgreesWithAPlainListWhateverIsTakenOut) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    SCOPED_TRACE(seed);
    std::mt19937 random(seed);
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    Both both;
    std::vector<SharedVectorList> copies;
    // Grows, and then loses most of its entries, so that it is packed.
    for (int step = 0; step < 6000; ++step) {
      const std::string identifier = "id" + std::to_string(below(400));
      const bool shrinks = step % 2000 > 1000;
      const std::size_t kind = below(100);
      if (both.plain.empty() || kind < (shrinks ? 30U : 70U)) {
        VectorPtr vector = entryNamed(identifier);
        if (kind < 3) vector->type = VelWBVectorStrMagnifier;
        if (kind == 3) vector->ID.reset();
        both.push(vector);
      } else if (kind < 90) {
        both.erase(below(both.plain.size()));
      } else if (kind < 94) {
        both.takeLastOutAndBringItBack();
      } else if (kind < 98) {
        both.pushAndTakeBack(entryNamed(identifier));
      } else if (kind == 98) {
        copies.push_back(both.snap.list());  // as a save does
      } else {
        const VectorPtr same = both.plain[below(both.plain.size())];
        both.push(same);
      }
      both.expectAgreement(identifier);
    }
  }
}

TEST(SnapList, KeepsItsGapsFewWhenEntriesMoveToTheEndForEver) {
  Both both;
  for (int i = 0; i < 300; ++i) both.push(entryNamed(std::to_string(i)));
  SnapList& snap = both.snap;
  for (int i = 0; i < 100'000; ++i) {
    const std::string identifier = std::to_string(i * 7 % 300);
    const SnapList::Place place = snap.findFirst(identifier);
    const VectorPtr entry = snap.list().at(place);
    snap.reserveErase({place});
    snap.push_back(entry);
    snap.eraseReserved({place});
    ASSERT_LT(snap.list().endPlace(), 1200U);
  }
  EXPECT_EQ(snap.list().size(), 300U);
  EXPECT_EQ(*snap.back()->ID, std::to_string(99'999 * 7 % 300));
}

TEST(SnapList, TakesNewEntriesInTheMiddleOfPacking) {
  Both both;
  for (int i = 0; i < 1000; ++i) both.push(entryNamed(std::to_string(i)));
  while (both.plain.size() > 480) both.erase(20);
  // Packing has begun and has come to the gaps; now the end comes back to where it is.
  while (both.plain.size() > 21) {
    const SnapList::Place place = both.snap.list().endPlace() - 1;
    both.snap.pop_back();
    ASSERT_LE(both.snap.list().endPlace(), place);
    both.plain.pop_back();
    both.pushAndTakeBack(entryNamed("passing"));
  }
  for (int i = 0; i < 900; ++i) both.push(entryNamed("new " + std::to_string(i)));
  for (int i = 0; i < 400; ++i) {
    both.erase(both.plain.size() / 2);
    both.expectAgreement("new 3");
  }
}

TEST(SnapList, FindsEqualEntriesWhereverPackingHasMovedThem) {
  Both both;
  const VectorPtr twice = entryNamed("twice");
  for (int i = 0; i < 1000; ++i) both.push(i % 500 == 250 ? twice : entryNamed(std::to_string(i)));
  for (int i = 0; i < 700; ++i) {
    std::size_t index = 0;
    while (both.plain[index] == twice) ++index;
    both.erase(index);
    const std::vector<SnapList::Place> places = both.snap.findEqual(*twice);
    ASSERT_EQ(places.size(), 2U);
    for (const SnapList::Place place : places) ASSERT_EQ(both.at(place), twice);
  }
}

TEST(SnapList, HandsOutWhatItHeldWhenItIsCleared) {
  Both both;
  for (int i = 0; i < 10; ++i) both.push(entryNamed(std::to_string(i)));
  const SnapList::Contents cleared = both.snap.clear();
  EXPECT_EQ(cleared.list.vectors(), both.plain);
  EXPECT_TRUE(both.snap.empty());
  both.snap.ensureIndex();
  EXPECT_EQ(both.snap.findFirst("3"), SnapList::kNowhere);
}

TEST(SnapList, RegistersEntriesWithoutIdentifierAsLongAsItIsAttached) {
  UnnamedEntries unnamed;
  const auto nameless = std::make_shared<VelWbVecSquare>();
  {
    Both both;
    both.push(nameless);
    both.snap.attach(unnamed);
    EXPECT_EQ(unnamed.count(nameless.get()), 1U);
    both.push(nameless);
    EXPECT_EQ(unnamed.count(nameless.get()), 2U);
    both.erase(0);
    EXPECT_EQ(unnamed.count(nameless.get()), 1U);
    const SnapList::Contents cleared = both.snap.clear();
    EXPECT_TRUE(unnamed.empty());
    both.snap.ensureIndex();
    both.snap.push_back(nameless);
    EXPECT_EQ(unnamed.count(nameless.get()), 1U);
  }
  EXPECT_TRUE(unnamed.empty());
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
TEST(SnapList, FindWhatAPlainSearchFindsWhateverWasPushedErasedAndNamed) {
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
          snap.push_back(entryNamed("x"));
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
                                         : entryNamed(identifier);
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

TEST(SnapList, KnowTheFirstMagnifier) {
  SnapList snap;
  EXPECT_EQ(snap.firstMagnifier(), SnapList::kNowhere);
  const VectorPtr first = VelWbBaseVector::initWithType(std::string(VelWBVectorStrMagnifier));
  const VectorPtr second = VelWbBaseVector::initWithType(std::string(VelWBVectorStrMagnifier));
  snap.push_back(entryNamed("a"));
  snap.push_back(first);
  snap.push_back(second);
  EXPECT_EQ(entryAt(snap, snap.firstMagnifier()), first);
  snap.reserveErase({1});
  snap.eraseReserved({1});
  EXPECT_EQ(entryAt(snap, snap.firstMagnifier()), second);
}

TEST(SnapList, FindAllEntriesThatAreEqualAndNoOthers) {
  SnapList snap;
  const VectorPtr entry = entryNamed("a");
  const VectorPtr equal = entry->copyWithZone();
  const VectorPtr different = entry->copyWithZone();
  different->ts = 5;
  for (const VectorPtr& each : {entry, entryNamed("b"), different, equal, entry})
    snap.push_back(each);
  EXPECT_EQ(snap.findEqual(*entry), (std::vector<SnapList::Place>{0, 3, 4}));
}

TEST(SnapList, PackThemselvesWithoutLosingAnEntry) {
  SnapList snap;
  VectorList kept;
  for (int i = 0; i < 3000; ++i) {
    const VectorPtr vector = entryNamed(std::to_string(i));
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

TEST(SnapList, FindWhatStillHasAnIdentifierThatAClientTookFromTheOthers) {
  for (const std::size_t left : {std::size_t{0}, std::size_t{1}, std::size_t{2}, std::size_t{3}}) {
    SnapList snap;
    for (int i = 0; i < 4; ++i) snap.push_back(entryNamed("a"));
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

TEST(SnapList, FindNothingAtAPlaceThatIsNoLongerThere) {
  SnapList snap;
  const VectorPtr last = entryNamed("b");
  for (const VectorPtr& each : {entryNamed("a"), last}) snap.push_back(each);
  last->ID = "c";  // by a client: the index still has the identifier that it had
  snap.reserveErase({1});
  snap.eraseReserved({1});
  EXPECT_EQ(snap.findFirst("b"), SnapList::kNowhere);
  EXPECT_EQ(snap.findLast("b"), SnapList::kNowhere);
}

TEST(SnapList, FindAnEntryOnceThatWasTakenOutAndCameBack) {
  SnapList snap;
  const VectorPtr entry = entryNamed("a");
  for (int i = 0; i < 2; ++i) {
    snap.push_back(entry);
    EXPECT_EQ(snap.findEqual(*entry), std::vector<SnapList::Place>{0});
    snap.pop_back();
    EXPECT_EQ(snap.findFirst("a"), SnapList::kNowhere);
  }
}

TEST(SnapList, KnowAnEntryWhoseIdentifierWasTakenBackAsOneWithoutIt) {
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

TEST(SnapList, TakeTheLastEntryOutAtTheEndOfAChunkToo) {
  for (const int count : {255, 256, 257}) {
    SnapList snap;
    for (int i = 0; i < count; ++i) snap.push_back(entryNamed("a"));
    const SharedVectorList copy = snap.list();
    const VectorList before = copy.vectors();
    snap.pop_back();
    EXPECT_EQ(snap.list().vectors(), VectorList(before.begin(), before.end() - 1));
    EXPECT_EQ(copy.vectors(), before);
  }
}

TEST(SnapList, ForgetWhatTheyHeldWhenTheyAreCleared) {
  UnnamedEntries unnamed;
  SnapList snap;
  snap.attach(unnamed);
  const VectorPtr vector = VelWbBaseVector::initWithType("instruction");
  const VectorPtr other = VelWbBaseVector::initWithType(std::string(VelWBVectorStrMagnifier));
  for (const VectorPtr& each : {entryNamed("a"), entryNamed("a"), vector, other})
    snap.push_back(each);
  snap.clear();
  snap.ensureIndex();
  EXPECT_TRUE(snap.empty());
  EXPECT_TRUE(unnamed.empty());
  EXPECT_EQ(snap.findFirst("a"), SnapList::kNowhere);
  EXPECT_EQ(snap.firstMagnifier(), SnapList::kNowhere);
  for (const VectorPtr& each : {entryNamed("c"), entryNamed("a"), vector}) snap.push_back(each);
  vector->ID = "b";
  snap.hasBeenNamed(*vector);
  EXPECT_EQ(snap.findEqual(*vector), std::vector<SnapList::Place>{2});
  EXPECT_EQ(snap.findEqual(*snap.list().at(1)), std::vector<SnapList::Place>{1});
  EXPECT_TRUE(unnamed.empty());
}

TEST(SnapList, KeepTheirPlacesWhileTheGapsAreFew) {
  SnapList snap;
  for (const char* const each : {"a", "b", "c"}) snap.push_back(entryNamed(each));
  snap.reserveErase({0});
  snap.eraseReserved({0});
  EXPECT_EQ(snap.findFirst("c"), 2U);
}

}  // namespace
}  // namespace VelWhiteBoard
