#pragma once

#include <span>

namespace vorli::ports {

/// One supply of power: a line from outside, such as the mains, an uninterruptible supply, or a battery.
struct PowerSupply {
  enum class Kind { line, uninterruptible, battery };

  /// A line that is online is supplying, and so is a battery that discharges. An idle supply neither gives
  /// nor takes power.
  enum class State { unknown, idle, charging, supplying };

  Kind kind = Kind::line;
  State state = State::unknown;

  bool operator==(const PowerSupply&) const = default;
};

/// The machine's supplies of power. Main thread; blocks for some tens of microseconds.
class PowerSources {
 public:
  virtual ~PowerSources() = default;

  /// The supplies in the order of their kinds, up to the first that is supplying; that one alone where the
  /// system names it. Empty when there is no information. Valid until the next call.
  virtual std::span<const PowerSupply> readSupplies() = 0;
};

}  // namespace vorli::ports
