// The keyed archive: everything comes back, and damaged bytes give an empty archive.
#include "VelWhiteBoard/foundation/records/coder.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <string_view>
#include <utility>

#include <gtest/gtest.h>

#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/media_lists.h"

#include "tests/support/special_numbers.h"

namespace VelWhiteBoard {
namespace {

/// The value under a key after the archive has been bytes.
Value throughBytes(Value value) {
  Coder archive;
  archive.encode("key", std::move(value));
  const Coder restored(archive.data());
  const Value* found = restored.decode("key");
  return found == nullptr ? Value("nothing") : *found;
}

TEST(Coder, AnEmptyArchiveHoldsNothing) {
  const Coder archive;
  EXPECT_EQ(archive.decode("key"), nullptr);
  EXPECT_TRUE(archive.values().empty());
  EXPECT_TRUE(Coder(archive.data()).values().empty());
}

TEST(Coder, EveryKindOfValueComesBack) {
  const Value values[] = {
      nullptr,
      true,
      false,
      0,
      -1,
      23,
      24,
      255,
      256,
      65536,
      std::int64_t{4294967296},
      std::numeric_limits<std::int64_t>::min(),
      std::numeric_limits<std::int64_t>::max(),
      std::numeric_limits<std::uint64_t>::max(),
      0.1,
      1.5,
      5e-324,
      kInfinity,
      -kInfinity,
      kNaN,
      "",
      "text",
      std::string("\0\x01\x1F", 3),
      "\xFF\xC3 no UTF-8",
      std::string(300, 'a'),
      std::string(70000, 'b'),
      Array{},
      Array{1, "a", nullptr, Array{2.5}},
      Dictionary{},
      Dictionary{{"", 1}, {"a", Dictionary{{"b", Array{true}}}}},
      Array(300, Value(1)),
  };
  for (const Value& value : values) {
    const Value restored = throughBytes(value);
    EXPECT_TRUE(sameValue(restored, value))
        << value.dump(-1, ' ', false, Value::error_handler_t::replace);
    EXPECT_EQ(restored.is_number_float(), value.is_number_float());
  }
  EXPECT_TRUE(std::signbit(throughBytes(-0.0).get<double>()));
}

TEST(Coder, AKeyEncodedTwiceHasTheLastValue) {
  Coder archive;
  archive.encode("a", 1);
  archive.encode("b", 2);
  archive.encode("a", 3);
  EXPECT_EQ(*archive.decode("a"), 3);
  EXPECT_EQ(*Coder(archive.data()).decode("a"), 3);
  EXPECT_EQ(archive.values().size(), 2U);
}

TEST(Coder, ARecordIsArchivedUnderItsPropertyNames) {
  VelWbVecFile file;
  file.type = "image";
  file.ts = 1.5;
  file.ps = 800;
  file.end = true;
  file.path = Path{{1, 2, 3}};
  file.url = "u";
  Coder archive;
  file.encodeWithCoder(archive);
  EXPECT_EQ(*archive.decode("type"), "image");
  EXPECT_EQ(*archive.decode("ts"), 1.5);
  EXPECT_EQ(*archive.decode("ps"), 800);
  EXPECT_EQ(*archive.decode("end"), true);
  EXPECT_EQ(*archive.decode("path"), Value::parse("[[1.0, 2.0, 3.0]]"));
  EXPECT_EQ(*archive.decode("undeletable"), false);
  EXPECT_NE(archive.decode("rotation"), nullptr);
  EXPECT_EQ(archive.decode("color"), nullptr) << "no property of a file";
}

TEST(Coder, ARecordComesBackWithWhatADictionaryCannotCarry) {
  VelWbVecDiagram diagram;
  diagram.type = std::string("no\0type\x02\xFF", 9);
  diagram.ts = kNaN;
  diagram.ID = "";
  diagram.x = -0.0;
  diagram.y = -kInfinity;
  diagram.path = Path{{kNaN, kInfinity, -0.0}, {}, {1}, {1, 2, 3, 4}};
  diagram.points = Array{nullptr, kNaN, Array{Dictionary{{"k", -kInfinity}}}, "\r"};
  Coder archive;
  diagram.encodeWithCoder(archive);
  const auto restored = VelWbVecDiagram::initWithCoder(Coder(archive.data()));
  EXPECT_EQ(*restored, diagram);
  EXPECT_EQ(restored->type, diagram.type);
  EXPECT_TRUE(std::isnan(restored->ts));
  EXPECT_TRUE(std::signbit(restored->x));
  EXPECT_TRUE(std::signbit((*restored->path)[0][2]));
  EXPECT_EQ(restored->ID, "");
  EXPECT_EQ(restored->kind, std::nullopt);
}

TEST(Coder, AMediaListComesBackWithItsItems) {
  VelWbVecMediaList list;
  list.type = "mediaList";
  list.owner = -9;
  auto item = std::make_shared<VelWbVecMediaItem>();
  item->ID = "a";
  item->duration = std::numeric_limits<std::int64_t>::max();
  list.list = {{item, std::make_shared<VelWbVecMediaItem>()}};
  Coder archive;
  list.encodeWithCoder(archive);
  const auto restored = VelWbVecMediaList::initWithCoder(Coder(archive.data()));
  EXPECT_EQ(*restored, list);
  ASSERT_EQ(restored->list->size(), 2U);
  EXPECT_NE(restored->list->at(0), item);
  EXPECT_EQ(restored->list->at(1)->ID, std::nullopt);
}

TEST(Coder, TheClassAskedForReadsAnArchiveOfAnotherClassByName) {
  // Archives say no class: the caller knows it, and the decoding rule is for dictionaries only.
  VelWbVecText text;
  text.type = "text";
  text.color = "#112233FF";
  text.w = 3;
  Coder archive;
  text.encodeWithCoder(archive);
  const auto line = VelWbVecLine::initWithCoder(archive);
  EXPECT_EQ(line->type, "text");
  EXPECT_EQ(line->color, "#112233FF");
  EXPECT_EQ(line->path, std::nullopt);
}

TEST(Coder, AnArchiveOfNothingGivesARecordInItsInitialState) {
  EXPECT_EQ(*VelWbVecCircle::initWithCoder(Coder()), VelWbVecCircle());
}

TEST(Coder, WhatAnArchiveHoldsInAnUnsuitableFormLeavesTheDefault) {
  Coder archive;
  archive.encode("type", Array{1});
  archive.encode("ts", "abc");
  archive.encode("path", 5);
  archive.encode("x", Dictionary());
  const auto point = VelWbVecPoint::initWithCoder(archive);
  EXPECT_EQ(*point, VelWbVecPoint());
}

TEST(Coder, BytesThatAreNoArchiveGiveAnEmptyArchive) {
  const std::string nested[] = {
      std::string(1'000'000, '\x81'),           // arrays of one inside one another
      '\xA1' + std::string(1'000'000, '\x61'),  //
      std::string(1'000'000, '\x9F'),           // arrays without an end
      std::string(1'000'000, '\xBF'),           // maps without an end
      std::string(1'000'000, '\x7F'),           // texts in pieces in pieces
      std::string(1'000'000, '\x5F'),           // bytes in pieces in pieces
      std::string("\xA1\x61k") + std::string(1'000'000, '\x7F'),
      std::string("\xA1\x61k") + std::string(1'000'000, '\x5F'),
      std::string("\xA1\x61k") + std::string(1'000'000, '\xC1'),  // tags of tags
      std::string("\xA1") + std::string(1'000'000, '\x7F'),       // as a key
  };
  for (const std::string& bytes : nested) EXPECT_TRUE(Coder(bytes).values().empty());

  using std::string_view_literals::operator""sv;
  const std::string_view rows[] = {
      ""sv,
      "garbage"sv,
      "\0"sv,
      "\x01"sv,                                  // a number
      "\x83\x01\x02\x03"sv,                      // an array
      "\xA1"sv,                                  // a map that is broken off
      "\xA1\x61k"sv,                             //
      "\xA1\x61k\x01\x01"sv,                     // something behind the end
      "\xA1\x01\x01"sv,                          // a key that is no text
      "\xA1\x61k\xFF"sv,                         // an end of nothing
      "\xA1\x61k\x1C"sv,                         // reserved
      "\xBB\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"sv,  // more members than there is memory
      "\xA1\x61k\x9B\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"sv,
      "\xA1\x61k\x7B\x7F\xFF\xFF\xFF\xFF\xFF\xFF\xFFx"sv,
      "\xA1\x61k\x5B\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFFx"sv,
  };
  for (const std::string_view bytes : rows) {
    EXPECT_TRUE(Coder(bytes).values().empty()) << ::testing::PrintToString(bytes);
  }
}

TEST(Coder, EveryPrefixOfAnArchiveGivesAnEmptyArchive) {
  VelWbVecDiagram diagram;
  diagram.type = "diagram";
  diagram.path = Path{{1, 2, 3}, {0.1, 0.2}};
  diagram.points = Array{1, "a", nullptr, Dictionary{{"k", 0.1}}};
  Coder archive;
  diagram.encodeWithCoder(archive);
  const std::string bytes = archive.data();
  ASSERT_EQ(*VelWbVecDiagram::initWithCoder(Coder(bytes)), diagram);
  for (std::size_t length = 0; length < bytes.size(); ++length) {
    EXPECT_TRUE(Coder(std::string_view(bytes).substr(0, length)).values().empty()) << length;
  }
  EXPECT_TRUE(Coder(bytes + bytes).values().empty());
}

TEST(Coder, DamagedArchivesNeverCrash) {
  VelWbVecDiagram diagram;
  diagram.type = "diagram";
  diagram.path = Path{{1, 2, 3}, {0.1, 0.2}};
  diagram.points = Array{1, "a", nullptr, Dictionary{{"k", 0.1}}};
  Coder archive;
  diagram.encodeWithCoder(archive);
  const std::string sound = archive.data();
  std::mt19937 random(7);
  for (int round = 0; round < 20000; ++round) {
    std::string bytes = sound;
    for (unsigned changes = random() % 4 + 1; changes > 0; --changes) {
      bytes[random() % bytes.size()] = static_cast<char>(random());
    }
    const auto restored = VelWbVecDiagram::initWithCoder(Coder(bytes));
    ASSERT_EQ(*restored, *restored->copyWithZone());
  }
}

TEST(Coder, AnArchiveTakesTheNestingThatAValueMayHave) {
  const auto nested = [](std::size_t depth) {
    Value value = Array();
    for (std::size_t level = 1; level < depth; ++level) {
      Array outer;
      outer.push_back(std::move(value));
      value = std::move(outer);
    }
    return value;
  };
  EXPECT_EQ(throughBytes(nested(kMaximumValueDepth)), nested(kMaximumValueDepth));
  EXPECT_EQ(throughBytes(nested(kMaximumValueDepth + 1)), nullptr);
}

}  // namespace
}  // namespace VelWhiteBoard
