// The same pieces into a database, a transaction each: what a client would do without the library.
// The database keeps the log and nothing else, and the disk has it after the next checkpoint.
#include <memory>
#include <sqlite3.h>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

#include "benchmarks/workload.h"

namespace benchmarks {
namespace {

constexpr std::size_t kPieces = 10'000;

/// A table of texts, written ahead to a log that is synced at checkpoints only.
class TextTable {
 public:
  explicit TextTable(const std::string& path) {
    isOpen_ = sqlite3_open(path.c_str(), &database_) == SQLITE_OK &&
              run("PRAGMA journal_mode = WAL") && run("PRAGMA synchronous = NORMAL") &&
              run("CREATE TABLE pieces (page INTEGER NOT NULL, text TEXT NOT NULL)") &&
              sqlite3_prepare_v2(database_, "INSERT INTO pieces VALUES (1, ?)", -1, &insertion_,
                                 nullptr) == SQLITE_OK;
  }
  ~TextTable() {
    sqlite3_finalize(insertion_);
    sqlite3_close(database_);
  }
  TextTable(const TextTable&) = delete;
  TextTable& operator=(const TextTable&) = delete;

  bool isOpen() const { return isOpen_; }
  /// Without a transaction around it, each insertion is one.
  bool add(const std::string& text) {
    sqlite3_bind_text(insertion_, 1, text.data(), static_cast<int>(text.size()), SQLITE_STATIC);
    return sqlite3_step(insertion_) == SQLITE_DONE && sqlite3_reset(insertion_) == SQLITE_OK;
  }

 private:
  bool run(const char* statement) {
    return sqlite3_exec(database_, statement, nullptr, nullptr, nullptr) == SQLITE_OK;
  }

  sqlite3* database_ = nullptr;
  sqlite3_stmt* insertion_ = nullptr;
  bool isOpen_ = false;
};

void strokeIntoSqlite(benchmark::State& state) {
  const auto texts = strokeTexts("u1_100", kPieces);
  for (auto _ : state) {
    state.PauseTiming();
    auto folder = std::make_unique<Folder>();
    auto table = std::make_unique<TextTable>(folder->path() + "/board.sqlite");
    bool isDone = table->isOpen();
    state.ResumeTiming();
    for (const std::string& text : texts) isDone = isDone && table->add(text);
    state.PauseTiming();
    if (!isDone) state.SkipWithError("the database refuses");
    table.reset();
    folder.reset();
    state.ResumeTiming();
  }
}
BENCHMARK(strokeIntoSqlite)->Iterations(1)->UseRealTime()->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace benchmarks
