// The board's folder: what is created, what the files hold, how they are read, when they are saved.
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "VelWhiteBoard/foundation/files/disk_file_system.h"
#include "VelWhiteBoard/foundation/files/file_system.h"
#include "VelWhiteBoard/storage/vector_storage.h"
#include "VelWhiteBoard/vectors/diagrams.h"

#include "tests/support/faulty_calls.h"
#include "tests/support/storage_story.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/write_all.h"

namespace VelWhiteBoard {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::string plist(const std::string& body) {
  return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<plist version=\"1.0\">" + body +
         "</plist>\n";
}

std::string entry(const std::string& key, const std::string& value) {
  return "<key>" + key + "</key>" + value;
}

std::string dictionary(const std::string& type, const std::string& more = "") {
  return "<dict>" + entry("type", "<string>" + type + "</string>") + more + "</dict>";
}

std::string switchTo(int page) {
  return dictionary("switchPage",
                    entry("curPage", "<integer>" + std::to_string(page) + "</integer>") +
                        entry("WBID", "<integer>5</integer>"));
}

// ---- Opening

TEST(OpeningABoard, CreatesTheFolderWhiteBoardBelowThePathThatIsGiven) {
  const TemporaryFolder parent;
  const auto storage = VWBVectorStorage::initWithPath(parent.path());
  EXPECT_EQ(storage->folder(), parent.at("whiteBoard"));
  EXPECT_EQ(storage->pageFile(), parent.at("whiteBoard/page.plist"));
  EXPECT_TRUE(std::filesystem::is_directory(parent.at("whiteBoard")));
  EXPECT_TRUE(std::filesystem::is_empty(parent.at("whiteBoard")));
}

TEST(OpeningABoard, StartsWithNothingAndIgnoresChanges) {
  const TemporaryFolder parent;
  HandClock clock;
  const ScopedClock scope(clock);
  const auto storage = VWBVectorStorage::initWithPath(parent.path());
  EXPECT_TRUE(storage->ignoreChanges());
  EXPECT_FALSE(storage->hasNewChange());
  EXPECT_EQ(storage->currentPage(), nullptr);
  EXPECT_EQ(storage->latestPage(), nullptr);
  EXPECT_EQ(storage->wholeFile(), std::nullopt);
  EXPECT_EQ(storage->snapFile(), std::nullopt);
  EXPECT_THAT(storage->pageArray(), IsEmpty());
  EXPECT_THAT(storage->wholeVectorss(), IsEmpty());
  EXPECT_THAT(storage->snapVectorss(), IsEmpty());
  EXPECT_THAT(storage->snapQuery(), IsEmpty());
  EXPECT_THAT(storage->pageCacheList(), IsEmpty());
  EXPECT_EQ(storage->lastSaveDate(), clock.wallTime());
  EXPECT_NE(storage->saveQueue(), nullptr);
}

TEST(OpeningABoard, MakesASemaphoreOfCountOne) {
  const Board board;
  ASSERT_NE(board->semphore(), nullptr);
  EXPECT_TRUE(board->semphore()->try_acquire());
  EXPECT_FALSE(board->semphore()->try_acquire());
  board->semphore()->release();
}

TEST(OpeningABoard, CreatesMissingFoldersAboveIt) {
  const TemporaryFolder parent;
  const auto storage = VWBVectorStorage::initWithPath(parent.at("a/b/c"));
  EXPECT_TRUE(std::filesystem::is_directory(parent.at("a/b/c/whiteBoard")));
}

TEST(OpeningABoard, PutsExactlyOneSeparatorBehindAPathThatEndsInOne) {
  const TemporaryFolder parent;
  EXPECT_EQ(VWBVectorStorage::initWithPath(parent.path() + "/")->folder(), parent.at("whiteBoard"));
}

TEST(OpeningABoard, WhoseFolderCannotBeMadeStillWorksInMemory) {
  const TemporaryFolder parent;
  ASSERT_TRUE(writeAll(FileSystem::current(), parent.at("file"), "in the way"));
  const auto storage = VWBVectorStorage::initWithPath(parent.at("file"));
  storage->setIgnoreChanges(false);
  storage->switchPage(page(1, 1));
  storage->saveVector(line("a", 1, 2, 3));
  storage->saveFile(true);
  storage->saveQueue()->waitUntilAllOperationsAreFinished();
  EXPECT_THAT(tell(storage->snapWithPage(*page(1, 1))), ElementsAre("line a (1 2 3)"));
  EXPECT_TRUE(std::filesystem::is_regular_file(parent.at("file")));
}

// ---- Visited pages, read

TEST(ThePageFile, GivesItsSwitchPageRecordsInFileOrder) {
  Board board;
  board.plant("page.plist",
              plist("<array>" + switchTo(3) + switchTo(1) + switchTo(2) + "</array>"));
  board.reopen();
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("5_3", "5_1", "5_2"));
  EXPECT_EQ(board->latestPage()->curPage, 2U);
}

TEST(ThePageFile, DropsWhatIsNoSwitchPageRecord) {
  Board board;
  board.plant("page.plist", plist("<array><string>x</string>" + switchTo(1) + dictionary("line") +
                                  "<dict><key>w</key><real>1</real></dict><integer>4</integer>" +
                                  switchTo(2) + "<array>" + switchTo(9) + "</array></array>"));
  board.reopen();
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("5_1", "5_2"));
}

TEST(ThePageFile, TakesADictionaryWithoutTypeAndSizeForAPage) {
  Board board;
  board.plant("page.plist",
              plist("<array><dict><key>WBID</key><integer>7</integer></dict></array>"));
  board.reopen();
  EXPECT_THAT(tell(board->pageArray()), ElementsAre("7_0"));
}

TEST(ThePageFile, ThatIsMissingEmptyOrDamagedIsAnEmptyList) {
  for (const std::string& contents :
       {std::string(), std::string("no property list"), plist(switchTo(1)),
        plist("<string>array</string>"), plist("<array>" + switchTo(1)),
        plist("<array>" + switchTo(1) + "</array>") + "<trailing/>", std::string(10, '\0')}) {
    Board board;
    board.plant("page.plist", contents);
    board.reopen();
    EXPECT_THAT(board->pageArray(), IsEmpty()) << contents;
    EXPECT_EQ(board->latestPage(), nullptr) << contents;
  }
}

// ---- Page files, read

TEST(APageFile, IsDecodedRecordByRecordIntoTheClassesOfTheirTypes) {
  Board board;
  board.plant("whole_1_1.plist",
              plist("<array>" + dictionary("line") +
                    dictionary("diagram", entry("radiusX", "<integer>0</integer>")) +
                    dictionary("remove", entry("rmID", "<string>a</string>")) + "</array>"));
  board.show(page(1, 1));
  const VectorList whole = board.wholeVectors();
  ASSERT_EQ(whole.size(), 3U);
  EXPECT_EQ(whole[0]->recordClass().name, "VelWbVecLine");
  EXPECT_EQ(whole[1]->recordClass().name, "VelWbVecCircle");
  EXPECT_EQ(whole[2]->recordClass().name, "VelWbVecRemove");
}

TEST(APageFile, LosesOnlyTheElementsThatAreNoDictionaries) {
  Board board;
  board.plant(
      "snap_1_1.plist",
      plist("<array><true/><!-- a comment -->" +
            dictionary("line", entry("ID", "<string>a</string>")) +
            "<string>b</string><array/><data>AAAA</data><real>1.5</real>" +
            "<date>2020-01-01T00:00:00Z</date>" +
            dictionary("line", entry("ID", "<string><![CDATA[c]]>&#100;</string>")) + "</array>"));
  EXPECT_THAT(board.show(page(1, 1)), ElementsAre("line a", "line cd"));
}

TEST(APageFile, ThatIsNoArrayIsAnEmptyList) {
  Board board;
  board.plant("snap_1_1.plist", plist(dictionary("line")));
  board.plant("whole_1_1.plist", plist("<integer>3</integer>"));
  EXPECT_THAT(board.show(page(1, 1)), IsEmpty());
  EXPECT_THAT(board.wholeVectors(), IsEmpty());
  EXPECT_EQ(board->snapVectorss().count("1_1"), 1U) << "an empty list, not an absent one";
  EXPECT_EQ(board->wholeVectorss().count("1_1"), 1U) << "an empty list, not an absent one";
}

TEST(APageFile, ThatCannotBeReadIsAnEmptyListWhileItsTwinIsReadAllTheSame) {
  Board board;
  board.plant("snap_1_1.plist", "<plist");
  board.plant("whole_1_1.plist", plist("<array>" + dictionary("clear") + "</array>"));
  EXPECT_THAT(board.show(page(1, 1)), IsEmpty());
  EXPECT_THAT(board.whole(), ElementsAre("clear nameless"));
}

TEST(APageFile, ThatIsAFolderIsAnEmptyList) {
  Board board;
  std::filesystem::create_directory(board.at("snap_1_1.plist"));
  EXPECT_THAT(board.show(page(1, 1)), IsEmpty());
}

// ---- Files, written

TEST(BoardFiles, AreNamedByTheListAndThePageKey) {
  Board board;
  board.show(page(12, 3, 1));
  EXPECT_EQ(board->wholeFile(), board.at("whole_12_3.plist"));
  EXPECT_EQ(board->snapFile(), board.at("snap_12_3.plist"));
  board.save(line("a", 1, 2, 3));
  board.write();
  EXPECT_THAT(board.names(), ElementsAre("page.plist", "snap_12_3.plist", "whole_12_3.plist"));
}

TEST(BoardFiles, OfTheLargestPageAndANegativeBoardSurviveEveryRoad) {
  const auto far = page(-9223372036854775807 - 1, 18446744073709551615U, 1);
  const std::string key = "-9223372036854775808_18446744073709551615";
  Board board;
  board.show(far);
  board.save(line("a", 1, 2, 3));
  board.show(page(0, 0, 2));
  EXPECT_THAT(board.snapFile(key), ElementsAre("line a (1 2 3)"));
  board.append(far, line("b", 4, 5, 6));
  EXPECT_THAT(board.wholeFile(key), ElementsAre("line a (1 2 3)", "line b"));
  board.settle();
  board.reopen();
  EXPECT_THAT(tell(board->pageArray()), ElementsAre(key, "0_0"));
  EXPECT_TRUE(board->hasVectorsWithPage(*board->pageArray().front()));
  EXPECT_THAT(board.show(board->pageArray().front()), ElementsAre("line a (1 2 3)", "line b"));
  board->clearPage(*far);
  EXPECT_FALSE(board.has("whole_" + key + ".plist"));
}

TEST(BoardFiles, AreSharedByPagesThatDifferInTheirResourceOnly) {
  Board board;
  board.show(page(1, 1, 1, 100));
  board.save(line("a", 1, 2, 3));
  EXPECT_THAT(board.show(page(1, 1, 2, 200)), ElementsAre("line a (1 2 3)"));
  board.save(line("b", 1, 2, 3));
  board.write();
  EXPECT_THAT(board.names(), ElementsAre("page.plist", "snap_1_1.plist", "whole_1_1.plist"));
  EXPECT_EQ(board.wholeFile("1_1").size(), 2U);
}

TEST(BoardFiles, HoldTheDictionaryFormKeyByKeyInTheOrderOfDeclaration) {
  Board board;
  board.show(page(1, 1));
  auto stroke = line("a", 1, -0.25, 3);
  stroke->color = "#FF0000FF";
  stroke->end = true;
  board.save(stroke);
  board.write();
  board.settle();
  FileBytes bytes;
  ASSERT_TRUE(FileSystem::current().readBytes(board.at("snap_1_1.plist"), bytes));
  const std::string contents(bytes.view());
  std::vector<std::string> keys;
  for (std::size_t at = 0; (at = contents.find("<key>", at)) != std::string::npos; ++at) {
    keys.push_back(contents.substr(at + 5, contents.find("</key>", at) - at - 5));
  }
  EXPECT_THAT(keys, ElementsAre("type", "ts", "ID", "x", "y", "ps", "end", "path", "color",
                                "widthIndex", "pixel"));
  EXPECT_NE(contents.find("<true/>"), std::string::npos);
  EXPECT_NE(contents.find("<real>-0.25</real>"), std::string::npos);
}

TEST(BoardFiles, OfASaveAreWrittenWholeListFirst) {
  FaultyCalls calls;
  DiskFileSystem disk(calls);
  const ScopedFileSystem scope(disk);
  Board board;
  board.show(page(1, 1));
  board.save(line("a", 1, 2, 3));
  board.settle();
  bool hadWhole = false;
  bool hadSnap = true;
  calls.before(Call::kRename, 2, [&] {
    hadWhole = std::filesystem::exists(board.at("whole_1_1.plist"));
    hadSnap = std::filesystem::exists(board.at("snap_1_1.plist"));
  });
  board.write();
  board.settle();
  EXPECT_TRUE(hadWhole);
  EXPECT_FALSE(hadSnap);
}

TEST(BoardFiles, KeepTheirLastGenerationWhenAWriteFails) {
  FaultyCalls calls;
  DiskFileSystem disk(calls);
  const ScopedFileSystem scope(disk);
  Board board;
  board.show(page(1, 1));
  board.save(line("a", 1, 2, 3));
  board.write();
  board.settle();
  board.save(line("a", 4, 5, 6));
  calls.inject(Fault::failingFrom(Call::kWrite, 1, 28));
  board.write();
  board.settle();
  calls.heal();
  EXPECT_THAT(board.wholeFile("1_1"), ElementsAre("line a (1 2 3)"));
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (1 2 3)"));
  board.write();
  EXPECT_THAT(board.wholeFile("1_1"), ElementsAre("line a (1 2 3)(4 5 6)", "line a"));
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (1 2 3)(4 5 6)"));
}

TEST(BoardFiles, ComeWithTheSnapFileEvenWhenTheWholeFileCannotBeWritten) {
  Board board;
  board.show(page(1, 1));
  std::filesystem::create_directory(board.at("whole_1_1.plist"));
  board.save(line("a", 1, 2, 3));
  board.write();
  EXPECT_THAT(board.snapFile("1_1"), ElementsAre("line a (1 2 3)"));
}

TEST(BoardFiles, ReadBackEqualToWhatWasInMemory) {
  Board board;
  board.show(page(1, 1, 1));
  auto circle = VelWbVecCircle::initWithType("diagram");
  circle->ID = "c";
  circle->points = Array{Value(1), Value(2.5), Value("p"), Value(true), Value(Array{Value(-1)})};
  circle->radiusX = 1e-300;
  auto words = text("t", "<&>\r\n\t ]]> \xF0\x9F\x96\x8A");
  words->bgColor = "";
  board.save(line("a", 0.1, 1.0 / 3.0, 1700000000.123456), circle, words, image("i", "u"),
             lineWith("b", Path{{1}, {1, 2}, {1, 2, 3, 4}, {}}));
  const VectorList before = board.snapVectors();
  board.write();
  board.settle();
  board.reopen();
  const VectorList after = board->switchPage(page(1, 1, 1));
  ASSERT_EQ(after.size(), before.size());
  for (std::size_t i = 0; i < after.size(); ++i) {
    EXPECT_TRUE(after[i]->isEqual(*before[i])) << after[i]->description();
  }
}

}  // namespace
}  // namespace VelWhiteBoard
