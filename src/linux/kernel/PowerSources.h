#pragma once

#include "linux/kernel/KeptFile.h"
#include "ports/PowerSources.h"

#include <string>
#include <vector>

namespace vorli::linuxhost {

/// The power supplies of /sys/class/power_supply, without the batteries of mice and other devices.
class PowerSources final : public ports::PowerSources {
 public:
  /// `root` is the prefix of every path that is read; tests pass a recorded tree.
  explicit PowerSources(const std::string& root = "");

  /// Empty on most desktops and servers.
  std::span<const ports::PowerSupply> readSupplies() override;

  /// Number of readings between two searches for supplies: docks and USB supplies appear and disappear.
  static constexpr int readingsBetweenLooks = 8;

 private:
  struct Supply {
    ports::PowerSupply::Kind kind;
    KeptFile state;  // "online" for a line, otherwise "status"
  };

  void lookForSupplies();

  const std::string folder_;
  std::vector<Supply> supplies_;  // in the order of their kinds
  std::vector<ports::PowerSupply> reading_;
  int readingsUntilLook_ = 0;
};

}  // namespace vorli::linuxhost
