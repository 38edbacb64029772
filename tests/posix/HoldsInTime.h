#pragma once

#include "tests/fakes/ManualScheduler.h"

#include <chrono>

namespace vorli {

/// Runs the main loop until its work has made the condition hold, for at most 20 s of real time.
template <typename Condition>
bool holdsInTime(fakes::ManualScheduler& mainLoop, Condition condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!condition()) {
    mainLoop.runReady();
    if (!condition() && !mainLoop.waitForPost(deadline)) return false;
  }
  return true;
}

}  // namespace vorli
