#include "sampling/RingState.h"

namespace vorli {

RingState ringState(double progress) {
  if (progress < 0.55) return RingState::healthy;
  if (progress < 0.8) return RingState::warming;
  return RingState::critical;
}

std::string_view description(RingState state) {
  switch (state) {
    case RingState::healthy:
      return "healthy";
    case RingState::warming:
      return "warming";
    case RingState::critical:
      return "critical";
  }
  return {};
}

}  // namespace vorli
