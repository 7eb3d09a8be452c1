#include "VelWhiteBoard/services/resources.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "VelWhiteBoard/foundation/records/property_table.h"

namespace VelWhiteBoard {

namespace {

/// What follows the last dot of the last path component; nothing when it has no dot.
std::string_view pathExtension(std::string_view path) {
  while (path.size() > 1 && path.ends_with('/')) path.remove_suffix(1);
  const auto slash = path.rfind('/');
  const std::string_view name = slash == std::string_view::npos ? path : path.substr(slash + 1);
  const auto dot = name.rfind('.');
  if (dot == std::string_view::npos) return {};
  return name.substr(dot + 1);
}

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::transform(lower.begin(), lower.end(), lower.begin(), [](char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a')
                                                : character;
  });
  return lower;
}

}  // namespace

const RecordClass& VelImageResource::ownClass() {
  static const RecordClass own = makeRecordClass<VelImageResource>("VelImageResource", nullptr);
  return own;
}

const RecordClass& VelWhiteBoardResource::ownClass() {
  static const RecordClass own =
      makeRecordClass<VelWhiteBoardResource>("VelWhiteBoardResource", nullptr);
  return own;
}

std::string VelWhiteBoardResource::title() const { return title_.value_or("白板"); }

void VelWhiteBoardResource::setTitle(std::optional<std::string> title) {
  title_ = std::move(title);
}

std::uint64_t VelWhiteBoardResource::getResourceType() const {
  constexpr std::uint64_t kImages = 0;
  constexpr std::uint64_t kDocument = 1;
  constexpr std::uint64_t kSlides = 2;
  if (!fileUrl) return kImages;
  const std::string extension = lowerCase(pathExtension(*fileUrl));
  if (extension.find("ppt") != std::string::npos) return kSlides;
  if (extension.find("pdf") != std::string::npos) return kDocument;
  return kImages;
}

std::int64_t VelWhiteBoardResource::getTotalPage() const {
  return images ? static_cast<std::int64_t>(images->size()) : 0;
}

std::map<std::string, const RecordClass*>
VelWhiteBoardResource::modelContainerPropertyGenericClass() {
  return containerClasses(ownClass());
}

}  // namespace VelWhiteBoard
