#pragma once

#include "linux/applications/QuitAction.h"
#include "linux/applications/SessionWindows.h"
#include "ports/Workspace.h"

#include <QObject>
#include <optional>
#include <vector>

namespace vorli::linuxhost {

class ProcessExit;

/// Asks applications to quit in the gentlest way that each understands: its own quit action, then its
/// windows' close buttons. A signal is sent only to a process without windows, and only where the caller
/// permits it, since a process with a window may hold unsaved work. Does not wait for the outcome. Main
/// thread.
class PoliteQuit {
 public:
  enum class Signals { toWindowless, never };

  explicit PoliteQuit(SessionWindows& windows) : windows_(windows) {}

  /// Everything known about an application that is asked to quit.
  struct Target {
    std::vector<DesktopWindow> windows;    // all that are visible to this program
    std::optional<QuitAction> quitAction;  // for an application whose windows may be invisible here
    const ProcessExit& process;
    Signals permitted;
  };

  ports::QuitAnswer ask(const Target& target);
  /// The answer that `ask` would give now. Sends nothing.
  static ports::QuitAnswer answer(const Target& target);

 private:
  void askByAction(const QuitAction& action, std::vector<DesktopWindow> windows);

  SessionWindows& windows_;
  const QObject receiver_;  // answers after its destruction are ignored
};

}  // namespace vorli::linuxhost
