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
    return false;  // the user's limit may be reached; the next piece tries again
  }
  return true;
}

// Does the work on the main thread: this only delays the main loop.
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
    const auto piece = piece_;  // does not change while this piece is in progress
    auto work = std::exchange(work_, nullptr);
    guard.unlock();
    work();
    work = nullptr;  // destroys its captures on this thread, before the end is announced
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

// Does nothing for a piece that was finished or abandoned before the main loop delivered it.
void BackgroundWork::deliver(std::uint64_t piece) {
  if (piece != piece_ || !isUnderWay()) return;
  auto done = std::exchange(done_, nullptr);
  done();
}

}  // namespace vorli::posix
