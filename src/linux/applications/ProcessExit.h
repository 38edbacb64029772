#pragma once

#include "ports/Workspace.h"

#include <cstdint>
#include <functional>
#include <memory>

class QSocketNotifier;

namespace vorli::linuxhost {

/// Holds one process by a descriptor, so that its number cannot be mistaken for that of another, and reports
/// its end. Main thread.
class ProcessExit {
 public:
  /// Calls `ended` once on the main thread, but not inside the constructor. A process that is already gone is
  /// not held: see `isHeld`.
  ProcessExit(std::int32_t pid, std::function<void()> ended);
  ~ProcessExit();
  ProcessExit(const ProcessExit&) = delete;
  ProcessExit& operator=(const ProcessExit&) = delete;

  bool isHeld() const { return descriptor_ >= 0; }

  /// Asks the process to end by SIGTERM.
  ports::QuitAnswer requestTermination() const;
  /// The answer that `requestTermination` would give now. Sends nothing.
  ports::QuitAnswer answerToTermination() const;

 private:
  ports::QuitAnswer send(int signal) const;

  int descriptor_ = -1;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace vorli::linuxhost
