#pragma once

#include "ports/Haptics.h"

#include <utility>
#include <vector>

namespace vorli::fakes {

/// Records each tap.
class Haptics final : public ports::Haptics {
 public:
  void performFeedbackPattern(ports::FeedbackPattern pattern, ports::PerformanceTime time) override {
    taps.emplace_back(pattern, time);
  }

  std::vector<std::pair<ports::FeedbackPattern, ports::PerformanceTime>> taps;
};

}  // namespace vorli::fakes
