#include "other_clients.h"

#include <fstream>
#include <iterator>
#include <optional>

#include "comparison.h"
#include "drawing/pictures.h"

namespace lesson {

namespace vwb = VelWhiteBoard;

namespace {

void comparePages(const Player& first, const Player& other, vwb::Size size, Agreement& agreement) {
  if (first.pages().size() != other.pages().size()) {
    agreement.differences.emplace_back("it visited another number of pages");
  }
  for (const PlayedPage& each : first.pages()) {
    const std::string key = each.page->pageInfo();
    const vwb::VectorList ours = first.board()->snapWithPage(*each.page);
    const vwb::VectorList theirs = other.board()->snapWithPage(*each.page);
    const std::string difference = firstDifference(ours, theirs);
    if (difference.empty()) {
      ++agreement.pages;
    } else {
      agreement.differences.push_back("page " + key + ": " + difference);
    }
    if (pixelsOf(ours, size) == pixelsOf(theirs, size)) {
      ++agreement.pictures;
    } else {
      agreement.differences.push_back("page " + key + ": the pictures differ");
    }
  }
}

void compareLogs(const Player& first, const Player& other, Agreement& agreement) {
  const auto ours = first.board()->wholeVectorss();
  auto theirs = other.board()->wholeVectorss();
  for (const auto& [key, log] : ours) {
    const std::string difference = firstDifference(log, theirs[key]);
    if (!difference.empty()) {
      agreement.differences.push_back("log of page " + key + ": " + difference);
    }
  }
}

/// The bytes of a file; none when it cannot be read, so that two unreadable files are no equal
/// ones.
std::optional<std::string> bytesOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  return std::string(std::istreambuf_iterator<char>(file), {});
}

void compareFiles(const vwb::VWBVectorStorage& first, const vwb::VWBVectorStorage& other,
                  Agreement& agreement) {
  vwb::VWBPathManager& paths = vwb::VWBPathManager::sharedManager();
  const auto ours = paths.filesAtPath(first.folder());
  const auto theirs = paths.filesAtPath(other.folder());
  if (!ours || ours != theirs) {
    agreement.differences.emplace_back("the folders hold other files");
    return;
  }
  for (const std::string& name : *ours) {
    const auto bytes = bytesOf(first.folder() + "/" + name);
    if (bytes && bytes == bytesOf(other.folder() + "/" + name)) {
      ++agreement.files;
    } else {
      agreement.differences.push_back("the files " + name + " differ");
    }
  }
}

void send(const std::string& text, Player& client) {
  client.play(vwb::modelWithJSON<vwb::VelWbBaseVector>(text));
}

}  // namespace

OtherClients::OtherClients(const std::string& home, bool fresh)
    : second_(openBoard(home + "/second-client", fresh)),
      doubled_(openBoard(home + "/doubled-client", fresh)) {}

void OtherClients::receive(vwb::VelWbBaseVector& record) {
  const bool isSwitch = vwb::recordCast<vwb::VelWbVecSwitchPage>(&record) != nullptr;
  if (!record.ID && !isSwitch) record.ID = vwb::VelWbVectorManager::shareManager().genID();
  const std::string text = vwb::modelToJSONString(record);
  send(text, second_);
  send(text, doubled_);
  send(text, doubled_);
}

void OtherClients::finish() {
  finishWriting(*second_.board());
  finishWriting(*doubled_.board());
}

Agreement OtherClients::compareSecond(const Player& first, vwb::Size size) const {
  Agreement agreement;
  comparePages(first, second_, size, agreement);
  compareLogs(first, second_, agreement);
  compareFiles(*first.board(), *second_.board(), agreement);
  return agreement;
}

Agreement OtherClients::compareDoubled(const Player& first, vwb::Size size) const {
  Agreement agreement;
  comparePages(first, doubled_, size, agreement);
  return agreement;
}

}  // namespace lesson
