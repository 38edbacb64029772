#pragma once

#include <optional>
#include <string>

namespace vorli::ports {

/// Where the machine's power comes from. Main thread; blocks for some tens of microseconds.
class PowerSources {
 public:
  virtual ~PowerSources() = default;

  /// The name of the source in use, "Battery Power" or "AC Power", or another name that the system gives it.
  /// Empty when there is no information on power sources.
  virtual std::optional<std::string> providingSourceType() = 0;
};

}  // namespace vorli::ports
