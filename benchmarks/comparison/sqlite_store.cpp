#include <sqlite3.h>
#include <stdexcept>

#include "benchmarks/comparison/store.h"
#include "benchmarks/plain_board.h"

namespace benchmarks::comparison {
namespace {

class SqliteStore : public Store {
 public:
  explicit SqliteStore(const std::string& folder) {
    check(sqlite3_open((folder + "/board.sqlite").c_str(), &database_) == SQLITE_OK);
    run("PRAGMA journal_mode = WAL");
    run("PRAGMA synchronous = NORMAL");
    run("CREATE TABLE IF NOT EXISTS vectors (page TEXT NOT NULL, text TEXT NOT NULL)");
    run("CREATE INDEX IF NOT EXISTS vectors_by_page ON vectors (page)");
    insertion_ = prepared("INSERT INTO vectors VALUES (?, ?)");
    selection_ = prepared(
        "SELECT text FROM vectors WHERE page = "
        "(SELECT page FROM vectors ORDER BY rowid DESC LIMIT 1) ORDER BY rowid");
  }
  ~SqliteStore() override {
    sqlite3_finalize(insertion_);
    sqlite3_finalize(selection_);
    sqlite3_close(database_);
  }

  void show(const std::string& page, const std::string& /*text*/) override { page_ = page; }
  /// Without a transaction around it, each insertion is one.
  void take(const std::string& text) override {
    bind(1, page_);
    bind(2, text);
    check(sqlite3_step(insertion_) == SQLITE_DONE);
    check(sqlite3_reset(insertion_) == SQLITE_OK);
  }
  void save() override {}  // each insertion is in the file
  void finish() override {}

  Content openNewestPage() override {
    PlainBoard board;
    while (sqlite3_step(selection_) == SQLITE_ROW) {
      board.take(reinterpret_cast<const char*>(sqlite3_column_text(selection_, 0)));
    }
    return {board.entryCount(), board.positionCount()};
  }

 private:
  void check(bool succeeded) const {
    if (!succeeded) throw std::runtime_error(sqlite3_errmsg(database_));
  }
  void run(const char* statement) {
    check(sqlite3_exec(database_, statement, nullptr, nullptr, nullptr) == SQLITE_OK);
  }
  sqlite3_stmt* prepared(const char* statement) {
    sqlite3_stmt* result = nullptr;
    check(sqlite3_prepare_v2(database_, statement, -1, &result, nullptr) == SQLITE_OK);
    return result;
  }
  void bind(int place, const std::string& text) {
    const int size = static_cast<int>(text.size());
    check(sqlite3_bind_text(insertion_, place, text.data(), size, SQLITE_STATIC) == SQLITE_OK);
  }

  sqlite3* database_ = nullptr;
  sqlite3_stmt* insertion_ = nullptr;
  sqlite3_stmt* selection_ = nullptr;
  std::string page_;
};

}  // namespace

std::unique_ptr<Store> sqliteStore(const std::string& folder) {
  return std::make_unique<SqliteStore>(folder);
}

}  // namespace benchmarks::comparison
