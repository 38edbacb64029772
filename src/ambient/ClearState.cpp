#include "ambient/ClearState.h"

namespace vorli {

void ClearState::runCeremony(double riseDuration, double decayDuration) {
  calmIntensity.follow({scheduler_.now(), calmIntensity.get(), riseDuration, decayDuration});
}

}  // namespace vorli
