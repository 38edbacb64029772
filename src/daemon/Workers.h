#pragma once

#include "base/UniqueFunction.h"

namespace vorli::daemon {

/// Threads for blocking work.
class Workers {
 public:
  virtual ~Workers() = default;

  /// Runs `work` on some thread. Work starts in the order of posting, as threads become free. Any thread.
  virtual void post(UniqueFunction<void()> work) = 0;
};

}  // namespace vorli::daemon
