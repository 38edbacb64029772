#pragma once

#include "ports/DesktopShell.h"

namespace vorli::fakes {

/// Counts the restarts that were asked for.
class DesktopShell final : public ports::DesktopShell {
 public:
  void restartDock() override { ++dockRestarts; }
  void restartFinder() override { ++finderRestarts; }

  int dockRestarts = 0;
  int finderRestarts = 0;
};

}  // namespace vorli::fakes
