#include "posix/BackgroundWork.h"

#include "base/Assert.h"
#include "posix/HeldSignals.h"

#include <system_error>
#include <utility>

namespace vorli::posix {

BackgroundWork::BackgroundWork(Scheduler& scheduler) : scheduler_(scheduler) {}

BackgroundWork::~BackgroundWork() {
  abandon();
  if (!thread_.joinable()) return;
  {
    const std::lock_guard guard(lock_);
    isEnding_ = true;
  }
  changed_.notify_all();
  thread_.join();
}

void BackgroundWork::start(Work work, Work done) {
  VORLI_ASSERT(!isUnderWay() && work && done);
  done_ = std::move(done);
  ++piece_;
  {
    const std::lock_guard guard(lock_);
    work_ = std::move(work);
    isOver_ = false;
  }
  if (!thread_.joinable() && !makeThread()) return workHere();
  changed_.notify_all();
}

void BackgroundWork::finish() {
  if (!isUnderWay()) return;
  waitUntilOver();
  deliver(piece_);
}

void BackgroundWork::abandon() {
  if (!isUnderWay()) return;
  waitUntilOver();
  done_ = nullptr;
}

bool BackgroundWork::makeThread() {
  const HeldSignals held;
  try {
    thread_ = std::thread([this] { run(); });
  } catch (const std::system_error&) {
    // The user may have no more of them now; the next piece tries again.
  }
  return thread_.joinable();
}

// Late is better than never, and no harm is done but to the smoothness of the main loop.
void BackgroundWork::workHere() {
  std::exchange(work_, nullptr)();
  isOver_ = true;
  postDelivery(piece_);
}

void BackgroundWork::postDelivery(std::uint64_t piece) {
  scheduler_.post([self = std::weak_ptr(self_), piece] {
    if (const auto alive = self.lock()) (*alive)->deliver(piece);
  });
}

void BackgroundWork::run() {
  std::unique_lock guard(lock_);
  while (true) {
    changed_.wait(guard, [this] { return isEnding_ || work_; });
    if (!work_) return;
    const auto piece = piece_;  // stays while this one is under way
    auto work = std::exchange(work_, nullptr);
    guard.unlock();
    work();
    work = nullptr;  // its captures end on this thread, before anybody hears that it is over
    guard.lock();
    isOver_ = true;
    changed_.notify_all();
    postDelivery(piece);
  }
}

void BackgroundWork::waitUntilOver() {
  std::unique_lock guard(lock_);
  changed_.wait(guard, [this] { return isOver_; });
}

// Nothing for a piece that was finished or abandoned before its turn in the loop came.
void BackgroundWork::deliver(std::uint64_t piece) {
  if (piece != piece_ || !isUnderWay()) return;
  auto done = std::exchange(done_, nullptr);
  done();
}

}  // namespace vorli::posix
