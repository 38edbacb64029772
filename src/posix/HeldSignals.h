#pragma once

#include <csignal>

namespace vorli::posix {

/// Signals to the process are the main thread's. While this exists they pass over the calling thread, and for
/// good over each thread that it starts meanwhile; what tells of a thread's own fault reaches that thread.
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
