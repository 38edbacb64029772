#pragma once

#include "base/Logger.h"

namespace vorli::ports {

/// The system's log. Thread-safe; a call blocks for some microseconds and never reports a failure.
class SystemLog {
 public:
  virtual ~SystemLog() = default;

  virtual void write(const LogRecord& record) = 0;
};

}  // namespace vorli::ports
