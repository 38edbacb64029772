#pragma once

namespace vorli {

/// Durations of a polish that depend on whether the helper is ready, and on nothing else.
struct PolishPace {
  double minDisplayTime;   // from the start of the drain to the sentence
  double untilClose;       // from the end of the bounce's rise to the closing of the popover
  double hold;             // with the popover closed, before the monitor is read: lets a late purge finish
  double rise;             // time in which the ring rises to the true value
  double untilRingStands;  // the wait for that rise
};

/// Every duration of a polish, in seconds.
struct PolishTimings {
  static constexpr PolishPace full{
      .minDisplayTime = 2.65, .untilClose = 2.4, .hold = 5.0, .rise = 2.8, .untilRingStands = 2.9};
  static constexpr PolishPace gentle{
      .minDisplayTime = 1.3, .untilClose = 1.2, .hold = 0.4, .rise = 1.4, .untilRingStands = 1.5};

  static constexpr double drain = 1.85;

  // Bounce of the ring: a spring up, then an eased return.
  static constexpr double growResponse = 0.6;
  static constexpr double untilShrink = 0.6;
  static constexpr double shrink = 0.8;

  static constexpr double calmRise = 0.9;
  static constexpr double calmDecay = 300.0;

  static constexpr double sentenceStays = 1.5;
  static constexpr double sentenceFade = 0.6;

  static constexpr double watchdog = 18.0;

  /// How long the ring takes to follow the monitor outside a polish.
  static constexpr double follow = 0.6;
};

}  // namespace vorli
