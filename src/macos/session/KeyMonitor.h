#pragma once

#include "ports/KeyMonitor.h"

namespace vorli::machost {

/// The system's own monitor, which comes before the menus: a combination that quits the program, or hides it,
/// can be recorded too.
class KeyMonitor final : public ports::KeyMonitor {
 public:
  Subscription addLocalKeyDownMonitor(std::function<void(const ports::KeyDown&)> handler) override;
};

}  // namespace vorli::machost
