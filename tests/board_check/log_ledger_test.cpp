#include "log_ledger.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/strokes.h"

namespace board_check {
namespace {

using namespace VelWhiteBoard;

using Entries = std::vector<VectorPtr>;

VectorPtr stroke(const std::string& ID, double ts, const std::vector<double>& times = {}) {
  auto line = VelWbVecLine::initWithType("line");
  line->ID = ID;
  line->ts = ts;
  if (!times.empty()) line->path.emplace();
  for (const double time : times) line->path->push_back({0.0, 0.0, time});
  return line;
}

VectorPtr text(const std::string& ID, double ts) {
  auto box = VelWbVecText::initWithType("text");
  box->ID = ID;
  box->ts = ts;
  return box;
}

VectorPtr offset(const std::string& ID, double ts) {
  auto vector = VelWbVecOffset::initWithType("offset");
  vector->ID = ID;
  vector->ts = ts;
  return vector;
}

VectorPtr removal(const std::string& of) {
  auto remove = VelWbVecRemove::initWithType("remove");
  remove->rmID = of;
  return remove;
}

VectorPtr bare(const std::string& type, const std::optional<std::string>& ID, double ts = 0) {
  auto vector = VelWbBaseVector::initWithType(type);
  vector->ID = ID;
  vector->ts = ts;
  return vector;
}

/// A place in a log at which records may be missing.
const VectorPtr kGap;

/// What is told of a log and a snapshot: "log: a", "snapshot: b", "removed?: c".
std::vector<std::string> told(const Entries& log, const Entries& snapshot) {
  LogLedger ledger;
  for (const VectorPtr& record : log) record ? ledger.addRecord(*record) : ledger.addGap();
  std::vector<std::string> all;
  for (const VectorPtr& entry : snapshot) {
    if (ledger.judge(*entry) == Ahead::kSnapshot) all.push_back("snapshot: " + *entry->ID);
  }
  ledger.forEachUnmatched([&all](const LogLedger::Unmatched& unmatched) {
    all.push_back((unmatched.mayBeRemoved ? "removed?: " : "log: ") + unmatched.ID);
  });
  return all;
}

const std::vector<std::string> kInStep;
using Told = std::vector<std::string>;

TEST(LogLedger, FindsAnEntryThatOnlyTheLogHas) {
  EXPECT_EQ(told({stroke("a", 1), stroke("b", 2)}, {stroke("a", 1)}), Told{"log: b"});
}

TEST(LogLedger, FindsAnEntryThatOnlyTheSnapshotHas) {
  EXPECT_EQ(told({stroke("a", 1)}, {stroke("a", 1), stroke("b", 2)}), Told{"snapshot: b"});
}

TEST(LogLedger, FindsAStrokeThatIsBehindByAPiece) {
  const Entries log{stroke("a", 1, {1}), stroke("a", 2, {2})};
  EXPECT_EQ(told(log, {stroke("a", 2, {1, 2})}), kInStep);
  EXPECT_EQ(told(log, {stroke("a", 1, {1})}), Told{"log: a"});
  EXPECT_EQ(told({stroke("a", 1, {1})}, {stroke("a", 2, {1, 2})}), Told{"snapshot: a"});
}

TEST(LogLedger, FindsAStrokeThatIsBehindByPositionsAlone) {
  EXPECT_EQ(told({stroke("a", 0, {1}), stroke("a", 0, {2})}, {stroke("a", 0, {1})}),
            Told{"log: a"});
  EXPECT_EQ(told({stroke("a", 0, {1})}, {stroke("a", 0, {1, 2})}), Told{"snapshot: a"});
}

TEST(LogLedger, FindsABoxThatIsBehindByAnEdit) {
  EXPECT_EQ(told({text("t", 1), text("t", 2)}, {text("t", 1)}), Told{"log: t"});
  EXPECT_EQ(told({text("t", 1)}, {text("t", 2)}), Told{"snapshot: t"});
  EXPECT_EQ(told({text("t", 1), text("t", 2)}, {text("t", 2)}), kInStep);
}

TEST(LogLedger, FindsARemovalAndAClearThatTheSnapshotDoesNotKnow) {
  EXPECT_EQ(told({stroke("a", 1), removal("a")}, {stroke("a", 1)}), Told{"log: a"});
  EXPECT_EQ(told({stroke("a", 1), bare("clear", "c")}, {stroke("a", 1)}), Told{"log: a"});
  EXPECT_EQ(told({stroke("a", 1), removal("a")}, {}), kInStep);
  EXPECT_EQ(told({stroke("a", 1), bare("clear", "c")}, {}), kInStep);
}

TEST(LogLedger, FindsAnEntryThatCameBackAfterItsRemoval) {
  EXPECT_EQ(told({stroke("a", 1), removal("a")}, {stroke("a", 5)}), Told{"snapshot: a"});
  EXPECT_EQ(told({stroke("a", 1), removal("a"), stroke("a", 5)}, {stroke("a", 5)}), kInStep);
  EXPECT_EQ(told({stroke("a", 1), removal("a"), stroke("a", 5)}, {}), Told{"log: a"});
}

TEST(LogLedger, ExpectsTheFirstRecordOfAStrokeToHoldAllOfIt) {
  const Entries log{stroke("a", 3, {1, 2, 3}), stroke("a", 2, {2}), stroke("a", 3, {3})};
  EXPECT_EQ(told(log, {stroke("a", 3, {1, 2, 3})}), kInStep);
}

TEST(LogLedger, TakesTheTimeOfALatePieceOrANewerOne) {
  const Entries log{stroke("a", 1, {1}), stroke("a", 3, {3}), stroke("a", 2, {2})};
  EXPECT_EQ(told(log, {stroke("a", 2, {1, 3})}), kInStep);
}

TEST(LogLedger, LooksAtNoPositionsOfAStrokeThatWasMoved) {
  auto moved = std::static_pointer_cast<VelWbVecLine>(stroke("a", 2, {9}));
  moved->offset = Array{Value(1)};
  EXPECT_EQ(told({stroke("a", 1, {1}), moved}, {stroke("a", 2, {1})}), kInStep);
}

TEST(LogLedger, LooksAtNoPositionsWithoutATime) {
  auto untimed = std::static_pointer_cast<VelWbVecLine>(stroke("a", 1));
  untimed->path.emplace().push_back({0.0, 0.0});
  EXPECT_EQ(told({untimed}, {stroke("a", 1, {5})}), kInStep);
}

TEST(LogLedger, PassesOverVectorsThatDoNotStay) {
  EXPECT_EQ(told({bare("cursor", "c"), bare("magnifier", "m")}, {}), kInStep);
  EXPECT_EQ(told({}, {bare("cursor", "c"), bare("camera", "m")}), kInStep);
}

TEST(LogLedger, PassesOverVectorsWithoutAnIdentifier) {
  EXPECT_EQ(told({bare("line", std::nullopt)}, {}), kInStep);
  EXPECT_EQ(told({}, {bare("line", std::nullopt)}), kInStep);
}

TEST(LogLedger, PassesOverAnIdentifierOfSeveralKinds) {
  EXPECT_EQ(told({stroke("a", 1), text("a", 2)}, {}), kInStep);
  EXPECT_EQ(told({stroke("a", 1), text("a", 2)}, {stroke("a", 9)}), kInStep);
  EXPECT_EQ(told({bare("cursor", "a"), text("a", 2)}, {}), kInStep);
}

TEST(LogLedger, AsksOfOtherVectorsOnlyWhetherTheyAreThere) {
  // Saved, the second is folded into the first; appended, it stands beside it.
  const Entries log{offset("o", 1), offset("o", 2)};
  EXPECT_EQ(told(log, {offset("o", 1), offset("o", 1)}), kInStep);
  EXPECT_EQ(told(log, {offset("o", 1), offset("o", 2)}), kInStep);
  EXPECT_EQ(told(log, {}), Told{"log: o"});
  EXPECT_EQ(told({}, {offset("o", 1)}), Told{"snapshot: o"});
}

TEST(LogLedger, DoesNotSayHowManyOfThemARemovalTook) {
  const Entries log{offset("o", 1), offset("o", 2), removal("o")};
  EXPECT_EQ(told(log, {}), kInStep);
  EXPECT_EQ(told(log, {offset("o", 2)}), kInStep);
}

TEST(LogLedger, TakesTheNewestOfTwoEntriesOfOneIdentifier) {
  const Entries log{stroke("a", 1, {1}), stroke("a", 2, {2})};
  EXPECT_EQ(told(log, {stroke("a", 1, {1}), stroke("a", 2, {1, 2})}), kInStep);
}

TEST(LogLedger, DoesNotTrustAnEntryWhoseRemovalMayHaveBeenLost) {
  EXPECT_EQ(told({stroke("a", 1), kGap}, {}), Told{"removed?: a"});
  EXPECT_EQ(told({kGap, stroke("a", 1)}, {}), Told{"log: a"});
  EXPECT_EQ(told({stroke("a", 1), kGap, stroke("a", 2)}, {}), Told{"log: a"});
}

TEST(LogLedger, DoesNotTrustARemovalAfterWhichRecordsMayHaveBeenLost) {
  EXPECT_EQ(told({stroke("a", 1), removal("a"), kGap}, {stroke("a", 1)}), Told{"snapshot: a"});
  EXPECT_EQ(told({stroke("a", 1), kGap, removal("a")}, {stroke("a", 1)}), Told{"log: a"});
  EXPECT_EQ(told({stroke("a", 1), bare("clear", "c"), kGap}, {stroke("a", 1)}),
            Told{"snapshot: a"});
  EXPECT_EQ(told({stroke("a", 1), kGap, bare("clear", "c")}, {stroke("a", 1)}), Told{"log: a"});
}

}  // namespace
}  // namespace board_check
