#pragma once

#include "base/UniqueFunction.h"

#include <cstdint>

namespace vorli {

/// The main loop's clock and queue. The only place in the program that reads a clock for delays, sleeps or
/// creates timers.
class Scheduler {
 public:
  using Work = UniqueFunction<void()>;

  /// Identifies a delayed piece of work. Never 0.
  using TimerId = std::uint64_t;

  /// Accuracy of a delay. A coarse delay may be late by up to a twentieth of its length, so that the system
  /// can coalesce wake-ups.
  enum class Precision { exact, coarse };

  virtual ~Scheduler() = default;

  /// The time of a monotonic clock in seconds, with an arbitrary origin. Any thread.
  virtual double now() const = 0;

  /// Runs `work` on the main thread after all work already queued, never inside this call. Any thread.
  virtual void post(Work work) = 0;

  /// Runs `work` once on the main thread, `seconds` from now; never early and never inside this call. A delay
  /// of 0 or less is due at the next turn of the loop. Main thread.
  virtual TimerId after(double seconds, Work work, Precision precision = Precision::exact) = 0;

  /// Cancels the work. Unknown and finished ids are ignored. Main thread.
  virtual void cancel(TimerId timer) = 0;
};

}  // namespace vorli
