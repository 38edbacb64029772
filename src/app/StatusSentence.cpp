#include "app/StatusSentence.h"

#include "base/Assert.h"
#include "sampling/RingState.h"

#include <cmath>

namespace vorli {

std::string statusSentence(SetupState setup, double ringProgress, const StatusTexts& texts) {
  if (setup == SetupState::incomplete) return "Setup not finished. Tap to return to onboarding.";
  const auto percent = std::to_string(std::lround(ringProgress * 100.0));
  switch (ringState(ringProgress)) {
    case RingState::critical:
      return std::string(texts.critical) + percent + " percent. Tap to polish.";
    case RingState::warming:
      return std::string(texts.warming) + percent + " percent under pressure.";
    case RingState::healthy:
      return std::string(texts.healthy) + percent + " percent under pressure.";
  }
  VORLI_ASSERT(false);
}

}  // namespace vorli
