#include "VelWhiteBoard/services/vector_manager.h"

#include <cstdint>

#include "VelWhiteBoard/foundation/queue/mutex.h"
#include "VelWhiteBoard/foundation/text/number_text.h"
#include "VelWhiteBoard/foundation/values/clock.h"
#include "VelWhiteBoard/foundation/values/truncation.h"
#include "VelWhiteBoard/vectors/drawing_settings.h"
#include "VelWhiteBoard/vectors/strokes.h"

namespace VelWhiteBoard {
namespace {

// The desktop client's coordinates are shifted by one half. The other clients evaluate the same two
// formulas: simplified ones would differ in the last bit.
double shiftedFromPC(double value) { return (value + (-0.5)) + 1.0; }
double shiftedToPC(double value) { return (1.0 - ((1.0 - value) + (1.0 - value))) * 0.5; }

}  // namespace

struct VelWbVectorManager::References {
  Mutex mutex;
  std::optional<std::string> userID VELWHITEBOARD_GUARDED_BY(mutex);
  std::shared_ptr<Semaphore> semaphore VELWHITEBOARD_GUARDED_BY(mutex) =
      std::make_shared<Semaphore>(1);
};

VelWbVectorManager& VelWbVectorManager::shareManager() {
  // Never destroyed: destructors of static objects may still stamp vectors.
  static auto* const manager = new VelWbVectorManager;
  return *manager;
}

VelWbVectorManager::VelWbVectorManager() : references_(std::make_unique<References>()) {}

VelWbVectorManager::~VelWbVectorManager() = default;

VelWbVectorManager& VelWbVectorManager::init() {
  setSemaphore(std::make_shared<Semaphore>(1));
  setUserID(std::nullopt);
  isRunning_ = false;
  createTs_ = 0.0;
  serverTs_ = 0.0;
  localTs_ = 0.0;
  return *this;
}

void VelWbVectorManager::setCourseCreateTs(double createTs, double ServerTs, double localTs) {
  const SemaphoreHold hold(semaphore());
  createTs_ = createTs;
  serverTs_ = ServerTs;
  localTs_ = localTs;
}

void VelWbVectorManager::clear() {
  serverTs_ = 0.0;
  localTs_ = 0.0;
}

std::string VelWbVectorManager::genID() {
  std::string identifier = userID().value_or(std::string());
  const double elapsed = currentTime() - createTs_;
  identifier += '_';
  appendNumber(identifier, truncatedToSigned(elapsed * 100.0));
  return identifier;
}

double VelWbVectorManager::genTs() {
  if (!isRunning_) return serverTs_ - localTs_;
  // Read before the semaphore is taken: no operation holds a lock of one manager while it calls
  // another manager.
  const bool readsMediaClock = DrawingSettings::shared().version() == 1;
  const SemaphoreHold hold(semaphore());
  const double server = serverTs_;
  const double now = readsMediaClock ? currentMediaTime() : currentTime();
  return (server + now) - localTs_;
}

void VelWbVectorManager::coordinateSystemTransFromPC(VelWbVecPoint& point) {
  point.x = shiftedFromPC(point.x);
  point.y = shiftedFromPC(point.y);
}

void VelWbVectorManager::coordinateSystemTransToPC(VelWbVecPoint& point) {
  point.x = shiftedToPC(point.x);
  point.y = shiftedToPC(point.y);
}

std::shared_ptr<Semaphore> VelWbVectorManager::semaphore() const {
  const MutexHold hold(references_->mutex);
  return references_->semaphore;
}

void VelWbVectorManager::setSemaphore(const std::shared_ptr<Semaphore>& semaphore) {
  if (!semaphore) return;
  const MutexHold hold(references_->mutex);
  references_->semaphore = semaphore;
}

double VelWbVectorManager::createTs() const { return createTs_; }
void VelWbVectorManager::setCreateTs(double createTs) { createTs_ = createTs; }

double VelWbVectorManager::serverTs() const { return serverTs_; }
void VelWbVectorManager::setServerTs(double serverTs) { serverTs_ = serverTs; }

double VelWbVectorManager::localTs() const { return localTs_; }
void VelWbVectorManager::setLocalTs(double localTs) { localTs_ = localTs; }

std::optional<std::string> VelWbVectorManager::userID() const {
  const MutexHold hold(references_->mutex);
  return references_->userID;
}

void VelWbVectorManager::setUserID(const std::optional<std::string>& userID) {
  const MutexHold hold(references_->mutex);
  references_->userID = userID;
}

bool VelWbVectorManager::isRunning() const { return isRunning_; }
void VelWbVectorManager::setIsRunning(bool isRunning) { isRunning_ = isRunning; }

}  // namespace VelWhiteBoard
