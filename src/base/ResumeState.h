#pragma once

#include <mutex>

namespace vorli {

/// Lets exactly one of several callers proceed. Thread-safe.
class ResumeState {
 public:
  /// True for the first caller, false for every later one.
  [[nodiscard]] bool claim() {
    const std::lock_guard guard(lock);
    if (done) return false;
    done = true;
    return true;
  }

 private:
  std::mutex lock;
  bool done = false;
};

}  // namespace vorli
