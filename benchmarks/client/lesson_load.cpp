// Lessons with many participants on a NATS server: how fast pieces of strokes arrive at everybody,
// and whether each arrives once and in order.
//
//   lesson_load --url URL[,URL...] [--lessons 1] [--participants 10] [--writers 1]
//               [--pieces-per-second 40] [--seconds 10] [--stroke 40] [--replicas 1]
//               [--readers bus|consumers|plain] [--connections 8] [--server-pid PID[,PID...]]
//               [--name PREFIX] [--pieces N] [--drain 20] [--late 1]
//
// Writers are participants with a bus each; with `--readers` other than `bus` the participants that
// do not write are subscriptions on few connections. `--pieces-per-second` counts for each writer;
// 0: as fast as the stream takes them, in which case `--pieces` of all writers end it too. A stroke
// has `--stroke` pieces; pieces that wait at their writer are joined, except with 1. `--late 1`
// times one who joins at the end. `--participants 0` opens the lessons, and nothing else; with
// `--flood N` it sends N pieces then, as fast as it goes.
//
// The exit code is 0 when everybody received everything once and in order, 1 when not, 2 when it
// could not be tried.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <deque>
#include <exception>
#include <map>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

#include "benchmarks/client/load/participants.h"
#include "benchmarks/client/load/pieces.h"
#include "benchmarks/client/load/processes.h"
#include "lesson/lesson_connection.h"

namespace {

using load::now;

constexpr const char* kPage = "42_1";
constexpr std::size_t kFewWaiting = 16;

struct Options {
  std::map<std::string, std::string> texts = {
      {"url", ""},           {"lessons", "1"},   {"participants", "10"},
      {"writers", "1"},      {"seconds", "10"},  {"pieces-per-second", "40"},
      {"stroke", "40"},      {"replicas", "1"},  {"readers", "bus"},
      {"connections", "8"},  {"server-pid", ""}, {"name", "load" + std::to_string(::getpid())},
      {"pieces", "1000000"}, {"drain", "20"},    {"late", "0"},
      {"flood", "0"}};

  const std::string& text(const std::string& name) const { return texts.at(name); }
  std::size_t number(const std::string& name) const {
    const std::string& value = text(name);
    char* end = nullptr;
    const unsigned long number = std::strtoul(value.c_str(), &end, 10);
    if (value.empty() || *end != '\0' || value.front() == '-' || number > 10'000'000) {
      throw std::invalid_argument("--" + name + " takes a number, not '" + value + "'");
    }
    return number;
  }
};

Options parse(int argc, char* argv[]) {
  Options options;
  for (int i = 1; i < argc; i += 2) {
    const std::string name = argv[i];
    const auto found =
        name.starts_with("--") ? options.texts.find(name.substr(2)) : options.texts.end();
    if (found == options.texts.end()) throw std::invalid_argument("unknown option " + name);
    if (i + 1 == argc) throw std::invalid_argument(name + " needs a value");
    found->second = argv[i + 1];
  }
  if (options.text("url").empty()) throw std::invalid_argument("--url is missing");
  const std::string& readers = options.text("readers");
  if (readers != "bus" && readers != "consumers" && readers != "plain") {
    throw std::invalid_argument("--readers takes bus, consumers or plain");
  }
  const std::size_t participants = options.number("participants");
  if (participants > 0 && options.number("writers") > participants) {
    throw std::invalid_argument("more writers than participants");
  }
  for (const char* name : {"lessons", "seconds", "stroke", "replicas", "connections"}) {
    if (options.number(name) == 0) {
      throw std::invalid_argument(std::string("--") + name + " must be at least 1");
    }
  }
  return options;
}

std::vector<std::string> pidsOf(const std::string& list) {
  std::vector<std::string> pids;
  std::istringstream rest(list);
  for (std::string pid; std::getline(rest, pid, ',');) pids.push_back(pid);
  return pids;
}

struct Writer {
  whiteboard::NatsBus* bus = nullptr;
  load::Pieces* pieces = nullptr;
};

/// A run with all that it needs; destroyed from the last member to the first.
struct Run {
  explicit Run(const Options& chosen) : options(chosen) {}

  const Options& options;
  std::deque<load::Pieces> pieces;
  std::deque<load::Receipt> receipts;
  /// The number of the lesson of each receipt.
  std::vector<std::size_t> lessonOf;
  std::vector<Writer> writers;
  std::unique_ptr<load::Readers> readers;
  std::unique_ptr<load::Buses> buses;

  std::string lesson(std::size_t number) const {
    return options.text("name") + "-" + std::to_string(number);
  }
  whiteboard::NatsBus::Options bus(std::size_t number) const {
    return {options.text("url"), lesson(number), "", "",
            static_cast<int>(options.number("replicas"))};
  }
  /// How many pieces the writers of a lesson have sent.
  std::size_t sent(std::size_t number) const {
    const std::size_t writersOfLesson = options.number("writers");
    std::size_t sum = 0;
    for (std::size_t i = 0; i < writersOfLesson; ++i) {
      sum += pieces[number * writersOfLesson + i].count();
    }
    return sum;
  }
  load::Receipt& receipt(std::size_t number) {
    const std::size_t writersOfLesson = options.number("writers");
    std::vector<const load::Pieces*> all;
    for (std::size_t i = 0; i < writersOfLesson; ++i) {
      all.push_back(&pieces[number * writersOfLesson + i]);
    }
    lessonOf.push_back(number);
    return receipts.emplace_back(std::move(all));
  }
};

void open(Run& run) {
  const Options& options = run.options;
  const std::size_t lessons = options.number("lessons");
  const std::size_t writers = options.number("writers");
  const std::size_t rate = options.number("pieces-per-second");
  const std::size_t most = rate == 0 ? options.number("pieces") / std::max<std::size_t>(writers, 1)
                                     : rate * options.number("seconds");
  const bool isBus = options.text("readers") == "bus";
  for (std::size_t lesson = 0; lesson < lessons; ++lesson) {
    for (std::size_t i = 0; i < writers; ++i) {
      run.pieces.emplace_back(i, most, options.number("stroke"));
    }
  }
  run.buses = std::make_unique<load::Buses>();
  const std::size_t withBus = isBus ? options.number("participants") : writers;
  for (std::size_t lesson = 0; lesson < lessons; ++lesson) {
    for (std::size_t i = 0; i < withBus; ++i) {
      whiteboard::NatsBus& bus = run.buses->add(run.bus(lesson), run.receipt(lesson));
      if (i < writers) run.writers.push_back({&bus, &run.pieces[lesson * writers + i]});
    }
  }
  if (!run.buses->becomeLive(60)) {
    throw std::runtime_error("not everybody is connected: " + run.buses->problem());
  }
  if (isBus) return;
  using Kind = load::Readers::Kind;
  run.readers = std::make_unique<load::Readers>(
      options.text("readers") == "plain" ? Kind::kPlain : Kind::kConsumers, options.text("url"),
      options.number("connections"));
  for (std::size_t lesson = 0; lesson < lessons; ++lesson) {
    for (std::size_t i = withBus; i < options.number("participants"); ++i) {
      run.readers->add(run.lesson(lesson), run.receipt(lesson));
    }
  }
}

/// Sends for the time of the run; the writers take turns, evenly.
void write(Run& run) {
  const std::size_t rate = run.options.number("pieces-per-second");
  const std::int64_t begin = now();
  const auto end = begin + static_cast<std::int64_t>(run.options.number("seconds")) * 1'000'000'000;
  std::vector<Writer>& writers = run.writers;
  if (rate > 0) {
    const double between = 1e9 / static_cast<double>(rate * writers.size());
    for (std::size_t turn = 0;; ++turn) {
      const auto due = begin + static_cast<std::int64_t>(between * static_cast<double>(turn));
      if (due >= end) return;
      const std::int64_t wait = due - now();
      if (wait > 0) std::this_thread::sleep_for(std::chrono::nanoseconds(wait));
      const Writer& writer = writers[turn % writers.size()];
      if (auto piece = writer.pieces->next()) writer.bus->publish(kPage, std::move(piece));
    }
  }
  bool hasMore = true;
  while (hasMore && now() < end) {
    hasMore = false;
    for (const Writer& writer : writers) {
      std::size_t waiting = writer.bus->status().unsent;
      for (; waiting < kFewWaiting; ++waiting) {
        auto piece = writer.pieces->next();
        if (!piece) break;
        writer.bus->publish(kPage, std::move(piece));
      }
      hasMore = hasMore || waiting >= kFewWaiting;
    }
    std::this_thread::sleep_for(std::chrono::microseconds(200));
  }
}

/// Waits until everybody has everything.
void drain(const Run& run) {
  const auto end = now() + static_cast<std::int64_t>(run.options.number("drain")) * 1'000'000'000;
  for (std::size_t i = 0; i < run.receipts.size(); ++i) {
    while (run.receipts[i].pieces() < run.sent(run.lessonOf[i]) && now() < end) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
  }
}

/// Tells whether everybody has received everything.
bool report(const Run& run, double seconds, const load::Usage& server, const load::Usage& own) {
  std::size_t published = 0;
  for (const load::Pieces& pieces : run.pieces) published += pieces.count();
  std::size_t delivered = 0;
  std::size_t messages = 0;
  std::size_t faults = 0;
  std::size_t missing = 0;
  double gap = 0;
  std::vector<float> latencies;
  for (std::size_t i = 0; i < run.receipts.size(); ++i) {
    const load::Receipt& receipt = run.receipts[i];
    delivered += receipt.pieces();
    messages += receipt.messages();
    faults += receipt.faults();
    missing += run.sent(run.lessonOf[i]) - receipt.pieces();
    gap = std::max(gap, receipt.longestGap());
    latencies.insert(latencies.end(), receipt.latencies().begin(), receipt.latencies().end());
  }
  std::sort(latencies.begin(), latencies.end());
  const auto at = [&](double part) {
    if (latencies.empty()) return 0.0;
    const double last = static_cast<double>(latencies.size() - 1);
    return static_cast<double>(latencies[static_cast<std::size_t>(part * last)]);
  };
  std::printf(
      "published %zu (%.0f/s), delivered %zu pieces (%.0f/s) in %zu messages; latency p50 %.2f "
      "p99 %.2f max %.2f ms; longest gap %.0f ms; server %.2f cores %.0f MB; load %.2f cores; "
      "missing %zu faults %zu\n",
      published, static_cast<double>(published) / seconds, delivered,
      static_cast<double>(delivered) / seconds, messages, at(0.5), at(0.99), at(1), gap,
      server.seconds / seconds, server.memory / 1e6, own.seconds / seconds, missing, faults);
  return missing == 0 && faults == 0;
}

bool joinsLate(Run& run) {
  load::Receipt& receipt = run.receipt(0);
  const std::int64_t begin = now();
  load::Buses late;
  late.add(run.bus(0), receipt);
  const std::size_t all = run.sent(0);
  while (receipt.pieces() < all && now() - begin < 60'000'000'000) {
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  std::printf("late: %zu of %zu pieces in %.3f s\n", receipt.pieces(), all,
              static_cast<double>(now() - begin) / 1e9);
  return receipt.pieces() == all;
}

bool measure(const Options& options) {
  const std::vector<std::string> server = pidsOf(options.text("server-pid"));
  const std::vector<std::string> own{std::to_string(::getpid())};
  Run run(options);
  if (options.number("participants") == 0) {
    const load::Usage before = load::usageOf(server);
    const std::int64_t begin = now();
    for (std::size_t i = 0; i < options.number("lessons"); ++i) {
      whiteboard::LessonConnection(options.text("url"), run.lesson(i), "")
          .openStream(static_cast<int>(options.number("replicas")));
    }
    std::printf("opened in %.2f s; server %.0f MB\n", static_cast<double>(now() - begin) / 1e9,
                load::usageOf(server).memory / 1e6);
    if (options.number("flood") > 0) {
      std::vector<std::string> lessons;
      for (std::size_t i = 0; i < options.number("lessons"); ++i) lessons.push_back(run.lesson(i));
      const double time = load::flood(options.text("url"), lessons, options.number("flood"));
      std::printf("sent %zu pieces in %.2f s (%.0f/s); server %.1f s of a core\n",
                  options.number("flood"), time,
                  static_cast<double>(options.number("flood")) / time,
                  load::usageOf(server).seconds - before.seconds);
    }
    return true;
  }
  open(run);
  const load::Usage serverBefore = load::usageOf(server);
  const load::Usage ownBefore = load::usageOf(own);
  const std::int64_t begin = now();
  write(run);
  const double writing = static_cast<double>(now() - begin) / 1e9;
  drain(run);
  const double seconds = static_cast<double>(now() - begin) / 1e9;
  load::Usage serverAfter = load::usageOf(server);
  serverAfter.seconds -= serverBefore.seconds;
  load::Usage ownAfter = load::usageOf(own);
  ownAfter.seconds -= ownBefore.seconds;
  std::printf("%zu lessons of %zu (%s), %zu writing; wrote %.1f s, all there after %.2f s more\n",
              options.number("lessons"), options.number("participants"),
              options.text("readers").c_str(), options.number("writers"), writing,
              seconds - writing);
  // Nothing is received from here on, so that the receipts can be read.
  const std::string problem = run.buses->problem();
  run.readers.reset();
  run.buses.reset();
  if (!problem.empty()) std::printf("problem: %s\n", problem.c_str());
  bool isGood = report(run, seconds, serverAfter, ownAfter);
  if (options.number("late") != 0) isGood = joinsLate(run) && isGood;
  return isGood;
}

}  // namespace

int main(int argc, char* argv[]) {
  try {
    return measure(parse(argc, argv)) ? 0 : 1;
  } catch (const std::exception& failure) {
    std::fprintf(stderr, "lesson_load: %s\n", failure.what());
    return 2;
  }
}
