#include "lesson/session.h"

#include <QElapsedTimer>
#include <algorithm>
#include <iterator>
#include <limits>
#include <utility>
#include <vector>

#include "lesson/message.h"

namespace whiteboard {

namespace vwb = VelWhiteBoard;

namespace {

// Arrivals are filed in portions, so that the window stays alive while a long lesson comes in.
constexpr std::size_t kArrivalsAtATime = 256;
constexpr qint64 kPortionMilliseconds = 8;

/// Starts the lesson's clock. It runs as the computer's does: identifiers and the order of the
/// positions of one stroke need no more.
std::string startClock(const std::string& user) {
  vwb::VelWbVectorManager& clock = vwb::VelWbVectorManager::shareManager();
  clock.setUserID(user);
  clock.setCourseCreateTs(0, vwb::currentTime(), vwb::currentTime());
  clock.setIsRunning(true);
  return clock.genID();
}

}  // namespace

Session::Session(Board& board, std::unique_ptr<Bus> bus, Kind kind, const std::string& user)
    : board_(board), kind_(kind), session_(startClock(user)), undo_(user), bus_(std::move(bus)) {
  connect(&board_, &Board::changed, this,
          [this](const vwb::ChangeReport& report) { undo_.take(report); });
  showUnsent();
  bus_->start([this] {
    if (isNotified_.exchange(true)) return;
    QMetaObject::invokeMethod(this, &Session::takeArrivals, Qt::QueuedConnection);
  });
  takeArrivals();
}

Session::~Session() { takeArrivals(); }

std::string Session::newIdentifier() {
  // Of equal length, so that their order is that in which they were made.
  constexpr std::size_t kDigits = 7;
  const std::string number = std::to_string(++identifiers_);
  return session_ + '.' + std::string(kDigits - std::min(kDigits, number.size()), '0') + number;
}

void Session::send(const vwb::VectorPtr& vector) {
  board_.inkSent(*vector);
  undo_.sent(board_.pageKey(), *vector);
  bus_->publish(board_.pageKey(), vector->copyWithZone());
  // Alone, it has arrived already.
  kind_ == Kind::kAlone ? takeArrivals() : updateStatus();
}

void Session::draw(const vwb::VectorPtr& vector) {
  show(*vector);
  send(vector);
}

void Session::remove(const std::string& ID) { draw(removeOf(ID)); }

vwb::VectorPtr Session::removeOf(const std::string& ID) {
  auto remove = vwb::recordPointerCast<vwb::VelWbVecRemove>(
      vwb::VWBToolManager::genVectorWithType(vwb::VelWBVectorTypeRemove, newIdentifier()));
  remove->rmID = ID;
  return remove;
}

void Session::point(const vwb::VectorPtr& vector) {
  bus_->show(board_.pageKey(), vector);
  if (kind_ == Kind::kAlone) takeArrivals();
}

void Session::stopPointing(const std::string& ID) { point(removeOf(ID)); }

void Session::clearPage() {
  draw(vwb::VWBToolManager::genVectorWithType(vwb::VelWBVectorTypeClear, newIdentifier()));
}

void Session::turnTo(const Board::PageNumber& page) {
  if (page == board_.number() || isPenDown_) return;
  const Board::Page pageSwitch = pageSwitchTo(page);
  board_.turnTo(pageSwitch);
  if (!turnsTogether_) return;
  ++turnsUnderWay_;
  send(pageSwitch);
}

void Session::turnToNext() {
  const auto next = board_.pages().upper_bound(board_.number());
  if (next != board_.pages().end()) turnTo(*next);
}

void Session::turnToPrevious() {
  const auto here = board_.pages().lower_bound(board_.number());
  if (here != board_.pages().begin()) turnTo(*std::prev(here));
}

void Session::addPage() {
  const auto& [WBID, last] = *board_.pages().rbegin();
  if (last < std::numeric_limits<std::uint64_t>::max()) turnTo({WBID, last + 1});
}

void Session::setPenDown(bool down) {
  isPenDown_ = down;
  if (!down) turnNow();
}

void Session::undo() {
  if (isPenDown_) return;
  const auto shown = [this](const std::string& ID) { return board_.shownEntry(ID); };
  if (const vwb::VectorPtr vector = undo_.undo(board_.pageKey(), shown)) draw(vector);
}

void Session::redo() {
  if (isPenDown_) return;
  if (const vwb::VectorPtr vector = undo_.redo(board_.pageKey())) draw(vector);
}

void Session::showUnsent() {
  for (const OwnVector& own : bus_->unsentBefore()) {
    const auto page = vwb::VelWbVecSwitchPage::pageFromInfo(own.page);
    const bool turns = own.vector->type == vwb::VelWBVectorStrSwitchPage;
    if (!page || turns) continue;
    board_.addPage({page->WBID, page->curPage});
    board_.showInk(own.page, *own.vector);
    board_.inkSent(*own.vector);
  }
}

void Session::takeRefused() {
  for (const OwnVector& own : bus_->takeRefused()) {
    board_.inkReceived(*own.vector);
    undo_.refused(own.page, *own.vector);
    const bool turns = own.vector->type == vwb::VelWBVectorStrSwitchPage;
    if (turns && turnsUnderWay_ > 0) --turnsUnderWay_;
  }
}

void Session::takeArrivals() {
  isNotified_ = false;
  updateStatus();
  QElapsedTimer taking;
  taking.start();
  for (;;) {
    const std::vector<Arrival> arrivals = bus_->take(kArrivalsAtATime);
    if (arrivals.empty()) return turnNow();
    for (const Arrival& arrival : arrivals) file(arrival);
    if (taking.elapsed() < kPortionMilliseconds) continue;
    // The rest later, after the window has had its turn.
    if (!isNotified_.exchange(true)) {
      QMetaObject::invokeMethod(this, &Session::takeArrivals, Qt::QueuedConnection);
    }
    return;
  }
}

void Session::fileShown(const Arrival& arrival) {
  if (arrival.page != board_.pageKey()) return;
  // Nothing that stays is changed on this way: not everybody gets it.
  const auto* remove = vwb::recordCast<const vwb::VelWbVecRemove>(arrival.vector.get());
  if (remove == nullptr) {
    if (isPassing(*arrival.vector)) board_.file(arrival.page, arrival.vector);
    return;
  }
  // A pointer never lies below another entry.
  const vwb::VectorList entries = board_.entries(board_.number());
  const bool isThere = !entries.empty() && entries.back()->ID == remove->rmID;
  if (isThere && isPassing(*entries.back())) board_.file(arrival.page, arrival.vector);
}

void Session::file(const Arrival& arrival) {
  if (arrival.sequence == 0) return fileShown(arrival);
  // The lesson begins: its history takes the place of the local copy.
  const std::uint64_t before = std::exchange(lastSequence_, arrival.sequence);
  const bool begins = before == 0 || arrival.sequence <= before;
  if (kind_ == Kind::kShared && begins) board_.beginAnew();
  if (const auto page = vwb::recordPointerCast<vwb::VelWbVecSwitchPage>(arrival.vector)) {
    return turnAsOthers(page, arrival.isOwn);
  }
  board_.file(arrival.page, arrival.vector);
  if (arrival.isOwn) board_.inkReceived(*arrival.vector);
}

void Session::turnAsOthers(const Board::Page& page, bool isOwn) {
  board_.addPage({page->WBID, page->curPage});
  if (isOwn && turnsUnderWay_ > 0) --turnsUnderWay_;
  // An own switch that is still under way comes after this one for everybody.
  if (!turnsTogether_ || turnsUnderWay_ > 0) return;
  turnLater_ = page;
  turnNow();
}

void Session::turnNow() {
  const bool isReady = !isPenDown_ && status_.kind != BusStatus::Kind::kCatchingUp;
  if (isReady && turnLater_) board_.turnTo(std::exchange(turnLater_, nullptr));
}

void Session::updateStatus() {
  status_ = bus_->status();
  takeRefused();
  if (status_.created > 0 && !isPenDown_) {
    vwb::VelWbVectorManager::shareManager().setCreateTs(status_.created);
  }
  emit statusChanged();
}

}  // namespace whiteboard
