#include "fuzz/vectors/vectors.h"

#include <array>
#include <bit>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>
#include <utility>

#include "VelWhiteBoard/foundation/records/assignment.h"
#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/media_lists.h"
#include "VelWhiteBoard/vectors/strokes.h"
#include "VelWhiteBoard/vectors/vector_defines.h"

namespace fuzz {

namespace {

using namespace VelWhiteBoard;

const RecordClass& pickClass(Decisions& decisions) {
  static const std::array classes{
      &VelWbVecLine::ownClass(),     &VelWbVecSquare::ownClass(),     &VelWbVecText::ownClass(),
      &VelWbVecRemove::ownClass(),   &VelWbVecClear::ownClass(),      &VelWbVecFile::ownClass(),
      &VelWbVecVideo::ownClass(),    &VelWbVecDiagram::ownClass(),    &VelWbVecCircle::ownClass(),
      &VelWbVecPoint::ownClass(),    &VelWbVecMediaList::ownClass(),  &VelWbVecOffset::ownClass(),
      &VelWbCaptureInfo::ownClass(), &VelWbVecSwitchPage::ownClass(), &VelWbBaseVector::ownClass(),
  };
  return *classes[decisions.below(classes.size())];
}

Value pickType(Decisions& decisions) {
  constexpr std::array<std::string_view, 13> kTypes{
      VelWBVectorStrLine,    VelWBVectorStrMarkerPen, VelWBVectorStrRemove, VelWBVectorStrClear,
      VelWBVectorStrCursor,  VelWBVectorStrCamera,    VelWBVectorStrText,   VelWBVectorStrMagnifier,
      VelWBVectorStrDiagram, VelWBVectorStrImage,     VelWBVectorStrMedia,  VelWBVectorStrMediaList,
      VelWBVectorStrOffset};
  const std::size_t choice = decisions.below(kTypes.size() + 2);
  if (choice < kTypes.size()) return std::string(kTypes[choice]);
  return choice == kTypes.size() ? Value() : Value(decisions.bytes(4));
}

/// Few identifiers, so that vectors meet.
Value pickIdentifier(Decisions& decisions) {
  constexpr std::array<std::string_view, 5> kIdentifiers{"a", "b", "c", "d", ""};
  const std::size_t choice = decisions.below(kIdentifiers.size() + 2);
  if (choice < kIdentifiers.size()) return std::string(kIdentifiers[choice]);
  return choice == kIdentifiers.size() ? Value() : Value(decisions.bytes(4));
}

double pickNumber(Decisions& decisions) {
  constexpr std::array kNumbers{0.0,  1.0,   -0.25, 0.5,  -10.0, 2.0,
                                -1.0, 400.0, 1e300, -0.0, 1e-7,  1700000000.125};
  const std::size_t choice = decisions.below(kNumbers.size() + 2);
  if (choice < kNumbers.size()) return kNumbers[choice];
  if (choice == kNumbers.size()) return decisions.byte();
  return std::bit_cast<double>(decisions.eightBytes());  // NaN and the infinities among them
}

Value makePath(Decisions& decisions) {
  Array positions;
  for (std::size_t count = decisions.below(5); count > 0; --count) {
    Array position;
    // Mostly rows of three, as they are in life.
    const std::size_t numbers = decisions.flip() ? 3 : decisions.below(5);
    while (position.size() < numbers) position.emplace_back(pickNumber(decisions));
    positions.emplace_back(std::move(position));
  }
  return positions;
}

// Depth is bounded by the caller.
Value makeFree(Decisions& decisions, int depth) {
  switch (decisions.below(depth > 0 ? 8 : 6)) {
    case 0:
      return decisions.eightBytes();
    case 1:
      return static_cast<std::int64_t>(decisions.eightBytes());
    case 2:
      return pickNumber(decisions);
    case 3:
      return decisions.bytes(8);
    case 4:
      return decisions.flip();
    case 5:
      return nullptr;
    case 6: {
      Array array;
      for (std::size_t count = decisions.below(4); count > 0; --count) {
        array.push_back(makeFree(decisions, depth - 1));
      }
      return array;
    }
    default: {
      Dictionary members;
      for (std::size_t count = decisions.below(4); count > 0; --count) {
        members[decisions.bytes(4)] = makeFree(decisions, depth - 1);
      }
      return members;
    }
  }
}

Value makeValue(PropertyKind kind, Decisions& decisions) {
  if (decisions.below(16) == 15) return makeFree(decisions, 2);  // of any kind
  switch (kind) {
    case PropertyKind::text:
      return decisions.bytes(12);
    case PropertyKind::real:
      return pickNumber(decisions);
    case PropertyKind::path:
      return makePath(decisions);
    case PropertyKind::array:
    case PropertyKind::records:
      return Array{makeFree(decisions, 3), makeFree(decisions, 1)};
    default:
      return makeFree(decisions, 0);
  }
}

}  // namespace

VectorPtr makeVector(Decisions& decisions) {
  const RecordClass& ownClass = pickClass(decisions);
  auto record = ownClass.create();
  for (const Property& property : ownClass.properties) {
    if (property.name == "type") {
      assign(property, *record, pickType(decisions));
    } else if (property.name == "ID" || property.name == "rmID") {
      assign(property, *record, pickIdentifier(decisions));
    } else if (decisions.flip()) {
      assign(property, *record, makeValue(property.kind, decisions));
    }
  }
  return std::static_pointer_cast<VelWbBaseVector>(std::move(record));
}

std::shared_ptr<VelWbVecSwitchPage> makePage(Decisions& decisions) {
  constexpr std::array<std::int64_t, 4> kBoards{7, 0, -1, std::numeric_limits<std::int64_t>::min()};
  constexpr std::array<std::uint64_t, 4> kPages{1, 2, 0, std::numeric_limits<std::uint64_t>::max()};
  auto page = VelWbVecSwitchPage::initWithType(std::string(VelWBVectorStrSwitchPage));
  const std::uint8_t choice = decisions.byte();
  page->WBID = kBoards[choice % 4U];
  page->curPage = kPages[choice / 4U % 4U];
  page->resource = choice / 16U % 2U;
  page->ts = pickNumber(decisions);
  if (decisions.flip()) page->url = decisions.bytes(8);
  if (decisions.below(8) == 7) page->type = pickType(decisions).is_string() ? "line" : "";
  return page;
}

}  // namespace fuzz
