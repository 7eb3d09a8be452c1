#include "VelWhiteBoard/services/path_manager.h"

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <limits>
#include <string>
#include <sys/stat.h>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"

#include "tests/support/faulty_calls.h"
#include "tests/support/scoped_variable.h"
#include "tests/support/temporary_folder.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::Optional;
namespace fs = std::filesystem;

constexpr std::uint64_t kLibrary = 5;
constexpr std::uint64_t kDocuments = 9;
constexpr std::uint64_t kCaches = 13;
constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();

// A home of the test's own, in which none of the directories exists yet.
class PathManager : public ::testing::Test {
 protected:
  PathManager() { manager_.init(); }

  static void put(const std::string& path, std::string_view contents = "x") {
    fs::create_directories(fs::path(path).parent_path());
    std::ofstream(path) << contents;
    ASSERT_TRUE(fs::exists(path));
  }

  mode_t permissions(const std::string& name) const {
    struct stat info = {};
    EXPECT_EQ(::stat(folder_.at(name).c_str(), &info), 0) << name;
    return info.st_mode & 07777U;
  }

  // Declared first, so that it acts last, when the environment is the old one again.
  struct Restoration {
    ~Restoration() { VWBPathManager::sharedManager().init(); }
  } restoration_;
  TemporaryFolder folder_;
  ScopedVariable home_{"HOME", folder_.path()};
  ScopedVariable config_{"XDG_CONFIG_HOME", std::nullopt};
  ScopedVariable data_{"XDG_DATA_HOME", std::nullopt};
  ScopedVariable cache_{"XDG_CACHE_HOME", std::nullopt};
  ScopedVariable temporary_{"TMPDIR", folder_.at("tmp/")};
  VWBPathManager& manager_ = VWBPathManager::sharedManager();
  const std::string documents_ = folder_.at("Documents");
};

TEST_F(PathManager, IsOneObject) {
  EXPECT_EQ(&VWBPathManager::sharedManager(), &manager_);
  EXPECT_EQ(&manager_.init(), &manager_);
}

TEST_F(PathManager, StartsWithTheUsersDirectoriesAndNoRootFolder) {
  EXPECT_EQ(manager_.documentDirectory(), folder_.at("Documents"));
  EXPECT_EQ(manager_.libraryDirectory(), folder_.at(".local/share"));
  EXPECT_EQ(manager_.cacheDirectory(), folder_.at(".cache"));
  EXPECT_EQ(manager_.tempDirectory(), folder_.at("tmp"));
  EXPECT_EQ(manager_.rootFolder(), "");
}

TEST_F(PathManager, ConfiguringAgainReadsTheEnvironmentAndEmptiesTheRootFolder) {
  manager_.setRootFolder("course");
  EXPECT_EQ(manager_.rootFolder(), "course");
  const ScopedVariable moved("XDG_CACHE_HOME", "/elsewhere");
  EXPECT_EQ(manager_.cacheDirectory(), folder_.at(".cache")) << "not before";
  manager_.initConfigure();
  EXPECT_EQ(manager_.cacheDirectory(), "/elsewhere");
  EXPECT_EQ(manager_.rootFolder(), "");
}

TEST_F(PathManager, LookingForADirectoryKnowsThreeCodes) {
  EXPECT_THAT(manager_.searchPath(kDocuments), Optional(documents_));
  EXPECT_THAT(manager_.searchPath(kLibrary), Optional(folder_.at(".local/share")));
  EXPECT_THAT(manager_.searchPath(kCaches), Optional(folder_.at(".cache")));
  for (const std::uint64_t code : {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{8},
                                   std::uint64_t{14}, (std::uint64_t{1} << 32) + 9, kLargest}) {
    EXPECT_EQ(manager_.searchPath(code), std::nullopt) << code;
  }
}

TEST_F(PathManager, ADirectoryIsGivenByItsNumberAndTheTemporaryOneByEveryOther) {
  EXPECT_EQ(manager_.directoryPath(0), manager_.documentDirectory());
  EXPECT_EQ(manager_.directoryPath(1), manager_.libraryDirectory());
  EXPECT_EQ(manager_.directoryPath(2), manager_.cacheDirectory());
  for (const std::uint64_t number : {std::uint64_t{3}, std::uint64_t{9}, kLargest}) {
    EXPECT_EQ(manager_.directoryPath(number), manager_.tempDirectory()) << number;
  }
}

TEST_F(PathManager, AStorePathMakesItsFolderUnderTheCaches) {
  fs::create_directories(folder_.at(".cache/boards"));
  manager_.setRootFolder("not used here");
  EXPECT_EQ(manager_.storePathWithRelativePath("/boards/7/", "a.plist"),
            folder_.at(".cache/boards/7/a.plist"));
  EXPECT_TRUE(fs::is_directory(folder_.at(".cache/boards/7")));
  EXPECT_TRUE(fs::is_empty(folder_.at(".cache/boards/7"))) << "the file is the caller's to make";
}

TEST_F(PathManager, AStorePathIsTheSameWhetherOrNotItsFolderCanBeMade) {
  EXPECT_EQ(manager_.storePathWithRelativePath("/boards/7/", "a.plist"),
            folder_.at(".cache/boards/7/a.plist"));
  EXPECT_FALSE(fs::exists(folder_.at(".cache/boards"))) << "only the last folder would be made";
  put(folder_.at(".cache/boards/7"));
  EXPECT_EQ(manager_.storePathWithRelativePath("/boards/7/", "a.plist"),
            folder_.at(".cache/boards/7/a.plist"));
}

TEST_F(PathManager, AStorePathOfAFreshAccountMakesTheCachesDirectoryForItsUserAlone) {
  const mode_t before = ::umask(022);
  EXPECT_EQ(manager_.storePathWithRelativePath("/boards/", "a.plist"),
            folder_.at(".cache/boards/a.plist"));
  ::umask(before);
  EXPECT_TRUE(fs::is_directory(folder_.at(".cache/boards")));
  EXPECT_EQ(permissions(".cache"), 0700U);
  EXPECT_EQ(permissions(".cache/boards"), 0755U) << "the one above keeps others out";
}

TEST_F(PathManager, AStorePathMakesTheFoldersAboveTheCachesDirectoryToo) {
  const ScopedVariable moved("XDG_CACHE_HOME", folder_.at("var/user/caches"));
  manager_.initConfigure();
  const mode_t before = ::umask(022);
  manager_.storePathWithRelativePath("/boards/", "a.plist");
  ::umask(before);
  EXPECT_TRUE(fs::is_directory(folder_.at("var/user/caches/boards")));
  EXPECT_EQ(permissions("var/user/caches"), 0700U);
  EXPECT_EQ(permissions("var/user"), 0755U);
}

TEST_F(PathManager, AStorePathLeavesACachesDirectoryThatExistsAsItIs) {
  fs::create_directory(folder_.at(".cache"));
  fs::permissions(folder_.at(".cache"), fs::perms{0755});
  manager_.storePathWithRelativePath("/boards/", "a.plist");
  EXPECT_EQ(permissions(".cache"), 0755U);
}

TEST_F(PathManager, AStorePathIsGluedTogetherAsPlainText) {
  fs::create_directories(folder_.at(".cache"));
  EXPECT_EQ(manager_.storePathWithRelativePath("boards", "a.plist"),
            folder_.at(".cacheboardsa.plist"));
  EXPECT_TRUE(fs::is_directory(folder_.at(".cacheboards")));
  EXPECT_EQ(manager_.storePathWithRelativePath("", ""), folder_.at(".cache"));
}

TEST_F(PathManager, AFolderIsMadeOnceAndOnlyUnderOneThatExists) {
  EXPECT_TRUE(manager_.checkShouldCreateDirectoryWithPath(folder_.at("d")));
  EXPECT_TRUE(fs::is_directory(folder_.at("d")));
  EXPECT_FALSE(manager_.checkShouldCreateDirectoryWithPath(folder_.at("d")));
  EXPECT_FALSE(manager_.checkShouldCreateDirectoryWithPath(folder_.at("a/b")));
  EXPECT_FALSE(fs::exists(folder_.at("a")));
  put(folder_.at("f"));
  EXPECT_FALSE(manager_.checkShouldCreateDirectoryWithPath(folder_.at("f")));
}

TEST_F(PathManager, TheFolderTestGluesItsSuffixAndTheFileTestAppendsIt) {
  fs::create_directories(documents_ + "/x");
  fs::create_directories(documents_ + "x");
  put(documents_ + "/f");
  put(documents_ + "f");
  EXPECT_TRUE(manager_.isFolderExistWithSuffix("/x"));
  EXPECT_TRUE(manager_.isFolderExistWithSuffix("x")) << "Documentsx";
  EXPECT_TRUE(manager_.isFileExistWithSuffix("f"));
  EXPECT_TRUE(manager_.isFileExistWithSuffix("/f")) << "one separator, not two";
  fs::remove(documents_ + "x");
  fs::remove(documents_ + "/f");
  EXPECT_FALSE(manager_.isFolderExistWithSuffix("x"));
  EXPECT_FALSE(manager_.isFileExistWithSuffix("f")) << "Documentsf is another file";
}

TEST_F(PathManager, TheTestsTellFoldersFromFiles) {
  fs::create_directories(documents_ + "/d");
  put(documents_ + "/f");
  ASSERT_EQ(::mkfifo((documents_ + "/pipe").c_str(), 0600), 0);
  fs::create_symlink("d", documents_ + "/toFolder");
  fs::create_symlink("missing", documents_ + "/dangling");
  const struct {
    const char* name;
    bool isFolder;
    bool isFile;
  } rows[] = {{"d", true, false},        {"f", false, true},         {"pipe", false, true},
              {"toFolder", true, false}, {"dangling", false, false}, {"missing", false, false}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    const std::string path = documents_ + "/" + row.name;
    EXPECT_EQ(manager_.isFolderExist(path), row.isFolder);
    EXPECT_EQ(manager_.isFileExist(path), row.isFile);
    EXPECT_EQ(manager_.isFolderExistWithSuffix(std::string("/") + row.name), row.isFolder);
    EXPECT_EQ(manager_.isFileExistWithSuffix(row.name), row.isFile);
  }
  EXPECT_TRUE(manager_.isFolderExistWithSuffix("")) << "the documents directory itself";
  EXPECT_FALSE(manager_.isFileExistWithSuffix(""));
}

TEST_F(PathManager, TheTestsLookInTheDirectoryOfTheCode) {
  fs::create_directories(folder_.at(".cache/d"));
  put(folder_.at(".local/share/f"));
  EXPECT_TRUE(manager_.isFolderExistWithSuffix("/d", kCaches));
  EXPECT_FALSE(manager_.isFolderExistWithSuffix("/d", kDocuments));
  EXPECT_TRUE(manager_.isFileExistWithSuffix("f", kLibrary));
  EXPECT_FALSE(manager_.isFileExistWithSuffix("f", kCaches));
  for (const std::uint64_t code : {std::uint64_t{0}, std::uint64_t{2}, kLargest}) {
    EXPECT_FALSE(manager_.isFolderExistWithSuffix("", code)) << code;
    EXPECT_FALSE(manager_.isFolderExistWithSuffix(folder_.path(), code)) << code;
    EXPECT_FALSE(manager_.isFileExistWithSuffix(folder_.at(".local/share/f"), code)) << code;
  }
}

TEST_F(PathManager, AFolderIsMadeUnderDirectoryRootFolderAndSuffixWithoutWhatIsEmpty) {
  const struct {
    const char* rootFolder;
    const char* suffix;
    std::string expected;
  } rows[] = {{"", "", documents_},
              {"", "a/b", documents_ + "/a/b"},
              {"course", "", documents_ + "/course"},
              {"course", "7", documents_ + "/course/7"},
              {"/course/", "/8", documents_ + "/course/8"},
              {"/course/", "", documents_ + "/course"},
              {"", "9/", documents_ + "/9"},
              {"course//a/", "//b//c//", documents_ + "/course/a/b/c"},
              {"/", "/", documents_}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.expected);
    manager_.setRootFolder(row.rootFolder);
    EXPECT_THAT(manager_.createFolderWithSuffix(row.suffix), Optional(row.expected));
    EXPECT_TRUE(fs::is_directory(row.expected));
    EXPECT_THAT(manager_.createFolderWithSuffix(row.suffix), Optional(row.expected)) << "again";
  }
}

TEST_F(PathManager, AFolderIsMadeInTheDirectoryOfTheCode) {
  EXPECT_THAT(manager_.createFolderWithSuffix("a", kCaches), Optional(folder_.at(".cache/a")));
  EXPECT_THAT(manager_.createFolderWithSuffix("a", kLibrary),
              Optional(folder_.at(".local/share/a")));
  EXPECT_EQ(manager_.createFolderWithSuffix("a", 0), std::nullopt);
  EXPECT_EQ(manager_.createFolderWithSuffix("a", kLargest), std::nullopt);
}

TEST_F(PathManager, AFolderThatCannotBeMadeIsAbsent) {
  put(documents_ + "/f");
  EXPECT_EQ(manager_.createFolderWithSuffix("f"), std::nullopt);
  EXPECT_EQ(manager_.createFolderWithSuffix("f/below"), std::nullopt);
  EXPECT_EQ(manager_.createFolderWithSuffix(std::string("a\0b", 3)), std::nullopt);
}

TEST_F(PathManager, MakingAFolderByPathMakesTheOnesAboveIt) {
  EXPECT_TRUE(manager_.createFolderWithPath(folder_.at("a/b/c")));
  EXPECT_TRUE(fs::is_directory(folder_.at("a/b/c")));
  EXPECT_TRUE(manager_.createFolderWithPath(folder_.at("a/b/c")));
  put(folder_.at("f"));
  EXPECT_FALSE(manager_.createFolderWithPath(folder_.at("f")));
  EXPECT_FALSE(manager_.createFolderWithPath(folder_.at("f/a")));
}

TEST_F(PathManager, AFileIsMadeEmpty) {
  EXPECT_TRUE(manager_.createFile(folder_.at("new")));
  EXPECT_EQ(fs::file_size(folder_.at("new")), 0U);
  put(folder_.at("full"), "contents");
  EXPECT_TRUE(manager_.createFile(folder_.at("full")));
  EXPECT_EQ(fs::file_size(folder_.at("full")), 0U);
  EXPECT_FALSE(manager_.createFile(folder_.at("missing/f")));
  EXPECT_FALSE(manager_.createFile(folder_.path()));
}

TEST_F(PathManager, AnEmptyFileReplacesTheOldOneWithItsPermissions) {
  put(folder_.at("f"), "contents");
  fs::permissions(folder_.at("f"), fs::perms{0640});
  fs::create_hard_link(folder_.at("f"), folder_.at("second name"));
  EXPECT_TRUE(manager_.createFile(folder_.at("f")));
  EXPECT_EQ(fs::file_size(folder_.at("f")), 0U);
  EXPECT_EQ(permissions("f"), 0640U);
  EXPECT_EQ(fs::file_size(folder_.at("second name")), 8U) << "the old file is another one";
}

TEST_F(PathManager, AnEmptyFileReplacesALinkAndNotWhatItLeadsTo) {
  put(folder_.at("f"), "contents");
  fs::create_symlink("f", folder_.at("link"));
  fs::create_symlink("missing", folder_.at("dangling"));
  EXPECT_TRUE(manager_.createFile(folder_.at("link")));
  EXPECT_TRUE(manager_.createFile(folder_.at("dangling")));
  EXPECT_EQ(fs::file_size(folder_.at("f")), 8U);
  EXPECT_FALSE(fs::exists(folder_.at("missing")));
  for (const char* name : {"link", "dangling"}) {
    EXPECT_TRUE(fs::is_regular_file(fs::symlink_status(folder_.at(name)))) << name;
    EXPECT_EQ(fs::file_size(folder_.at(name)), 0U) << name;
  }
}

TEST_F(PathManager, OnlyAFileIsReplacedByAnEmptyOne) {
  fs::create_directory(folder_.at("d"));
  fs::create_directory_symlink("d", folder_.at("toFolder"));
  ASSERT_EQ(::mkfifo(folder_.at("pipe").c_str(), 0600), 0);
  for (const char* name : {"d", "d/", "toFolder", "pipe", "new/"}) {
    EXPECT_FALSE(manager_.createFile(folder_.at(name))) << name;
  }
  EXPECT_TRUE(fs::is_directory(folder_.at("d")));
  EXPECT_TRUE(fs::is_symlink(folder_.at("toFolder")));
  EXPECT_TRUE(fs::is_fifo(folder_.at("pipe")));
  EXPECT_FALSE(fs::exists(folder_.at("new")));
}

TEST_F(PathManager, RemovingTakesFilesAndWholeFoldersAndNothingIsThereAfterwards) {
  put(folder_.at("d/a/b/f"));
  put(folder_.at("f"));
  EXPECT_TRUE(manager_.removeFolderOrFile(folder_.at("d")));
  EXPECT_TRUE(manager_.removeFolderOrFile(folder_.at("f")));
  EXPECT_TRUE(fs::is_empty(folder_.path()));
  EXPECT_TRUE(manager_.removeFolderOrFile(folder_.at("f"))) << "nothing to remove";
}

TEST_F(PathManager, ARemovalThatFailsSaysSo) {
  FaultyCalls calls;
  DiskFileSystem failing(calls);
  const ScopedFileSystem scope(failing);
  put(folder_.at("f"));
  calls.inject(Fault::failing(Call::kRemoveAll, 1, EACCES));
  EXPECT_FALSE(manager_.removeFolderOrFile(folder_.at("f")));
  EXPECT_TRUE(manager_.removeFolderOrFile(folder_.at("f")));
}

TEST_F(PathManager, FilesAreListedByNameInTheOrderOfTheirBytes) {
  for (const char* name : {"b", "a", "B", "10.plist", "2.plist", "é", "z", ".hidden", "Ω", "a b"}) {
    put(folder_.at(std::string("d/") + name));
  }
  fs::create_directory(folder_.at("d/sub"));
  put(folder_.at("d/sub/deep"));
  fs::create_symlink("sub", folder_.at("d/toFolder"));
  fs::create_symlink("missing", folder_.at("d/dangling"));
  fs::create_symlink("a", folder_.at("d/toFile"));
  EXPECT_THAT(manager_.filesAtPath(folder_.at("d")),
              Optional(ElementsAre(".hidden", "10.plist", "2.plist", "B", "a", "a b", "b", "toFile",
                                   "z", "é", "Ω")));
  EXPECT_EQ(manager_.filesAtPath(folder_.at("d/")), manager_.filesAtPath(folder_.at("d")));
}

TEST_F(PathManager, FilesAreListedByTheEndOfTheirNames) {
  for (const char* name : {"snap_1.plist", "a.PLIST", ".plist", "plist", "x.plist.tmp"}) {
    put(folder_.at(std::string("d/") + name));
  }
  fs::create_directory(folder_.at("d/folder.plist"));
  const std::string folder = folder_.at("d");
  EXPECT_THAT(manager_.filesAtPath(folder, ".plist"),
              Optional(ElementsAre(".plist", "snap_1.plist")));
  EXPECT_THAT(manager_.filesAtPath(folder, "snap_1.plist"), Optional(ElementsAre("snap_1.plist")));
  EXPECT_THAT(manager_.filesAtPath(folder, "longer than snap_1.plist"), Optional(IsEmpty()));
  EXPECT_THAT(manager_.filesAtPath(folder, ""), Optional(IsEmpty()));
  EXPECT_EQ(manager_.filesAtPath(folder, std::nullopt), manager_.filesAtPath(folder));
}

TEST_F(PathManager, ThereIsNoListOfWhatIsNoFolder) {
  put(folder_.at("f"));
  EXPECT_EQ(manager_.filesAtPath(folder_.at("missing")), std::nullopt);
  EXPECT_EQ(manager_.filesAtPath(folder_.at("f")), std::nullopt);
  EXPECT_EQ(manager_.filesAtPath(folder_.at("missing"), ""), std::nullopt);
  fs::create_directories(folder_.at("d/only/folders"));
  EXPECT_THAT(manager_.filesAtPath(folder_.at("d")), Optional(IsEmpty()));
}

TEST_F(PathManager, AFolderThatCannotBeReadHasNoList) {
  FaultyCalls calls;
  DiskFileSystem failing(calls);
  const ScopedFileSystem scope(failing);
  put(folder_.at("f"));
  calls.inject(Fault::failing(Call::kList, 1, EIO));
  EXPECT_EQ(manager_.filesAtPath(folder_.path()), std::nullopt);
  EXPECT_THAT(manager_.filesAtPath(folder_.path()), Optional(ElementsAre("f")));
}

TEST_F(PathManager, APathThatNamesNothingGivesTheQuietResult) {
  put(folder_.at("f"));
  for (const std::string& path : {std::string(), std::string("\0", 1),
                                  folder_.at("f") + std::string("\0", 1), std::string(9000, 'x')}) {
    SCOPED_TRACE(path.size());
    EXPECT_FALSE(manager_.isFolderExist(path));
    EXPECT_FALSE(manager_.isFileExist(path));
    EXPECT_FALSE(manager_.checkShouldCreateDirectoryWithPath(path));
    EXPECT_FALSE(manager_.createFolderWithPath(path));
    EXPECT_FALSE(manager_.createFile(path));
    EXPECT_EQ(manager_.filesAtPath(path), std::nullopt);
    EXPECT_TRUE(manager_.removeFolderOrFile(path)) << "nothing is there";
  }
  EXPECT_TRUE(fs::exists(folder_.at("f")));
}

}  // namespace
}  // namespace VelWhiteBoard
