#pragma once

#include <span>
#include <string_view>

namespace vorli {

/// Short names of processes that belong to a system and are nobody's fault. All in lower case.
struct SystemProcessNames {
  std::span<const std::string_view> names;
  /// Beginnings of the names of whole families.
  std::span<const std::string_view> families;

  bool contains(std::string_view lowercasedName) const;

  static const SystemProcessNames macOS;
  static const SystemProcessNames linuxDesktop;
  static const SystemProcessNames& ofThisSystem();
};

}  // namespace vorli
