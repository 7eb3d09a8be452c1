#include "VelWhiteBoard/foundation/files/file_result.h"

#include <system_error>

namespace VelWhiteBoard {

std::string_view fileStepName(FileStep step) {
  switch (step) {
    case FileStep::kNone:
      return "nothing";
    case FileStep::kStatus:
      return "status";
    case FileStep::kOpen:
      return "open";
    case FileStep::kLock:
      return "lock";
    case FileStep::kRead:
      return "read";
    case FileStep::kProduce:
      return "produce";
    case FileStep::kWrite:
      return "write";
    case FileStep::kSync:
      return "sync";
    case FileStep::kRename:
      return "rename";
    case FileStep::kSyncFolder:
      return "sync folder";
    case FileStep::kMakeFolder:
      return "make folder";
    case FileStep::kRemove:
      return "remove";
    case FileStep::kList:
      return "list";
  }
  return "unknown step";
}

std::string FileResult::describe() const {
  if (ok()) return "success";
  std::string text(fileStepName(step));
  text += ' ';
  text += path;
  if (error != 0) {
    text += ": ";
    text += std::generic_category().message(error);
  }
  return text;
}

}  // namespace VelWhiteBoard
