#pragma once

#include "ports/Haptics.h"

namespace vorli::machost {

/// The trackpad, if it has haptic feedback.
class Haptics final : public ports::Haptics {
 public:
  void performFeedbackPattern(ports::FeedbackPattern pattern, ports::PerformanceTime time) override;
};

}  // namespace vorli::machost
