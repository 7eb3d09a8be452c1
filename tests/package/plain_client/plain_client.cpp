// A client that is compiled without run-time type information and without exceptions. Records that
// it makes are used by the library and the other way round, so both must agree on their virtual
// functions.
#if defined(__cpp_rtti) || defined(__cpp_exceptions)
#error "compile this with -fno-rtti and -fno-exceptions"
#endif

#include <VelWhiteBoard/VelWhiteBoard.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

namespace vwb = VelWhiteBoard;

namespace {

void require(bool right, const char* what) {
  if (!right) {
    std::fprintf(stderr, "plain_client: failed: %s\n", what);
    std::exit(1);
  }
}

void castsNeedNoTypeInformation() {
  const vwb::VectorPtr vector = vwb::modelWithJSON<vwb::VelWbBaseVector>(
      R"({"type":"line","ID":"u1_1","ts":1.5,"x":0.1,"y":0.2,"path":[[0.1,0.2,1.5]]})");
  const auto line = vwb::recordPointerCast<vwb::VelWbVecLine>(vector);
  require(line != nullptr && line.use_count() == 2, "a line is a line, and shared");
  require(vwb::recordCast<vwb::VelWbVecLine>(*vector) == line.get(),
          "the plain cast says the same");
  require(vwb::recordPointerCast<vwb::VelWbVecCircle>(vector) == nullptr, "a line is no circle");
}

void recordsOfTheClientAndOfTheLibraryAreAlike() {
  const auto own = std::make_shared<vwb::VelWbVecLine>();
  own->type = "line";
  own->ID = "u1_2";
  own->offset = vwb::Array{{{"ts", 2.5}, {"x", 0.5}}};
  const auto copy = own->copyWithZone();
  require(*copy == *own && copy->hash() == own->hash(), "a copy is equal");
  const auto read = vwb::modelWithJSON<vwb::VelWbBaseVector>(vwb::modelToJSONString(*own));
  require(*read == *own, "so is what comes back from its text");
  const vwb::Dictionary dictionary = vwb::modelToJSONObject(*own);
  require(dictionary.at("ID") == "u1_2", "the dictionary has its identifier");
  const auto again = vwb::modelWithDictionary<vwb::VelWbBaseVector>(dictionary);
  require(*again == *own, "so is what comes back from its dictionary");
}

void aBoardIsObservedAndReadBack(const std::string& folder) {
  const auto page = std::make_shared<vwb::VelWbVecSwitchPage>();
  page->WBID = 7;
  page->curPage = 1;
  const auto piece = std::make_shared<vwb::VelWbVecLine>();
  piece->type = "line";
  piece->ID = "u1_3";
  piece->ts = 1.5;
  {
    const auto board = vwb::VWBVectorStorage::initWithPath(folder);
    int changes = 0;
    board->setChangeObserver([&changes](const vwb::ChangeReport&) { ++changes; });
    board->setIgnoreChanges(false);
    board->switchPage(page);
    board->saveVector(piece);
    board->saveFile(true);
    board->saveQueue()->waitUntilAllOperationsAreFinished();
    require(changes > 0, "the observer was told");
  }
  const auto board = vwb::VWBVectorStorage::initWithPath(folder);
  const vwb::VectorList entries = board->snapWithPage(*page);
  require(entries.size() == 1 && *entries.front() == *piece, "the stroke comes back");
}

}  // namespace

int main() {
  castsNeedNoTypeInformation();
  recordsOfTheClientAndOfTheLibraryAreAlike();
  std::string folder = (std::filesystem::temp_directory_path() / "vwb-plain-XXXXXX").string();
  require(mkdtemp(folder.data()) != nullptr, "a temporary folder");
  aBoardIsObservedAndReadBack(folder);
  std::error_code ignored;
  std::filesystem::remove_all(folder, ignored);
  return 0;
}
