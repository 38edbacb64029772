#pragma once

#include "ports/Haptics.h"

namespace vorli::linuxhost {

/// Does nothing: no desktop offers a tap to its programs. The kernel's force feedback is that of game
/// controllers, its device nodes belong to root, and touchpads with a motor keep it to their own clicks.
class Haptics final : public ports::Haptics {
 public:
  void performFeedbackPattern(ports::FeedbackPattern, ports::PerformanceTime) override {}
};

}  // namespace vorli::linuxhost
