#include "lesson/unsent_file.h"

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstddef>
#include <filesystem>
#include <fstream>
#include <optional>
#include <system_error>
#include <utility>

#include "lesson/message.h"

namespace whiteboard {

using VelWhiteBoard::Value;

namespace {

std::string textOf(const Value& object, const char* key) {
  const auto found = object.find(key);
  return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

std::optional<OutgoingMessage> readLine(const std::string& line) {
  const Value object = Value::parse(line, nullptr, false);
  if (!object.is_object()) return std::nullopt;
  OutgoingMessage message{textOf(object, "id"),
                          textOf(object, "page") + '\n' + textOf(object, "vector")};
  // The identifier becomes a line of the network's protocol.
  const bool isPlain = message.id.find_first_not_of("0123456789abcdef-") == std::string::npos;
  if (message.id.empty() || !isPlain || !decodeMessage(message.text)) return std::nullopt;
  return message;
}

std::string lineOf(const OutgoingMessage& message) {
  const std::size_t pageEnd = message.text.find('\n');
  const Value object = {{"id", message.id},
                        {"page", message.text.substr(0, pageEnd)},
                        {"vector", message.text.substr(pageEnd + 1)}};
  return object.dump(-1, ' ', false, Value::error_handler_t::replace) + '\n';
}

}  // namespace

std::vector<OutgoingMessage> readUnsent(const std::string& path) {
  std::vector<OutgoingMessage> messages;
  if (path.empty()) return messages;
  std::ifstream file(path, std::ios::binary);
  for (std::string line; std::getline(file, line);) {
    if (auto message = readLine(line)) messages.push_back(std::move(*message));
  }
  return messages;
}

bool writeUnsent(const std::string& path, const std::vector<OutgoingMessage>& messages) {
  if (path.empty()) return true;
  std::error_code failure;
  if (messages.empty()) {
    std::filesystem::remove(path, failure);
    return !failure;
  }
  const std::string unfinished = path + ".new";
  std::ofstream file(unfinished, std::ios::binary | std::ios::trunc);
  for (const OutgoingMessage& message : messages) file << lineOf(message);
  file.close();
  if (file) std::filesystem::rename(unfinished, path, failure);
  if (file && !failure) return true;
  std::filesystem::remove(unfinished, failure);
  return false;
}

}  // namespace whiteboard
