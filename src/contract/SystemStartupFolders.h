#pragma once

#include "base/HostSystem.h"

#include <array>
#include <span>
#include <string_view>

namespace vorli::helper {

/// One system folder whose startup items the daemon moves.
struct SystemStartupFolder {
  std::string_view path;
  /// Allowed endings of an item's file name.
  std::span<const std::string_view> suffixes;
};

inline constexpr std::string_view disabledExtension = ".vorli-disabled";
inline constexpr std::string_view removedExtension = ".vorli-removed";

inline constexpr std::array<std::string_view, 1> desktopEntrySuffixes{".desktop"};
inline constexpr std::array<std::string_view, 4> unitSuffixes{".service", ".timer", ".socket", ".path"};

/// The only folders in which the daemon moves anything. Folders under /usr are excluded: their files belong
/// to the package manager, which restores them on the next upgrade.
inline constexpr std::array<SystemStartupFolder, 3> systemStartupFolders{{
    {"/etc/xdg/autostart", desktopEntrySuffixes},
    {"/etc/systemd/system", unitSuffixes},
    {"/etc/systemd/user", unitSuffixes},
}};

inline constexpr std::array<std::string_view, 1> propertyListSuffixes{".plist"};

/// The folders on macOS. Those of the system itself are excluded: nothing can be changed there.
inline constexpr std::array<SystemStartupFolder, 2> systemLaunchFolders{{
    {"/Library/LaunchAgents", propertyListSuffixes},
    {"/Library/LaunchDaemons", propertyListSuffixes},
}};

constexpr std::span<const SystemStartupFolder> systemFoldersOf(HostSystem system) {
  if (system == HostSystem::macOS) return systemLaunchFolders;
  return systemStartupFolders;
}

}  // namespace vorli::helper
