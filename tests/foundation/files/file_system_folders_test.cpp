// The contract of FileSystem on names and folders, held by every implementation of it.
#include <cerrno>
#include <cstdint>
#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/file_system.h"

#include "tests/support/file_systems.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;
using ::testing::UnorderedElementsAre;
class Folders : public FileSystems {};

TEST_P(Folders, TheStatusTellsFilesFromFoldersFromNothing) {
  put("f", "12345");
  ASSERT_TRUE(files().makeFolder(at("d")));
  const struct {
    const char* name;
    FileKind kind;
    std::uint64_t size;
  } rows[] = {{"f", FileKind::kFile, 5},     {"d", FileKind::kFolder, 0},
              {"d/", FileKind::kFolder, 0},  {"", FileKind::kFolder, 0},
              {"d/.", FileKind::kFolder, 0}, {"missing", FileKind::kAbsent, 0},
              {"f/", FileKind::kAbsent, 0},  {"f/x", FileKind::kAbsent, 0},
              {"d/x", FileKind::kAbsent, 0}, {"d/../f", FileKind::kFile, 5}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    FileStatus status{FileKind::kOther, 99};
    const FileResult result = files().status(at(row.name), status);
    EXPECT_TRUE(result) << result.describe();
    EXPECT_EQ(status.kind, row.kind);
    EXPECT_EQ(status.size, row.size);
    EXPECT_EQ(files().exists(at(row.name)), row.kind != FileKind::kAbsent);
  }
}

TEST_P(Folders, MakingOneFolderNeedsItsParentAndAFreeName) {
  put("f", "x");
  EXPECT_TRUE(files().makeFolder(at("d")));
  EXPECT_EQ(files().kind(at("d")), FileKind::kFolder);
  expectFailure(files().makeFolder(at("d")), FileStep::kMakeFolder, EEXIST);
  expectFailure(files().makeFolder(at("f")), FileStep::kMakeFolder, EEXIST);
  expectFailure(files().makeFolder(at("a/b")), FileStep::kMakeFolder, ENOENT);
  expectFailure(files().makeFolder(at("f/b")), FileStep::kMakeFolder, ENOTDIR);
  EXPECT_THAT(entries(), UnorderedElementsAre("d", "f"));
}

TEST_P(Folders, MakingAPrivateFolderNeedsItsParentAndAFreeName) {
  EXPECT_TRUE(files().makePrivateFolder(at("d")));
  EXPECT_EQ(files().kind(at("d")), FileKind::kFolder);
  put("d/f", "x");
  expectFailure(files().makePrivateFolder(at("d")), FileStep::kMakeFolder, EEXIST);
  expectFailure(files().makePrivateFolder(at("a/b")), FileStep::kMakeFolder, ENOENT);
  expectFailure(files().makePrivateFolder(""), FileStep::kMakeFolder, ENOENT);
  EXPECT_THAT(entries(), ElementsAre("d"));
}

TEST_P(Folders, MakingFoldersMakesAllThatAreMissing) {
  for (const char* name : {"a/b/c", "a/b/c", "a/b", "a/d/", "e//f", "e/./g"}) {
    SCOPED_TRACE(name);
    const FileResult result = files().makeFolders(at(name));
    EXPECT_TRUE(result) << result.describe();
    EXPECT_EQ(files().kind(at(name)), FileKind::kFolder);
  }
  EXPECT_THAT(entries(), UnorderedElementsAre("a", "e"));
  EXPECT_THAT(entries(at("a")), UnorderedElementsAre("b", "d"));
  EXPECT_THAT(entries(at("e")), UnorderedElementsAre("f", "g"));
}

TEST_P(Folders, MakingFoldersStopsAtAFile) {
  put("f", "x");
  expectFailure(files().makeFolders(at("f")), FileStep::kMakeFolder, EEXIST);
  EXPECT_FALSE(files().makeFolders(at("f/a/b")).ok());
  EXPECT_EQ(contents("f"), "x");
}

TEST_P(Folders, AnEmptyFileIsMadeOrMadeEmpty) {
  put("full", "contents");
  ASSERT_TRUE(files().makeFolder(at("d")));
  EXPECT_TRUE(files().createEmptyFile(at("new")));
  EXPECT_TRUE(files().createEmptyFile(at("full")));
  EXPECT_EQ(contents("new"), "");
  EXPECT_EQ(contents("full"), "");
  expectFailure(files().createEmptyFile(at("d")), FileStep::kOpen, EISDIR);
  expectFailure(files().createEmptyFile(at("missing/f")), FileStep::kOpen, ENOENT);
  EXPECT_THAT(entries(), UnorderedElementsAre("d", "full", "new"));
}

TEST_P(Folders, AnEmptyFileReplacesTheOldOneWhichItsReadersKeep) {
  put("f", "contents");
  std::unique_ptr<OpenedFile> reader;
  ASSERT_TRUE(files().open(at("f"), reader));
  EXPECT_TRUE(files().createEmptyFile(at("f")));
  EXPECT_EQ(contents("f"), "");
  std::string read;
  const FileResult result = reader->read([&read](std::string_view block) {
    read += block;
    return true;
  });
  EXPECT_TRUE(result) << result.describe();
  EXPECT_EQ(read, "contents");
  EXPECT_THAT(entries(), ElementsAre("f"));
}

TEST_P(Folders, RemovingTakesAFolderWithAllItsContents) {
  ASSERT_TRUE(files().makeFolders(at("d/a/b")));
  ASSERT_TRUE(files().makeFolders(at("da")));
  for (const char* name : {"d/1", "d/a/2", "d/a/b/3", "f"}) put(name, "x");
  EXPECT_TRUE(files().removeRecursively(at("d/")));
  EXPECT_THAT(entries(), UnorderedElementsAre("da", "f"));
  EXPECT_TRUE(files().removeRecursively(at("f")));
  EXPECT_THAT(entries(), ElementsAre("da"));
}

TEST_P(Folders, RemovingNothingIsASuccess) {
  put("f", "x");
  for (const char* name : {"missing", "missing/f", "f/below"}) {
    EXPECT_TRUE(files().removeRecursively(at(name))) << name;
  }
  EXPECT_THAT(entries(), ElementsAre("f"));
}

TEST_P(Folders, AFolderWithoutANameOfItsOwnIsNotRemoved) {
  ASSERT_TRUE(files().makeFolder(at("d")));
  put("d/f", "x");
  for (const char* name : {"d/.", "d/./", "d/../d/.", "d/x/.."}) {
    SCOPED_TRACE(name);
    expectFailure(files().removeRecursively(at(name)), FileStep::kRemove, EINVAL);
  }
  EXPECT_EQ(contents("d/f"), "x");
}

TEST_P(Folders, AListHoldsTheNamesOfOneLevel) {
  ASSERT_TRUE(files().makeFolders(at("d/below")));
  for (const char* name : {"d/b", "d/a", "d/below/deep", "outside"}) put(name, "x");
  Names names = {"before"};
  EXPECT_TRUE(files().list(at("d"), names));
  EXPECT_EQ(names.front(), "before");
  EXPECT_THAT(names, UnorderedElementsAre("before", "a", "b", "below"));
}

TEST_P(Folders, OnlyAFolderCanBeListed) {
  put("f", "x");
  Names names = {"before"};
  expectFailure(files().list(at("f"), names), FileStep::kList, ENOTDIR);
  expectFailure(files().list(at("missing"), names), FileStep::kList, ENOENT);
  EXPECT_THAT(names, ElementsAre("before"));
}

TEST_P(Folders, RenamingMovesAndReplaces) {
  ASSERT_TRUE(files().makeFolder(at("d")));
  put("f", "new");
  put("d/g", "old");
  EXPECT_TRUE(files().rename(at("f"), at("d/g")));
  EXPECT_EQ(contents("d/g"), "new");
  EXPECT_TRUE(files().rename(at("d"), at("e")));
  EXPECT_EQ(contents("e/g"), "new");
  EXPECT_THAT(entries(), ElementsAre("e"));
}

TEST_P(Folders, RenamingThatCannotBeLeavesBothAsTheyWere) {
  ASSERT_TRUE(files().makeFolder(at("d")));
  put("f", "x");
  expectFailure(files().rename(at("missing"), at("f")), FileStep::kRename, ENOENT);
  expectFailure(files().rename(at("f"), at("missing/f")), FileStep::kRename, ENOENT);
  expectFailure(files().rename(at("f"), at("d")), FileStep::kRename, EISDIR);
  expectFailure(files().rename(at("d"), at("f")), FileStep::kRename, ENOTDIR);
  expectFailure(files().rename(at("d"), at("d/e")), FileStep::kRename, EINVAL);
  EXPECT_THAT(entries(), UnorderedElementsAre("d", "f"));
  EXPECT_EQ(contents("f"), "x");
}

TEST_P(Folders, RenamingToANewNameMovesFilesAndFolders) {
  ASSERT_TRUE(files().makeFolder(at("d")));
  put("f", "contents");
  put("d/g", "below");
  EXPECT_TRUE(files().renameToNew(at("f"), at("d/f")));
  EXPECT_TRUE(files().renameToNew(at("d"), at("e")));
  EXPECT_THAT(entries(), ElementsAre("e"));
  EXPECT_THAT(entries(at("e")), UnorderedElementsAre("f", "g"));
  EXPECT_EQ(contents("e/f"), "contents");
  EXPECT_EQ(contents("e/g"), "below");
}

TEST_P(Folders, RenamingToANewNameReplacesNothing) {
  ASSERT_TRUE(files().makeFolder(at("d")));
  ASSERT_TRUE(files().makeFolder(at("e")));
  put("f", "new");
  put("g", "old");
  const struct {
    const char* from;
    const char* to;
  } rows[] = {{"f", "g"}, {"f", "d"}, {"d", "f"}, {"d", "e"}, {"f", "f"}, {"d", "d"}};
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(row.from) + " to " + row.to);
    expectFailure(files().renameToNew(at(row.from), at(row.to)), FileStep::kRename, EEXIST);
  }
  EXPECT_THAT(entries(), UnorderedElementsAre("d", "e", "f", "g"));
  EXPECT_EQ(contents("f"), "new");
  EXPECT_EQ(contents("g"), "old");
}

TEST_P(Folders, RenamingToANewNameNeedsWhatItMovesAndTheFolderItMovesTo) {
  ASSERT_TRUE(files().makeFolder(at("d")));
  put("f", "x");
  expectFailure(files().renameToNew(at("missing"), at("g")), FileStep::kRename, ENOENT);
  expectFailure(files().renameToNew(at("missing"), at("f")), FileStep::kRename, ENOENT);
  expectFailure(files().renameToNew(at("f"), at("missing/f")), FileStep::kRename, ENOENT);
  expectFailure(files().renameToNew(at("d"), at("d/e")), FileStep::kRename, EINVAL);
  EXPECT_THAT(entries(), UnorderedElementsAre("d", "f"));
}

TEST_P(Folders, UnusedTemporariesOfTheNamedTargetsAreRemoved) {
  ASSERT_TRUE(files().makeFolder(at("d")));
  ASSERT_TRUE(files().makeFolder(at("folder.plist.tmp")));
  for (const char* name : {"a.plist", "a.plist.tmp", "b.plist.tmp-12", "c.txt.tmp", "c.plist.tmp-x",
                           "d/below.plist.tmp"}) {
    put(name, "x");
  }
  const FileResult result = files().removeUnusedTemporaries(at(""), ".plist");
  EXPECT_TRUE(result) << result.describe();
  EXPECT_THAT(entries(), UnorderedElementsAre("a.plist", "c.txt.tmp", "c.plist.tmp-x", "d",
                                              "folder.plist.tmp"));
  EXPECT_THAT(entries(at("d")), ElementsAre("below.plist.tmp"));
}

TEST_P(Folders, OnlyAFolderIsRidOfTemporaries) {
  put("f.plist.tmp", "x");
  expectFailure(files().removeUnusedTemporaries(at("missing"), ".plist"), FileStep::kList, ENOENT);
  expectFailure(files().removeUnusedTemporaries(at("f.plist.tmp"), ".plist"), FileStep::kList,
                ENOTDIR);
  EXPECT_EQ(contents("f.plist.tmp"), "x");
}

INSTANTIATE_TEST_SUITE_P(Contract, Folders, allImplementations(), nameOfImplementation);

}  // namespace
}  // namespace VelWhiteBoard
