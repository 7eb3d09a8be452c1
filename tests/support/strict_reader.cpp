#include "tests/support/strict_reader.h"

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/file_system.h"
#include "VelWhiteBoard/vectors/commands.h"

#include "tests/support/storage_story.h"
#include "tests/support/temporary_folder.h"

namespace VelWhiteBoard {
namespace {

// The files of this process, numbered.
class Gathered {
 public:
  static Gathered& instance() {
    static Gathered gathered;
    return gathered;
  }

  std::string folder() {
    const std::lock_guard<std::mutex> hold(mutex_);
    return folder_ ? folder_->path() : std::string();
  }

  void add(const std::string& name, const std::string& contents, const Value& records,
           bool areOdd) {
    const std::lock_guard<std::mutex> hold(mutex_);
    if (!folder_) folder_ = std::make_unique<TemporaryFolder>(TemporaryFolder::Volume::kMemory);
    const std::string stem = folder_->at(std::to_string(count_++));
    std::ofstream(stem + ".plist", std::ios::binary) << contents;
    std::ofstream(stem + ".json", std::ios::binary)
        << Value{{"name", name}, {"records", records}, {"odd", areOdd}}.dump();
  }

  void forget() {
    const std::lock_guard<std::mutex> hold(mutex_);
    folder_.reset();
  }

 private:
  std::mutex mutex_;
  std::unique_ptr<TemporaryFolder> folder_;
  int count_ = 0;
};

class SecondOpinion final : public ::testing::Environment {
 public:
  void TearDown() override {
    const std::string folder = Gathered::instance().folder();
    if (folder.empty()) return;
    const std::string wrong = StrictReader::findings(folder);
    EXPECT_EQ(wrong, "") << "the strict reader disagrees";
    Gathered::instance().forget();
  }
};

const ::testing::Environment* const kSecondOpinion =
    ::testing::AddGlobalTestEnvironment(new SecondOpinion);

std::string nameOfRunningTest() {
  const auto* const test = ::testing::UnitTest::GetInstance()->current_test_info();
  return test ? std::string(test->test_suite_name()) + '.' + test->name() : "no test";
}

bool isBoardFile(const std::string& name) {
  return name == "page.plist" || name.ends_with(".plist.damaged") ||
         (name.ends_with(".plist") && (name.starts_with("whole_") || name.starts_with("snap_")));
}

}  // namespace

void StrictReader::collectFile(const std::string& path, Records kind) {
  FileBytes contents;
  const FileResult result = FileSystem::current().readBytes(path, contents);
  ASSERT_TRUE(result) << result.describe();
  Array records;
  for (const auto& record : recordsOfFile(VelWbBaseVector::ownClass(), path)) {
    records.emplace_back(modelToJSONObject(*record));
  }
  Gathered::instance().add(nameOfRunningTest() + ": " + path, std::string(contents.view()), records,
                           kind == Records::kOdd);
}

void StrictReader::collect(const std::string& folder, const std::vector<File>& planted,
                           Records records) {
  std::vector<std::string> names;
  if (!FileSystem::current().list(folder, names)) return;  // a test may have taken it away
  for (const std::string& name : names) {
    const std::string path = folder + "/" + name;
    FileBytes contents;
    if (!FileSystem::current().readBytes(path, contents)) continue;  // a folder of the test's
    const File found(name, contents.view());
    bool isPlanted = false;
    for (const File& file : planted) isPlanted = isPlanted || file == found;
    if (isPlanted) continue;
    EXPECT_TRUE(isBoardFile(name)) << path << " is left in the board's folder";
    if (name.ends_with(".plist")) collectFile(path, records);
  }
}

std::string StrictReader::findings(const std::string& folder) {
  const std::string command = "'" VELWB_PYTHON "' '" VELWB_STRICT_READER "' '" + folder + "' 2>&1";
  FILE* const pipe = ::popen(command.c_str(), "r");
  if (pipe == nullptr) return "cannot run " + command;
  std::string output;
  std::array<char, 4096> block;
  while (const std::size_t read = std::fread(block.data(), 1, block.size(), pipe)) {
    output.append(block.data(), read);
  }
  const int status = ::pclose(pipe);
  return status == 0 ? std::string() : "exit status " + std::to_string(status) + "\n" + output;
}

}  // namespace VelWhiteBoard
