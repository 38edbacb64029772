#pragma once

#include <chrono>
#include <functional>
#include <source_location>

namespace vorli {

/// Runs the main loop until the condition holds. Returns false, with a failed expectation, if it does not
/// hold before the deadline; the failure names the caller's line.
bool waitUntil(const std::function<bool()>& condition,
               std::chrono::milliseconds deadline = std::chrono::seconds(20),
               const std::source_location& caller = std::source_location::current());

}  // namespace vorli
