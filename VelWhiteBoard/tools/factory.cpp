#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "VelWhiteBoard/foundation/values/truncation.h"
#include "VelWhiteBoard/services/vector_manager.h"
#include "VelWhiteBoard/tools/tool_manager.h"
#include "VelWhiteBoard/vectors/base_vector.h"
#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"
#include "VelWhiteBoard/vectors/diagrams.h"
#include "VelWhiteBoard/vectors/media_lists.h"
#include "VelWhiteBoard/vectors/strokes.h"
#include "VelWhiteBoard/vectors/vector_defines.h"

namespace VelWhiteBoard {
namespace {

/// The type codes as `VelWbVectorDefines::vectorType` numbers them, and 0 for no type.
enum TypeCode : std::uint64_t {
  kNoType = 0,
  kCursor = 1,
  kText = 2,
  kLine = 3,
  kEraser = 4,
  kImage = 5,
  kCamera = 6,
  kMicPhone = 7,
  kMedia = 8,
  kInstruction = 9,
  kClear = 10,
  kRemove = 11,
  kSwitchPage = 12,
  kMarkerPen = 13,
  kMagnifier = 14,
  kDiagram = 15,
  kMediaList = 16,
  kOffset = 17,
};

TypeCode typeOfTool(std::uint64_t tool, std::uint64_t version) {
  switch (tool) {
    case 1:
      return kLine;
    case 2:
      return kCursor;
    case 3:  // the one tool whose meaning depends on the version
      return version == 0 ? kEraser : version == 1 ? kRemove : kNoType;
    case 4:
      return kText;
    case 6:
      return kRemove;
    case 7:
      return kImage;
    case 8:
      return kCamera;
    case 9:
      return kClear;
    case 11:
      return kMarkerPen;
    case 13:
      return kMedia;
    default:
      return kNoType;
  }
}

std::shared_ptr<VelWbVecFile> newFile(std::optional<std::string> name) {
  auto file = VelWbVecFile::initWithType(std::move(name));
  file->url = "";
  file->rotation = 0.0;
  return file;
}

std::shared_ptr<VelWbVecText> newText(std::optional<std::string> name,
                                      const VWBToolManager& settings) {
  auto text = VelWbVecText::initWithType(std::move(name));
  text->fontSize = settings.textFontSize();
  text->color = settings.textColor();
  text->bgColor = settings.textBgColor();
  if (settings.version() == 1) text->fontName = "Arial";
  text->w = 0.2;
  text->h = 0.1;
  // The current size, unlike strokes and diagrams, which take the base size: text is laid out for
  // the board on which it is typed.
  text->ps = truncatedToSigned(settings.wbSize().width);
  return text;
}

std::shared_ptr<VelWbVecLine> newStroke(std::optional<std::string> name,
                                        std::optional<std::string> color, std::int64_t widthIndex,
                                        double width, Size baseSize) {
  auto stroke = VelWbVecLine::initWithType(std::move(name));
  stroke->color = std::move(color);
  stroke->widthIndex = widthIndex;
  stroke->pixel = truncatedToSigned(width);
  stroke->ps = truncatedToSigned(baseSize.width);
  return stroke;
}

std::shared_ptr<VelWbVecDiagram> emptyDiagram(std::optional<std::string> name,
                                              const std::optional<std::string>& kind) {
  if (kind != VelWBVectorStrKindCircle && kind != VelWBVectorStrKindEllipse) {
    return VelWbVecDiagram::initWithType(std::move(name));
  }
  auto circle = VelWbVecCircle::initWithType(std::move(name));
  circle->radiusX = 0.0;
  circle->radiusY = 0.0;
  return circle;
}

std::shared_ptr<VelWbVecDiagram> newDiagram(std::optional<std::string> name,
                                            const std::optional<std::string>& kind,
                                            const VWBToolManager& settings) {
  auto diagram = emptyDiagram(std::move(name), kind);
  diagram->kind = kind;
  diagram->points.emplace();
  diagram->color = settings.diagramColor();
  diagram->pixel = truncatedToSigned(settings._lineWidth(settings.diagramWidthIndex()));
  diagram->ps = truncatedToSigned(settings.wbBaseSize().width);
  return diagram;
}

}  // namespace

// ---- By tool ----

VectorPtr VWBToolManager::genVectorWithTool(std::uint64_t tool) {
  return genVectorWithTool(tool, std::nullopt);
}

VectorPtr VWBToolManager::genVectorWithTool(std::uint64_t tool,
                                            const std::optional<std::string>& ID) {
  return sharedManager()._genVectorWithTool(tool, ID);
}

VectorPtr VWBToolManager::_genVectorWithTool(std::uint64_t tool,
                                             const std::optional<std::string>& ID) {
  return genVectorWithType(typeOfTool(tool, version()), ID, std::nullopt);
}

// ---- By type ----

VectorPtr VWBToolManager::genVectorWithType(std::uint64_t type) {
  return sharedManager().genVectorWithType(type, std::nullopt, std::nullopt);
}

VectorPtr VWBToolManager::genVectorWithType(std::uint64_t type,
                                            const std::optional<std::string>& ID) {
  return sharedManager().genVectorWithType(type, ID, std::nullopt);
}

VectorPtr VWBToolManager::genDiagramWithKind(const std::optional<std::string>& kind) {
  return sharedManager().genVectorWithType(kDiagram, std::nullopt, kind);
}

VectorPtr VWBToolManager::genVectorWithType(std::uint64_t type,
                                            const std::optional<std::string>& ID,
                                            const std::optional<std::string>& kind) {
  VectorPtr vector = unstampedVector(type, kind);
  // The stamps are taken even when no vector is made.
  auto& stamps = VelWbVectorManager::shareManager();
  const double ts = stamps.genTs();
  std::string ownID = ID ? *ID : stamps.genID();
  if (!vector) return nullptr;
  vector->ts = ts;
  vector->ID = std::move(ownID);
  return vector;
}

VectorPtr VWBToolManager::unstampedVector(std::uint64_t type,
                                          const std::optional<std::string>& kind) const {
  auto name = VelWbVectorDefines::vectorType(type);
  switch (type) {
    case kCursor:
    case kImage:
    case kCamera:  // a file, not a capture record: that one arises only from a dictionary
      return newFile(std::move(name));
    case kText:
      return newText(std::move(name), *this);
    case kLine:
      return newStroke(std::move(name), lineColor(), lineWidthIndex(), _lineWidth(lineWidthIndex()),
                       wbBaseSize());
    case kEraser:
      return newStroke(std::move(name), std::nullopt, eraserWidthIndex(),
                       _eraserWidth(eraserWidthIndex()), wbBaseSize());
    case kMarkerPen:
      return newStroke(std::move(name), markerColor(), markerWidthIndex(),
                       _markerWidth(markerWidthIndex()), wbBaseSize());
    case kMicPhone:
    case kInstruction:
      return VelWbBaseVector::initWithType(std::move(name));
    case kMedia:
      return VelWbVecVideo::initWithType(std::move(name));
    case kClear:
      return VelWbVecClear::initWithType(std::move(name));
    case kRemove:
      return VelWbVecRemove::initWithType(std::move(name));
    case kSwitchPage:
      return VelWbVecSwitchPage::initWithType(std::move(name));
    case kMagnifier:
      return VelWbVecSquare::initWithType(std::move(name));
    case kDiagram:
      return newDiagram(std::move(name), kind, *this);
    case kMediaList:
      return VelWbVecMediaList::initWithType(std::move(name));
    case kOffset:
      return VelWbVecOffset::initWithType(std::move(name));
    default:
      return nullptr;
  }
}

}  // namespace VelWhiteBoard
