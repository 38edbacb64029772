#pragma once

#include <string>

namespace vorli::ports {

/// The process as the desktop sees it. Main thread.
class ApplicationHost {
 public:
  virtual ~ApplicationHost() = default;

  /// Brings the program to the front, whatever else is active.
  virtual void activateIgnoringOtherApps() = 0;

  /// An informational alert with one button "OK". Returns at once; the main loop goes on behind it.
  virtual void showInfoAlert(const std::string& messageText, const std::string& informativeText) = 0;

  virtual void openAboutPanel() = 0;

  /// Asks the program to end, as from its menu: the delegate's answer decides when.
  virtual void terminate() = 0;
  /// Ends a deferred termination.
  virtual void replyToTermination() = 0;
};

}  // namespace vorli::ports
