#pragma once

#include <chrono>
#include <functional>

namespace vorli {

/// Runs the main loop until the condition holds. Returns false, with a failed expectation, if it does not
/// hold before the deadline.
bool waitUntil(const std::function<bool()>& condition,
               std::chrono::milliseconds deadline = std::chrono::seconds(20));

}  // namespace vorli
