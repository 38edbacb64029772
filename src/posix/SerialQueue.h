#pragma once

#include "ports/SerialQueue.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <thread>

namespace vorli::posix {

/// One thread, created for the first piece of work and kept, which receives no signals. Work that is pending
/// when the queue is destroyed is still done.
class SerialQueue final : public ports::SerialQueue {
 public:
  /// `lowerPriority` lowers the priority of the calling thread, which each system does in its own way. It is
  /// called once, on the queue's thread. Without it, the thread keeps the priority of the program.
  explicit SerialQueue(void (*lowerPriority)() = nullptr) : lowerPriority_(lowerPriority) {}
  ~SerialQueue() override;
  SerialQueue(const SerialQueue&) = delete;
  SerialQueue& operator=(const SerialQueue&) = delete;

  void post(Work work) override;

 private:
  bool hasThread();
  void run();

  void (*const lowerPriority_)();
  std::mutex lock_;
  std::condition_variable changed_;
  std::deque<Work> waiting_;
  bool isEnding_ = false;
  std::thread thread_;
};

}  // namespace vorli::posix
