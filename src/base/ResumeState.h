#pragma once

#include <mutex>

namespace vorli {

/// Lets exactly one of several parties go on, from whatever threads they come.
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
