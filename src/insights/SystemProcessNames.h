#pragma once

#include <span>
#include <string_view>

namespace vorli {

/// Short names of a system's own processes, which are never blamed. All in lower case.
struct SystemProcessNames {
  std::span<const std::string_view> names;
  /// Name prefixes of whole families of processes.
  std::span<const std::string_view> families;

  bool contains(std::string_view lowercasedName) const;

  static const SystemProcessNames macOS;
  static const SystemProcessNames linuxDesktop;
};

}  // namespace vorli
