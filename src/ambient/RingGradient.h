#pragma once

#include "base/Colour.h"

namespace vorli {

/// The colour of a progress value: seven stops from teal at 0 to deep red at 1, blended in between; values
/// outside take the nearest end.
Colour ringGradientColour(double progress);

}  // namespace vorli
