#include "lesson/outbox.h"

#include <algorithm>
#include <array>
#include <random>
#include <utility>

#include "lesson/message.h"
#include "lesson/stroke_joining.h"

namespace whiteboard {

using namespace VelWhiteBoard;

namespace {

/// 128 random bits in hexadecimal, and a hyphen.
std::string randomPrefix() {
  constexpr std::array<char, 16> kDigits{'0', '1', '2', '3', '4', '5', '6', '7',
                                         '8', '9', 'a', 'b', 'c', 'd', 'e', 'f'};
  constexpr int kDigitsOfPrefix = 32;
  std::random_device source;
  std::uniform_int_distribution<std::size_t> digit(0, kDigits.size() - 1);
  std::string prefix;
  for (int i = 0; i < kDigitsOfPrefix; ++i) prefix += kDigits[digit(source)];
  return prefix + '-';
}

}  // namespace

Outbox::Outbox() : prefix_(randomPrefix()) {}

bool Outbox::add(const std::string& page, VectorPtr vector) {
  if (!canBeSent(page, vector)) return false;
  if (!waiting_.empty()) {
    const Waiting& last = waiting_.back();
    if (last.text.empty() && last.page == page && joinPieces(*last.vector, *vector)) return true;
  }
  waiting_.push_back({prefix_ + std::to_string(++count_), page, std::move(vector), {}, false});
  return true;
}

void Outbox::restore(OutgoingMessage message) {
  if (!restored_.insert(message.id).second) return;
  waiting_.push_back({std::move(message.id), {}, nullptr, std::move(message.text), true});
  ++restoredWaiting_;
}

std::optional<OutgoingMessage> Outbox::next() {
  if (waiting_.empty()) return std::nullopt;
  Waiting& first = waiting_.front();
  if (first.text.empty()) first.text = encodeMessage(first.page, *first.vector);
  return OutgoingMessage{first.id, first.text};
}

Outbox::Messages::const_iterator Outbox::find(std::string_view id) const {
  // Nearly always it is the first.
  return std::find_if(waiting_.begin(), waiting_.end(),
                      [&](const Waiting& message) { return message.id == id; });
}

std::optional<OwnVector> Outbox::contentOf(const Waiting& message) {
  if (message.vector) return OwnVector{message.page, message.vector};
  auto content = decodeMessage(message.text);
  if (!content) return std::nullopt;
  return OwnVector{std::move(content->page), std::move(content->vector)};
}

std::optional<OwnVector> Outbox::contentOf(std::string_view id) const {
  const auto found = find(id);
  return found == waiting_.end() ? std::nullopt : contentOf(*found);
}

std::vector<OwnVector> Outbox::restored() const {
  std::vector<OwnVector> all;
  for (const Waiting& message : waiting_) {
    if (!message.isRestored) continue;
    if (auto content = contentOf(message)) all.push_back(std::move(*content));
  }
  return all;
}

bool Outbox::remove(std::string_view id) {
  const auto found = find(id);
  if (found == waiting_.end()) return false;
  if (found->isRestored) --restoredWaiting_;
  waiting_.erase(found);
  return true;
}

bool Outbox::isOwn(std::string_view id) const {
  return id.starts_with(prefix_) || restored_.contains(std::string(id));
}

std::vector<OutgoingMessage> Outbox::all() const {
  std::vector<OutgoingMessage> messages;
  messages.reserve(waiting_.size());
  for (const Waiting& message : waiting_) {
    messages.push_back({message.id, message.text.empty()
                                        ? encodeMessage(message.page, *message.vector)
                                        : message.text});
  }
  return messages;
}

}  // namespace whiteboard
