// A client of the installed package: one stroke from JSON text into a board's files and back, and
// the things that a library built with hidden symbols most easily breaks: casts between record
// classes and exceptions that cross its border.
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <VelWhiteBoard/foundation/record.h>          // without its room ...
#include <VelWhiteBoard/foundation/records/record.h>  // ... and with it
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <optional>
#include <stdexcept>
#include <string>

namespace vwb = VelWhiteBoard;

namespace {

void require(bool right, const char* what) {
  if (!right) {
    std::fprintf(stderr, "consumer: failed: %s\n", what);
    std::exit(1);
  }
}

std::string newFolder() {
  std::string name = (std::filesystem::temp_directory_path() / "vwb-consumer-XXXXXX").string();
  require(mkdtemp(name.data()) != nullptr, "a temporary folder");
  return name;
}

void aStrokeComesBackFromItsFiles(const std::string& folder) {
  const auto page = std::make_shared<vwb::VelWbVecSwitchPage>();
  page->WBID = 7;
  page->curPage = 1;
  const vwb::VectorPtr piece = vwb::modelWithJSON<vwb::VelWbBaseVector>(
      R"({"type":"line","ID":"u1_1","ts":1.5,"x":0.1,"y":0.2,"path":[[0.1,0.2,1.5]]})");
  require(std::dynamic_pointer_cast<vwb::VelWbVecLine>(piece) != nullptr, "a line is a line");
  {
    const auto storage = vwb::VWBVectorStorage::initWithPath(folder);
    storage->setIgnoreChanges(false);
    storage->switchPage(page);
    storage->saveVector(piece);
    storage->saveFile(true);
    storage->saveQueue()->waitUntilAllOperationsAreFinished();
  }
  const auto storage = vwb::VWBVectorStorage::initWithPath(folder);
  const vwb::VectorList snap = storage->snapWithPage(*page);
  require(snap.size() == 1, "one stroke comes back");
  require(snap.front()->isEqual(*piece), "it is equal");
}

void exceptionsReachTheClient() {
  vwb::VWBToolManager& tools = vwb::VWBToolManager::sharedManager();
  bool caught = false;
  try {
    tools.setTextColor(std::nullopt);
  } catch (const std::invalid_argument&) {
    caught = true;
  }
  require(caught, "no text colour is an invalid argument");
}

}  // namespace

int main() {
  const std::string folder = newFolder();
  aStrokeComesBackFromItsFiles(folder);
  exceptionsReachTheClient();
  std::filesystem::remove_all(folder);
  return 0;
}
