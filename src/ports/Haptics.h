#pragma once

namespace vorli::ports {

/// The numbers are part of the contract.
enum class FeedbackPattern { generic = 0 };
enum class PerformanceTime { now = 1 };

/// Haptic feedback of the pointing device.
class Haptics {
 public:
  virtual ~Haptics() = default;

  /// Gives one tap; does nothing on a machine without haptics. Main thread; does not block.
  virtual void performFeedbackPattern(FeedbackPattern pattern, PerformanceTime time) = 0;
};

}  // namespace vorli::ports
