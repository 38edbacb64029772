#include "daemon/ThreadPool.h"

#include <utility>

namespace vorli::daemon {

void ThreadPool::stop() {
  std::deque<UniqueFunction<void()>> dropped;  // destroyed outside the lock
  {
    const std::lock_guard guard(lock_);
    stopping_ = true;
    dropped.swap(queue_);
  }
  changed_.notify_all();
  for (auto& thread : threads_) thread.join();
  threads_.clear();
}

void ThreadPool::post(UniqueFunction<void()> work) {
  const std::lock_guard guard(lock_);
  if (stopping_) return;
  queue_.push_back(std::move(work));
  if (queue_.size() > idle_ && threads_.size() < mostThreads_)
    threads_.emplace_back([this] { this->work(); });
  changed_.notify_one();
}

void ThreadPool::work() {
  std::unique_lock guard(lock_);
  for (;;) {
    ++idle_;
    changed_.wait(guard, [this] { return stopping_ || !queue_.empty(); });
    --idle_;
    if (stopping_) return;
    auto next = std::move(queue_.front());
    queue_.pop_front();
    guard.unlock();
    next();
    next = nullptr;  // destroys its captures on this thread, outside the lock
    guard.lock();
  }
}

}  // namespace vorli::daemon
