// The rule that chooses the class of a vector from its dictionary.
#include <algorithm>
#include <array>
#include <set>
#include <string_view>
#include <utility>
#include <vector>

#include "VelWhiteBoard/foundation/dictionary_keys.h"
#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/media_lists.h"
#include "VelWhiteBoard/vectors/strokes.h"
#include "VelWhiteBoard/vectors/vector_defines.h"

namespace VelWhiteBoard {

namespace {

using NamedClass = std::pair<std::string_view, const RecordClass& (*)()>;

/// The class of each type name that has one of its own. Strokes first: they are by far the most.
/// The names are distinct, so the order decides nothing else.
constexpr std::array<NamedClass, 13> kClassOfType{{
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
}};

/// The names of all properties of all vectors, each once, in byte order.
std::vector<std::string_view> namesOfAllProperties() {
  std::set<std::string_view> names;
  const auto addAll = [&names](const RecordClass& each) {
    for (const Property& property : each.properties) names.insert(property.name);
  };
  for (const auto& [type, ownClass] : kClassOfType) addAll(ownClass());
  addAll(VelWbVecCircle::ownClass());  // a diagram with two properties more; boxes are less
  return {names.begin(), names.end()};
}

}  // namespace

bool isKeyOfAnyVector(std::string_view key) {
  static const std::vector<std::string_view> names = namesOfAllProperties();
  return std::binary_search(names.begin(), names.end(), key);
}

const RecordClass& vectorClassForDictionary(const DictionaryKeys& keys, const RecordClass& asked) {
  if (const auto type = keys.text("type")) {
    for (const auto& [name, ownClass] : kClassOfType) {
      if (*type == name) return ownClass();
    }
    // Whether the key is there decides, not what it holds; likewise below.
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
