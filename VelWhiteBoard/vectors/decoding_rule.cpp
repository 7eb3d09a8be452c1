// The rule that chooses the class of a vector from its dictionary.
#include <array>
#include <string_view>
#include <utility>

#include "VelWhiteBoard/foundation/records/assignment.h"
#include "VelWhiteBoard/foundation/records/dictionary_keys.h"
#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/media_lists.h"
#include "VelWhiteBoard/vectors/strokes.h"
#include "VelWhiteBoard/vectors/vector_defines.h"

namespace VelWhiteBoard {

namespace {

using NamedClass = std::pair<std::string_view, const RecordClass& (*)()>;

/// The class of each type name that has its own. Strokes come first because they are the most
/// frequent; otherwise the order has no effect, since the names are distinct.
constexpr auto kClassOfType = std::to_array<NamedClass>({
    {VelWBVectorStrLine, &VelWbVecLine::ownClass},
    {VelWBVectorStrMarkerPen, &VelWbVecLine::ownClass},
    {VelWBVectorStrEraser, &VelWbVecLine::ownClass},
    {VelWBVectorStrRemove, &VelWbVecRemove::ownClass},
    {VelWBVectorStrClear, &VelWbVecClear::ownClass},
    {VelWBVectorStrSwitchPage, &VelWbVecSwitchPage::ownClass},
    {VelWBVectorStrMediaList, &VelWbVecMediaList::ownClass},
    {VelWBVectorStrMedia, &VelWbVecVideo::ownClass},
    {VelWBVectorStrImage, &VelWbVecFile::ownClass},
    {VelWBVectorStrCursor, &VelWbVecFile::ownClass},
    {VelWBVectorStrText, &VelWbVecText::ownClass},
    {VelWBVectorStrCamera, &VelWbCaptureInfo::ownClass},
    {VelWBVectorStrOffset, &VelWbVecOffset::ownClass},
});

}  // namespace

const Property* propertyOfAnyVector(std::string_view name) {
  for (const auto& [type, ownClass] : kClassOfType) {
    if (const Property* found = PropertyFinder(ownClass()).find(name)) return found;
  }
  // A diagram with two more properties. Every other class has a subset of the properties of one
  // above.
  return PropertyFinder(VelWbVecCircle::ownClass()).find(name);
}

const RecordClass& vectorClassForDictionary(const DictionaryKeys& keys, const RecordClass& asked) {
  if (const auto type = keys.text("type")) {
    for (const auto& [name, ownClass] : kClassOfType) {
      if (*type == name) return ownClass();
    }
    // The presence of the key decides, not its value; likewise below.
    if (*type == VelWBVectorStrDiagram) {
      return keys.contains("radiusX") ? VelWbVecCircle::ownClass() : VelWbVecDiagram::ownClass();
    }
  }
  if (keys.contains("w")) return VelWbVecSquare::ownClass();
  if (keys.contains("x")) return VelWbVecPoint::ownClass();
  return asked;
}

const RecordClass& vectorClassForDictionary(const Dictionary& dictionary,
                                            const RecordClass& asked) {
  return vectorClassForDictionary(KeysOfDictionary(dictionary), asked);
}

}  // namespace VelWhiteBoard
