#pragma once

#include "base/UniqueFunction.h"

namespace vorli::ports {

/// Runs pieces of work one after the other, in order, on a low-priority thread. Thread-safe.
class SerialQueue {
 public:
  using Work = UniqueFunction<void()>;

  virtual ~SerialQueue() = default;

  /// Returns at once. If no thread can be created, runs the work inside the call.
  virtual void post(Work work) = 0;
};

}  // namespace vorli::ports
