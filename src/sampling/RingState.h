#pragma once

#include <string_view>

namespace vorli {

/// The meaning of a progress value to the user.
enum class RingState { healthy, warming, critical };

/// Healthy below 0.55, critical from 0.8. There is no hysteresis: the ring's smoothing keeps the state from
/// flickering.
RingState ringState(double progress);

/// The state's name, for the log.
std::string_view description(RingState state);

}  // namespace vorli
