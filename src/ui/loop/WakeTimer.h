#pragma once

#include "base/UniqueFunction.h"

#include <QSocketNotifier>
#include <optional>

namespace vorli::ui {

/// Wakes the Qt loop at one moment of the monotonic clock. Qt's own timers round up to whole milliseconds,
/// which would make a flow that sleeps sixty times a second two per cent slow. Belongs to the thread that
/// created it.
class WakeTimer {
 public:
  explicit WakeTimer(UniqueFunction<void()> wake);
  ~WakeTimer();
  WakeTimer(const WakeTimer&) = delete;
  WakeTimer& operator=(const WakeTimer&) = delete;

  /// Calls `wake` once from the loop at `moment`, in seconds of the monotonic clock: never early, and in the
  /// next turn when the moment has passed. Replaces the previous moment; an empty one disarms the timer.
  void set(std::optional<double> moment);

 private:
  void fire();

  // The system's timer, of which there is one file in each system's folder.
  /// Opens a timer that is not set. Ends the program when the system has none left.
  static int openTimer();
  static void closeTimer(int descriptor);
  /// Sets the timer; an empty moment stops it. A moment that has passed fires at once.
  static void setTimer(int descriptor, std::optional<double> moment);
  /// Takes the expiry from the descriptor. False when there is none: the timer was set again after the loop
  /// had seen it expire.
  static bool takeExpiry(int descriptor);

  const int descriptor_;  // readable when the moment has come
  QSocketNotifier notifier_;
  UniqueFunction<void()> wake_;
  std::optional<double> moment_;
};

}  // namespace vorli::ui
