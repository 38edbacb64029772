#pragma once

#include "tests/fakes/ManualScheduler.h"

#include <chrono>
#include <thread>

namespace vorli {

/// Runs the main loop until the condition holds, for at most 20 s of real time.
template <typename Condition>
bool holdsInTime(fakes::ManualScheduler& mainLoop, Condition condition) {
  const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(20);
  while (!condition()) {
    if (std::chrono::steady_clock::now() > deadline) return false;
    mainLoop.runReady();
    std::this_thread::yield();
  }
  return true;
}

}  // namespace vorli
