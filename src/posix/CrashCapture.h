#pragma once

#include "ports/CrashCapture.h"
#include "posix/AlternateStack.h"
#include "posix/CrashHost.h"

namespace vorli::posix {

/// Catches uncaught exceptions, those of C++ and of the system, and fatal signals of every thread. If several
/// threads crash, the first is reported and the others wait for the end. The process ends with the first
/// one's signal, at most three seconds later in any case. A fault in one step of the report loses only that
/// step. Handlers belong to the process, so at most one object may be installed.
class CrashCapture final : public ports::CrashCapture {
 public:
  /// Longest time in seconds between a crash and the end of the process.
  static constexpr unsigned longestSeconds = 3;

  explicit CrashCapture(const CrashHost& host) : host_(host) {}

  /// Installs the handlers. The calling thread keeps an alternate stack until this object is destroyed.
  void install(const ports::CrashCapturePlan& plan) override;

 private:
  const CrashHost host_;
  const AlternateStack stack_;
};

}  // namespace vorli::posix
