#pragma once

#include <cstdint>
#include <functional>
#include <memory>

class QSocketNotifier;

namespace vorli::linuxhost {

/// Holds one process by a descriptor, so that its number cannot come to mean another, and tells when it ends.
/// Main thread.
class ProcessExit {
 public:
  /// `ended` is called once on the main thread, not inside the constructor. A process that is gone already
  /// has no hold: see `isHeld`.
  ProcessExit(std::int32_t pid, std::function<void()> ended);
  ~ProcessExit();
  ProcessExit(const ProcessExit&) = delete;
  ProcessExit& operator=(const ProcessExit&) = delete;

  bool isHeld() const { return descriptor_ >= 0; }

  /// Asks the process to end by SIGTERM. False when it is gone or belongs to somebody else.
  bool requestTermination() const;

 private:
  int descriptor_ = -1;
  std::unique_ptr<QSocketNotifier> notifier_;
};

}  // namespace vorli::linuxhost
