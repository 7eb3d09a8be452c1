#include "VelWhiteBoard/foundation/files/standard_directories.h"

#include <map>
#include <optional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/memory_file_system.h"
#include "tests/support/write_all.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

class GivenEnvironment final : public UserEnvironment {
 public:
  std::map<std::string, std::string> variables;
  std::optional<std::string> account;

  std::optional<std::string> variable(const char* name) const override {
    const auto found = variables.find(name);
    if (found == variables.end()) return std::nullopt;
    return found->second;
  }
  std::optional<std::string> accountHome() const override { return account; }
};

class StandardDirectories : public ::testing::Test {
 protected:
  StandardDirectories() { environment_.variables["HOME"] = "/home/ada"; }

  std::vector<std::string> documents() {
    return standardDirectories(StandardDirectory::kDocuments, environment_);
  }
  std::vector<std::string> library() {
    return standardDirectories(StandardDirectory::kLibrary, environment_);
  }
  std::vector<std::string> caches() {
    return standardDirectories(StandardDirectory::kCaches, environment_);
  }
  void putUserDirectories(const std::string& folder, std::string_view text) {
    ASSERT_TRUE(files_.makeFolders(folder));
    ASSERT_TRUE(writeAll(files_, folder + "/user-dirs.dirs", text));
  }

  MemoryFileSystem files_;
  ScopedFileSystem scope_{files_};
  GivenEnvironment environment_;
};

TEST_F(StandardDirectories, LieUnderTheHomeDirectoryByDefault) {
  EXPECT_THAT(documents(), ElementsAre("/home/ada/Documents"));
  EXPECT_THAT(library(), ElementsAre("/home/ada/.local/share"));
  EXPECT_THAT(caches(), ElementsAre("/home/ada/.cache"));
}

TEST_F(StandardDirectories, LieWhereTheVariablesSay) {
  environment_.variables["XDG_DATA_HOME"] = "/data";
  environment_.variables["XDG_CACHE_HOME"] = "/var/cache/ada/";
  EXPECT_THAT(library(), ElementsAre("/data"));
  EXPECT_THAT(caches(), ElementsAre("/var/cache/ada"));
}

TEST_F(StandardDirectories, EmptyAndRelativeVariablesCountAsNotSet) {
  for (const char* value : {"", "data", "./data", "~/data"}) {
    SCOPED_TRACE(value);
    for (const char* name : {"XDG_DATA_HOME", "XDG_CACHE_HOME", "XDG_CONFIG_HOME", "TMPDIR"}) {
      environment_.variables[name] = value;
    }
    EXPECT_THAT(documents(), ElementsAre("/home/ada/Documents"));
    EXPECT_THAT(library(), ElementsAre("/home/ada/.local/share"));
    EXPECT_THAT(caches(), ElementsAre("/home/ada/.cache"));
    EXPECT_EQ(temporaryDirectory(environment_), "/tmp");
  }
}

TEST_F(StandardDirectories, AMissingHomeIsTakenFromTheAccount) {
  environment_.account = "/accounts/ada/";
  for (const char* home : {"", "home/ada"}) {
    environment_.variables["HOME"] = home;
    EXPECT_THAT(caches(), ElementsAre("/accounts/ada/.cache")) << home;
  }
  environment_.variables.erase("HOME");
  EXPECT_THAT(documents(), ElementsAre("/accounts/ada/Documents"));
}

TEST_F(StandardDirectories, AreNoneWithoutAnyHome) {
  environment_.variables.erase("HOME");
  EXPECT_THAT(documents(), IsEmpty());
  EXPECT_THAT(library(), IsEmpty());
  EXPECT_THAT(caches(), IsEmpty());
  environment_.account = "";
  EXPECT_THAT(documents(), IsEmpty());
  environment_.variables["XDG_CACHE_HOME"] = "/cache";
  EXPECT_THAT(caches(), ElementsAre("/cache"));
}

TEST_F(StandardDirectories, ARootHomeHasNoDoubledSeparator) {
  environment_.variables["HOME"] = "/";
  EXPECT_THAT(documents(), ElementsAre("/Documents"));
}

TEST_F(StandardDirectories, TheTemporaryDirectoryHasNoSeparatorAtItsEnd) {
  EXPECT_EQ(temporaryDirectory(environment_), "/tmp");
  for (const char* value : {"/scratch", "/scratch/", "/scratch//"}) {
    environment_.variables["TMPDIR"] = value;
    EXPECT_EQ(temporaryDirectory(environment_), "/scratch") << value;
  }
  environment_.variables["TMPDIR"] = "/";
  EXPECT_EQ(temporaryDirectory(environment_), "/");
}

TEST_F(StandardDirectories, TheDocumentsAreWhereTheDesktopsFileSays) {
  const struct {
    const char* text;
    const char* expected;
  } rows[] = {
      {"XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n", "/home/ada/Papers"},
      {"XDG_DOCUMENTS_DIR=\"$HOME/Papers\"", "/home/ada/Papers"},
      {"XDG_DOCUMENTS_DIR=\"/srv/papers\"\r\n", "/srv/papers"},
      {"XDG_DOCUMENTS_DIR=\"$HOME/Papers/\"\n", "/home/ada/Papers"},
      {"# made by a tool\n\nXDG_MUSIC_DIR=\"$HOME/M\"\n \tXDG_DOCUMENTS_DIR = \"$HOME/P\" # x\n",
       "/home/ada/P"},
      {"XDG_DOCUMENTS_DIR=\"$HOME/a\"\nXDG_DOCUMENTS_DIR=\"$HOME/b\"\n", "/home/ada/b"},
      {"XDG_DOCUMENTS_DIR=\"$HOME/a\"\nXDG_DOCUMENTS_DIR=\"b\"\n", "/home/ada/a"},
      {"XDG_DOCUMENTS_DIR=\"$HOME/a \\\"b\\\" \\\\ \\$c\"\n", "/home/ada/a \"b\" \\ $c"},
      {"XDG_DOCUMENTS_DIR=\"$HOME/Bücher\"\n", "/home/ada/Bücher"},
      {"XDG_DOCUMENTS_DIR=\"$HOME\"\n", "/home/ada"},
      {"XDG_DOCUMENTS_DIR=\"$HOME/\"\n", "/home/ada"}};
  for (const auto& row : rows) {
    putUserDirectories("/home/ada/.config", row.text);
    EXPECT_THAT(documents(), ElementsAre(row.expected)) << row.text;
  }
}

TEST_F(StandardDirectories, ALineThatTheDesktopWouldNotWriteIsIgnored) {
  for (const char* text : {"",
                           "XDG_DOCUMENTS_DIR",
                           "XDG_DOCUMENTS_DIR=",
                           "XDG_DOCUMENTS_DIR=\"",
                           "XDG_DOCUMENTS_DIR=\"\"",
                           "XDG_DOCUMENTS_DIR=\"/open",
                           "XDG_DOCUMENTS_DIR=\"/open\\\"",
                           "XDG_DOCUMENTS_DIR=\"/open\\",
                           "XDG_DOCUMENTS_DIR=/bare",
                           "XDG_DOCUMENTS_DIR='/single'",
                           "XDG_DOCUMENTS_DIR=\"relative\"",
                           "XDG_DOCUMENTS_DIR=\"$HOMEWORK/x\"",
                           "XDG_DOCUMENTS_DIR=\"$OTHER/x\"",
                           "XDG_DOCUMENTS_DIR=\"~/x\"",
                           "XDG_DOCUMENTS_DIR=\"$(id)\"",
                           "#XDG_DOCUMENTS_DIR=\"/x\"",
                           "XDG_DOCUMENTS_DIRS=\"/x\"",
                           "MY_XDG_DOCUMENTS_DIR=\"/x\"",
                           "export XDG_DOCUMENTS_DIR=\"/x\"",
                           "XDG_DOCUMENTS_DIR=\n\"/x\""}) {
    putUserDirectories("/home/ada/.config", text);
    EXPECT_THAT(documents(), ElementsAre("/home/ada/Documents")) << text;
  }
}

TEST_F(StandardDirectories, APathWithANulByteIsIgnored) {
  putUserDirectories("/home/ada/.config", std::string_view("XDG_DOCUMENTS_DIR=\"/a\0b\"\n", 25));
  EXPECT_THAT(documents(), ElementsAre("/home/ada/Documents"));
}

TEST_F(StandardDirectories, TheDesktopsFileIsLookedForInTheConfigurationDirectory) {
  putUserDirectories("/home/ada/.config", "XDG_DOCUMENTS_DIR=\"/wrong\"\n");
  putUserDirectories("/etc/ada", "XDG_DOCUMENTS_DIR=\"/right\"\n");
  environment_.variables["XDG_CONFIG_HOME"] = "/etc/ada";
  EXPECT_THAT(documents(), ElementsAre("/right"));
}

TEST_F(StandardDirectories, WithoutAHomeOnlyAnAbsoluteLineCounts) {
  environment_.variables = {{"XDG_CONFIG_HOME", "/etc/ada"}};
  putUserDirectories("/etc/ada", "XDG_DOCUMENTS_DIR=\"$HOME/Papers\"\n");
  EXPECT_THAT(documents(), IsEmpty());
  putUserDirectories("/etc/ada", "XDG_DOCUMENTS_DIR=\"/papers\"\n");
  EXPECT_THAT(documents(), ElementsAre("/papers"));
}

TEST_F(StandardDirectories, AFileTooLargeToBeTheDesktopsIsNotBelieved) {
  putUserDirectories("/home/ada/.config",
                     "XDG_DOCUMENTS_DIR=\"/x\"\n" + std::string(2'000'000, '\n'));
  EXPECT_THAT(documents(), ElementsAre("/home/ada/Documents"));
}

TEST_F(StandardDirectories, AFolderInPlaceOfTheDesktopsFileIsIgnored) {
  ASSERT_TRUE(files_.makeFolders("/home/ada/.config/user-dirs.dirs"));
  EXPECT_THAT(documents(), ElementsAre("/home/ada/Documents"));
}

TEST(ProcessEnvironment, KnowsItsVariablesAndItsAccount) {
  const UserEnvironment& environment = UserEnvironment::process();
  ASSERT_EQ(::setenv("VELWB_TEST_VARIABLE", "value", 1), 0);
  EXPECT_EQ(environment.variable("VELWB_TEST_VARIABLE"), "value");
  ASSERT_EQ(::unsetenv("VELWB_TEST_VARIABLE"), 0);
  EXPECT_EQ(environment.variable("VELWB_TEST_VARIABLE"), std::nullopt);
}

}  // namespace
}  // namespace VelWhiteBoard
