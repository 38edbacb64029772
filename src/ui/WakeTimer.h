#pragma once

#include "base/UniqueFunction.h"

#include <QSocketNotifier>
#include <optional>

namespace vorli::ui {

/// Wakes the Qt loop at one moment of the monotonic clock. Qt's own timers round up to whole milliseconds: a
/// flow that sleeps sixty times a second would be two per cent slow. Lives on the thread that made it.
class WakeTimer {
 public:
  explicit WakeTimer(UniqueFunction<void()> wake);
  ~WakeTimer();
  WakeTimer(const WakeTimer&) = delete;
  WakeTimer& operator=(const WakeTimer&) = delete;

  /// Calls `wake` once at `moment`, in seconds of the monotonic clock, from the loop: never early, and at its
  /// next turn when the moment has passed. It takes the place of the one set before; empty: never.
  void set(std::optional<double> moment);

 private:
  void fire();

  const int descriptor_;  // readable when the moment has come
  QSocketNotifier notifier_;
  UniqueFunction<void()> wake_;
  std::optional<double> moment_;
};

}  // namespace vorli::ui
