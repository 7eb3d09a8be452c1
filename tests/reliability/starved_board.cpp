#include "tests/reliability/starved_board.h"

#include <algorithm>
#include <filesystem>

#include <gtest/gtest.h>

#include "tests/support/board_state.h"

namespace VelWhiteBoard {
namespace {

const Names& keys() {
  static const Names all = {"1_1", "1_2", "1_3"};
  return all;
}

/// The board that all copies are of; made once.
const BoardOnDisk& oldBoard() {
  static const BoardOnDisk* const old = [] {
    auto* const board = new BoardOnDisk();
    const auto storage = board->open();
    for (std::uint64_t number = 1; number <= keys().size(); ++number) {
      storage->switchPage(page(1, number, static_cast<double>(number)));
      for (double ts = 1; ts < 4; ++ts) storage->saveVector(line("old stroke", ts, ts, ts));
      storage->saveVector(box("old box", 0.1, 0.2, 0.3, 0.4));
      storage->saveVector(offset("old offset", 1));
      storage->saveVector(text("old text", "words that are too long for a short string"));
      storage->saveVector(image("old image", "url"));
      storage->saveVector(magnifier("old magnifier"));
    }
    saveNow(*storage);
    return board;
  }();
  return *old;
}

}  // namespace

StarvedBoard::StarvedBoard() {
  std::filesystem::copy(oldBoard().folder(), disk_.folder());
  open();
}

StarvedBoard::~StarvedBoard() {
  letGoOfQueue();
  if (storage_) settle(*storage_);
}

std::shared_ptr<VelWbVecSwitchPage> StarvedBoard::pageOf(std::uint64_t number) {
  return VelWhiteBoard::page(1, number, ++time_);
}

Value StarvedBoard::state() const {
  VectorList others = hands_;
  if (page_) others.push_back(page_);
  return stateOf(*storage_, others);
}

void StarvedBoard::expectNothingLost(const Names& cleared) {
  letGoOfQueue();
  if (storage_->currentPage()) {
    storage_->setHasNewChange(true);
    storage_->saveFile(true);
  }
  // An append of nothing writes any page but the current one.
  for (const auto& [key, list] : storage_->wholeVectorss()) {
    if (!key.empty())
      storage_->appendVectors({}, VelWhiteBoard::page(1, std::stoul(key.substr(2))));
  }
  settle(*storage_);
  const auto shown = storage_->currentPage();
  const std::string current = shown ? shown->pageInfo() : "";
  const auto whole = storage_->wholeVectorss();
  const auto snap = storage_->snapVectorss();
  for (const auto& [key, list] : whole) {
    if (key.empty()) continue;
    EXPECT_EQ(disk_.identifiers(wholeName(key)), identifiersOf(list)) << key;
    EXPECT_EQ(disk_.identifiers(snapName(key)), identifiersOf(snap.at(key))) << key;
  }
  for (const std::string& key : keys()) {
    const bool isCleared = std::find(cleared.begin(), cleared.end(), key) != cleared.end();
    const std::string log = wholeName(key);
    if (isCleared) continue;
    EXPECT_EQ(missing(oldBoard().identifiers(log), disk_.kept(log)), Names()) << key;
    if (whole.contains(key) || key == current) continue;
    EXPECT_EQ(disk_.contents(log), oldBoard().contents(log)) << key;
    EXPECT_EQ(disk_.contents(snapName(key)), oldBoard().contents(snapName(key))) << key;
  }
  EXPECT_EQ(missing(oldBoard().identifiers(kPagesName), disk_.kept(kPagesName)), Names());
  EXPECT_FALSE(disk_.hasTemporaries());
}

}  // namespace VelWhiteBoard
