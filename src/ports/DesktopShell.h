#pragma once

namespace vorli::ports {

/// The desktop's own programs. Main thread; no call blocks. One that is not running is left alone, silently.
class DesktopShell {
 public:
  virtual ~DesktopShell() = default;

  /// Restarts the bar of applications: the dock, or the panel.
  virtual void restartDock() = 0;
  /// Restarts the file manager.
  virtual void restartFinder() = 0;
};

}  // namespace vorli::ports
