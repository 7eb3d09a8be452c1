// One load of a page file in a process of its own: what a user waits for when a board is opened.
//
//   velwb_fresh_load write DIR   writes the board
//   velwb_fresh_load load DIR    loads its page; prints the milliseconds
//   velwb_fresh_load parse DIR   the same with a parser whose handlers do nothing
#include <chrono>
#include <filesystem>
#include <iostream>
#include <string>

#include "benchmarks/written_board.h"

namespace benchmarks {
namespace {

constexpr std::size_t kStrokes = 500;

bool write(const std::string& path) {
  const WrittenBoard board(kStrokes, 120);
  std::filesystem::copy(board.folder().path(), path, std::filesystem::copy_options::recursive);
  return true;
}

bool load(const std::string& path) {
  const auto storage = VWBVectorStorage::initWithPath(path);
  return storage->snapWithPage(*page(1)).size() == kStrokes;
}

bool parse(const std::string& path) {
  return parseWithEmptyHandlers(path + "/whiteBoard/snap_" + page(1)->pageInfo() + ".plist");
}

int run(const std::string& what, const std::string& path) {
  const auto start = std::chrono::steady_clock::now();
  const bool done = what == "write" ? write(path) : what == "load" ? load(path) : parse(path);
  const std::chrono::duration<double, std::milli> taken = std::chrono::steady_clock::now() - start;
  std::cout << taken.count() << '\n';
  return done ? 0 : 1;
}

}  // namespace
}  // namespace benchmarks

int main(int count, char** arguments) {
  if (count != 3) return 2;
  return benchmarks::run(arguments[1], arguments[2]);
}
