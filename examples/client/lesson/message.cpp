#include "lesson/message.h"

#include <utility>

namespace whiteboard {

using namespace VelWhiteBoard;

bool canBeSent(const std::string& page, const VectorPtr& vector) {
  return vector && vector->ID && VelWbVecSwitchPage::pageFromInfo(page);
}

bool isPassing(const VelWbBaseVector& vector) {
  return vector.type == VelWBVectorStrCursor || vector.type == VelWBVectorStrMagnifier;
}

std::string encodeMessage(const std::string& page, const VelWbBaseVector& vector) {
  std::string text = page + '\n';
  appendJSON(vector, text);
  return text;
}

std::optional<Message> decodeMessage(std::string_view text) {
  if (text.size() > kMessageSizeLimit) return std::nullopt;
  const std::size_t lineEnd = text.find('\n');
  if (lineEnd == std::string_view::npos) return std::nullopt;
  Message message;
  message.page = text.substr(0, lineEnd);
  // The page is looked at first: it is cheaper to refuse.
  if (!VelWbVecSwitchPage::pageFromInfo(message.page)) return std::nullopt;
  message.vector = modelWithJSON<VelWbBaseVector>(text.substr(lineEnd + 1));
  if (!message.vector || !message.vector->ID) return std::nullopt;
  return message;
}

}  // namespace whiteboard
