#include "sampling/RingState.h"

namespace vorli {

RingState ringState(double progress) {
  if (progress < 0.55) return RingState::healthy;
  if (progress < 0.8) return RingState::warming;
  return RingState::critical;
}

}  // namespace vorli
