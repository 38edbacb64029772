#pragma once

#include "base/Scheduler.h"

namespace vorli {

/// Fires every `period` seconds until it is destroyed, first after one whole period. Firings that the loop is
/// too busy for are dropped without shifting the later ones. So is a firing that comes while an earlier one
/// is still running. Main thread.
class RepeatingTimer {
 public:
  RepeatingTimer(Scheduler& scheduler, double periodSeconds, UniqueFunction<void()> fire,
                 Scheduler::Precision precision = Scheduler::Precision::coarse);
  ~RepeatingTimer();
  RepeatingTimer(const RepeatingTimer&) = delete;
  RepeatingTimer& operator=(const RepeatingTimer&) = delete;

  double periodSeconds() const { return period_; }

 private:
  void arm();

  Scheduler& scheduler_;
  const double period_;
  const Scheduler::Precision precision_;
  double nextDue_;
  UniqueFunction<void()> fire_;
  Scheduler::TimerId timer_ = 0;
  bool* destroyedDuringFire_ = nullptr;
};

}  // namespace vorli
