#include "VelWhiteBoard/VelWhiteBoard.h"

#include "benchmarks/comparison/store.h"

namespace benchmarks::comparison {
namespace {

using namespace VelWhiteBoard;

class VelWhiteBoardStore : public Store {
 public:
  explicit VelWhiteBoardStore(const std::string& folder)
      : storage_(VWBVectorStorage::initWithPath(folder)) {
    storage_->setIgnoreChanges(false);
  }

  void show(const std::string& /*page*/, const std::string& text) override {
    storage_->switchPage(
        recordPointerCast<VelWbVecSwitchPage>(modelWithJSON<VelWbBaseVector>(text)));
  }
  void take(const std::string& text) override {
    storage_->saveVector(modelWithJSON<VelWbBaseVector>(text));
  }
  void save() override { storage_->saveFile(true); }
  void finish() override { storage_->saveQueue()->waitUntilAllOperationsAreFinished(); }

  Content openNewestPage() override {
    Content content;
    for (const VectorPtr& entry : storage_->switchPage(storage_->latestPage())) {
      ++content.entries;
      if (const auto stroke = recordPointerCast<VelWbVecLine>(entry)) {
        content.positions += stroke->path ? stroke->path->size() : 0;
      }
    }
    return content;
  }

 private:
  std::shared_ptr<VWBVectorStorage> storage_;
};

}  // namespace

std::unique_ptr<Store> velWhiteBoardStore(const std::string& folder) {
  return std::make_unique<VelWhiteBoardStore>(folder);
}

}  // namespace benchmarks::comparison
