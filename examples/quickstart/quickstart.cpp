// The path of one pen stroke: from the tool that the user picked to the board's files, and back.
#include <VelWhiteBoard/VelWhiteBoard.h>
#include <iostream>

using namespace VelWhiteBoard;

int main() {
  // Start-up, in this order: the drawing side, the lesson's clock, the board and its first page.
  VWBToolManager& tools = VWBToolManager::sharedManager();
  tools.setVersion(0);
  tools.setWbSize({1280, 720});     // the board as this window shows it
  tools.setWbBaseSize({400, 225});  // the board for which the widths are meant
  VelWbVectorManager& clock = VelWbVectorManager::shareManager();
  clock.setUserID("u1");
  const double created = 1700000000;  // stored with the lesson, so the same each time; never "now"
  const double now = currentTime();
  clock.setCourseCreateTs(created, now, now);  // what the server and we call now
  clock.setIsRunning(true);

  const std::string home = VWBPathManager::sharedManager().tempDirectory() + "/quickstart";
  const auto board = VWBVectorStorage::initWithPath(home);
  board->clear();                  // what an earlier run left
  board->setIgnoreChanges(false);  // from here on, everything is recorded
  const auto page = recordPointerCast<VelWbVecSwitchPage>(
      VWBToolManager::genVectorWithType(VelWBVectorTypeSwitchPage));
  page->WBID = 7;
  page->curPage = 1;
  board->switchPage(page);

  // The pen goes down, moves and comes up. All pieces of the stroke share the first one's ID.
  tools.setTool(VelWBToolLine);
  const double penDown = clock.genTs();
  std::optional<std::string> ID;
  VectorPtr stroke;
  for (int sample = 0; sample <= 8; ++sample) {
    const auto piece =
        recordPointerCast<VelWbVecLine>(VWBToolManager::genVectorWithTool(tools.tool(), ID));
    VWBToolManager::convertPoint({400.0 + 60 * sample, 360.0 - sample * sample}, *piece);
    piece->ts = penDown + 0.016 * sample;  // when the pen was there
    piece->end = sample == 8;
    const std::string text = modelToJSONString(*piece);
    std::cout << text << '\n';  // this goes to all participants, in one order ...
    const VectorPtr received = modelWithJSON<VelWbBaseVector>(text);
    board->saveVector(received);     // ... and each saves what arrives, its author too
    if (!stroke) stroke = received;  // later pieces are folded into the first
    ID = piece->ID;
  }

  // The files are written in the background; then another storage finds the stroke in them.
  board->saveFile(true);
  board->saveQueue()->waitUntilAllOperationsAreFinished();
  const auto reopened = VWBVectorStorage::initWithPath(home);
  const VectorList entries = reopened->switchPage(reopened->latestPage());
  const bool same = entries.size() == 1 && *entries.front() == *stroke;
  std::cout << reopened->folder() << (same ? " holds the stroke.\n" : " lost the stroke!\n");
  if (!std::cout.flush()) std::cerr << "quickstart: cannot write to standard output\n";
  return same && std::cout ? 0 : 1;
}
