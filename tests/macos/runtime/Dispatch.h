#pragma once

#include <cstddef>
#include <functional>

namespace vorli::macfake {

/// Runs the work in the main queue, and the work that it adds.
void runMainQueue();

/// Moves the clock and fires the timers that become due, in their order.
void advanceTime(double seconds);

/// Timers that were started and not cancelled, including those that have fired.
std::size_t activeTimers();

/// Runs the work on its own thread, which `joinThreads` waits for.
void runOnThread(std::function<void()> work);

/// Waits until all work of other threads is done.
void joinThreads();

/// Makes each wait for an unfinished group end at once as if its time had run out.
void letWaitsRunOut();

}  // namespace vorli::macfake
