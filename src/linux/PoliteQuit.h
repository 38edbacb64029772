#pragma once

#include "linux/WindowList.h"

#include <vector>

namespace vorli::linuxhost {

class ProcessExit;

/// Asks applications to quit in the gentlest way that each understands: its own quit action, then its
/// windows' close buttons. A signal goes only to a process without any window, since one that has a window
/// may hold unsaved work. Nothing waits for the outcome. Main thread.
class PoliteQuit {
 public:
  explicit PoliteQuit(WindowList& windows) : windows_(windows) {}

  /// False when there was nothing to ask.
  bool ask(const std::vector<DesktopWindow>& windows, const ProcessExit& process);

 private:
  void askByAction(const DesktopWindow& window, std::vector<DesktopWindow> all);

  WindowList& windows_;
};

}  // namespace vorli::linuxhost
