// A fixed piece of work for the instruction counter, which counts inside the functions below by
// name.
#include <cstdio>
#include <string>
#include <vector>

#include "benchmarks/workload.h"
#include "tests/support/hand_clock.h"

using benchmarks::Folder;
using VelWhiteBoard::VectorList;
using VelWhiteBoard::VectorPtr;
using VelWhiteBoard::VWBVectorStorage;

// Names that no compiler decorates, and calls that none dissolves.
extern "C" {

[[gnu::noinline]] void countedModelWithJSON(const std::vector<std::string>& texts,
                                            VectorList& records) {
  for (const std::string& text : texts) {
    records.push_back(VelWhiteBoard::modelWithJSON<VelWhiteBoard::VelWbBaseVector>(text));
  }
}

[[gnu::noinline]] void countedSaveVector(const VectorList& records, VWBVectorStorage& storage) {
  for (const VectorPtr& record : records) storage.saveVector(record);
}

}  // extern "C"

int main() {
  const VelWhiteBoard::HandClock clock;  // stands still, so that no save falls due
  const VelWhiteBoard::ScopedClock scope(clock);
  const Folder folder;
  const auto storage = benchmarks::recordingStorage(folder);

  const auto texts = benchmarks::lessonTexts(40, 50, 20, 20, 10);
  VectorList records;
  records.reserve(texts.size());
  countedModelWithJSON(texts, records);
  countedSaveVector(records, *storage);

  // Strokes and boxes less what was removed: a count of anything else would be worth nothing.
  const std::size_t entries = storage->snapWithPage(*benchmarks::page(1)).size();
  if (entries == 50) return 0;
  std::fprintf(stderr, "the page has %zu entries\n", entries);
  return 1;
}
