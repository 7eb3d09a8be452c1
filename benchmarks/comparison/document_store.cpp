#include <cerrno>
#include <fcntl.h>
#include <fstream>
#include <system_error>
#include <unistd.h>
#include <unordered_map>

#include <nlohmann/json.hpp>

#include "benchmarks/comparison/store.h"

namespace benchmarks::comparison {
namespace {

using nlohmann::json;

void check(bool succeeded, const char* step) {
  if (!succeeded) throw std::system_error(errno, std::generic_category(), step);
}

class DocumentStore : public Store {
 public:
  explicit DocumentStore(const std::string& folder) : name_(folder + "/board.json") {}

  void show(const std::string& page, const std::string& /*text*/) override {
    pages_.push_back({{"page", page}, {"entries", json::array()}});
    places_.clear();
  }

  void take(const std::string& text) override {
    json vector = json::parse(text);
    json& entries = pages_.back()["entries"];
    const auto [place, isNew] =
        places_.try_emplace(vector["ID"].get<std::string>(), entries.size());
    if (isNew) {
      entries.push_back(std::move(vector));
      return;
    }
    json& entry = entries[place->second];
    json& path = entry["path"];
    for (json& position : vector["path"]) path.push_back(std::move(position));
    for (const char* latest : {"ts", "x", "y", "end"}) entry[latest] = std::move(vector[latest]);
  }

  void save() override {
    const std::string text = pages_.dump();
    const std::string draft = name_ + ".new";
    const int file = ::open(draft.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0644);
    check(file >= 0, "open");
    for (std::size_t done = 0; done < text.size();) {
      const ssize_t written = ::write(file, text.data() + done, text.size() - done);
      check(written > 0, "write");
      done += static_cast<std::size_t>(written);
    }
    check(::fsync(file) == 0, "fsync");
    check(::close(file) == 0, "close");
    check(::rename(draft.c_str(), name_.c_str()) == 0, "rename");
  }
  void finish() override {}

  Content openNewestPage() override {
    std::ifstream file(name_);
    pages_ = json::parse(file);
    Content content;
    for (const json& entry : pages_.back()["entries"]) {
      ++content.entries;
      content.positions += entry["path"].size();
    }
    return content;
  }

 private:
  std::string name_;
  json pages_ = json::array();
  std::unordered_map<std::string, std::size_t> places_;  // in the page that is shown
};

}  // namespace

std::unique_ptr<Store> documentStore(const std::string& folder) {
  return std::make_unique<DocumentStore>(folder);
}

}  // namespace benchmarks::comparison
