#include "window/page_export.h"

#include <QFileInfo>
#include <QObject>
#include <QSize>
#include <vector>

#include "drawing/export.h"

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

constexpr QSize kPageSize(1920, 1080);

/// What stays on a page, own ink included: no pointers and magnifiers.
vwb::VectorList lasting(Board& board, const Board::PageNumber& page) {
  vwb::VectorList entries = board.shownEntries(page);
  std::erase_if(entries,
                [&](const vwb::VectorPtr& each) { return board.storage().ignoreVector(*each); });
  return entries;
}

}  // namespace

QString savePages(Board& board, const QString& file) {
  const QString ending = QFileInfo(file).suffix().toLower();
  QString problem;
  bool isSaved = false;
  if (ending == "pdf") {
    std::vector<vwb::VectorList> pages;
    for (const Board::PageNumber& page : board.pages()) pages.push_back(lasting(board, page));
    isSaved = savePdf(file, pages, kPageSize, problem);
  } else if (ending == "png") {
    isSaved = savePng(file, lasting(board, board.number()), kPageSize, problem);
  } else if (ending == "svg") {
    isSaved = saveSvg(file, lasting(board, board.number()), kPageSize, problem);
  } else {
    return QObject::tr("The name of the file must end in .pdf, .png or .svg.");
  }
  return isSaved ? QString() : problem;
}

}  // namespace whiteboard
