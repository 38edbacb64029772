#pragma once

#include "base/Scheduler.h"
#include "ports/BackgroundWork.h"

#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <thread>

namespace vorli::posix {

/// One thread, created for the first piece of work and kept. It receives no signals: those are for the main
/// thread. If no thread can be created, `start` does the work itself.
class BackgroundWork final : public ports::BackgroundWork {
 public:
  explicit BackgroundWork(Scheduler& scheduler);
  ~BackgroundWork() override;
  BackgroundWork(const BackgroundWork&) = delete;
  BackgroundWork& operator=(const BackgroundWork&) = delete;

  void start(Work work, Work done) override;
  bool isUnderWay() const override { return static_cast<bool>(done_); }
  void finish() override;
  void abandon() override;

 private:
  bool makeThread();
  void workHere();
  void run();
  void postDelivery(std::uint64_t piece);
  void waitUntilOver();
  void deliver(std::uint64_t piece);

  Scheduler& scheduler_;
  Work done_;
  std::uint64_t piece_ = 0;  // number of the last piece started

  std::mutex lock_;
  std::condition_variable changed_;
  Work work_;           // waits for the thread
  bool isOver_ = true;  // no work is waiting or running
  bool isEnding_ = false;

  // Work posted by the thread may run after this object is destroyed.
  const std::shared_ptr<BackgroundWork*> self_ = std::make_shared<BackgroundWork*>(this);
  std::thread thread_;
};

}  // namespace vorli::posix
