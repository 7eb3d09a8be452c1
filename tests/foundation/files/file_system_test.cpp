// The contract of FileSystem on the contents of files, held by every implementation of it.
#include "VelWhiteBoard/foundation/files/file_system.h"

#include <cerrno>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/support/file_systems.h"
#include "tests/support/write_all.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
class FileContents : public FileSystems {};

TEST_P(FileContents, WhatWasWrittenIsReadBackInBlocks) {
  for (const std::size_t size : {std::size_t{0}, std::size_t{1}, kFileBlockSize - 1, kFileBlockSize,
                                 kFileBlockSize + 1, 3 * kFileBlockSize + 7}) {
    SCOPED_TRACE(size);
    std::string written;
    for (std::size_t i = 0; i < size; ++i) written += static_cast<char>(i % 251);
    put("page.plist", written);
    std::string read;
    const FileResult result = files().read(at("page.plist"), [&](std::string_view block) {
      EXPECT_GT(block.size(), 0U);
      EXPECT_LE(block.size(), kFileBlockSize);
      read += block;
      return true;
    });
    EXPECT_TRUE(result) << result.describe();
    EXPECT_TRUE(read == written);
  }
}

TEST_P(FileContents, TheBytesOfAFileAreTheWholeOfIt) {
  for (const std::size_t size :
       {std::size_t{0}, std::size_t{1}, kFileBlockSize, 5 * kFileBlockSize + 7}) {
    SCOPED_TRACE(size);
    std::string written;
    for (std::size_t i = 0; i < size; ++i) written += static_cast<char>(i % 251);
    put("page.plist", written);
    FileBytes bytes;
    const FileResult result = files().readBytes(at("page.plist"), bytes);
    EXPECT_TRUE(result) << result.describe();
    EXPECT_TRUE(bytes.view() == written);
  }
}

TEST_P(FileContents, BytesThatWereReadOutliveTheirFile) {
  put("f", "contents");
  FileBytes bytes;
  ASSERT_TRUE(files().readBytes(at("f"), bytes));
  put("f", "new");
  EXPECT_TRUE(files().removeRecursively(at("f")));
  EXPECT_EQ(bytes.view(), "contents");
}

TEST_P(FileContents, OnlyAFileHasBytesAndAFailureLeavesNone) {
  put("f", "x");
  ASSERT_TRUE(files().makeFolder(at("d")));
  const struct {
    const char* name;
    int error;
  } rows[] = {{"missing", ENOENT}, {"missing/f", ENOENT}, {"f/below", ENOTDIR}, {"d", EISDIR}};
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    FileBytes bytes;
    ASSERT_TRUE(files().readBytes(at("f"), bytes));
    ASSERT_EQ(bytes.view(), "x");
    expectFailure(files().readBytes(at(row.name), bytes), FileStep::kOpen, row.error);
    EXPECT_EQ(bytes.view(), "");
  }
}

TEST_P(FileContents, PiecesOfAnySizeBecomeOneFileInTheirOrder) {
  std::string expected;
  const FileResult result = files().writeAtomically(at("f"), [&](const BlockConsumer& write) {
    for (const std::size_t size :
         {std::size_t{3}, std::size_t{0}, kFileBlockSize, std::size_t{5}, kFileBlockSize - 5,
          std::size_t{1}, 2 * kFileBlockSize + 1, std::size_t{2}}) {
      const std::string piece(size, static_cast<char>('a' + expected.size() % 26));
      EXPECT_TRUE(write(piece));
      expected += piece;
    }
    return true;
  });
  EXPECT_TRUE(result) << result.describe();
  EXPECT_TRUE(contents("f") == expected);
}

TEST_P(FileContents, AReaderThatHasEnoughStopsWithoutAFailure) {
  put("f", std::string(3 * kFileBlockSize, 'x'));
  int blocks = 0;
  const FileResult result = files().read(at("f"), [&](std::string_view) {
    ++blocks;
    return false;
  });
  EXPECT_TRUE(result) << result.describe();
  EXPECT_EQ(blocks, 1);
}

TEST_P(FileContents, AFileBeingReadKeepsItsContentsWhileItIsReplaced) {
  put("f", std::string(2 * kFileBlockSize, 'o'));
  std::string read;
  const FileResult result = files().read(at("f"), [&](std::string_view block) {
    if (read.empty()) put("f", "new");
    read += block;
    return true;
  });
  EXPECT_TRUE(result) << result.describe();
  EXPECT_TRUE(read == std::string(2 * kFileBlockSize, 'o'));
  EXPECT_EQ(contents("f"), "new");
}

TEST_P(FileContents, OnlyAFileCanBeRead) {
  put("f", "x");
  const auto nothing = [](std::string_view) {
    ADD_FAILURE() << "nothing to read";
    return true;
  };
  expectFailure(files().read(at("missing"), nothing), FileStep::kOpen, ENOENT);
  expectFailure(files().read(at("missing/f"), nothing), FileStep::kOpen, ENOENT);
  expectFailure(files().read(at("f/below"), nothing), FileStep::kOpen, ENOTDIR);
  expectFailure(files().read(at(""), nothing), FileStep::kOpen, EISDIR);
}

TEST_P(FileContents, AFailureNamesThePathItBelongsTo) {
  FileBytes ignored;
  EXPECT_EQ(files().readBytes(at("missing"), ignored).path, at("missing"));
  EXPECT_EQ(files().readBytes(at("missing"), ignored).describe(),
            "open " + at("missing") + ": No such file or directory");
}

TEST_P(FileContents, AProducerThatGivesUpReplacesNothing) {
  put("f", "old");
  const FileResult result = files().writeAtomically(at("f"), [](const BlockConsumer& write) {
    EXPECT_TRUE(write(std::string(2 * kFileBlockSize, 'x')));
    return false;
  });
  expectFailure(result, FileStep::kProduce, 0);
  EXPECT_EQ(contents("f"), "old");
  EXPECT_THAT(entries(), ElementsAre("f"));
}

TEST_P(FileContents, AProducerThatThrowsReplacesNothing) {
  put("f", "old");
  const auto write = [&] {
    return files().writeAtomically(at("f"), [](const BlockConsumer& out) -> bool {
      EXPECT_TRUE(out(std::string(2 * kFileBlockSize, 'x')));
      throw std::runtime_error("no more");
    });
  };
  EXPECT_THROW(static_cast<void>(write()), std::runtime_error);
  EXPECT_EQ(contents("f"), "old");
  EXPECT_THAT(entries(), ElementsAre("f"));
}

TEST_P(FileContents, WritingMakesNoFolders) {
  expectFailure(writeAll(files(), at("missing/f"), "x"), FileStep::kOpen, ENOENT);
  EXPECT_THAT(entries(), IsEmpty());
}

TEST_P(FileContents, AFolderIsNotReplacedByAFile) {
  ASSERT_TRUE(files().makeFolder(at("d")));
  expectFailure(writeAll(files(), at("d"), "x"), FileStep::kRename, EISDIR);
  EXPECT_THAT(entries(), ElementsAre("d"));
  EXPECT_EQ(files().kind(at("d")), FileKind::kFolder);
}

TEST_P(FileContents, ALeftoverTemporaryIsUsedUpByTheNextWrite) {
  put("f.tmp", std::string(5000, 'x'));
  put("f", "new");
  EXPECT_EQ(contents("f"), "new");
  EXPECT_THAT(entries(), ElementsAre("f"));
}

TEST_P(FileContents, AnEmptyPathOrANulByteNamesNothing) {
  put("f", "x");
  Names names;
  FileBytes bytes;
  for (const std::string& path : {std::string(), at("f") + std::string("\0", 1),
                                  at("f") + std::string("\0.plist", 7), std::string("\0", 1)}) {
    EXPECT_EQ(files().kind(path), FileKind::kAbsent);
    expectFailure(files().readBytes(path, bytes), FileStep::kOpen, ENOENT);
    expectFailure(writeAll(files(), path, "new"), FileStep::kOpen, ENOENT);
    expectFailure(files().list(path, names), FileStep::kList, ENOENT);
    expectFailure(files().makeFolder(path), FileStep::kMakeFolder, ENOENT);
    expectFailure(files().makeFolders(path), FileStep::kMakeFolder, ENOENT);
    expectFailure(files().createEmptyFile(path), FileStep::kOpen, ENOENT);
    expectFailure(files().rename(path, at("g")), FileStep::kRename, ENOENT);
    expectFailure(files().rename(at("f"), path), FileStep::kRename, ENOENT);
    expectFailure(files().renameToNew(path, at("g")), FileStep::kRename, ENOENT);
    expectFailure(files().renameToNew(at("f"), path), FileStep::kRename, ENOENT);
    EXPECT_TRUE(files().removeRecursively(path));
  }
  EXPECT_THAT(entries(), ElementsAre("f"));
  EXPECT_EQ(contents("f"), "x");
}

INSTANTIATE_TEST_SUITE_P(Contract, FileContents, allImplementations(), nameOfImplementation);

}  // namespace
}  // namespace VelWhiteBoard
