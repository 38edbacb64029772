#pragma once

#include <string>

namespace vorli::ports {

/// The process as the desktop sees it. Main thread.
class ApplicationHost {
 public:
  virtual ~ApplicationHost() = default;

  /// Brings the program to the front, even if another application is active. Windows that the user has
  /// minimised or put on another workspace stay there.
  virtual void activateIgnoringOtherApps() = 0;

  /// Shows an informational alert with one "OK" button. Returns at once; the main loop keeps running.
  virtual void showInfoAlert(const std::string& messageText, const std::string& informativeText) = 0;

  virtual void openAboutPanel() = 0;

  /// Asks the program to terminate, as its menu does; the delegate's answer decides when.
  virtual void terminate() = 0;
  /// Completes a deferred termination.
  virtual void replyToTermination() = 0;
};

}  // namespace vorli::ports
