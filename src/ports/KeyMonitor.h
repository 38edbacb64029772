#pragma once

#include "base/Subscription.h"

#include <cstdint>
#include <functional>
#include <string>

namespace vorli::ports {

/// A key press.
struct KeyDown {
  std::uint16_t keyCode = 0;        // code of the key on the ANSI layout
  std::uint64_t modifierFlags = 0;  // 0x20000 Shift, 0x40000 Control, 0x80000 Option, 0x100000 Command
  std::string charactersIgnoringModifiers;
  /// Judged by the system's character tables, for all scripts.
  bool beginsWithLetterOrNumber = false;
};

/// The key presses of the program's own windows. Main thread; does not block.
class KeyMonitor {
 public:
  virtual ~KeyMonitor() = default;

  /// `handler` receives every key press before any control and consumes it. The monitor ends with the token,
  /// which may be destroyed inside the handler.
  virtual Subscription addLocalKeyDownMonitor(std::function<void(const KeyDown&)> handler) = 0;
};

}  // namespace vorli::ports
