#pragma once

#include <string_view>

namespace vorli {

/// What a progress value means to the user.
enum class RingState { healthy, warming, critical };

/// Healthy below 0.55, critical from 0.8. No hysteresis: the smoothing of the ring keeps a state from
/// flickering.
RingState ringState(double progress);

/// Its name, for the log.
std::string_view description(RingState state);

}  // namespace vorli
