#pragma once

#include "base/Subscription.h"

#include <functional>

namespace vorli::ports {

/// The user's preference for less movement. Main thread; no call blocks.
class MotionPreference {
 public:
  virtual ~MotionPreference() = default;

  /// False where the desktop has no such setting.
  virtual bool isReduced() const = 0;

  /// `handler` runs when `isReduced` has changed.
  [[nodiscard]] virtual Subscription subscribe(std::function<void()> handler) = 0;
};

}  // namespace vorli::ports
