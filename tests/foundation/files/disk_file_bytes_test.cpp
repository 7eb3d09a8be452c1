// How the whole of a file is read from a real disk.
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <string>

#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"

#include "tests/support/faulty_calls.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/write_all.h"

namespace VelWhiteBoard {
namespace {

namespace fs = std::filesystem;

class DiskFileBytes : public ::testing::Test {
 protected:
  TemporaryFolder folder_;
  FaultyCalls calls_;
  DiskFileSystem files_{calls_};
};

TEST_F(DiskFileBytes, BytesOfAFileThatIsLongerThanItsStatusSaysAreReadToTheEnd) {
  const std::string target = folder_.at("f");
  std::string written = "short";
  ASSERT_TRUE(writeAll(files_, target, written));
  // Before each of the first reads another program appends to the file.
  for (int nth = 1; nth <= 4; ++nth) {
    calls_.before(Call::kRead, nth, [&] {
      const std::string more(kFileBlockSize, static_cast<char>('0' + calls_.count(Call::kRead)));
      std::ofstream(target, std::ios::app) << more;
      written += more;
    });
  }
  FileBytes bytes;
  const FileResult result = files_.readBytes(target, bytes);
  EXPECT_TRUE(result) << result.describe();
  EXPECT_EQ(written.size(), 5 + 4 * kFileBlockSize);
  EXPECT_TRUE(bytes.view() == written);
}

TEST_F(DiskFileBytes, BytesOfAFileThatHasBecomeShorterAreWhatIsLeft) {
  const std::string target = folder_.at("f");
  ASSERT_TRUE(writeAll(files_, target, "contents"));
  calls_.before(Call::kRead, 1, [&] { fs::resize_file(target, 3); });
  FileBytes bytes;
  EXPECT_TRUE(files_.readBytes(target, bytes));
  EXPECT_EQ(bytes.view(), "con");
}

TEST_F(DiskFileBytes, TheBytesOfALargeFileTakeTwoReadsAndNoHandleAfterwards) {
  ASSERT_TRUE(writeAll(files_, folder_.at("f"), std::string(100 * kFileBlockSize, 'x')));
  calls_.resetCounts();
  FileBytes bytes;
  EXPECT_TRUE(files_.readBytes(folder_.at("f"), bytes));
  EXPECT_EQ(bytes.size(), 100 * kFileBlockSize);
  EXPECT_EQ(calls_.count(Call::kRead), 2) << "one for the contents and one that meets the end";
  EXPECT_EQ(calls_.openHandles(), 0U);
}

TEST_F(DiskFileBytes, BytesThatCannotBeReadAreAFailureAtItsStep) {
  ASSERT_TRUE(writeAll(files_, folder_.at("f"), "contents"));
  const struct {
    Call call;
    int nth;
    FileStep step;
  } rows[] = {{Call::kOpen, 1, FileStep::kOpen},
              {Call::kStatus, 1, FileStep::kOpen},
              {Call::kRead, 1, FileStep::kRead},
              {Call::kRead, 2, FileStep::kRead}};
  for (const auto& row : rows) {
    SCOPED_TRACE(std::string(callName(row.call)) + " " + std::to_string(row.nth));
    FileBytes bytes;
    calls_.inject(Fault::failing(row.call, row.nth, EIO));
    const FileResult result = files_.readBytes(folder_.at("f"), bytes);
    EXPECT_EQ(fileStepName(result.step), fileStepName(row.step));
    EXPECT_EQ(result.error, EIO);
    EXPECT_EQ(result.path, folder_.at("f"));
    EXPECT_EQ(bytes.view(), "");
    EXPECT_EQ(calls_.openHandles(), 0U);
  }
}

}  // namespace
}  // namespace VelWhiteBoard
