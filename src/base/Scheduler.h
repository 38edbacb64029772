#pragma once

#include "base/UniqueFunction.h"

#include <cstdint>

namespace vorli {

/// The main loop's clock and queue. Nothing else in the program reads a clock for delays, sleeps or makes a
/// timer.
class Scheduler {
 public:
  using Work = UniqueFunction<void()>;

  /// Names a delayed piece of work. 0 never names one.
  using TimerId = std::uint64_t;

  /// How exactly a delay is kept. A coarse one may come up to a twentieth of its length late, so that the
  /// system can join wake-ups.
  enum class Precision { exact, coarse };

  virtual ~Scheduler() = default;

  /// Seconds of a monotonic clock with an arbitrary origin. Any thread.
  virtual double now() const = 0;

  /// Runs `work` on the main thread after what is already queued; never inside this call. Any thread.
  virtual void post(Work work) = 0;

  /// Runs `work` on the main thread once, `seconds` from now; never early, never inside this call. A delay of
  /// 0 or less is due at the next turn of the loop. Main thread.
  virtual TimerId after(double seconds, Work work, Precision precision = Precision::exact) = 0;

  /// Drops the work, running or not: unknown and finished ids are allowed. Main thread.
  virtual void cancel(TimerId timer) = 0;
};

}  // namespace vorli
