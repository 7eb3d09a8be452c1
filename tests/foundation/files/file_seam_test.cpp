// What belongs to the seam itself rather than to what lies behind it.
#include <cerrno>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/file_system.h"

#include "tests/support/memory_file_system.h"

namespace VelWhiteBoard {
namespace {

TEST(FileSeam, AScopePutsAnotherFileSystemInPlaceAndTheOldOneBack) {
  FileSystem& disk = FileSystem::current();
  {
    MemoryFileSystem outer;
    const ScopedFileSystem outerScope(outer);
    EXPECT_EQ(&FileSystem::current(), &outer);
    {
      MemoryFileSystem inner;
      const ScopedFileSystem innerScope(inner);
      EXPECT_EQ(&FileSystem::current(), &inner);
    }
    EXPECT_EQ(&FileSystem::current(), &outer);
  }
  EXPECT_EQ(&FileSystem::current(), &disk);
}

TEST(FileSeam, AnAppendedComponentStandsAfterOneSeparatorAndEndsInNone) {
  const struct {
    const char* base;
    const char* component;
    const char* expected;
  } rows[] = {{"/a", "b", "/a/b"},      {"/a/", "b", "/a/b"},   {"/a//", "b", "/a/b"},
              {"/a", "/b", "/a/b"},     {"/a/", "//b", "/a/b"}, {"/", "b", "/b"},
              {"//", "/b", "/b"},       {"a", "b/c", "a/b/c"},  {"a", "b/", "a/b"},
              {"a", "b//c//", "a/b/c"}, {"", "b", "b"},         {"", "/b", "/b"},
              {"", "/b//c/", "/b/c"},   {"", "b/", "b"},        {"/a", "", "/a"},
              {"/a/", "", "/a"},        {"/a", "/", "/a"},      {"/a/", "//", "/a"},
              {"/", "", "/"},           {"//", "/", "/"},       {"", "/", "/"},
              {"", "//", "/"},          {"", "", ""},           {"/a//b", "c", "/a//b/c"}};
  for (const auto& row : rows) {
    EXPECT_EQ(appendPathComponent(row.base, row.component), row.expected)
        << "'" << row.base << "' + '" << row.component << "'";
  }
}

TEST(FileSeam, SeparatorsAtTheEndOfAPathGoExceptForTheRoot) {
  EXPECT_EQ(withoutTrailingSeparators("/a/b//"), "/a/b");
  EXPECT_EQ(withoutTrailingSeparators("/a"), "/a");
  EXPECT_EQ(withoutTrailingSeparators("///"), "/");
  EXPECT_EQ(withoutTrailingSeparators(""), "");
}

TEST(FileSeam, AFailureReadsAsStepPathAndReason) {
  EXPECT_EQ(FileResult::success().describe(), "success");
  EXPECT_EQ(FileResult::failure(FileStep::kWrite, ENOSPC, "/b/page.plist.tmp").describe(),
            "write /b/page.plist.tmp: No space left on device");
  EXPECT_EQ(FileResult::failure(FileStep::kProduce, 0, "/b/page.plist").describe(),
            "produce /b/page.plist");
}

TEST(FileSeam, EveryStepHasANameOfItsOwn) {
  std::set<std::string_view> names;
  for (int step = 0; step <= static_cast<int>(FileStep::kList); ++step) {
    names.insert(fileStepName(static_cast<FileStep>(step)));
  }
  EXPECT_EQ(names.size(), static_cast<std::size_t>(FileStep::kList) + 1);
  EXPECT_EQ(names.count("unknown step"), 0U);
}

}  // namespace
}  // namespace VelWhiteBoard
