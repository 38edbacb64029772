#pragma once

#include <optional>
#include <string>

namespace vorli::ports {

/// The machine's source of power. Main thread; blocks for some tens of microseconds.
class PowerSources {
 public:
  virtual ~PowerSources() = default;

  /// The name of the source in use, "Battery Power" or "AC Power", or another name reported by the system.
  /// Empty when there is no information about power sources.
  virtual std::optional<std::string> providingSourceType() = 0;
};

}  // namespace vorli::ports
