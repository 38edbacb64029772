#pragma once

#include "ports/LaunchControl.h"

namespace vorli::linuxhost {

/// The user's own service manager, controlled with its command-line tool. A unit is identified by the name of
/// its file; an autostart entry by the unit that the service manager makes from it.
class LaunchControl final : public ports::LaunchControl {
 public:
  /// Starts the unit if it is enabled. The program of an autostart entry starts at the next login.
  void load(const std::string& path) override;
  void unload(const std::string& path) override;
  void reload() override;
};

/// Returns the name of the unit that the service manager makes from the autostart entry with this file name.
std::string autostartUnitName(const std::string& fileName);

}  // namespace vorli::linuxhost
