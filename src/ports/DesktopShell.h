#pragma once

#include "base/OnceReply.h"

#include <string>

namespace vorli::ports {

/// The desktop's own programs. A program that is not running is silently ignored. Each call returns at once,
/// and does nothing while an earlier one for the same program is in progress. Main thread.
class DesktopShell {
 public:
  virtual ~DesktopShell() = default;

  /// Restarts the application bar: the dock or the panel.
  virtual void restartDock() = 0;
  /// Restarts the file manager. It is only asked to quit: it may refuse or ask the user first. Replies, never
  /// inside the call, with the name of a file manager that cannot be asked; there is no other reply.
  virtual void restartFinder(OnceReply<std::string> cannotBeAsked) = 0;
};

}  // namespace vorli::ports
