#include "posix/SerialQueue.h"

#include "posix/HeldSignals.h"

#include <system_error>
#include <utility>

namespace vorli::posix {

SerialQueue::~SerialQueue() {
  {
    const std::lock_guard guard(lock_);
    isEnding_ = true;
  }
  changed_.notify_all();
  if (thread_.joinable()) thread_.join();
}

void SerialQueue::post(Work work) {
  {
    const std::lock_guard guard(lock_);
    if (hasThread()) {
      waiting_.push_back(std::move(work));
      changed_.notify_all();
      return;
    }
  }
  work();
}

// The user's limit of threads may be reached; the next piece tries again.
bool SerialQueue::hasThread() {
  if (thread_.joinable()) return true;
  const HeldSignals held;
  try {
    thread_ = std::thread([this] { run(); });
  } catch (const std::system_error&) {
    return false;
  }
  return true;
}

void SerialQueue::run() {
  if (lowerPriority_) lowerPriority_();
  std::unique_lock guard(lock_);
  while (true) {
    changed_.wait(guard, [this] { return isEnding_ || !waiting_.empty(); });
    if (waiting_.empty()) return;
    auto work = std::move(waiting_.front());
    waiting_.pop_front();
    guard.unlock();
    work();
    work = nullptr;  // destroys its captures before the lock is taken
    guard.lock();
  }
}

}  // namespace vorli::posix
