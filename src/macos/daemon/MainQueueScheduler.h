#pragma once

#include "base/Scheduler.h"

#include <memory>

namespace vorli::machost {

/// The daemon's main loop: the run loop of the main thread, which serves the main queue. It sleeps without
/// any wake-up when there is nothing to do.
class MainQueueScheduler final : public Scheduler {
 public:
  MainQueueScheduler();

  double now() const override;
  void post(Work work) override;
  TimerId after(double seconds, Work work, Precision precision = Precision::exact) override;
  void cancel(TimerId timer) override;

  /// Runs the loop until `stop`. Main thread.
  void run();
  void stop();

 private:
  struct Timers;

  TimerId lastId_ = 0;
  /// Shared with the blocks of delays that were cancelled or outlive the scheduler.
  std::shared_ptr<Timers> timers_;
};

}  // namespace vorli::machost
