#pragma once

namespace vorli::ports {

/// The numbers are the contract's own.
enum class FeedbackPattern { generic = 0 };
enum class PerformanceTime { now = 1 };

/// What a hand on the pointing device feels.
class Haptics {
 public:
  virtual ~Haptics() = default;

  /// Gives one tap; nothing on a machine that cannot. Main thread; does not block.
  virtual void performFeedbackPattern(FeedbackPattern pattern, PerformanceTime time) = 0;
};

}  // namespace vorli::ports
