#pragma once

#include "linux/KeptFile.h"
#include "ports/PowerSources.h"

#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vorli::linuxhost {

/// The supplies of /sys/class/power_supply; batteries of mice and other devices are not among them.
class PowerSources final : public ports::PowerSources {
 public:
  /// `root` stands before every path that is read; tests give a recorded tree.
  explicit PowerSources(const std::string& root = "");

  /// "UPS Power" when an uninterruptible supply carries the machine. Empty without any supply, as on most
  /// desktops and servers.
  std::optional<std::string> providingSourceType() override;

  /// A dock or a supply on USB comes and goes: supplies are looked for at the first reading and then at each
  /// one after so many.
  static constexpr int readingsBetweenLooks = 8;

 private:
  enum class Kind { line, battery, uninterruptible };

  struct Supply {
    Kind kind;
    KeptFile state;  // "online" of a line, else "status"
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
