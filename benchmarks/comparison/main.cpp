// One way of keeping a board, once. compare.py runs it again and again.
//
//   velwb_comparison record STORE FOLDER LESSON BEFORE   records a lesson: one vector's JSON text a
//   line velwb_comparison open STORE FOLDER                   opens the newest page of what was
//   recorded
//
// The first BEFORE vectors are there already when measuring begins.
// STORE is velwhiteboard, sqlite or document. Prints what it measured as one JSON object.
#include <algorithm>
#include <chrono>
#include <exception>
#include <fstream>
#include <iostream>
#include <stdexcept>
#include <vector>

#include <nlohmann/json.hpp>

#include "benchmarks/comparison/store.h"

namespace benchmarks::comparison {
namespace {

constexpr double kSecondsBetweenSaves = 20;

/// The microseconds that a call takes.
template <class Call>
double timed(Call&& call) {
  const auto start = std::chrono::steady_clock::now();
  call();
  return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - start)
      .count();
}

std::unique_ptr<Store> storeNamed(const std::string& name, const std::string& folder) {
  if (name == "velwhiteboard") return velWhiteBoardStore(folder);
  if (name == "sqlite") return sqliteStore(folder);
  if (name == "document") return documentStore(folder);
  throw std::invalid_argument("there is no store " + name);
}

nlohmann::json summary(std::vector<double> pieces, const std::vector<double>& saves) {
  std::sort(pieces.begin(), pieces.end());
  return {{"pieces", pieces.size()},
          {"piece_median_us", pieces[pieces.size() / 2]},
          {"piece_p999_us", pieces[pieces.size() * 999 / 1000]},
          {"save_longest_us", *std::max_element(saves.begin(), saves.end())}};
}

nlohmann::json record(Store& store, const std::string& lesson, std::size_t before) {
  std::ifstream lines(lesson);
  std::vector<double> pieces;
  std::vector<double> saves;
  const auto saveNow = [&] {
    saves.push_back(timed([&] { store.save(); }));
    store.finish();
  };
  double lastSave = 0;
  std::size_t count = 0;
  for (std::string text; std::getline(lines, text); ++count) {
    const auto vector = nlohmann::json::parse(text);
    const double now = vector["ts"].get<double>();
    if (count == before) lastSave = now;
    if (vector["type"] == "switchPage") {
      store.show(vector["WBID"].dump() + "_" + vector["curPage"].dump(), text);
    } else {
      pieces.push_back(timed([&] { store.take(text); }));
    }
    if (count < before) {
      pieces.clear();
    } else if (now - lastSave >= kSecondsBetweenSaves) {
      saveNow();
      lastSave = now;
    }
  }
  saveNow();
  return summary(std::move(pieces), saves);
}

int run(const std::vector<std::string>& arguments) {
  const bool isRecording = arguments.size() == 5 && arguments[0] == "record";
  if (!isRecording && (arguments.size() != 3 || arguments[0] != "open")) {
    throw std::invalid_argument("record STORE FOLDER LESSON BEFORE, or open STORE FOLDER");
  }
  nlohmann::json results;
  if (isRecording) {
    results =
        record(*storeNamed(arguments[1], arguments[2]), arguments[3], std::stoul(arguments[4]));
  } else {
    std::unique_ptr<Store> store;
    Content content;
    results["open_us"] = timed([&] {
      store = storeNamed(arguments[1], arguments[2]);
      content = store->openNewestPage();
    });
    results["entries"] = content.entries;
    results["positions"] = content.positions;
  }
  std::cout << results << '\n';
  return 0;
}

}  // namespace
}  // namespace benchmarks::comparison

int main(int count, char** arguments) {
  try {
    return benchmarks::comparison::run({arguments + 1, arguments + count});
  } catch (const std::exception& error) {
    std::cerr << "velwb_comparison: " << error.what() << '\n';
    return 1;
  }
}
