#include "file_name.h"

#include <charconv>
#include <system_error>

namespace board_check {

using namespace VelWhiteBoard;

namespace {

constexpr std::string_view kWholePrefix = "whole_";
constexpr std::string_view kSnapPrefix = "snap_";
constexpr std::string_view kListSuffix = ".plist";
constexpr std::string_view kSetAside = ".damaged";
constexpr std::string_view kTemporary = ".tmp";

/// A decimal number, written as the library writes it.
template <class Number>
std::optional<Number> numberIn(std::string_view text) {
  Number number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  const bool isCanonical = error == std::errc() && std::to_string(number) == text;
  return isCanonical ? std::optional(number) : std::nullopt;
}

/// The numbers of "12_3".
struct Key {
  std::int64_t board;
  std::uint64_t page;
};

std::optional<Key> keyIn(std::string_view text) {
  const std::size_t bar = text.find('_');
  if (bar == std::string_view::npos) return std::nullopt;
  const auto board = numberIn<std::int64_t>(text.substr(0, bar));
  const auto page = numberIn<std::uint64_t>(text.substr(bar + 1));
  if (!board || !page) return std::nullopt;
  return Key{*board, *page};
}

/// What stands behind ".plist"; nullopt when no file of a board has that.
std::optional<FileName> roleIn(std::string_view ending) {
  FileName name;
  if (ending.empty()) return name;
  if (ending.starts_with(kSetAside)) {
    ending.remove_prefix(kSetAside.size());
    name.role = FileName::Role::kSetAside;
    name.number = 1;
    if (ending.empty()) return name;
    const auto number =
        ending.front() == '-' ? numberIn<std::uint64_t>(ending.substr(1)) : std::nullopt;
    if (!number || *number < 2) return std::nullopt;
    name.number = *number;
    return name;
  }
  if (!ending.starts_with(kTemporary)) return std::nullopt;
  ending.remove_prefix(kTemporary.size());
  name.role = FileName::Role::kTemporary;
  if (ending.empty()) return name;
  const std::size_t bar = ending.rfind('-');
  const bool isNumbered = ending.front() == '-' && bar > 0 &&
                          numberIn<std::uint64_t>(ending.substr(1, bar - 1)) &&
                          numberIn<std::uint64_t>(ending.substr(bar + 1));
  return isNumbered ? std::optional(name) : std::nullopt;
}

}  // namespace

std::optional<FileName> parseFileName(std::string_view name) {
  const std::size_t dot = name.find(kListSuffix);
  if (dot == std::string_view::npos) return std::nullopt;
  auto parsed = roleIn(name.substr(dot + kListSuffix.size()));
  if (!parsed) return std::nullopt;
  std::string_view stem = name.substr(0, dot);
  if (name.starts_with(kPageListName)) return parsed;
  if (stem.starts_with(kWholePrefix)) {
    parsed->list = FileName::List::kWhole;
    stem.remove_prefix(kWholePrefix.size());
  } else if (stem.starts_with(kSnapPrefix)) {
    parsed->list = FileName::List::kSnap;
    stem.remove_prefix(kSnapPrefix.size());
  } else {
    return std::nullopt;
  }
  if (!keyIn(stem)) return std::nullopt;
  parsed->key = stem;
  return parsed;
}

std::shared_ptr<VelWbVecSwitchPage> pageOfKey(const std::string& key) {
  auto page = VelWbVecSwitchPage::initWithType("switchPage");
  if (const auto numbers = keyIn(key)) {
    page->WBID = numbers->board;
    page->curPage = numbers->page;
  }
  return page;
}

std::string wholeName(const std::string& key) {
  return std::string(kWholePrefix) + key + std::string(kListSuffix);
}

std::string snapName(const std::string& key) {
  return std::string(kSnapPrefix) + key + std::string(kListSuffix);
}

}  // namespace board_check
