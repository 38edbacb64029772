#pragma once

#include "ambient/CalmCeremony.h"
#include "base/Scheduler.h"
#include "base/SubscriberList.h"
#include "base/Subscription.h"

#include <functional>
#include <optional>

namespace vorli {

/// How often a subscriber can show another calm at most: four times a second, like the status item's dial, or
/// at each frame of the display.
enum class CalmPace { dial, display };

/// The calm, 0 to 1. Reading it computes the value of the moment; nothing runs for that. Subscribers receive
/// the values that they can show: the main loop wakes for no change that is too small to see, and not at all
/// without subscribers. Only `ClearState` can change it. Main thread.
class CalmIntensity {
 public:
  using Handler = std::function<void(const double&)>;

  explicit CalmIntensity(Scheduler& scheduler) : scheduler_(scheduler) {}
  ~CalmIntensity() { scheduler_.cancel(timer_); }
  CalmIntensity(const CalmIntensity&) = delete;
  CalmIntensity& operator=(const CalmIntensity&) = delete;

  double get() const;
  operator double() const { return get(); }

  /// Calls `handler` immediately with the current value, then from the main loop as often as `pace` allows,
  /// also with the last value of the rise and of the decay.
  Subscription subscribe(CalmPace pace, Handler handler);
  /// Like `subscribe`, but without the initial call.
  Subscription subscribeToChanges(CalmPace pace, Handler handler);

 private:
  friend class ClearState;
  friend class PublisherForTests;

  /// Holds `value` until the next ceremony. Ends the current one.
  CalmIntensity& operator=(double value);
  /// Replaces the current ceremony. Subscribers receive its first value at the next turn of the main loop.
  void follow(const CalmCeremony& ceremony);

  SubscriberList<double>& subscribers(CalmPace pace);
  void publish();
  void arm();
  double nextVisibleChange(double now) const;

  Scheduler& scheduler_;
  double held_ = 0.0;  // the calm without a ceremony
  std::optional<CalmCeremony> ceremony_;
  std::optional<double> published_;  // empty before the first value of a ceremony
  SubscriberList<double> atDialPace_;
  SubscriberList<double> atDisplayPace_;
  Scheduler::TimerId timer_ = 0;
};

}  // namespace vorli
