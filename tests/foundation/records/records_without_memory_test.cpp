// What happens to a record while memory runs out: an operation has its whole effect or none.
#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/records/property_visit.h"
#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/media_lists.h"
#include "VelWhiteBoard/vectors/strokes.h"

#include "tests/support/failing_memory.h"
#include "tests/support/random_records.h"
#include "tests/support/record_classes.h"
#include "tests/support/strokes.h"

namespace VelWhiteBoard {
namespace {

/// Gives every property that needs memory a value that does; `mark` tells two records apart.
void fillWithMuch(Record& record, const std::string& mark) {
  for (const Property& property : record.recordClass().properties) {
    switch (property.kind) {
      case PropertyKind::text:
        property.in<std::optional<std::string>>(record) =
            mark + " and more letters than a string holds without memory";
        break;
      case PropertyKind::path:
        property.in<std::optional<Path>>(record) = Path{{1, 2, 3}, {4, 5, 6}, {7, 8}};
        break;
      case PropertyKind::array:
        property.in<std::optional<Array>>(record) = Array{mark, Array{1, 2}, 3};
        break;
      case PropertyKind::records: {
        RecordList list;
        list.push_back(property.list->elementClass().create());
        list.push_back(property.list->elementClass().create());
        for (const auto& element : list) fillWithMuch(*element, mark);
        property.list->set(record, list);
        break;
      }
      case PropertyKind::real:
        property.in<double>(record) = static_cast<double>(mark.size());
        break;
      case PropertyKind::signedInteger:
        property.in<std::int64_t>(record) = static_cast<std::int64_t>(mark.size());
        break;
      case PropertyKind::unsignedInteger:
        property.in<std::uint64_t>(record) = mark.size();
        break;
      case PropertyKind::boolean:
        property.in<bool>(record) = mark.size() % 2 == 0;
        break;
    }
  }
}

std::shared_ptr<Record> filled(const RecordClass& recordClass, const std::string& mark) {
  auto record = recordClass.create();
  fillWithMuch(*record, mark);
  if (auto* vector = recordCast<VelWbBaseVector>(record.get())) {
    vector->type = "any type, as long as both have the same one";
    vector->ID = "any identifier, as long as both have the same one";
  }
  return record;
}

/// All classes that derive from `Base`, itself included.
template <class Base>
std::vector<const RecordClass*> classesOf() {
  std::vector<const RecordClass*> classes;
  for (const TestedClass& each : testedClasses()) {
    if (each.own->isKindOf(Base::ownClass())) classes.push_back(each.own);
  }
  return classes;
}

/// A copy that shares nothing with `record`, so that it does not change what the record has to ask
/// memory for.
std::shared_ptr<Record> twin(const Record& record) {
  return testedClassOf(record).initWithCoder([&record] {
    Coder archive;
    record.encodeWithCoder(archive);
    return archive;
  }());
}

/// Runs `change` on twins of `record` while memory fails at each place in turn.
template <class Change>
std::size_t expectAllOrNothing(const Record& record, const Change& change) {
  const auto changed = twin(record);
  change(*changed);
  return failEachAllocation([&] { return twin(record); },
                            [&](const auto& subject) { change(*subject); },
                            [&](const auto& subject, bool threw) {
                              EXPECT_EQ(differences(*subject, threw ? record : *changed), "");
                            });
}

TEST(RecordsWithoutMemory, AMergeOfAnyBoxIsMadeWholeOrNotAtAll) {
  for (const RecordClass* receiver : classesOf<VelWbVecSquare>()) {
    for (const RecordClass* other : classesOf<VelWbBaseVector>()) {
      SCOPED_TRACE(std::string(receiver->name) + " takes " + std::string(other->name));
      const auto record = filled(*receiver, "first");
      const auto update = filled(*other, "second time");
      const auto* vector = recordCast<const VelWbBaseVector>(update.get());
      const std::size_t failures = expectAllOrNothing(
          *record, [&](Record& subject) { recordCast<VelWbVecSquare>(subject)->merge(*vector); });
      const bool isPlain =
          *receiver == VelWbVecSquare::ownClass() || *receiver == VelWbCaptureInfo::ownClass();
      if (receiver == other && !isPlain) {
        EXPECT_GT(failures, 0U) << "nothing was tried";
      }
    }
  }
}

TEST(RecordsWithoutMemory, AMergeOfAMediaListIsMadeWholeOrNotAtAll) {
  const auto record = filled(VelWbVecMediaList::ownClass(), "first");
  const auto update = filled(VelWbVecMediaList::ownClass(), "second time");
  auto& list = *recordCast<VelWbVecMediaList>(update.get())->list;
  while (list.size() < 9) list.push_back(list.front());
  const std::size_t failures = expectAllOrNothing(*record, [&](Record& subject) {
    recordCast<VelWbVecMediaList>(subject)->merge(
        *recordCast<const VelWbVecMediaList>(update.get()));
  });
  EXPECT_GT(failures, 0U);
}

/// Paths at which adding a position takes memory in another way each.
std::vector<std::optional<Path>> awkwardPaths() {
  std::vector<std::optional<Path>> paths{std::nullopt, Path{}, Path{{1, 2, 3}}, Path{{1, 2}}};
  for (const std::size_t count : {2U, 8U, 1023U, 1024U, 1025U, 2048U}) {
    for (const std::size_t numbers : {2U, 3U, 4U}) {
      std::vector<double> position(numbers, 1.0);
      Path path;
      while (path.size() < count) path.push_back(Path::Position(position));
      paths.emplace_back(path);
      path.push_back({1, 2});
      paths.emplace_back(path);
    }
  }
  return paths;
}

std::vector<VelWbVecLine> awkwardPieces() {
  std::vector<VelWbVecLine> pieces{piece(5, 6, 7), piece(5, 6, 7, Path{}),
                                   piece(5, 6, 7, Path{{5, 6, 7}}), piece(5, 6, 7, Path{{5, 6}})};
  Path many;
  for (int index = 0; index < 20; ++index) many.push_back({5, 6, 7.0 + index});
  pieces.push_back(piece(5, 6, 7, many));
  for (int index = 0; index < 20; ++index) many.push_back({5, 6, 80.0 + index, 9});
  pieces.push_back(piece(5, 6, 7, many));
  Path untimed;
  while (untimed.size() < 1500) untimed.push_back({1, 2});
  pieces.push_back(piece(5, 6, 7, untimed));
  for (VelWbVecLine& each : pieces) {
    each.pixel = each.ps = each.widthIndex = 9;
    each.end = true;
  }
  const std::size_t plain = pieces.size();
  for (std::size_t index = 0; index < plain; ++index) {
    pieces.push_back(pieces[index]);
    pieces.back().offset = Array{Array{1, 2}, "an offset that needs memory of its own"};
  }
  return pieces;
}

TEST(RecordsWithoutMemory, APieceOfAStrokeIsTakenWholeOrNotAtAll) {
  std::size_t failures = 0;
  const auto pieces = awkwardPieces();
  for (const auto& path : awkwardPaths()) {
    VelWbVecLine stroke = piece(1, 2, 1);
    stroke.path = path;
    stroke.offset = Array{"an earlier offset, which has memory of its own"};
    for (const VelWbVecLine& update : pieces) {
      failures += expectAllOrNothing(
          stroke, [&](Record& subject) { recordCast<VelWbVecLine>(subject)->append(update); });
    }
  }
  EXPECT_GT(failures, 300U);
}

TEST(RecordsWithoutMemory, APieceOfAStrokeThatCopiesShareIsTakenWholeOrNotAtAll) {
  for (const auto& path : awkwardPaths()) {
    VelWbVecLine stroke = piece(1, 2, 1);
    stroke.path = path;
    for (const VelWbVecLine& update : awkwardPieces()) {
      VelWbVecLine expected = stroke;
      expected.append(update);
      const VelWbVecLine before = stroke;
      failEachAllocation([&] { return stroke.copyWithZone(); },
                         [&](const auto& subject) { subject->append(update); },
                         [&](const auto& subject, bool threw) {
                           EXPECT_EQ(differences(*subject, threw ? stroke : expected), "");
                           EXPECT_EQ(differences(stroke, before), "");
                         });
    }
  }
}

TEST(RecordsWithoutMemory, AStrokeThatIsAppendedToItselfTakesAllOrNothing) {
  VelWbVecLine stroke = piece(1, 2, 1, Path{});
  while (stroke.path->size() < 1500) stroke.path->push_back({1, 2});
  EXPECT_GT(expectAllOrNothing(stroke,
                               [](Record& subject) {
                                 auto& line = *recordCast<VelWbVecLine>(&subject);
                                 line.append(line);
                               }),
            0U);
}

TEST(RecordsWithoutMemory, AnyPositionedRecordTakesAPieceWholeOrNotAtAll) {
  for (const RecordClass* receiver : classesOf<VelWbVecPoint>()) {
    for (const RecordClass* other : classesOf<VelWbBaseVector>()) {
      SCOPED_TRACE(std::string(receiver->name) + " takes " + std::string(other->name));
      const auto update = filled(*other, "second time");
      expectAllOrNothing(*filled(*receiver, "first"), [&](Record& subject) {
        recordCast<VelWbVecPoint>(subject)->append(
            *recordCast<const VelWbBaseVector>(update.get()));
      });
    }
  }
}

TEST(RecordsWithoutMemory, AStrokeGoesOnAfterAPieceForWhichThereWasNoMemory) {
  VelWbVecLine stroke = piece(0, 0, 0);
  Path expected{{0, 0, 0}};
  for (int index = 1; index <= 5000; ++index) {
    VelWbVecLine update = piece(index, 0, index);
    if (index % 3 == 0) update.path = Path{{1.0 * index, 0, 1.0 * index, 4}};
    if (index % 500 == 0) update.path = Path{{1, 0, index - 0.5}, {1.0 * index, 0, 1.0 * index, 4}};
    try {
      const FailingAllocations failing(1);
      stroke.append(update);
    } catch (const std::bad_alloc&) {
      stroke.append(update);
    }
    if (!update.path) {
      expected.push_back({1.0 * index, 0, 1.0 * index});
    } else {
      for (const auto position : *update.path) expected.push_back(position);
    }
  }
  EXPECT_EQ(*stroke.path, expected);
}

TEST(RecordsWithoutMemory, TheContentsOfAnotherRecordAreTakenWithoutMemory) {
  for (const TestedClass& each : testedClasses()) {
    SCOPED_TRACE(each.own->name);
    const auto receiver = filled(*each.own, "first");
    const auto from = filled(*each.own, "second time");
    const auto expected = each.copy(*from);
    const CountedAllocations requests;
    receiver->takeContents(*from);
    EXPECT_EQ(requests.count(), 0U);
    EXPECT_EQ(differences(*receiver, *expected), "");
  }
}

TEST(RecordsWithoutMemory, TheContentsOfARecordOfAnotherClassAreNotTaken) {
  for (const TestedClass& each : testedClasses()) {
    for (const TestedClass& other : testedClasses()) {
      SCOPED_TRACE(std::string(each.own->name) + " from " + std::string(other.own->name));
      const auto receiver = filled(*each.own, "first");
      const auto from = filled(*other.own, "second time");
      const auto receiverBefore = each.copy(*receiver);
      const auto fromBefore = other.copy(*from);
      if (each.own == other.own) continue;
      receiver->takeContents(*from);
      EXPECT_EQ(differences(*receiver, *receiverBefore), "");
      EXPECT_EQ(differences(*from, *fromBefore), "");
    }
  }
}

TEST(RecordsWithoutMemory, ARecordThatTakesItsOwnContentsKeepsThem) {
  for (const TestedClass& each : testedClasses()) {
    SCOPED_TRACE(each.own->name);
    const auto record = filled(*each.own, "first");
    const auto before = each.copy(*record);
    record->takeContents(*record);
    EXPECT_EQ(differences(*record, *before), "");
  }
}

TEST(RecordsWithoutMemory, ARecordWhoseContentsWereTakenCanBeUsedAgain) {
  for (const TestedClass& each : testedClasses()) {
    SCOPED_TRACE(each.own->name);
    const auto receiver = filled(*each.own, "first");
    const auto from = filled(*each.own, "second time");
    receiver->takeContents(*from);
    from->takeContents(*filled(*each.own, "third"));
    EXPECT_EQ(differences(*from, *filled(*each.own, "third")), "");
  }
}

}  // namespace
}  // namespace VelWhiteBoard
