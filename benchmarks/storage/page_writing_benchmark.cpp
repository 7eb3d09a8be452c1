// A page's records to its two files on the disk, beside the same bytes merely put there as safely.
#include <cstring>
#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

#include <benchmark/benchmark.h>

#include "benchmarks/written_board.h"

namespace benchmarks {
namespace {

WrittenBoard& board() {
  static WrittenBoard board(500, 100);
  return board;
}

void writePage(benchmark::State& state) {
  WrittenBoard& written = board();
  for (auto _ : state) {
    written.storage().setHasNewChange(true);
    written.storage().saveFile(true);
    written.storage().saveQueue()->waitUntilAllOperationsAreFinished();
  }
}
BENCHMARK(writePage)->Unit(benchmark::kMillisecond)->UseRealTime();

/// Replaces a file as the library does: a new file, synced, renamed, its folder synced.
bool replaceFile(const std::string& folder, const std::string& name, const std::string& bytes) {
  std::vector<char> copy(bytes.size());
  std::memcpy(copy.data(), bytes.data(), bytes.size());
  const std::string path = folder + "/" + name;
  const std::string temporary = path + ".tmp";
  const int file = ::open(temporary.c_str(), O_CREAT | O_TRUNC | O_WRONLY | O_CLOEXEC, 0644);
  if (file < 0) return false;
  std::size_t written = 0;
  while (written < copy.size()) {
    const ssize_t taken = ::write(file, copy.data() + written, copy.size() - written);
    if (taken <= 0) break;
    written += static_cast<std::size_t>(taken);
  }
  const bool synced = ::fsync(file) == 0;
  ::close(file);
  if (written != copy.size() || !synced) return false;
  if (::rename(temporary.c_str(), path.c_str()) != 0) return false;
  const int handle = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
  if (handle < 0) return false;
  const bool folderSynced = ::fsync(handle) == 0;
  ::close(handle);
  return folderSynced;
}

void putTheSameBytesThere(benchmark::State& state) {
  const std::string whole = readFile(board().wholeFile());
  const std::string snap = readFile(board().snapFile());
  const Folder folder;
  for (auto _ : state) {
    if (!replaceFile(folder.path(), "whole", whole) || !replaceFile(folder.path(), "snap", snap)) {
      state.SkipWithError("the disk refuses");
    }
  }
  state.counters["bytes"] = static_cast<double>(whole.size() + snap.size());
}
BENCHMARK(putTheSameBytesThere)->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
}  // namespace benchmarks
