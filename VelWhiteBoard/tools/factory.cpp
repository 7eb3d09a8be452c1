#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "VelWhiteBoard/foundation/values/truncation.h"
#include "VelWhiteBoard/services/vector_manager.h"
#include "VelWhiteBoard/tools/tool_defines.h"
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

/// The code of no type.
constexpr std::uint64_t kNoType = 0;

std::uint64_t typeOfTool(std::uint64_t tool, std::uint64_t version) {
  switch (tool) {
    case VelWBToolLine:
      return VelWBVectorTypeLine;
    case VelWBToolCursor:
      return VelWBVectorTypeCursor;
    case VelWBToolEraser:  // the one tool whose meaning depends on the version
      return version == 0 ? VelWBVectorTypeEraser : version == 1 ? VelWBVectorTypeRemove : kNoType;
    case VelWBToolText:
      return VelWBVectorTypeText;
    case VelWBToolRemove:
      return VelWBVectorTypeRemove;
    case VelWBToolImage:
      return VelWBVectorTypeImage;
    case VelWBToolCamera:
      return VelWBVectorTypeCamera;
    case VelWBToolClear:
      return VelWBVectorTypeClear;
    case VelWBToolMarkerPen:
      return VelWBVectorTypeMarkerPen;
    case VelWBToolMedia:
      return VelWBVectorTypeMedia;
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
  return sharedManager().genVectorWithType(VelWBVectorTypeDiagram, std::nullopt, kind);
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
    case VelWBVectorTypeCursor:
    case VelWBVectorTypeImage:
    case VelWBVectorTypeCamera:  // a file; a capture record arises only from a dictionary
      return newFile(std::move(name));
    case VelWBVectorTypeText:
      return newText(std::move(name), *this);
    case VelWBVectorTypeLine:
      return newStroke(std::move(name), lineColor(), lineWidthIndex(), _lineWidth(lineWidthIndex()),
                       wbBaseSize());
    case VelWBVectorTypeEraser:
      return newStroke(std::move(name), std::nullopt, eraserWidthIndex(),
                       _eraserWidth(eraserWidthIndex()), wbBaseSize());
    case VelWBVectorTypeMarkerPen:
      return newStroke(std::move(name), markerColor(), markerWidthIndex(),
                       _markerWidth(markerWidthIndex()), wbBaseSize());
    case VelWBVectorTypeMicPhone:
    case VelWBVectorTypeInstruction:
      return VelWbBaseVector::initWithType(std::move(name));
    case VelWBVectorTypeMedia:
      return VelWbVecVideo::initWithType(std::move(name));
    case VelWBVectorTypeClear:
      return VelWbVecClear::initWithType(std::move(name));
    case VelWBVectorTypeRemove:
      return VelWbVecRemove::initWithType(std::move(name));
    case VelWBVectorTypeSwitchPage:
      return VelWbVecSwitchPage::initWithType(std::move(name));
    case VelWBVectorTypeMagnifier:
      return VelWbVecSquare::initWithType(std::move(name));
    case VelWBVectorTypeDiagram:
      return newDiagram(std::move(name), kind, *this);
    case VelWBVectorTypeMediaList:
      return VelWbVecMediaList::initWithType(std::move(name));
    case VelWBVectorTypeOffset:
      return VelWbVecOffset::initWithType(std::move(name));
    default:
      return nullptr;
  }
}

}  // namespace VelWhiteBoard
