#pragma once

#include "linux/kernel/KeptFile.h"
#include "ports/PowerSources.h"

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli::linuxhost {

/// The power supplies of /sys/class/power_supply, without the batteries of mice and other devices.
class PowerSources final : public ports::PowerSources {
 public:
  /// `root` is the prefix of every path that is read; tests pass a recorded tree.
  explicit PowerSources(const std::string& root = "");

  /// "UPS Power" when an uninterruptible supply powers the machine. Empty when there is no supply, as on most
  /// desktops and servers.
  std::optional<std::string> providingSourceType() override;

  /// Number of readings between two searches for supplies: docks and USB supplies appear and disappear.
  static constexpr int readingsBetweenLooks = 8;

 private:
  enum class Kind { line, battery, uninterruptible };

  struct Supply {
    Kind kind;
    KeptFile state;  // "online" for mains, otherwise "status"
  };

  static std::optional<Kind> kindOf(const std::string& supply);
  void lookForSupplies();
  bool any(Kind kind) const;
  bool any(Kind kind, std::initializer_list<std::string_view> states);

  const std::string folder_;
  std::vector<Supply> supplies_;
  int readingsUntilLook_ = 0;
};

}  // namespace vorli::linuxhost
