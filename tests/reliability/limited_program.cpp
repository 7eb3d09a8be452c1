// A client that the system gives little. Started by limits_test.cpp and held_lock_test.cpp:
//
//   limited_program handles DIRECTORY PAGES HANDLES   shows and draws on every page, with so many
//                                                     handles
//   limited_program none DIRECTORY                    shows page 1 while there is no handle left
//   limited_program memory DIRECTORY ENTRIES          shows page 1 while memory runs out
//   limited_program save DIRECTORY                    draws, saves, and returns from main
//
// Exits with 0, or says what went wrong and exits with 1.
#include <cstdint>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <memory>
#include <new>
#include <string>
#include <sys/resource.h>
#include <unistd.h>
#include <vector>

#include "VelWhiteBoard/storage/vector_storage.h"
#include "VelWhiteBoard/vectors/boxes.h"
#include "VelWhiteBoard/vectors/commands.h"

namespace VelWhiteBoard {
namespace {

using StoragePtr = std::shared_ptr<VWBVectorStorage>;

struct Failure {
  std::string text;
};

void expect(bool isSo, const std::string& what) {
  if (!isSo) throw Failure{what};
}

VectorPtr text(const std::string& id) {
  auto vector = VelWbVecText::initWithType("text");
  vector->ID = id;
  return vector;
}

std::shared_ptr<VelWbVecSwitchPage> page(std::uint64_t number) {
  auto page = VelWbVecSwitchPage::initWithType("switchPage");
  page->WBID = 1;
  page->curPage = number;
  page->ts = static_cast<double>(number);
  return page;
}

StoragePtr open(const std::string& directory) {
  auto storage = VWBVectorStorage::initWithPath(directory);
  storage->setIgnoreChanges(false);
  return storage;
}

void saveNow(VWBVectorStorage& storage) {
  storage.saveFile(true);
  storage.saveQueue()->waitUntilAllOperationsAreFinished();
}

/// An upper bound for what the process may take, as long as this lives.
class Limit {
 public:
  Limit(__rlimit_resource resource, rlim_t bound) : resource_(resource) {
    ::getrlimit(resource_, &before_);
    rlimit lower = before_;
    lower.rlim_cur = bound;
    ::setrlimit(resource_, &lower);
  }
  ~Limit() { ::setrlimit(resource_, &before_); }
  Limit(const Limit&) = delete;
  Limit& operator=(const Limit&) = delete;

 private:
  __rlimit_resource resource_;
  rlimit before_{};
};

void handles(const std::string& directory, std::uint64_t pages, rlim_t count) {
  const Limit limit(RLIMIT_NOFILE, count);
  const StoragePtr storage = open(directory);
  for (std::uint64_t number = 1; number <= pages; ++number) {
    storage->switchPage(page(number));
    storage->saveVector(text("new"));
  }
  saveNow(*storage);
}

void none(const std::string& directory) {
  const StoragePtr storage = open(directory);
  {
    const Limit limit(RLIMIT_NOFILE, 0);
    storage->switchPage(page(1));
    // Whatever of the file is still to be read would be read by these.
    static_cast<void>(storage->wholeVectorss());
    static_cast<void>(storage->snapVectorss());
    storage->saveVector(text("new"));
    storage->saveQueue()->waitUntilAllOperationsAreFinished();
  }
  saveNow(*storage);
}

rlim_t addressSpaceInUse() {
  std::ifstream file("/proc/self/statm");
  rlim_t pages = 0;
  file >> pages;
  return pages * static_cast<rlim_t>(::sysconf(_SC_PAGESIZE));
}

/// What a switch that throws must leave as it is.
struct State {
  explicit State(const VWBVectorStorage& storage)
      : page(storage.currentPage()),
        wholeFile(storage.wholeFile()),
        snapFile(storage.snapFile()),
        pages(storage.pageArray()),
        whole(storage.wholeVectorss()),
        snap(storage.snapVectorss()),
        query(storage.snapQuery()) {}
  bool operator==(const State&) const = default;

  std::shared_ptr<VelWbVecSwitchPage> page;
  std::optional<std::string> wholeFile, snapFile;
  std::vector<std::shared_ptr<VelWbVecSwitchPage>> pages;
  VWBVectorStorage::ListsByPage whole, snap;
  std::unordered_map<std::string, VectorPtr> query;
};

void memory(const std::string& directory, std::size_t entries) {
  constexpr rlim_t kStep = 2 << 20;
  const StoragePtr storage = open(directory);
  storage->switchPage(page(2));
  storage->saveVector(text("before"));
  saveNow(*storage);
  const State before(*storage);
  int thrown = 0;
  bool isShown = false;
  VectorList drawn;
  for (rlim_t spare = kStep; !isShown; spare += kStep) {
    {
      const Limit limit(RLIMIT_AS, addressSpaceInUse() + spare);
      try {
        drawn = storage->switchPage(page(1));
        isShown = true;
      } catch (const std::bad_alloc&) {
        ++thrown;
      }
      if (isShown) storage->saveQueue()->waitUntilAllOperationsAreFinished();
    }
    if (!isShown) expect(State(*storage) == before, "a switch that threw has changed something");
  }
  expect(thrown > 0, "memory never ran out");
  expect(drawn.size() == entries, "shown: " + std::to_string(drawn.size()) + " entries");
  storage->saveVector(text("after"));
  expect(storage->wholeVectorss().at("1_1").size() == entries + 1, "the log is not whole");
  saveNow(*storage);
}

void save(const std::string& directory) {
  const StoragePtr storage = open(directory);
  storage->switchPage(page(1));
  storage->saveVector(text("new"));
  storage->saveFile(true);
}

int run(const std::vector<std::string>& words) {
  try {
    const std::string& mode = words.at(0);
    const std::string& directory = words.at(1);
    if (mode == "handles") {
      handles(directory, std::stoul(words.at(2)), std::stoul(words.at(3)));
    } else if (mode == "none") {
      none(directory);
    } else if (mode == "memory") {
      memory(directory, std::stoul(words.at(2)));
    } else if (mode == "save") {
      save(directory);
    } else {
      return 2;
    }
    return 0;
  } catch (const Failure& failure) {
    std::cerr << words[0] << ": " << failure.text << std::endl;
  } catch (const std::exception& error) {
    std::cerr << words[0] << ": thrown: " << error.what() << std::endl;
  }
  return 1;
}

}  // namespace
}  // namespace VelWhiteBoard

int main(int count, char** arguments) {
  return VelWhiteBoard::run({arguments + 1, arguments + count});
}
