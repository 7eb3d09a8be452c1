#include "tests/reliability/faulty_lesson.h"

#include <cerrno>

namespace VelWhiteBoard {

std::vector<std::string> listNames() {
  std::vector<std::string> names = {kPagesName};
  for (const std::string& key : kKeys) {
    names.push_back(wholeName(key));
    names.push_back(snapName(key));
  }
  return names;
}

void playTheFirstDay(const std::string& parent) {
  Lesson lesson(parent);
  for (std::uint64_t number = 1; number <= 3; ++number) {
    lesson.show(number);
    lesson.draw("first day " + std::to_string(number));
  }
  lesson.save();
}

void playTheSecondDay(Lesson& lesson) {
  lesson.look(2);  // a page that is not cached
  lesson.show(1);
  lesson.draw("a");
  lesson.save();
  lesson.append(2, "b");  // a page with files that is not cached
  lesson.append(4, "c");  // a page without files
  lesson.show(2);         // a cached page
  lesson.draw("d");
  lesson.clearPage(3);
  lesson.show(4);  // saves the page that is left
  lesson.draw("e");
  lesson.append(1, "f");
  lesson.save();
}

std::vector<Trouble> troublesOf(Call call, int nth) {
  const int usual = call == Call::kRename ? EACCES : EIO;
  std::vector<Trouble> troubles = {
      {"fails once", Fault::failing(call, nth, usual)},
      {"fails for ever", Fault::failingFrom(call, nth, usual)},
      {"is interrupted", Fault::failing(call, nth, EINTR)},
  };
  if (call == Call::kOpen) {
    troubles.push_back({"finds no handle", Fault::failing(call, nth, EMFILE)});
    troubles.push_back({"is not permitted", Fault::failing(call, nth, EACCES)});
  }
  if (call == Call::kWrite) {
    troubles.push_back({"is short", Fault::shortWrite(nth)});
    troubles.push_back({"writes nothing", Fault::writingNothing(nth)});
    troubles.push_back({"finds the disk full", Fault::noSpace(nth)});
  }
  return troubles;
}

}  // namespace VelWhiteBoard
