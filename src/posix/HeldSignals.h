#pragma once

#include <csignal>

namespace vorli::posix {

/// Blocks signals on the calling thread while it exists, so that a thread started meanwhile keeps them
/// blocked and signals to the process reach the main thread. Signals for a thread's own faults are not
/// blocked.
class HeldSignals {
 public:
  HeldSignals();
  ~HeldSignals();
  HeldSignals(const HeldSignals&) = delete;
  HeldSignals& operator=(const HeldSignals&) = delete;

 private:
  sigset_t before_;
};

}  // namespace vorli::posix
