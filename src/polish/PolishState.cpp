#include "polish/PolishState.h"

namespace vorli {

PolishState::PolishState(const Scheduler& clock)
    : animatedProgress(clock, 0.0), celebrationScale(clock, 1.0) {}

}  // namespace vorli
