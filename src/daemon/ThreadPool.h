#pragma once

#include "daemon/Workers.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>
#include <vector>

namespace vorli::daemon {

/// A few threads, each started when it is first needed.
class ThreadPool final : public Workers {
 public:
  explicit ThreadPool(std::size_t mostThreads) : mostThreads_(mostThreads) {}
  ~ThreadPool() override { stop(); }

  void post(UniqueFunction<void()> work) override;
  /// Waits for running work, drops pending work and accepts no more.
  void stop();

 private:
  void work();

  const std::size_t mostThreads_;
  std::mutex lock_;
  std::condition_variable changed_;
  std::deque<UniqueFunction<void()>> queue_;
  std::size_t idle_ = 0;
  bool stopping_ = false;
  std::vector<std::thread> threads_;
};

}  // namespace vorli::daemon
