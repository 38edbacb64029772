#pragma once

#include "base/Scheduler.h"

#include <memory>

namespace vorli::ui {

/// Runs work on the main loop of a Qt program, which is armed for one moment at a time. Belongs to the thread
/// that created it, and needs a QCoreApplication there to run anything.
class QtScheduler final : public Scheduler {
 public:
  QtScheduler();
  ~QtScheduler() override;

  double now() const override;
  void post(Work work) override;
  TimerId after(double seconds, Work work, Precision precision = Precision::exact) override;
  void cancel(TimerId timer) override;

 private:
  class Loop;
  const std::unique_ptr<Loop> loop_;
};

}  // namespace vorli::ui
