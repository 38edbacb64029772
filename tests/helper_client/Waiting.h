#pragma once

#include <chrono>
#include <functional>

namespace vorli {

/// Lets the main loop run until the condition holds. False, and a failed expectation, when it does not
/// within the deadline.
bool waitUntil(const std::function<bool()>& condition,
               std::chrono::milliseconds deadline = std::chrono::seconds(20));

}  // namespace vorli
