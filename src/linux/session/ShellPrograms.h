#pragma once

#include <array>
#include <span>
#include <string_view>

namespace vorli::linuxhost {

/// A panel or file manager of a desktop.
struct ShellProgram {
  /// Name of the process as the kernel reports it, cut off after 15 bytes.
  std::string_view processName;
  /// Program and argument that restart it; empty for a program that must be ended and started again.
  std::array<std::string_view, 2> restartCommand{};
  /// Unit of the user's service manager in which its desktop may run it.
  std::string_view unit{};
  /// The name that users know; empty if it is the same as the process's.
  std::string_view displayName{};
};

std::string_view nameOf(const ShellProgram& program);

// The most important ones come first, because only the first one that runs is restarted: docks come after
// panels. GNOME's shell is in no list, because it is the compositor as well.
std::span<const ShellProgram> shellPanels();
std::span<const ShellProgram> shellFileManagers();

}  // namespace vorli::linuxhost
