#pragma once

#include "ports/KeyMonitor.h"

namespace vorli::ui {

/// Receives the key presses in the program's own windows before any widget or shortcut does.
class KeyMonitor final : public ports::KeyMonitor {
 public:
  Subscription addLocalKeyDownMonitor(std::function<void(const ports::KeyDown&)> handler) override;
};

}  // namespace vorli::ui
