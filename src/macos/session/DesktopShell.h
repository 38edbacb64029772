#pragma once

#include "ports/DesktopShell.h"

namespace vorli::machost {

/// The Dock and the Finder. Each is only asked to quit; the system starts it again.
class DesktopShell final : public ports::DesktopShell {
 public:
  void restartDock() override;
  void restartFinder(OnceReply<std::string> cannotBeAsked) override;
};

}  // namespace vorli::machost
