#pragma once

#include "ports/DesktopShell.h"

#include <string>

namespace vorli::linuxhost {

/// The desktop's panel and file manager, whichever of the known ones this user runs; each is restarted, or
/// asked to leave, by its own command. GNOME's shell is panel and compositor in one and is left alone.
class DesktopShell final : public ports::DesktopShell {
 public:
  void restartDock() override;
  void restartFinder() override;
};

}  // namespace vorli::linuxhost
