#pragma once

namespace vorli {

/// The course of the calm after one polish, as a function of the time: it rises to 1 and then decays to 0, in
/// 60 steps a second. Immutable.
class CalmCeremony {
 public:
  /// Length of a step: a sixtieth of a second, rounded down to whole nanoseconds.
  static constexpr double stepSeconds = 0.016666666;

  /// Rises from `from`. Durations are in seconds; each becomes a whole number of steps, at least one.
  CalmCeremony(double startedAt, double from, double riseDuration, double decayDuration);

  /// The calm of the step that is current at `time`.
  double valueAt(double time) const;

  /// True from the last step on, whose value is 0.
  bool isOverAt(double time) const { return stepAt(time) == riseSteps_ + decaySteps_; }
  /// Time of the next value that must not be skipped: the peak, and after it the end.
  double turnsAfter(double time) const;

 private:
  int stepAt(double time) const;

  double startedAt_;
  double from_;
  int riseSteps_;
  int decaySteps_;
};

}  // namespace vorli
