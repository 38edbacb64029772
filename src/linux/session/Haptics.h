#pragma once

#include "ports/Haptics.h"

namespace vorli::linuxhost {

/// Does nothing: no desktop offers haptic feedback to programs. The kernel's force feedback is for game
/// controllers, its device nodes belong to root, and touchpads with a motor use it for their own clicks only.
class Haptics final : public ports::Haptics {
 public:
  void performFeedbackPattern(ports::FeedbackPattern, ports::PerformanceTime) override {}
};

}  // namespace vorli::linuxhost
