#include "board.h"

#include <stdlib.h>  // mkdtemp is not in <cstdlib>

#include "cannot_run.h"

namespace lesson {

namespace vwb = VelWhiteBoard;

namespace {

/// When the recorded lessons were created. A lesson keeps its value however often it is opened;
/// with another one, identifiers would repeat.
constexpr double kLessonCreated = 1'700'000'000;

}  // namespace

void startUp(vwb::Size size) {
  vwb::VWBToolManager& tools = vwb::VWBToolManager::sharedManager();
  tools.setVersion(0);
  tools.setWbSize(size);
  tools.setWbBaseSize({400, 225});
  vwb::VelWbVectorManager& clock = vwb::VelWbVectorManager::shareManager();
  const double now = vwb::currentTime();
  clock.setUserID("lesson");
  clock.setCourseCreateTs(kLessonCreated, now, now);
  clock.setIsRunning(true);
}

std::string boardHome(const std::optional<std::string>& named) {
  if (named) {
    prepareFolder(*named);
    return *named;
  }
  std::string folder = vwb::VWBPathManager::sharedManager().tempDirectory() + "/lesson-XXXXXX";
  if (mkdtemp(folder.data()) == nullptr) throw CannotRun("cannot make the folder " + folder);
  return folder;
}

void prepareFolder(const std::string& folder) {
  vwb::VWBPathManager& paths = vwb::VWBPathManager::sharedManager();
  if (!paths.createFolderWithPath(folder)) throw CannotRun("cannot make the folder " + folder);
  // The board would not tell: its writes fail silently. So one file is tried beforehand.
  const std::string trial = folder + "/.lesson-trial";
  const bool written = paths.createFile(trial);
  if (!paths.removeFolderOrFile(trial) || !written) {
    throw CannotRun("cannot write into the folder " + folder);
  }
}

BoardPtr openBoard(const std::string& home, bool fresh) {
  prepareFolder(home);
  BoardPtr board = vwb::VWBVectorStorage::initWithPath(home);
  const auto files = vwb::VWBPathManager::sharedManager().filesAtPath(board->folder(), ".plist");
  if (files && !files->empty()) {
    if (!fresh) {
      throw CannotRun("the board " + board->folder() +
                      " already holds pages; --fresh deletes them first");
    }
    board->clear();
  }
  prepareFolder(board->folder());
  board->setIgnoreChanges(false);
  return board;
}

void finishWriting(vwb::VWBVectorStorage& board) {
  board.saveFile(true);
  board.saveQueue()->waitUntilAllOperationsAreFinished();
}

}  // namespace lesson
