#pragma once

#include "base/UniqueFunction.h"

namespace vorli::daemon {

/// Threads for what blocks.
class Workers {
 public:
  virtual ~Workers() = default;

  /// Runs `work` on some thread, in the order of posting as far as threads are free. Any thread.
  virtual void post(UniqueFunction<void()> work) = 0;
};

}  // namespace vorli::daemon
