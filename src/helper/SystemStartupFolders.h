#pragma once

#include <array>
#include <span>
#include <string_view>

namespace vorli::helper {

/// One system folder whose startup items the daemon moves.
struct SystemStartupFolder {
  std::string_view path;
  /// What an item's own name ends in.
  std::span<const std::string_view> suffixes;
};

inline constexpr std::string_view disabledExtension = ".vorli-disabled";
inline constexpr std::string_view removedExtension = ".vorli-removed";

inline constexpr std::array<std::string_view, 1> desktopEntrySuffixes{".desktop"};
inline constexpr std::array<std::string_view, 4> unitSuffixes{".service", ".timer", ".socket", ".path"};

/// The only folders in which the daemon moves anything. Not those under /usr: their files are the package
/// manager's and come back with the next upgrade.
inline constexpr std::array<SystemStartupFolder, 3> systemStartupFolders{{
    {"/etc/xdg/autostart", desktopEntrySuffixes},
    {"/etc/systemd/system", unitSuffixes},
    {"/etc/systemd/user", unitSuffixes},
}};

}  // namespace vorli::helper
